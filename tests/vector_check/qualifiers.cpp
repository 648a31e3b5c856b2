// parse, all_operators, operator_selector, operator_string, or_variadic, match_values, eval,
// eval_intended, eval_custom, filter

#include <stdexcept>
#include <utility>
#include <vector>

#include "tests/vector_check/driver.h"

namespace vector_check {

using namespace qx;

namespace {

// Answers comparisons by key, and writes down what it was asked.
class Answerer : public Object,
                 public QXKeyValueQualifierEvaluation,
                 public QXKeyComparisonQualifierEvaluation {
 public:
  explicit Answerer(json answers) : answers_(std::move(answers)) {}

  bool evaluateWithKey(StringArg key, Selector operatorSelector,
                       const PropertyValue& value) const override {
    calls_.push_back({"kv", key.utf8(), operatorJson(operatorSelector), typedJson(value)});
    return answers_.value(key.utf8(), false);
  }
  bool evaluateWithLeftKey(StringArg leftKey, Selector operatorSelector,
                           StringArg rightKey) const override {
    const json right = rightKey.isNil() ? json() : json(rightKey.utf8());
    calls_.push_back({"kc", leftKey.utf8(), operatorJson(operatorSelector), right});
    return answers_.value(leftKey.utf8(), false);
  }
  const json& calls() const { return calls_; }

 private:
  json answers_;
  mutable json calls_ = json::array();
};

void describe(ClassBuilder<Answerer>& c) {
  c.name("Answerer")
      .conforms<QXKeyValueQualifierEvaluation>()
      .conforms<QXKeyComparisonQualifierEvaluation>();
}

Outcome parse(const json& args, const json& expect) {
  const json tree = qualifierJson(parsed(args.at("format"), args.at("arguments")));
  return compare(normalized(expect), {{"tree", tree}});
}

json textsJson(const Ref<Array>& texts) { return plainJson(texts); }

Outcome allOperators(const json& args, const json& expect) {
  return compare(expect, textsJson(args.value("relational", false)
                                       ? QXQualifier::relationalQualifierOperators()
                                       : QXQualifier::allQualifierOperators()));
}

Outcome operatorSelector(const json& args, const json& expect) {
  const Selector s = QXQualifier::operatorSelectorForString(args.at("string").get<std::string>());
  return compare(expect, {{"selector", s.isNull() ? json() : json(std::string(s.text()))}});
}

Outcome operatorString(const json& args, const json& expect) {
  const PropertyValue name = textOrNil(args.at("selector"));
  return compare(expect, {{"string", operatorJson(Selector::named(name.as<String>()))}});
}

// A list of arguments of any length up to kMaxListed, as a caller writes it.
constexpr std::size_t kMaxListed = 16;
template <class Q, std::size_t... I>
Ref<Array> listed(const std::vector<Ref<QXQualifier>>& q, std::index_sequence<I...>) {
  return Q::initWithQualifiers(q[I]...)->qualifiers();
}
template <class Q, std::size_t N = 0>
Ref<Array> variadic(const std::vector<Ref<QXQualifier>>& q) {
  if constexpr (N > kMaxListed) {
    throw std::runtime_error("more qualifiers than the driver can list");
  } else {
    return q.size() == N ? listed<Q>(q, std::make_index_sequence<N>()) : variadic<Q, N + 1>(q);
  }
}

Outcome orVariadic(const json& args, const json& expect) {
  std::vector<Ref<QXQualifier>> list;
  for (std::size_t i = 0; i < args.at("count").get<std::size_t>(); ++i) {
    list.push_back(QXKeyValueQualifier::initWithKey("k", "isEqualTo:", i));
  }
  const Ref<Array> kept =
      args.at("class") == "and" ? variadic<QXAndQualifier>(list) : variadic<QXOrQualifier>(list);
  json places = json::array();
  for (const PropertyValue& member : *kept) {
    for (std::size_t i = 0; i < list.size(); ++i) {
      if (qx::isSame(member, list[i])) places.push_back(i);
    }
  }
  return compare(expect, {{"members", places}});
}

Outcome matchValues(const json& args, const json& expect) {
  const auto values = MutableDictionary::init();
  for (const auto& item : args.at("values").items())
    values->setObject(typedValue(item.value()), item.key());
  const auto q = args.at("all").get<bool>() ? QXQualifier::qualifierToMatchAllValues(values)
                                            : QXQualifier::qualifierToMatchAnyValue(values);
  json actual = {{"results", json::array()}};
  for (const json& o : args.at("objects"))
    actual["results"].push_back(q->evaluateWithObject(plainValue(o)));
  if (expect.contains("tree")) {
    actual["tree"] = qualifierJson(q);
    return compare(normalized(expect), actual);
  }
  const json tree = qualifierJson(q);
  actual["kind"] = tree.at(0);
  actual["count"] = tree.at(1).size();
  return compare(expect, actual);
}

Outcome evaluate(const json& args, const json& expect) {
  const PropertyValue object =
      args.contains("object") ? plainValue(args["object"]) : PropertyValue();
  return compare(expect, {{"result", qualifierOf(args)->evaluateWithObject(object)}});
}

Outcome evaluateCustom(const json& args, const json& expect) {
  const auto answerer = make<Answerer>(args.at("answers"));
  const bool result = qualifierOf(args)->evaluateWithObject(answerer);
  return compare(normalized(expect), {{"result", result}, {"calls", answerer->calls()}});
}

Outcome filter(const json& args, const json& expect) {
  const PropertyValue objects = plainValue(args.at("objects"));
  const auto array = objects.as<Array>();
  const auto kept = filteredArrayUsingQualifier(array, qualifierOf(args));
  json places = json::array();
  std::size_t at = 0;
  for (const PropertyValue& v : *kept) {
    while (at < array->count() && !qx::isSame(array->objectAtIndex(at), v)) ++at;
    places.push_back(at++);
  }
  return compare(expect, {{"kept", places}});
}

}  // namespace

void addQualifierOperations(Operations& operations) {
  operations["parse"] = parse;
  operations["all_operators"] = allOperators;
  operations["operator_selector"] = operatorSelector;
  operations["operator_string"] = operatorString;
  operations["or_variadic"] = orVariadic;
  operations["match_values"] = matchValues;
  operations["eval"] = evaluate;
  operations["eval_intended"] = evaluate;
  operations["eval_custom"] = evaluateCustom;
  operations["filter"] = filter;
}

}  // namespace vector_check

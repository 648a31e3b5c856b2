#include "tests/vector_check/values.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

namespace vector_check {

using namespace qx;

namespace {

bool isInteger(const json& j) { return j.is_number_integer(); }

bool sameIntegers(const json& a, const json& b) {
  const bool aUnsigned = a.is_number_unsigned();
  const bool bUnsigned = b.is_number_unsigned();
  if (!aUnsigned && !bUnsigned) return a.get<std::int64_t>() == b.get<std::int64_t>();
  if (!aUnsigned && a.get<std::int64_t>() < 0) return false;
  if (!bUnsigned && b.get<std::int64_t>() < 0) return false;
  return a.get<std::uint64_t>() == b.get<std::uint64_t>();
}

// Zeros have a sign.
bool sameDoubles(double a, double b) { return a == b && std::signbit(a) == std::signbit(b); }

bool sameObjects(const json& a, const json& b) {
  if (a.size() != b.size()) return false;
  return std::all_of(a.items().begin(), a.items().end(), [&](const auto& item) {
    return b.contains(item.key()) && isSame(item.value(), b.at(item.key()));
  });
}

PropertyValue dictionaryOf(const json& j) {
  std::vector<std::string> keys;
  std::vector<Entry> entries;
  for (const auto& item : j.items()) keys.push_back(item.key());
  for (const auto& key : keys) entries.push_back({StringArg(key), plainValue(j.at(key))});
  return Dictionary::from(entries.data(), entries.size());
}

json numberJson(const PropertyValue& v) {
  switch (v.as<Number>()->kind()) {
    case NumberKind::boolean:
      return v.boolValue();
    case NumberKind::signedInteger:
      return v.integerValue();
    case NumberKind::unsignedInteger:
      return v.unsignedIntegerValue();
    case NumberKind::decimal:
      return json{{"class", v.cls()->name()}, {"string", v.description()}};
    default:
      return v.doubleValue();
  }
}

Ref<Array> members(const json& list) {
  const auto all = MutableArray::init();
  for (const json& q : list) all->addObject(qualifier(q));
  return all;
}

json membersJson(const Ref<Array>& list) {
  json all = json::array();
  for (const PropertyValue& v : *list) all.push_back(qualifierJson(v.as<QXQualifier>()));
  return all;
}

Selector operatorSelector(const json& j) {
  return j.is_null() ? Selector() : QXQualifier::operatorSelectorForString(j.get<std::string>());
}

PropertyValue argument(const json& pair) {
  const auto letter = pair.at(0).get<std::string>();
  const json& value = pair.at(1);
  if (letter == "@") return typedValue(value);
  if (letter == "d") return plainValue(value);
  if (letter == "f") return value.get<double>();
  if (letter == "s") return value.get<std::string>();
  throw std::runtime_error("an argument of an unknown conversion");
}

}  // namespace

bool isSame(const json& a, const json& b) {
  if (isInteger(a) && isInteger(b)) return sameIntegers(a, b);
  if (a.type() != b.type()) return false;
  if (a.is_object()) return sameObjects(a, b);
  if (a.is_array()) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const json& x, const json& y) { return isSame(x, y); });
  }
  if (a.is_number_float()) return sameDoubles(a.get<double>(), b.get<double>());
  return a == b;
}

PropertyValue plainValue(const json& j) {
  switch (j.type()) {
    case json::value_t::null:
      return null;
    case json::value_t::boolean:
      return j.get<bool>();
    case json::value_t::number_integer:
      return j.get<std::int64_t>();
    case json::value_t::number_unsigned: {
      const auto n = j.get<std::uint64_t>();
      return n >> 63 == 0 ? PropertyValue(static_cast<std::int64_t>(n)) : PropertyValue(n);
    }
    case json::value_t::number_float:
      return j.get<double>();
    case json::value_t::string:
      return j.get<std::string>();
    case json::value_t::array: {
      std::vector<PropertyValue> elements;
      for (const json& e : j) elements.push_back(plainValue(e));
      return Array::from(elements.data(), elements.size());
    }
    default:
      return dictionaryOf(j);
  }
}

json plainJson(const PropertyValue& v) {
  if (v.isNull()) return nullptr;
  if (v.isNumber()) return numberJson(v);
  if (v.isString()) return v.description();
  if (const auto array = v.as<Array>()) {
    json j = json::array();
    for (const PropertyValue& e : *array) j.push_back(plainJson(e));
    return j;
  }
  if (const auto dictionary = v.as<Dictionary>()) {
    json j = json::object();
    for (const auto& [key, value] : *dictionary) j[key.utf8()] = plainJson(value);
    return j;
  }
  return json{{"class", v.cls() == nullptr ? "nil" : v.cls()->name()}, {"string", v.description()}};
}

PropertyValue typedValue(const json& j) {
  if (j.is_null()) return nullptr;
  if (j.contains("s")) return j["s"].get<std::string>();
  if (j.contains("i")) return plainValue(j["i"]);
  if (j.contains("f")) return static_cast<float>(j["f"].get<double>());
  const json& object = j.at("obj");
  if (object.is_object() && object.size() == 2 && object.contains("class") &&
      object.contains("string")) {
    const Class* c = classNamed(object["class"].get<std::string>());
    if (c == nullptr) throw std::runtime_error("a class that is not known");
    return c->initWithString(object["string"].get<std::string>());
  }
  return plainValue(object);
}

json typedJson(const PropertyValue& v) {
  if (v.isNil()) return nullptr;
  if (v.isString()) return json{{"s", v.description()}};
  if (v.isNumber()) {
    const NumberKind kind = v.as<Number>()->kind();
    if (kind == NumberKind::signedInteger || kind == NumberKind::unsignedInteger)
      return json{{"i", plainJson(v)}};
    if (kind == NumberKind::single) return json{{"f", v.doubleValue()}};
  }
  return json{{"obj", plainJson(v)}};
}

PropertyValue slotValue(const json& j) { return j.empty() ? PropertyValue() : plainValue(j.at(0)); }

PropertyValue textOrNil(const json& j) {
  return j.is_null() ? PropertyValue() : PropertyValue(j.get<std::string>());
}

Ref<QXQualifier> qualifier(const json& j) {
  if (j.is_null()) return nullptr;
  const auto kind = j.at(0).get<std::string>();
  if (kind == "and") return QXAndQualifier::initWithQualifierArray(members(j.at(1)));
  if (kind == "or") return QXOrQualifier::initWithQualifierArray(members(j.at(1)));
  if (kind == "not") return QXNotQualifier::initWithQualifier(qualifier(j.at(1)));
  const Selector selector = operatorSelector(j.at(2));
  const PropertyValue left = textOrNil(j.at(1));
  if (kind == "kv")
    return QXKeyValueQualifier::initWithKey(left.as<String>(), selector, typedValue(j.at(3)));
  if (kind == "kc") {
    return QXKeyComparisonQualifier::initWithLeftKey(left.as<String>(), selector,
                                                     textOrNil(j.at(3)).as<String>());
  }
  throw std::runtime_error("a qualifier of an unknown kind");
}

json operatorJson(Selector selector) {
  const Ref<String> text = QXQualifier::stringForOperatorSelector(selector);
  return text == nullptr ? json() : json(text->utf8());
}

json qualifierJson(const Ref<QXQualifier>& q) {
  const PropertyValue v = q;
  const auto text = [](const Ref<String>& s) { return s == nullptr ? json() : json(s->utf8()); };
  if (v.isNil()) return nullptr;
  if (const auto a = v.as<QXAndQualifier>()) return {"and", membersJson(a->qualifiers())};
  if (const auto o = v.as<QXOrQualifier>()) return {"or", membersJson(o->qualifiers())};
  if (const auto n = v.as<QXNotQualifier>()) return {"not", qualifierJson(n->qualifier())};
  if (const auto kv = v.as<QXKeyValueQualifier>()) {
    return {"kv", text(kv->key()), operatorJson(kv->selector()), typedJson(kv->value())};
  }
  const auto kc = v.as<QXKeyComparisonQualifier>();
  return {"kc", text(kc->leftKey()), operatorJson(kc->selector()), text(kc->rightKey())};
}

Ref<QXQualifier> parsed(const json& format, const json& arguments) {
  std::vector<PropertyValue> list;
  for (const json& pair : arguments) list.push_back(argument(pair));
  const PropertyValue text = textOrNil(format);
  return QXQualifier::_qualifierWithQualifierFormat(text.as<String>(), list.data(), list.size());
}

Ref<QXQualifier> qualifierOf(const json& args) {
  if (args.contains("format"))
    return parsed(args["format"], args.value("arguments", json::array()));
  return qualifier(args.at("qualifier"));
}

json normalized(json expected) {
  if (expected.is_object() && expected.contains("obj")) return typedJson(typedValue(expected));
  if (expected.is_structured()) {
    for (json& inner : expected) inner = normalized(inner);
  }
  return expected;
}

}  // namespace vector_check

// Sub-arrays, changes of arrays, shuffling, dictionary getters, pointer arrays.

#include <functional>

#include "tests/support/scripted_random.h"
#include "tests/vector_check/driver.h"
#include "tests/vector_check/extended_values.h"

namespace vector_check {

// Answers "result" with what a case lists for it.
class Answerer : public qx::Object {
 public:
  explicit Answerer(const qx::PropertyValue& answer) : answer_(answer) {}
  qx::PropertyValue result() const { return answer_; }

 private:
  qx::PropertyValue answer_;
};
void describe(qx::ClassBuilder<Answerer>& c) {
  c.name("Answerer").operation("result", &Answerer::result);
}

using namespace qx;

namespace {

PropertyValue argument(const json& args, const char* name) { return extendedValue(args.at(name)); }
Ref<Array> arrayIn(const json& args, const char* name) { return extendedArray(args.at(name)); }
Ref<Dictionary> dictionaryIn(const json& args) { return argument(args, "dict").as<Dictionary>(); }
std::string keyIn(const json& args) { return args.at("key").get<std::string>(); }
std::vector<long> numbers(const json& list) { return list.get<std::vector<long>>(); }

Outcome without(const json& args, const json& expect) {
  return compare(expect,
                 extendedJson(subarrayWithoutObject(arrayIn(args, "array"), argument(args, "x"))));
}
Outcome intersecting(const json& args, const json& expect) {
  return compare(expect, extendedJson(subarrayByIntersectingWithArray(arrayIn(args, "array"),
                                                                      arrayIn(args, "other"))));
}
Outcome difference(const json& args, const json& expect) {
  return compare(expect, extendedJson(subarrayByDifferenceWithArray(arrayIn(args, "array"),
                                                                    arrayIn(args, "other"))));
}
Outcome containsArray(const json& args, const json& expect) {
  return compare(expect, kwContainsArray(arrayIn(args, "array"), arrayIn(args, "other")));
}

Ref<Array> answerers(const json& args) {
  const auto all = MutableArray::init();
  for (const json& result : args.at("results"))
    all->addObject(make<Answerer>(extendedValue(result)));
  return all;
}

Outcome performing(const json& args, const json& expect) {
  return compare(expect, extendedJson(arrayByPerformingSelector(answerers(args), "result")));
}
Outcome performingEqual(const json& args, const json& expect) {
  const auto all = answerers(args);
  const auto found = subarrayByPerformingSelector(all, "result", argument(args, "v"));
  json indexes = json::array();
  for (const PropertyValue& v : *found) indexes.push_back(all->indexOfObjectIdenticalTo(v));
  return compare(expect, indexes);
}
Outcome performingFirst(const json& args, const json& expect) {
  const auto all = answerers(args);
  const auto found = firstObjectByPerformingSelector(all, "result", argument(args, "v"));
  return compare(expect,
                 found.isNil() ? nilJson() : json{{"index", all->indexOfObjectIdenticalTo(found)}});
}

Outcome randomize(const json& args, const json& expect) {
  ScriptedRandom random(numbers(args.at("random")));
  const auto result = kwRandomize(arrayIn(args, "array"));
  return compare(expect, {{"result", extendedJson(result)}, {"random_calls", random.calls()}});
}

json mutate(const Ref<MutableArray>& a, const json& step) {
  const auto name = step.at(0).get<std::string>();
  if (name == "kwRandomize") {
    const ScriptedRandom random(numbers(step.at(1)));
    kwRandomize(a);
    return nilJson();
  }
  const PropertyValue x = extendedValue(step.at(1));
  if (name == "addObjectIfAbsent") return addObjectIfAbsent(a, x);
  if (name == "insertObjectIfAbsent_atIndex")
    return insertObjectIfAbsent(a, x, step.at(2).get<std::uint32_t>());
  if (name == "addObjectCheckNil") addObjectCheckNil(a, x);
  if (name == "addObjectIfMissing") addObjectIfMissing(a, x);
  if (name == "addObjectsFromArrayIfAbsent") addObjectsFromArrayIfAbsent(a, x.as<Array>());
  if (name == "removeObjectsNotInArray") removeObjectsNotInArray(a, x.as<Array>());
  if (name == "removeObjectsInArrayUsingIsEqual")
    removeObjectsInArrayUsingIsEqual(a, x.as<Array>());
  return nilJson();
}

Outcome mutableArrayScript(const json& args, const json& expect) {
  const auto start = arrayIn(args, "array");
  const auto a = MutableArray::from(start->begin(), start->count());
  json returns = json::array();
  for (const json& step : args.at("steps")) {
    try {
      returns.push_back(mutate(a, step));
    } catch (const Exception& e) {
      returns.push_back({{"raise", e.name()}});
    }
  }
  return compare(expect, {{"returns", returns}, {"array", extendedJson(a)}});
}

Outcome objectOf(const json& args, const json& expect) {
  return compare(expect, extendedJson(objectForKey(dictionaryIn(args), keyIn(args),
                                                   argument(args, "default"))));
}
Outcome boolOf(const json& args, const json& expect) {
  if (!args.contains("default"))
    return compare(expect, boolForKey(dictionaryIn(args), keyIn(args)));
  return compare(expect,
                 boolForKey(dictionaryIn(args), keyIn(args), args.at("default").get<bool>()));
}
Outcome intOf(const json& args, const json& expect) {
  if (!args.contains("default")) return compare(expect, intForKey(dictionaryIn(args), keyIn(args)));
  return compare(
      expect, intForKey(dictionaryIn(args), keyIn(args), args.at("default").get<std::int32_t>()));
}
Outcome unsignedOf(const json& args, const json& expect) {
  if (!args.contains("default"))
    return compare(expect, unsignedIntForKey(dictionaryIn(args), keyIn(args)));
  return compare(expect, unsignedIntForKey(dictionaryIn(args), keyIn(args),
                                           args.at("default").get<std::uint32_t>()));
}

// Objects that cases name by their index, each an object of its own.
class Objects {
 public:
  explicit Objects(const json& list) {
    for (const json& j : list) all_.push_back(extendedValue(j));
  }
  // Nil for {"$nil"} and null.
  PropertyValue at(const json& index) const {
    return index.is_number() ? all_.at(index.get<std::size_t>()) : PropertyValue();
  }
  json indexOf(const PropertyValue& v) const {
    for (std::size_t i = 0; i < all_.size(); ++i) {
      if (isSame(all_[i], v)) return i;
    }
    return nullptr;
  }

 private:
  std::vector<PropertyValue> all_;
};

Outcome setWithDefault(const json& args, const json& expect) {
  const Objects objects(args.at("objects"));
  const auto d = MutableDictionary::init();
  for (const auto& item : args.at("dict").items())
    d->setObject(objects.at(item.value()), item.key());
  for (const json& step : args.at("steps")) {
    setObject(d, objects.at(step.at(0)), step.at(1).get<std::string>(), objects.at(step.at(2)));
  }
  json actual = json::object();
  for (const auto& item : *d) actual[item.key.utf8()] = objects.indexOf(item.value);
  return compare(expect, actual);
}

json changePointers(const Ref<PointerArray>& a, const std::string& name, Object* x) {
  if (name == "containsObject") return containsObject(a, x);
  if (name == "addObject") addObject(a, x);
  if (name == "removeObject") removeObject(a, x);
  if (name == "removeObjectIdenticalTo") removeObjectIdenticalTo(a, x);
  if (name == "removeAllObjects") removeAllObjects(a);
  if (name == "removeAllNulls") removeAllNulls(a);
  return nilJson();
}

Outcome pointerArrayScript(const json& args, const json& expect) {
  const Objects objects(args.at("objects"));
  const auto a = PointerArray::init();
  for (const json& slot : args.at("slots")) a->addPointer(objects.at(slot).object());
  json returns = json::array();
  for (const json& step : args.at("steps")) {
    const PropertyValue x = step.size() > 1 ? objects.at(step.at(1)) : PropertyValue();
    returns.push_back(changePointers(a, step.at(0).get<std::string>(), x.object()));
  }
  json slots = json::array();
  for (std::size_t i = 0; i < a->count(); ++i)
    slots.push_back(objects.indexOf(a->pointerAtIndex(i)));
  return compare(expect, {{"returns", returns}, {"slots", slots}});
}

}  // namespace

void addCollectionOperations(Operations& operations) {
  operations["subarrayWithoutObject"] = without;
  operations["subarrayByIntersectingWithArray"] = intersecting;
  operations["subarrayByDifferenceWithArray"] = difference;
  operations["kwContainsArray"] = containsArray;
  operations["arrayByPerformingSelector"] = performing;
  operations["subarrayByPerformingSelector_equalTo"] = performingEqual;
  operations["firstObjectByPerformingSelector_equalTo"] = performingFirst;
  operations["kwRandomize"] = randomize;
  operations["mutable_array_script"] = mutableArrayScript;
  operations["objectForKey_defaultObject"] = objectOf;
  operations["boolForKey"] = operations["boolForKey_defaultValue"] = boolOf;
  operations["intForKey"] = operations["intForKey_defaultValue"] = intOf;
  operations["unsignedIntForKey"] = operations["unsignedIntForKey_defaultValue"] = unsignedOf;
  operations["setObject_forKey_defaultValue"] = setWithDefault;
  operations["pointer_array_script"] = pointerArrayScript;
}

}  // namespace vector_check

#include "tests/vector_check/extended_values.h"

#include <vector>

namespace vector_check {

using namespace qx;

namespace {

bool isTagged(const json& j, const char* tag) {
  return j.is_object() && j.size() == 1 && j.contains(tag);
}

PropertyValue extendedDictionary(const json& j) {
  const auto d = MutableDictionary::init();
  for (const auto& item : j.items()) d->setObject(extendedValue(item.value()), item.key());
  return PropertyValue(d).copy();
}

}  // namespace

PropertyValue extendedValue(const json& j) {
  if (isTagged(j, "$nil")) return nullptr;
  if (isTagged(j, "$date")) return Date::dateWithTimeIntervalSince1970(j.at("$date").get<double>());
  if (j.is_array()) return extendedArray(j);
  if (j.is_object()) return extendedDictionary(j);
  return plainValue(j);
}

json extendedJson(const PropertyValue& v) {
  if (v.isNil()) return nilJson();
  if (const auto date = v.as<Date>())
    return {{"$date", static_cast<std::int64_t>(date->timeIntervalSince1970())}};
  if (const auto array = v.as<Array>()) {
    json all = json::array();
    for (const PropertyValue& element : *array) all.push_back(extendedJson(element));
    return all;
  }
  if (const auto dictionary = v.as<Dictionary>()) {
    json all = json::object();
    for (const auto& item : *dictionary) all[item.key.utf8()] = extendedJson(item.value);
    return all;
  }
  return plainJson(v);
}

Ref<Array> extendedArray(const json& list) {
  std::vector<PropertyValue> elements;
  for (const json& e : list) elements.push_back(extendedValue(e));
  return Array::from(elements.data(), elements.size());
}

}  // namespace vector_check

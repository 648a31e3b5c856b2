#include "tests/vector_check/functional_blocks.h"

#include <functional>
#include <map>

#include <QXFoundation/QXFoundation.h>

namespace vector_check {

using namespace qx;

namespace {

using Value = const PropertyValue&;

std::int64_t integer(Value v) { return v.integerValue(); }

PropertyValue splitAtCommas(Value e) {
  const auto text = e.as<String>();
  if (text == nullptr || text->rangeOfString(",").location == kNotFound) return e;
  return text->componentsSeparatedByString(",");
}

PropertyValue halves(Value e) {
  if (!e.isNumber() || integer(e) % 2 != 0 || integer(e) == 0) return e;
  return array(integer(e) / 2, integer(e) / 2);
}

PropertyValue collected(Value value, Value e) {
  const auto list = value.as<Array>();
  return (list == nullptr ? Array::init() : list)->arrayByAddingObject(e);
}

PropertyValue joined(Value value, Value e) {
  if (!value.isString() || !e.isString()) return value;
  return value.as<String>()->stringByAppendingString(e.as<String>());
}

PropertyValue sum(Value value, Value e) {
  return value.isNumber() && e.isNumber() ? PropertyValue(integer(value) + integer(e)) : value;
}

const std::map<std::string, std::function<PropertyValue(Value)>>& transforms() {
  static const std::map<std::string, std::function<PropertyValue(Value)>> all = {
      {"identity", [](Value e) { return e; }},
      {"nil", [](Value) { return PropertyValue(); }},
      {"null", [](Value) { return PropertyValue(null); }},
      {"nil_for_string", [](Value e) { return e.isString() ? PropertyValue() : e; }},
      {"nil_for_odd",
       [](Value e) { return e.isNumber() && integer(e) % 2 != 0 ? PropertyValue() : e; }},
      {"succ", [](Value e) { return e.isNumber() ? PropertyValue(integer(e) + 1) : e; }},
      {"to_string",
       [](Value e) { return e.isNumber() ? PropertyValue(std::to_string(integer(e))) : e; }},
      {"split_comma", splitAtCommas},
      {"halve", halves},
      {"count_down",
       [](Value e) {
         return e.isNumber() && integer(e) > 0 ? PropertyValue(array(integer(e) - 1, "x")) : e;
       }},
      {"empty_array", [](Value e) { return e.isNumber() ? PropertyValue(Array::init()) : e; }},
      {"first_of_array", [](Value e) { return e.isArray() ? e.as<Array>()->firstObject() : e; }},
  };
  return all;
}

unsigned char byteOf(bool yes) { return yes ? 1 : 0; }

const std::map<std::string, std::function<unsigned char(Value)>>& predicates() {
  static const std::map<std::string, std::function<unsigned char(Value)>> all = {
      {"yes", [](Value) { return byteOf(true); }},
      {"no", [](Value) { return byteOf(false); }},
      {"byte2", [](Value) -> unsigned char { return 2; }},
      {"byte255", [](Value) -> unsigned char { return 255; }},
      {"is_number", [](Value e) { return byteOf(e.isNumber()); }},
      {"is_string", [](Value e) { return byteOf(e.isString()); }},
      {"is_array", [](Value e) { return byteOf(e.isArray()); }},
      {"is_null", [](Value e) { return byteOf(e.isNull()); }},
      {"greater3", [](Value e) { return byteOf(e.isNumber() && integer(e) > 3); }},
      {"mod4_byte",
       [](Value e) { return static_cast<unsigned char>(e.isNumber() ? integer(e) % 4 : 0); }},
      {"is_a", [](Value e) { return byteOf(e == "a"); }},
  };
  return all;
}

const std::map<std::string, std::function<PropertyValue(Value, Value)>>& reducers() {
  static const std::map<std::string, std::function<PropertyValue(Value, Value)>> all = {
      {"add", sum},
      {"concat", joined},
      {"last", [](Value, Value e) { return e; }},
      {"count",
       [](Value value, Value) {
         return PropertyValue(value.isNumber() ? integer(value) + 1 : std::int64_t{1});
       }},
      {"collect", collected},
      {"nil_on_zero",
       [](Value, Value e) { return e.isNumber() && integer(e) == 0 ? PropertyValue() : e; }},
      {"string_on_negative",
       [](Value value, Value e) {
         return e.isNumber() && integer(e) < 0 ? PropertyValue("neg") : sum(value, e);
       }},
  };
  return all;
}

}  // namespace

PropertyValue transformed(const std::string& name, Value e) { return transforms().at(name)(e); }
unsigned char judged(const std::string& name, Value e) { return predicates().at(name)(e); }
PropertyValue reduced(const std::string& name, Value value, Value e) {
  return reducers().at(name)(value, e);
}

}  // namespace vector_check

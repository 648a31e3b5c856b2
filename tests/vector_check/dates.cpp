// iso_read, iso_write, date_with_timeval, timeval, days_between

#include <cmath>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

#include "tests/vector_check/driver.h"
#include "tests/vector_check/exact_double.h"
#include "tests/vector_check/extended_values.h"
#include "values/iso_reader.h"

namespace vector_check {

using namespace qx;

namespace {

Ref<Date> dateOf(const json& seconds) {
  return Date::dateWithTimeIntervalSince1970(doubleOf(seconds));
}

PropertyValue inputOf(const json& args) {
  const auto kind = args.at("kind").get<std::string>();
  if (kind == "string") return args.at("value").get<std::string>();
  if (kind == "number") return doubleOf(args.at("value"));
  if (kind == "bool") return args.at("value").get<bool>();
  if (kind == "nil") return nullptr;
  if (kind == "null") return qx::null;
  if (kind == "dictionary") return dict();
  if (kind == "array") return Array::init();
  if (kind == "date") return Date::dateWithTimeIntervalSince1970(0);
  if (kind == "data") return Data::from("2021-03-04T05:06:07Z");
  throw std::runtime_error("unknown kind of value");
}

// Exactly the parts that the text sets.
json componentsJson(const std::string& text) {
  detail::DateComponents c;
  if (!detail::readIso8601(text, c)) return nilJson();
  json out = json::object();
  const auto add = [&](const char* name, const std::optional<std::int32_t>& part) {
    if (part) out[name] = *part;
  };
  add("year", c.year);
  add("month", c.month);
  add("day", c.day);
  add("hour", c.hour);
  add("minute", c.minute);
  add("second", c.second);
  add("nanosecond", c.nanosecond);
  add("zone", c.zone);
  return out;
}

// To the bit, or to a microsecond where a fraction of a second was read.
bool isSameMoment(double expected, double actual, const json& components) {
  const bool exact = !components.contains("nanosecond") || components["nanosecond"] == 0;
  return exact ? expected == actual : std::fabs(expected - actual) <= 1e-6;
}

// Local time is UTC here.
Outcome read(const json& args, const json& expect) {
  setenv("TZ", "UTC", 1);
  const PropertyValue input = inputOf(args);
  const Ref<Date> date = qxDateFromISO8601String(input);
  if (date == nullptr) return compare(expect, nilJson());
  json actual = json::object();
  if (input.isString()) actual["components"] = componentsJson(args.at("value").get<std::string>());
  const json components = actual.value("components", json::object());
  bool passed = !expect.contains("$nil") &&
                actual.value("components", json()) == expect.value("components", json());
  actual["seconds"] = doubleJson(date->timeIntervalSince1970());
  for (const char* name : {"seconds", "seconds_proleptic"}) {
    if (!expect.contains(name)) continue;
    passed = passed &&
             isSameMoment(doubleOf(expect.at(name)), date->timeIntervalSince1970(), components);
  }
  return {passed, actual};
}

Outcome write(const json& args, const json& expect) {
  return compare(expect, qxISO8601String(dateOf(args.at("t")))->utf8());
}

Outcome fromTimeValue(const json& args, const json& expect) {
  const auto date = qxDateWithTimeVal(
      {args.at("seconds").get<std::int64_t>(), args.at("microseconds").get<std::int32_t>()});
  return compare(withExactDoubles(expect), doubleJson(date->timeIntervalSince1970()));
}

Outcome toTimeValue(const json& args, const json& expect) {
  const TimeValue value = qxTimeval(dateOf(args.at("t")));
  return compare(expect, {{"seconds", value.seconds}, {"microseconds", value.microseconds}});
}

Outcome daysBetween(const json& args, const json& expect) {
  return compare(expect, daysBetweenDate(dateOf(args.at("from")), dateOf(args.at("to"))));
}

}  // namespace

void addDateOperations(Operations& operations) {
  operations["iso_read"] = read;
  operations["iso_write"] = write;
  operations["date_with_timeval"] = fromTimeValue;
  operations["timeval"] = toTimeValue;
  operations["days_between"] = daysBetween;
}

}  // namespace vector_check

#include "tests/vector_check/exact_double.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace vector_check {

namespace {

bool isDouble(const json& j) { return j.is_object() && j.contains("hex"); }

double parseHex(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  double d = 0;
  if (text == "nan") {
    d = std::numeric_limits<double>::quiet_NaN();
  } else if (text == "inf") {
    d = std::numeric_limits<double>::infinity();
  } else {
    if (!text.starts_with("0x")) throw std::runtime_error("not an exact double");
    text.remove_prefix(2);
    const auto end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, d, std::chars_format::hex);
    if (read.ec != std::errc() || read.ptr != end) throw std::runtime_error("not an exact double");
  }
  return negative ? -d : d;
}

}  // namespace

double doubleOf(const json& j) {
  return isDouble(j) ? parseHex(j.at("hex").get<std::string>()) : j.get<double>();
}

json doubleJson(double d) {
  if (std::isnan(d)) return {{"hex", "nan"}};
  char text[64];
  const auto written = std::to_chars(text, text + sizeof text, d, std::chars_format::hex);
  return {{"hex", std::string(text, written.ptr)}};
}

json withExactDoubles(const json& j) {
  if (isDouble(j)) return doubleJson(doubleOf(j));
  if (!j.is_structured()) return j;
  json out = j;
  for (json& element : out) element = withExactDoubles(element);
  return out;
}

}  // namespace vector_check

// size_format, thousand_format, rect_from_points, center_rect, cursor

#include <stdexcept>
#include <string>

#include "tests/vector_check/driver.h"
#include "tests/vector_check/exact_double.h"
#include "tests/vector_check/extended_values.h"

namespace vector_check {

using namespace qx;

namespace {

PropertyValue formattedObject(const json& args) {
  const auto kind = args.at("kind").get<std::string>();
  if (kind == "integer") return args.at("value").get<std::int64_t>();
  if (kind == "string") return args.at("value").get<std::string>();
  if (kind == "date") return Date::dateWithTimeIntervalSince1970(0);
  if (kind == "array") return Array::init();
  if (kind == "dictionary") return dict();
  if (kind == "data") return Data::from("1");
  if (kind == "null") return qx::null;
  if (kind == "nil") return nullptr;
  throw std::runtime_error("unknown kind of value");
}

// The text with attributes must be the same text.
Outcome sizeFormat(const json& args, const json& expect) {
  const auto formatter = QXSizeFormatter::init();
  const PropertyValue object = formattedObject(args);
  const PropertyValue text = formatter->stringForObjectValue(object);
  const auto attributed = formatter->attributedStringForObjectValue(object, dict({{"size", 1}}));
  const bool alike =
      attributed == nullptr ? text.isNil() : PropertyValue(attributed->string()) == text;
  if (!alike) return {false, "the text with attributes differs"};
  return compare(expect, extendedJson(text));
}

Outcome thousands(const json& args, const json& expect) {
  return compare(expect, thousandFormat(args.at("n").get<std::int64_t>())->utf8());
}

Point pointOf(const json& j) { return {doubleOf(j.at(0)), doubleOf(j.at(1))}; }
Rect rectOf(const json& j) {
  return {doubleOf(j.at(0)), doubleOf(j.at(1)), doubleOf(j.at(2)), doubleOf(j.at(3))};
}
json rectJson(const Rect& r) {
  return json::array({doubleJson(r.x), doubleJson(r.y), doubleJson(r.width), doubleJson(r.height)});
}

Outcome rectFromPoints(const json& args, const json& expect) {
  return compare(withExactDoubles(expect),
                 rectJson(QXRectFromPoints(pointOf(args.at("p1")), pointOf(args.at("p2")))));
}

Outcome centerRect(const json& args, const json& expect) {
  return compare(withExactDoubles(expect),
                 rectJson(QXCenterRect(rectOf(args.at("r")), rectOf(args.at("frame")))));
}

std::string bytesOfHex(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

json stepResult(QXDataCursor& cursor, const json& step) {
  const auto name = step.at(0).get<std::string>();
  if (name == "available") return cursor.hasAvailableData();
  try {
    if (name == "line") return extendedJson(cursor.readLine());
    if (name == "string") {
      return extendedJson(cursor.readStringOfLength(step.at(1).get<std::size_t>()));
    }
  } catch (const Exception& e) {
    return {{"raise", e.name()}, {"reason", e.reason()}};
  }
  throw std::runtime_error("unknown step");
}

Outcome cursorSteps(const json& args, const json& expect) {
  const auto cursor = QXDataCursor::initWithData(Data::from(bytesOfHex(args.at("data"))));
  json results = json::array();
  for (const json& step : args.at("steps")) results.push_back(stepResult(*cursor, step));
  return compare(expect, results);
}

}  // namespace

void addFormattingOperations(Operations& operations) {
  operations["size_format"] = sizeFormat;
  operations["thousand_format"] = thousands;
  operations["rect_from_points"] = rectFromPoints;
  operations["center_rect"] = centerRect;
  operations["cursor"] = cursorSteps;
}

}  // namespace vector_check

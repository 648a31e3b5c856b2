#include "tools/qx/typed_values.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>

#include <QXFoundation/array.h>
#include <QXFoundation/data.h>
#include <QXFoundation/date.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/iso_date.h>
#include <QXFoundation/number.h>
#include <QXFoundation/rfc3339.h>
#include <QXFoundation/string.h>

#include "tools/qx/failure.h"
#include "tools/qx/json_reader.h"
#include "tools/qx/json_writer.h"
#include "tools/qx/number_of.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

constexpr std::size_t kMaxQuotation = 40;
constexpr char kHexDigits[] = "0123456789abcdef";

qx::PropertyValue stringFrom(const std::string& text) { return text; }

qx::PropertyValue integerFrom(const std::string& text) {
  const auto number = numberOf<std::int64_t>(text);
  if (!number) throw Failure("an integer of 64 bits");
  return *number;
}

// Narrowed from double, so that of a text too long for a float the nearest one is taken.
qx::PropertyValue floatFrom(const std::string& text) {
  const auto number = numberOf<double>(text);
  if (!number || !(std::fabs(*number) <= double{std::numeric_limits<float>::max()})) {
    throw Failure("a real number within single precision");
  }
  return static_cast<float>(*number);
}

qx::PropertyValue doubleFrom(const std::string& text) {
  const auto number = numberOf<double>(text);
  if (!number || !std::isfinite(*number)) throw Failure("a real number");
  return *number;
}

qx::PropertyValue boolFrom(const std::string& text) {
  if (text == "true" || text == "yes" || text == "1") return true;
  if (text == "false" || text == "no" || text == "0") return false;
  throw Failure("true or false, yes or no, 1 or 0");
}

// A file would lose the fraction of a second.
qx::PropertyValue dateFrom(const std::string& text) {
  const auto date = qx::qxDateFromRFC3339String(text);
  if (date == nullptr) throw Failure("a date as in RFC 3339, such as 2021-03-04T05:06:07Z");
  const double seconds = date->timeIntervalSince1970();
  if (std::floor(seconds) != seconds) throw Failure("a date of whole seconds");
  return date;
}

int valueOfHexDigit(char c) {
  const char lower = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
  const char* end = std::end(kHexDigits) - 1;
  const char* found = std::find(std::begin(kHexDigits), end, lower);
  return found == end ? -1 : static_cast<int>(found - kHexDigits);
}

qx::PropertyValue dataFrom(const std::string& text) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    const int high = valueOfHexDigit(text[i]);
    const int low = valueOfHexDigit(text[i + 1]);
    if (high < 0 || low < 0) break;
    bytes += static_cast<char>(high * 16 + low);
  }
  if (bytes.size() * 2 != text.size()) throw Failure("pairs of hexadecimal digits");
  return qx::Data::from(bytes);
}

// A property list has room for neither larger integers nor keys given twice.
qx::PropertyValue jsonFrom(const std::string& text) {
  return valueFromJson(text, JsonRules::strict);
}

struct ValueType {
  std::string_view name;
  qx::PropertyValue (*read)(const std::string& text);
};

constexpr ValueType kTypes[] = {
    {"string", &stringFrom}, {"int", &integerFrom}, {"float", &floatFrom}, {"double", &doubleFrom},
    {"bool", &boolFrom},     {"date", &dateFrom},   {"data", &dataFrom},   {"json", &jsonFrom}};

std::string hexText(const qx::Data& data) {
  std::string text;
  for (const char c : data.view()) {
    const auto byte = static_cast<unsigned char>(c);
    text += kHexDigits[byte >> 4];
    text += kHexDigits[byte & 15];
  }
  return text;
}

// The years that RFC 3339 has no room for have their own text.
std::string dateText(const qx::Ref<qx::Date>& date) {
  const auto text = qxRFC3339String(date);
  return (text != nullptr ? text : qxISO8601String(date))->utf8();
}

// The text of a value that JSON has no form for; empty for those it has one for.
std::optional<std::string> foreignText(const qx::PropertyValue& value) {
  if (const auto* data = value.peek<qx::Data>()) return hexText(*data);
  if (auto date = value.as<qx::Date>()) return dateText(date);
  if (value.isNumber() && !std::isfinite(value.doubleValue())) return value.description();
  return std::nullopt;
}

// A property list is nested no deeper than kMaxPropertyListDepth.
qx::PropertyValue withForeignAsText(const qx::PropertyValue& value) {
  if (const auto* dictionary = value.peek<qx::Dictionary>()) {
    const auto copy = qx::MutableDictionary::init();
    for (const auto& [key, element] : *dictionary) copy->setObject(withForeignAsText(element), key);
    return copy;
  }
  if (const auto* array = value.peek<qx::Array>()) {
    const auto copy = qx::MutableArray::init();
    for (const qx::PropertyValue& element : *array) copy->addObject(withForeignAsText(element));
    return copy;
  }
  if (auto text = foreignText(value)) return *std::move(text);
  return value;
}

}  // namespace

qx::PropertyValue valueFromText(std::string_view type, const std::string& text) {
  const auto* found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                   [&](const ValueType& t) { return t.name == type; });
  if (found == std::end(kTypes)) {
    throw Failure(std::string("--type takes ") + kValueTypes + ", not " + std::string(type));
  }
  const std::string value = "VALUE (" + cutToWidth(printable(text), kMaxQuotation) + ") ";
  try {
    return found->read(text);
  } catch (const JsonFault& fault) {
    throw Failure(value + "can not be kept: " + fault.what());
  } catch (const Failure& failure) {
    const bool isJson = found->read == &jsonFrom;
    throw Failure(value + (isJson ? "is no JSON: " : "must be ") + failure.what());
  }
}

const char* typeOf(const qx::PropertyValue& value) {
  if (value.isString()) return "string";
  if (value.isData()) return "data";
  if (value.isDate()) return "date";
  if (value.isArray()) return "array";
  if (value.isDictionary()) return "dictionary";
  if (value.to<bool>()) return "bool";
  const auto number = value.as<qx::Number>();
  if (number->kind() == qx::NumberKind::single) return "float";
  return number->kind() == qx::NumberKind::real ? "double" : "int";
}

void requireStorable(const qx::PropertyValue& value, qx::PropertyListFormat format) {
  qx::Ref<qx::Error> error;
  const auto list = qx::dict({{"value", value}});
  if (qx::PropertyListSerialization::dataWithPropertyList(list, format, &error) == nullptr) {
    throw Failure("VALUE can not be kept: " + error->localizedDescription());
  }
}

std::string valueText(const qx::PropertyValue& value) {
  if (const auto* string = value.peek<qx::String>()) return string->utf8();
  if (auto text = foreignText(value)) return *std::move(text);
  return valueJson(value);
}

std::string valueJson(const qx::PropertyValue& value) {
  std::string text;
  appendJson(text, withForeignAsText(value));
  return text;
}

}  // namespace qxtool

#include "tools/qx/json_writer.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>

#include <QXFoundation/array.h>
#include <QXFoundation/class.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/number.h>
#include <QXFoundation/string.h>

#include "tools/qx/failure.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

template <class I>
void appendInteger(std::string& out, I value) {
  char digits[24];
  out.append(digits, std::to_chars(digits, std::end(digits), value).ptr);
}

void appendReal(std::string& out, double value) {
  if (!std::isfinite(value)) throw Failure("JSON cannot hold a number that is not finite");
  char digits[32];
  const std::string_view text(
      digits,
      static_cast<std::size_t>(std::to_chars(digits, std::end(digits), value).ptr - digits));
  out += text;
  if (text.find_first_of(".e") == std::string_view::npos) out += ".0";
}

void appendNumber(std::string& out, const qx::PropertyValue& value) {
  if (const auto* decimal = value.peek<qx::DecimalNumber>()) {
    if (decimal->isNaN()) throw Failure("JSON cannot hold a number that is not finite");
    out += decimal->stringValue();
  } else if (const auto truth = value.to<bool>()) {
    out += *truth ? "true" : "false";
  } else if (const auto integer = value.to<std::int64_t>()) {
    appendInteger(out, *integer);
  } else if (const auto large = value.to<std::uint64_t>()) {
    appendInteger(out, *large);
  } else {
    appendReal(out, value.doubleValue());
  }
}

void appendArray(std::string& out, const qx::Array& array) {
  out += '[';
  const char* separator = "";
  for (const qx::PropertyValue& element : array) {
    out += separator;
    appendJson(out, element);
    separator = ", ";
  }
  out += ']';
}

void appendDictionary(std::string& out, const qx::Dictionary& dictionary) {
  out += '{';
  const char* separator = "";
  for (const auto& [key, value] : dictionary) {
    out += separator;
    appendJsonString(out, key.utf8());
    out += ": ";
    appendJson(out, value);
    separator = ", ";
  }
  out += '}';
}

// The escape of a character that needs one; empty for others.
std::string escapeOf(char32_t code) {
  switch (code) {
    case '"':
      return "\\\"";
    case '\\':
      return "\\\\";
    case '\b':
      return "\\b";
    case '\f':
      return "\\f";
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return isUnsafe(code) ? "\\u" + hexDigits(code) : std::string();
  }
}

bool needsNoEscape(char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; }

}  // namespace

void appendJsonString(std::string& out, std::string_view text) {
  out += '"';
  for (std::size_t i = 0; i < text.size();) {
    std::size_t end = i;
    while (end < text.size() && needsNoEscape(text[end])) ++end;
    out += text.substr(i, end - i);
    i = end;
    if (i == text.size()) break;
    const Character c = characterAt(text, i);
    const std::string escape = escapeOf(c.code);
    out += escape.empty() ? text.substr(i, c.size) : std::string_view(escape);
    i += c.size;
  }
  out += '"';
}

void appendJson(std::string& out, const qx::PropertyValue& value) {
  if (value.isString()) {
    appendJsonString(out, value.peek<qx::String>()->utf8());
  } else if (value.isNumber()) {
    appendNumber(out, value);
  } else if (value.isNull()) {
    out += "null";
  } else if (value.isDictionary()) {
    appendDictionary(out, *value.peek<qx::Dictionary>());
  } else if (value.isArray()) {
    appendArray(out, *value.peek<qx::Array>());
  } else {
    throw Failure(std::string("a value of the class ") +
                  (value.isNil() ? "nil" : value.cls()->name()) + " has no form in JSON");
  }
}

}  // namespace qxtool

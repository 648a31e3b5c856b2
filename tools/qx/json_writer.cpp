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
  char digits[32];
  const std::string_view text(
      digits,
      static_cast<std::size_t>(std::to_chars(digits, std::end(digits), value).ptr - digits));
  out += text;
  if (text.find_first_of(".e") == std::string_view::npos) out += ".0";
}

void appendNumber(std::string& out, const qx::PropertyValue& value) {
  if (const auto* decimal = value.peek<qx::DecimalNumber>()) {
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

// Why a value that is no container has no form in JSON; null when it has one.
const char* leafGapOf(const qx::PropertyValue& value) {
  if (value.isNumber()) {
    const auto* decimal = value.peek<qx::DecimalNumber>();
    const bool isFinite =
        decimal != nullptr ? !decimal->isNaN() : std::isfinite(value.doubleValue());
    return isFinite ? nullptr : "a number that is not finite has no form in JSON";
  }
  if (value.isString() || value.isNull()) return nullptr;
  if (value.isDate()) return "a date has no form in JSON";
  if (value.isData()) return "data has no form in JSON";
  return "a value of this class has no form in JSON";
}

using Append = void (*)(std::string&, const qx::PropertyValue&);

void appendArray(std::string& out, const qx::Array& array, Append append) {
  out += '[';
  const char* separator = "";
  for (const qx::PropertyValue& element : array) {
    out += separator;
    append(out, element);
    separator = ", ";
  }
  out += ']';
}

void appendDictionary(std::string& out, const qx::Dictionary& dictionary, Append append) {
  out += '{';
  const char* separator = "";
  for (const auto& [key, value] : dictionary) {
    out += separator;
    appendJsonString(out, key.utf8());
    out += ": ";
    append(out, value);
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

namespace {

// False for a leaf that has no form in JSON; `append` is for what containers hold.
bool appendIfHeld(std::string& out, const qx::PropertyValue& value, Append append) {
  if (value.isDictionary()) {
    appendDictionary(out, *value.peek<qx::Dictionary>(), append);
  } else if (value.isArray()) {
    appendArray(out, *value.peek<qx::Array>(), append);
  } else if (leafGapOf(value) != nullptr) {
    return false;
  } else if (value.isString()) {
    appendJsonString(out, value.peek<qx::String>()->utf8());
  } else if (value.isNumber()) {
    appendNumber(out, value);
  } else {
    out += "null";
  }
  return true;
}

}  // namespace

void appendJson(std::string& out, const qx::PropertyValue& value) {
  if (!appendIfHeld(out, value, &appendJson)) throw Failure(leafGapOf(value));
}

void appendShown(std::string& out, const qx::PropertyValue& value) {
  if (!appendIfHeld(out, value, &appendShown)) out += printable(value.description());
}

std::optional<JsonGap> jsonGapOf(const qx::PropertyValue& value) {
  if (const auto* array = value.peek<qx::Array>()) {
    for (std::size_t i = 0; i < array->count(); ++i) {
      if (auto gap = jsonGapOf(array->begin()[i])) {
        gap->path.insert(0, "[" + std::to_string(i) + "]");
        return gap;
      }
    }
    return std::nullopt;
  }
  if (const auto* dictionary = value.peek<qx::Dictionary>()) {
    for (const auto& [key, entry] : *dictionary) {
      if (auto gap = jsonGapOf(entry)) {
        gap->path.insert(0, "." + key.utf8());
        return gap;
      }
    }
    return std::nullopt;
  }
  const char* const reason = leafGapOf(value);
  return reason == nullptr ? std::nullopt : std::optional<JsonGap>({"", reason});
}

void failFor(const JsonGap& gap, const std::string& place) {
  std::string text = place.empty() ? "" : place + ": ";
  const std::string path = gap.path.substr(gap.path.starts_with('.') ? 1 : 0);
  if (!path.empty()) text += cutToWidth(printable(path), 100) + ": ";
  throw Failure(text + gap.reason);
}

}  // namespace qxtool

#include <charconv>
#include <cstring>
#include <optional>
#include <string_view>

#include <QXFoundation/number.h>
#include <QXFoundation/selector.h>
#include <QXFoundation/size_formatter.h>

#include "frame/library_class.h"
#include "frame/string_storage.h"

namespace qx {

namespace {

// A text that is an integer and nothing else, as nearly all are, needs no decimal number.
std::optional<std::int64_t> plainInteger(const String& text) {
  const detail::TextSpan span = detail::StringStorage::span(text);
  if (span.wide) return std::nullopt;
  const std::string_view digits = span.latin1View();
  std::int64_t n = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), n);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return n;
}

std::optional<std::int64_t> countOf(const PropertyValue& value) {
  constexpr Selector kLongLongValue = "longLongValue";
  if (value.isNumber()) return value.integerValue();
  if (value.isString()) {
    const auto& text = static_cast<const String&>(*value.object());
    const auto n = plainInteger(text);
    return n ? *n : DecimalNumber::decimalNumberWithString(text)->longLongValue();
  }
  if (!value.respondsToSelector(kLongLongValue)) return std::nullopt;
  return performSelector(value, kLongLongValue).integerValue();
}

// Writes the number of units and, where there is a rest, the point and the rest.
char* writeParts(char* out, std::int64_t units, std::int64_t rest) {
  constexpr std::ptrdiff_t kRoom = 20;
  out = std::to_chars(out, out + kRoom, units).ptr;
  if (rest == 0) return out;
  *out++ = '.';
  return std::to_chars(out, out + kRoom, rest).ptr;
}

}  // namespace

Ref<QXSizeFormatter> QXSizeFormatter::init() { return make<QXSizeFormatter>(); }

Ref<String> QXSizeFormatter::stringForByteCount(std::int64_t n) {
  constexpr std::int64_t kKB = 1000;
  constexpr std::int64_t kMB = 1000 * kKB;
  constexpr std::int64_t kGB = 1000 * kMB;
  char text[48];
  char* end = text;
  const char* unit = " bytes";
  if (n >= kGB) {
    end = writeParts(text, n / kGB, n % kGB / (kGB / 100));
    unit = " GB";
  } else if (n >= kMB) {
    end = writeParts(text, n / kMB, n % kMB / (kMB / 100));
    unit = " MB";
  } else if (n > kKB) {
    end = writeParts(text, n / kKB, n % kKB);
    unit = " KB";
  } else {
    end = writeParts(text, n, 0);
  }
  const std::size_t unitLength = std::strlen(unit);
  std::memcpy(end, unit, unitLength);
  return String::fromLatin1({text, static_cast<std::size_t>(end - text) + unitLength});
}

PropertyValue QXSizeFormatter::stringForObjectValue(const PropertyValue& value) const {
  const auto count = countOf(value);
  return count ? PropertyValue(stringForByteCount(*count)) : nullptr;
}

// Of the text that a derived class may give. Where there is none, nothing carries attributes.
Ref<AttributedString> QXSizeFormatter::attributedStringForObjectValue(
    const PropertyValue& value, In<Dictionary> withDefaultAttributes) const {
  const auto text = stringForObjectValue(value).as<String>();
  return text == nullptr ? nullptr : AttributedString::initWithString(text, withDefaultAttributes);
}

bool QXSizeFormatter::getObjectValue(PropertyValue*, StringArg, Ref<String>*) const {
  return false;
}

void describe(ClassBuilder<QXSizeFormatter>& c) { c.name("QXSizeFormatter").inherits<Formatter>(); }

const Class& classObject(detail::Type<QXSizeFormatter>) {
  return detail::buildLibraryClass<QXSizeFormatter>();
}

}  // namespace qx

#include <QXFoundation/array.h>
#include <QXFoundation/string.h>

#include "frame/key_text.h"
#include "frame/number_text.h"
#include "frame/raise.h"
#include "frame/string_storage.h"
#include "frame/text_search.h"
#include "frame/unicode.h"
#include "frame/utf.h"
#include "frame/wildcard.h"

namespace qx {

using detail::ArgText;
using detail::StringStorage;
using detail::TextSpan;

namespace {

TextSpan spanOf(const String& s) { return StringStorage::span(s); }
Ref<String> stringOf(TextSpan text) { return StringStorage::make(text); }

TextSpan checkedRange(const String& s, Range range, const char* operation) {
  if (range.location > s.length() || range.length > s.length() - range.location) {
    detail::raiseRange(operation, range.location, range.length, s.length());
  }
  return spanOf(s).substr(range.location, range.length);
}

}  // namespace

std::string StringArg::utf8() const {
  if (const String* s = object()) return s->utf8();
  if (detail::isValidUtf8(bytes())) return std::string(bytes());
  return detail::toUtf8(detail::utf16FromUtf8(bytes()));
}

Ref<String> StringArg::string() const { return detail::immutableString(*this); }

PropertyValue::PropertyValue(StringArg text) {
  const String* s = text.object();
  adoptObject(s != nullptr ? Ref<String>(const_cast<String*>(s)).leak()
                           : detail::immutableString(text).leak());
}

Ref<String> String::from(StringArg text) {
  if (text.isNil()) detail::raiseInvalidArgument("a string can not be made from nil");
  return detail::immutableString(text);
}
Ref<String> String::fromUtf16(std::u16string_view units) { return stringOf(units); }
Ref<String> String::fromLatin1(std::string_view bytes) { return stringOf(TextSpan::latin1(bytes)); }
Ref<String> String::fromStrictUtf8(std::string_view bytes) {
  return detail::isValidUtf8(bytes) ? detail::immutableString(bytes) : nullptr;
}
Ref<String> String::empty() {
  static const Ref<String>* shared = new Ref<String>(stringOf({}));
  return *shared;
}

char16_t String::characterAtIndex(std::size_t index) const {
  if (index >= length_) detail::raiseIndex("-[NSString characterAtIndex:]", index, length_);
  return spanOf(*this)[index];
}
std::string String::utf8() const { return detail::toUtf8(spanOf(*this)); }
std::u16string String::utf16() const { return spanOf(*this).toUtf16(); }

bool String::isEqualToString(StringArg other) const {
  return !other.isNil() && detail::equalUnits(spanOf(*this), ArgText(other));
}
ComparisonResult String::compare(StringArg other) const {
  if (other.isNil()) detail::raiseNil("-[NSString compare:]");
  return static_cast<ComparisonResult>(detail::compareUnits(spanOf(*this), ArgText(other)));
}
ComparisonResult String::caseInsensitiveCompare(StringArg other) const {
  if (other.isNil()) detail::raiseNil("-[NSString caseInsensitiveCompare:]");
  return static_cast<ComparisonResult>(
      detail::caseInsensitiveCompare(spanOf(*this), ArgText(other)));
}
bool String::hasPrefix(StringArg prefix) const {
  const ArgText text(prefix);
  return !prefix.isNil() && text->size <= length_ &&
         detail::equalUnits(spanOf(*this).substr(0, text->size), text);
}
bool String::hasSuffix(StringArg suffix) const {
  const ArgText text(suffix);
  return !suffix.isNil() && text->size <= length_ &&
         detail::equalUnits(spanOf(*this).substr(length_ - text->size), text);
}
Range String::rangeOfString(StringArg other) const { return rangeOfString(other, 0); }
Range String::rangeOfString(StringArg other, std::size_t from) const {
  const ArgText text(other);
  const std::size_t at = text->empty() ? kNotFound : detail::findText(spanOf(*this), text, from);
  return at == kNotFound ? Range{kNotFound, 0} : Range{at, text->size};
}
bool String::matchesPattern(StringArg pattern, bool ignoringCase) const {
  return !pattern.isNil() && detail::wildcardMatch(spanOf(*this), ArgText(pattern), ignoringCase);
}

Ref<String> String::substringWithRange(Range range) const {
  return stringOf(checkedRange(*this, range, "-[NSString substringWithRange:]"));
}
Ref<String> String::substringFromIndex(std::size_t index) const {
  if (index > length_) detail::raiseIndex("-[NSString substringFromIndex:]", index, length_);
  return stringOf(spanOf(*this).substr(index));
}
Ref<String> String::substringToIndex(std::size_t index) const {
  return stringOf(checkedRange(*this, {0, index}, "-[NSString substringToIndex:]"));
}

Ref<String> String::stringByAppendingString(StringArg other) const {
  if (other.isNil()) detail::raiseNil("-[NSString stringByAppendingString:]");
  const auto result = MutableString::from(*this);
  result->appendString(other);
  return stringOf(spanOf(*result));
}

Ref<String> String::stringByReplacingOccurrencesOfString(StringArg target, StringArg with) const {
  if (target.isNil() || with.isNil()) {
    detail::raiseNil("-[NSString stringByReplacingOccurrencesOfString:withString:]");
  }
  return detail::replaceAll(*this, ArgText(target), ArgText(with));
}

Ref<Array> String::componentsSeparatedByString(StringArg separator) const {
  if (separator.isNil()) detail::raiseNil("-[NSString componentsSeparatedByString:]");
  const ArgText mark(separator);
  const TextSpan text = spanOf(*this);
  const auto pieces = MutableArray::init();
  std::size_t start = 0;
  while (!mark->empty()) {
    const std::size_t at = detail::findText(text, mark, start);
    if (at == kNotFound) break;
    pieces->addObject(stringOf(text.substr(start, at - start)));
    start = at + mark->size;
  }
  pieces->addObject(stringOf(text.substr(start)));
  return Array::from(pieces->begin(), pieces->count());
}

Ref<String> String::lowercaseString() const { return stringOf(detail::lowercase(spanOf(*this))); }
Ref<String> String::uppercaseString() const { return stringOf(detail::uppercase(spanOf(*this))); }
Ref<String> String::capitalizedString() const {
  return stringOf(detail::capitalized(spanOf(*this)));
}
Ref<String> String::caseFoldedString() const { return stringOf(detail::caseFold(spanOf(*this))); }
Ref<String> String::normalizedString(NormalForm form) const {
  return stringOf(detail::normalize(spanOf(*this), static_cast<detail::NormalForm>(form)));
}

int String::intValue() const { return detail::scanInt32(spanOf(*this)); }
std::int64_t String::integerValue() const { return detail::scanInt64(spanOf(*this)); }
std::uint64_t String::unsignedIntegerValue() const { return detail::scanUInt64(spanOf(*this)); }
float String::floatValue() const { return detail::scanFloat(spanOf(*this)); }
double String::doubleValue() const { return detail::scanDouble(spanOf(*this)); }
bool String::boolValue() const { return detail::scanBool(spanOf(*this)); }

bool String::isEqual(const PropertyValue& other) const {
  return other.isString() &&
         detail::equalUnits(spanOf(*this), spanOf(*static_cast<const String*>(other.object())));
}
std::size_t String::hash() const { return StringStorage::hash(*this); }
std::string String::description() const { return utf8(); }
Ref<Object> String::copy() const { return const_cast<String*>(this); }
Ref<Object> String::mutableCopy() const { return MutableString::from(*this); }

Ref<MutableString> MutableString::init() { return make<MutableString>(detail::Passkey{}); }
Ref<MutableString> MutableString::from(StringArg text) {
  if (text.isNil()) detail::raiseInvalidArgument("a string can not be made from nil");
  auto s = init();
  s->setString(text);
  return s;
}

namespace {

// What every change comes to, under the name that it was asked by.
void change(MutableString& s, Range range, StringArg text, const char* operation) {
  if (text.isNil()) detail::raiseNil(operation);
  StringStorage::replace(s, range, ArgText(text), operation);
}

}  // namespace

void MutableString::setString(StringArg text) {
  change(*this, {0, length()}, text, "-[NSMutableString setString:]");
}
void MutableString::appendString(StringArg text) {
  change(*this, {length(), 0}, text, "-[NSMutableString appendString:]");
}
void MutableString::insertString(StringArg text, std::size_t atIndex) {
  change(*this, {atIndex, 0}, text, "-[NSMutableString insertString:atIndex:]");
}
void MutableString::deleteCharactersInRange(Range range) {
  change(*this, range, "", "-[NSMutableString deleteCharactersInRange:]");
}
void MutableString::replaceCharactersInRange(Range range, StringArg withString) {
  change(*this, range, withString, "-[NSMutableString replaceCharactersInRange:withString:]");
}
std::size_t MutableString::hash() const { return StringStorage::hash(*this); }
Ref<Object> MutableString::copy() const { return stringOf(spanOf(*this)); }

}  // namespace qx

#include "qualifiers/compiled_test.h"

#include "frame/string_storage.h"
#include "frame/unicode.h"
#include "frame/utf.h"
#include "frame/word_access.h"
#include "qualifiers/value_kinds.h"

namespace qx::detail {
namespace {

constexpr std::uint8_t kAscending = 1;
constexpr std::uint8_t kSame = 2;
constexpr std::uint8_t kDescending = 4;

std::uint8_t acceptedOrders(Comparison comparison) {
  switch (comparison) {
    case Comparison::isEqualTo:
      return kSame;
    case Comparison::isNotEqualTo:
      return kAscending | kDescending;
    case Comparison::isLessThan:
      return kAscending;
    case Comparison::isLessThanOrEqualTo:
      return kAscending | kSame;
    case Comparison::isGreaterThan:
      return kDescending;
    case Comparison::isGreaterThanOrEqualTo:
      return kDescending | kSame;
    default:
      return 0;
  }
}

int orderOf(std::int64_t a, std::int64_t b) { return a < b ? -1 : a > b ? 1 : 0; }

bool isAllAscii(std::string_view text) { return asciiPrefix(text) == text.size(); }

}  // namespace

CompiledTest::CompiledTest(const ConstantTest& test)
    : test_(&test),
      onNil_(test.decideNil()),
      isQuiet_(test.comparison != Comparison::none && comparesQuietly(test.value)),
      equates_(test.comparison == Comparison::isEqualTo ||
               test.comparison == Comparison::isNotEqualTo),
      accepted_(acceptedOrders(test.comparison)) {
  if (test.pattern) {
    kind_ = Kind::pattern;
  } else if (accepted_ != 0) {
    compileNumber();
    compileText();
  }
}

// Constants that are number objects are left to the general comparison.
void CompiledTest::compileNumber() {
  if (!WordAccess::inlineNumber(test_->value, number_)) return;
  kind_ = Kind::number;
  if (number_.kind != NumberKind::signedInteger) return;
  kind_ = Kind::integer;
  integer_ = number_.i;
}

void CompiledTest::compileText() {
  const String* text = plainString(test_->value);
  if (text == nullptr || StringStorage::isMutable(*text)) return;
  kind_ = Kind::text;
  text_ = StringStorage::span(*text);
  utf8_ = toUtf8(text_);
  isAscii_ = isAllAscii(utf8_);
  hasUtf8_ = true;
  for (const char32_t c : text_.codePoints()) {
    if (c == kReplacementCharacter || isSurrogate(c)) hasUtf8_ = false;
  }
}

bool CompiledTest::decideText(TextSpan left) const {
  if (!equates_) return accepts(compareUnits(left, text_));
  return accepts(equalUnits(left, text_) ? 0 : 1);
}

bool CompiledTest::decide(const PropertyValue& left) const {
  if (left.isNil()) return onNil_;
  switch (kind_) {
    case Kind::integer:
      if (WordAccess::isInlineSigned(left))
        return accepts(orderOf(WordAccess::inlineSigned(left), integer_));
      [[fallthrough]];
    case Kind::number: {
      NumericValue number;
      if (WordAccess::inlineNumber(left, number)) return decideNumber(number);
      break;
    }
    case Kind::text:
      if (const String* text = plainString(left)) return decideText(StringStorage::span(*text));
      break;
    case Kind::pattern:
      if (const String* text = plainString(left))
        return test_->pattern->matches(StringStorage::span(*text));
      break;
    case Kind::general:
      break;
  }
  return test_->decide(left);
}

// Bytes order as code units do where both texts are ASCII.
bool CompiledTest::decideUtf8(std::string_view left, const NativeField& field) const {
  if (kind_ == Kind::text && equates_ && hasUtf8_) return accepts(left == utf8_ ? 0 : 1);
  if (kind_ == Kind::pattern && test_->pattern->decidesBytes())
    return test_->pattern->matchesBytes(left);
  if ((kind_ == Kind::text || kind_ == Kind::pattern) && isAllAscii(left)) {
    const TextSpan span = TextSpan::latin1(left);
    return kind_ == Kind::text ? decideText(span) : test_->pattern->matches(span);
  }
  return test_->decide(valueOf(field));
}

bool CompiledTest::decide(const NativeField& field) const {
  switch (field.kind) {
    case NativeField::Kind::value:
      return decide(*field.value);
    case NativeField::Kind::text:
      return decideUtf8(field.text, field);
    case NativeField::Kind::signedInteger:
      if (kind_ == Kind::integer) return accepts(orderOf(field.i, integer_));
      if (kind_ == Kind::number) return decideNumber(NumericValue::signedInteger(field.i));
      break;
    case NativeField::Kind::real:
      if (kind_ == Kind::integer || kind_ == Kind::number)
        return decideNumber(NumericValue::real(field.d));
      break;
    default:
      break;
  }
  return decide(valueOf(field));
}

}  // namespace qx::detail

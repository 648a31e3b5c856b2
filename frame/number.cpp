#include <limits>

#include <QXFoundation/number.h>

#include "frame/comparison_operations.h"
#include "frame/key_text.h"
#include "frame/library_class.h"
#include "frame/numeric.h"
#include "frame/raise.h"
#include "frame/word_access.h"

namespace qx {

namespace detail {

bool WordAccess::specialNumber(std::uint64_t word, NumericValue& out) {
  switch (word) {
    case V::kFalse:
    case V::kTrue:
      out = NumericValue::boolean(word == V::kTrue);
      return true;
    case V::kZero:
      out = NumericValue::real(0.0);
      return true;
    case V::kMinusZero:
      out = NumericValue::real(-0.0);
      return true;
    case V::kInfinity:
      out = NumericValue::real(std::numeric_limits<double>::infinity());
      return true;
    case V::kMinusInfinity:
      out = NumericValue::real(-std::numeric_limits<double>::infinity());
      return true;
    case V::kNaN:
      out = NumericValue::real(std::numeric_limits<double>::quiet_NaN());
      return true;
    default:
      return false;
  }
}

namespace {

std::uint64_t bitsOf(const NumericValue& n) {
  return n.isFloating() ? std::bit_cast<std::uint64_t>(n.d) : n.u;
}

Ref<Number> box(const NumericValue& n) { return make<Number>(Passkey{}, n.kind, bitsOf(n)); }

}  // namespace
}  // namespace detail

Number::Number() : Object(detail::ObjectKind::number, detail::kLeaf) {}

Number::Number(detail::Passkey, NumberKind kind, std::uint64_t bits)
    : Object(detail::ObjectKind::number, detail::kLeaf | detail::kBoxedNumber),
      kind_(kind),
      bits_(bits) {}

detail::NumericValue Number::numeric() const {
  detail::NumericValue n;
  n.kind = kind_;
  n.u = bits_;
  if (n.isFloating()) n.d = std::bit_cast<double>(bits_);
  return n;
}

NumberKind Number::kind() const { return kind_; }
int Number::intValue() const { return detail::toInt32(numeric()); }
unsigned Number::unsignedIntValue() const { return detail::toUInt32(numeric()); }
std::int64_t Number::longLongValue() const { return detail::toInt64(numeric()); }
std::uint64_t Number::unsignedLongLongValue() const { return detail::toUInt64(numeric()); }
float Number::floatValue() const { return detail::toSingle(numeric()); }
double Number::doubleValue() const { return detail::toReal(numeric()); }
bool Number::boolValue() const { return detail::toBool(numeric()); }
std::string Number::stringValue() const { return detail::numberText(numeric()); }

ComparisonResult Number::compare(const PropertyValue& other) const {
  return static_cast<ComparisonResult>(
      detail::compareOperation(PropertyValue(const_cast<Number*>(this)), other));
}

bool Number::isEqual(const PropertyValue& other) const {
  detail::NumericValue n;
  return detail::numericOf(other, n) && detail::compareNumbers(numeric(), n) == 0;
}
std::size_t Number::hash() const { return detail::hashNumber(numeric()); }
std::string Number::description() const { return stringValue(); }
Ref<Object> Number::copy() const { return const_cast<Number*>(this); }

void PropertyValue::boxSigned(std::int64_t i) {
  word_ = reinterpret_cast<Word>(detail::box(detail::NumericValue::signedInteger(i)).leak());
}
void PropertyValue::boxUnsigned(std::uint64_t i) {
  word_ = reinterpret_cast<Word>(detail::box(detail::NumericValue::unsignedInteger(i)).leak());
}
void PropertyValue::boxDouble(double d) {
  word_ = reinterpret_cast<Word>(detail::box(detail::NumericValue::real(d)).leak());
}

// A boxed number that fits the word goes back into it, so that equal small numbers are always
// identical.
void PropertyValue::unbox() {
  const detail::NumericValue n = static_cast<const Number*>(object())->numeric();
  PropertyValue inlined;
  switch (n.kind) {
    case NumberKind::boolean:
      inlined = n.i != 0;
      break;
    case NumberKind::signedInteger:
      if (n.i << 3 >> 3 == n.i) inlined = n.i;
      break;
    case NumberKind::unsignedInteger:
      if (n.u >> 61 == 0) inlined = n.u;
      break;
    case NumberKind::single:
      inlined = static_cast<float>(n.d);
      break;
    default:
      if (const Word tag = std::rotl(std::bit_cast<Word>(n.d), 4) & kTagMask;
          tag == kSmallDoubleTag || tag == kLargeDoubleTag || specialDoubleWord(n.d) != 0) {
        inlined = n.d;
      }
  }
  if (!inlined.isNil()) *this = std::move(inlined);
}

Ref<Number> PropertyValue::boxedNumber() const {
  if (Object* o = object()) {
    return detail::ObjectAccess::kind(*o) == detail::ObjectKind::number
               ? Ref<Number>(static_cast<Number*>(o))
               : nullptr;
  }
  detail::NumericValue n;
  if (!detail::WordAccess::inlineNumber(*this, n)) return nullptr;
  return detail::box(n);
}

DecimalNumber::DecimalNumber(detail::Passkey, const detail::Decimal& value)
    : value_(new detail::Decimal(value)) {}
DecimalNumber::~DecimalNumber() { delete value_; }

namespace {
Ref<DecimalNumber> boxDecimal(const detail::Decimal& value) {
  return make<DecimalNumber>(detail::Passkey{}, value);
}
}  // namespace

Ref<DecimalNumber> DecimalNumber::initWithString(StringArg text) {
  if (text.isNil()) return nullptr;
  return boxDecimal(detail::Decimal::parse(detail::ArgText(text)));
}

Ref<DecimalNumber> DecimalNumber::fromNumber(const PropertyValue& number) {
  detail::NumericValue n;
  if (!detail::numericOf(number, n)) detail::raiseKind("a number", number);
  switch (n.kind) {
    case NumberKind::decimal:
      return boxDecimal(*n.decimal);
    case NumberKind::unsignedInteger:
      return boxDecimal(detail::Decimal::fromUInt64(n.u));
    case NumberKind::single:
      return boxDecimal(detail::Decimal::fromFloat(static_cast<float>(n.d)));
    case NumberKind::real:
      return boxDecimal(detail::Decimal::fromDouble(n.d));
    default:
      return boxDecimal(detail::Decimal::fromInt64(n.i));
  }
}

Ref<DecimalNumber> DecimalNumber::notANumber() { return boxDecimal(detail::Decimal::notANumber()); }
bool DecimalNumber::isNaN() const { return value_->isNaN(); }

namespace {
const detail::Decimal& operand(In<DecimalNumber> number, const char* operation) {
  if (!number) detail::raiseNil(operation);
  return number->decimal();
}
}  // namespace

Ref<DecimalNumber> DecimalNumber::decimalNumberByAdding(In<DecimalNumber> other) const {
  return boxDecimal(*value_ + operand(other, "-[NSDecimalNumber decimalNumberByAdding:]"));
}
Ref<DecimalNumber> DecimalNumber::decimalNumberBySubtracting(In<DecimalNumber> other) const {
  return boxDecimal(*value_ - operand(other, "-[NSDecimalNumber decimalNumberBySubtracting:]"));
}
Ref<DecimalNumber> DecimalNumber::decimalNumberByMultiplyingBy(In<DecimalNumber> other) const {
  return boxDecimal(*value_ * operand(other, "-[NSDecimalNumber decimalNumberByMultiplyingBy:]"));
}
Ref<DecimalNumber> DecimalNumber::decimalNumberByDividingBy(In<DecimalNumber> other) const {
  return boxDecimal(*value_ / operand(other, "-[NSDecimalNumber decimalNumberByDividingBy:]"));
}
std::string DecimalNumber::stringValue() const { return value_->text(); }
detail::NumericValue DecimalNumber::numeric() const {
  return detail::NumericValue::ofDecimal(*value_);
}

namespace {

// An operation of every number, inline ones included: boxes it for the call.
template <auto Member>
auto onNumber(const PropertyValue& receiver) {
  return ((*receiver.as<Number>()).*Member)();
}

std::int64_t integerOf(const PropertyValue& receiver) { return receiver.integerValue(); }
std::string descriptionOf(const PropertyValue& receiver) { return receiver.description(); }

}  // namespace

void describe(ClassBuilder<Number>& c) {
  c.setCore();
  c.name("NSNumber").inherits<Object>();
  c.operation("intValue", &onNumber<&Number::intValue>);
  c.operation("unsignedIntValue", &onNumber<&Number::unsignedIntValue>);
  c.operation("longLongValue", &onNumber<&Number::longLongValue>);
  c.operation("unsignedLongLongValue", &onNumber<&Number::unsignedLongLongValue>);
  c.operation("integerValue", &integerOf);
  c.operation("unsignedIntegerValue", &onNumber<&Number::unsignedLongLongValue>);
  c.operation("floatValue", &onNumber<&Number::floatValue>);
  c.operation("doubleValue", &onNumber<&Number::doubleValue>);
  c.operation("boolValue", &onNumber<&Number::boolValue>);
  c.operation("stringValue", &descriptionOf);
  c.operation("compare:", &detail::compareOperation);
}

void describe(ClassBuilder<DecimalNumber>& c) {
  c.setCore();
  c.name("NSDecimalNumber").inherits<Number>();
  c.initialisedFromText<&DecimalNumber::initWithString>();
  c.classOperation(
      "decimalNumberWithString:",
      +[](const Ref<String>& text) { return DecimalNumber::decimalNumberWithString(text); });
  c.operation(
      "decimalNumberByAdding:", +[](const PropertyValue& r, const Ref<DecimalNumber>& other) {
        return r.as<DecimalNumber>()->decimalNumberByAdding(other);
      });
  c.operation(
      "decimalNumberBySubtracting:", +[](const PropertyValue& r, const Ref<DecimalNumber>& other) {
        return r.as<DecimalNumber>()->decimalNumberBySubtracting(other);
      });
  c.operation(
      "decimalNumberByMultiplyingBy:",
      +[](const PropertyValue& r, const Ref<DecimalNumber>& other) {
        return r.as<DecimalNumber>()->decimalNumberByMultiplyingBy(other);
      });
  c.operation(
      "decimalNumberByDividingBy:", +[](const PropertyValue& r, const Ref<DecimalNumber>& other) {
        return r.as<DecimalNumber>()->decimalNumberByDividingBy(other);
      });
}

const Class& classObject(detail::Type<Number>) { return detail::buildLibraryClass<Number>(); }
const Class& classObject(detail::Type<DecimalNumber>) {
  return detail::buildLibraryClass<DecimalNumber>();
}

}  // namespace qx

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

#include <QXFoundation/archiver.h>
#include <QXFoundation/fraction_number.h>

#include "frame/library_class.h"
#include "frame/number_text.h"
#include "frame/numeric.h"
#include "values/fraction_arithmetic.h"

namespace qx {

namespace {

Ref<QXFractionNumber> made(FractionPair pair) {
  return make<QXFractionNumber>(detail::Passkey{}, pair);
}

std::string oneDigitAfterPoint(double x) {
  char text[32];  // quotients of 64-bit integers have 19 digits at most
  char* end = std::to_chars(text, text + sizeof text, x, std::chars_format::fixed, 1).ptr;
  return std::string(text, end);
}

}  // namespace

Ref<QXFractionNumber> QXFractionNumber::initWithNumerator(std::int64_t numerator,
                                                          std::int64_t denominator) {
  // The processor reduces the pair while it waits for the memory.
  auto fraction = made(denominator == 0 ? FractionPair{} : FractionPair{numerator, denominator});
  fraction->normalize();
  return fraction;
}
Ref<QXFractionNumber> QXFractionNumber::initWithDouble(double x) {
  return made(detail::expanded(x));
}
Ref<QXFractionNumber> QXFractionNumber::initWithFloat(float x) {
  return initWithDouble(static_cast<double>(x));
}

Ref<QXFractionNumber> QXFractionNumber::qxFractionNumberWithNumerator(std::int64_t numerator,
                                                                      std::int64_t denominator) {
  return initWithNumerator(numerator, denominator);
}
Ref<QXFractionNumber> QXFractionNumber::qxFractionNumberWithInt(std::int32_t n) {
  return initWithNumerator(n, 1);
}
Ref<QXFractionNumber> QXFractionNumber::qxFractionNumberWithFloat(float x) {
  return initWithFloat(x);
}
Ref<QXFractionNumber> QXFractionNumber::qxFractionNumberWithDouble(double x) {
  return initWithDouble(x);
}

std::int64_t QXFractionNumber::truncate() const {
  return pair_.denominator == 0 ? 0 : detail::quotient(pair_);
}
std::int16_t QXFractionNumber::shortValue() const { return static_cast<std::int16_t>(truncate()); }
int QXFractionNumber::intValue() const { return static_cast<std::int32_t>(truncate()); }
unsigned QXFractionNumber::unsignedIntValue() const {
  return static_cast<std::uint32_t>(truncate());
}
std::uint64_t QXFractionNumber::unsignedLongLongValue() const {
  return static_cast<std::uint64_t>(truncate());
}
float QXFractionNumber::floatValue() const {
  return pair_.denominator == 0
             ? 0
             : static_cast<float>(pair_.numerator) / static_cast<float>(pair_.denominator);
}
double QXFractionNumber::doubleValue() const {
  return pair_.denominator == 0 ? 0 : detail::realQuotient(pair_);
}
detail::NumericValue QXFractionNumber::numeric() const {
  return detail::NumericValue::real(doubleValue());
}

bool QXFractionNumber::isInteger() const {
  return pair_.denominator == 0 ? pair_.numerator == 0 : detail::remainder(pair_) == 0;
}

PropertyValue QXFractionNumber::getNSNumber() const {
  if (pair_.numerator == 0) return 0;
  if (pair_.denominator == 0) return std::numeric_limits<float>::infinity();
  return static_cast<double>(truncate());
}

std::string QXFractionNumber::description() const {
  const std::uint64_t n = detail::magnitude(pair_.numerator);
  const std::uint64_t d = detail::magnitude(pair_.denominator);
  if (n == 0) return "0";
  if (d == 0) return "Infinite";
  if (n == d || d == 1) return detail::decimalText(truncate());
  const double value = doubleValue();
  if (n > d || (n >= 2 && d >= 3 && (value >= 0.1 || value <= -0.1)))
    return oneDigitAfterPoint(value);
  return detail::decimalText(pair_.numerator) + '/' + detail::decimalText(pair_.denominator);
}
std::string QXFractionNumber::descriptionWithLocale(const PropertyValue&) const {
  return description();
}

void QXFractionNumber::getValue(void* buffer) const { getValue(buffer, sizeof pair_); }
void QXFractionNumber::getValue(void* buffer, std::size_t size) const {
  static_assert(sizeof pair_ == 16);
  if (size != 0) std::memcpy(buffer, &pair_, std::min(size, sizeof pair_));
}

std::int64_t QXFractionNumber::gcd(std::int64_t a, std::int64_t d) {
  return detail::signedGcd(a, d);
}
void QXFractionNumber::normalize() { pair_ = detail::normalized(pair_); }

Ref<Object> QXFractionNumber::copy() const { return made(pair_); }

void QXFractionNumber::encodeWithCoder(Archiver& archiver) const {
  archiver.encodeObject(pair_.numerator);
  archiver.encodeObject(pair_.denominator);
}
void QXFractionNumber::decodeWithCoder(Unarchiver& unarchiver) {
  pair_.numerator = unarchiver.decode<std::int64_t>();
  pair_.denominator = unarchiver.decode<std::int64_t>();
}

void describe(ClassBuilder<QXFractionNumber>& c) {
  c.name("QXFractionNumber").inherits<Number>();
  c.property("numerator", &QXFractionNumber::numerator);
  c.property("denominator", &QXFractionNumber::denominator);
  c.operation("truncate", &QXFractionNumber::truncate);
  c.operation("shortValue", &QXFractionNumber::shortValue);
  c.operation("longValue", &QXFractionNumber::longValue);
  c.operation("isInteger", &QXFractionNumber::isInteger);
  c.operation("getNSNumber", &QXFractionNumber::getNSNumber);
  c.operation("descriptionWithLocale:", &QXFractionNumber::descriptionWithLocale);
  c.operation("normalize", &QXFractionNumber::normalize);
  c.operation(
      "gcd:d:", +[](const PropertyValue&, std::int64_t a, std::int64_t d) {
        return QXFractionNumber::gcd(a, d);
      });
  c.classOperation("qxFractionNumberWithNumerator:denominator:",
                   &QXFractionNumber::qxFractionNumberWithNumerator);
  c.classOperation("qxFractionNumberWithInt:", &QXFractionNumber::qxFractionNumberWithInt);
  c.classOperation("qxFractionNumberWithFloat:", &QXFractionNumber::qxFractionNumberWithFloat);
  c.classOperation("qxFractionNumberWithDouble:", &QXFractionNumber::qxFractionNumberWithDouble);
  c.archived();
}

const Class& classObject(detail::Type<QXFractionNumber>) {
  return detail::buildLibraryClass<QXFractionNumber>();
}

}  // namespace qx

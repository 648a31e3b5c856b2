// QXFractionNumber: an exact fraction of two 64-bit integers that can stand wherever a number can.
//
//     auto f = qx::QXFractionNumber::qxFractionNumberWithNumerator(6, -4);
//     f->description();            // "-1.5", and f->numerator() is -3
//     qx::PropertyValue(f) < ...;  // compares, hashes, sorts and qualifies as the double -1.5
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <QXFoundation/number.h>

namespace qx {

class Archiver;
class Unarchiver;

// A numerator and a denominator, in this order.
struct FractionPair {
  // As they were given.
  std::int64_t numerator = 0;
  std::int64_t denominator = 0;
  friend bool operator==(const FractionPair&, const FractionPair&) = default;
};

// A rational number. The class is "QXFractionNumber", a subclass of "NSNumber".
//
// - It takes part in the value model as its double value: that is what comparing, equality and
//   hashing go by, and what property lists are given. Archives keep the pair.
// - Arithmetic wraps at 64 bits; a double that does not fit becomes the least integer.
// - Its integer views cut the quotient toward zero and keep the low bits; the unsigned ones are
//   those bits.
// - Immutable but for `normalize`, and thread-safe where no thread calls that.
class QX_EXPORT QXFractionNumber : public Number {
 public:
  // Reduced, with a denominator above 0; where numerator or denominator is 1 there is nothing to
  // reduce. A denominator of 0 gives 0/0, which counts as 0. A denominator of -2^63 that can not be
  // reduced stays.
  static Ref<QXFractionNumber> qxFractionNumberWithNumerator(std::int64_t numerator,
                                                             std::int64_t denominator);
  static Ref<QXFractionNumber> qxFractionNumberWithInt(std::int32_t n);
  // A short expansion whose last two of at most four quotients are added, so that 2.5 gives 4/1.
  // It is exact for whole numbers, and for 1/n where 1/(1/n) is n in doubles (not for 49). Above
  // 10 it is nearly always within 1 % (between 1 and 10 mostly: 3.14159 gives 355/113), but other
  // numbers below 1 are far off: their fraction is mostly that of the reciprocal, or a whole
  // number. For an exact result pass integers.
  static Ref<QXFractionNumber> qxFractionNumberWithFloat(float x);
  static Ref<QXFractionNumber> qxFractionNumberWithDouble(double x);

  // The same as the functions above.
  static Ref<QXFractionNumber> initWithNumerator(std::int64_t numerator, std::int64_t denominator);
  static Ref<QXFractionNumber> initWithFloat(float x);
  static Ref<QXFractionNumber> initWithDouble(double x);

  // The parts as they stand, reduced.
  std::int64_t numerator() const { return pair_.numerator; }
  std::int64_t denominator() const { return pair_.denominator; }
  // The quotient cut toward zero; 0 for the denominator 0.
  std::int64_t truncate() const;
  std::int16_t shortValue() const;
  std::int64_t longValue() const { return truncate(); }
  // Whether the value is a whole number; for the denominator 0 whether the numerator is 0.
  bool isInteger() const;
  // A plain number: the integer 0 for the numerator 0, infinity in single precision for the
  // denominator 0, else the quotient cut toward zero, as a double (7/2 gives 3.0).
  PropertyValue getNSNumber() const;

  // "0", "Infinite" (denominator 0), a whole number where it is one at a glance ("-6"), numerator
  // and denominator of small fractions ("1/3"), and one digit after the point else ("3.5").
  std::string description() const override;
  // The same: the locale plays no part.
  std::string descriptionWithLocale(const PropertyValue& locale) const;

  // Copies the pair, or its first `size` bytes at most, in the machine's byte order.
  void getValue(void* buffer) const;
  void getValue(void* buffer, std::size_t size) const;
  // The encoding of what `getValue` copies: two signed 64-bit integers.
  const char* objCType() const { return "{?=qq}"; }

  // The greatest common divisor by remainders cut toward zero, with the sign that these give it;
  // `a` when `d` is 0.
  static std::int64_t gcd(std::int64_t a, std::int64_t d);
  // Reduces the pair in place, as numerator and denominator given are at construction.
  void normalize();

  // The views of a number, as told above for the class.
  NumberKind kind() const override { return NumberKind::real; }
  int intValue() const override;
  unsigned unsignedIntValue() const override;
  std::int64_t longLongValue() const override { return truncate(); }
  std::uint64_t unsignedLongLongValue() const override;
  // Both parts in that precision, divided; 0 for the denominator 0.
  float floatValue() const override;
  double doubleValue() const override;
  std::string stringValue() const override { return description(); }
  detail::NumericValue numeric() const override;
  // A new fraction of the same pair.
  Ref<Object> copy() const override;

  // The numerator, then the denominator.
  void encodeWithCoder(Archiver& archiver) const;
  void decodeWithCoder(Unarchiver& unarchiver);

  // Inside the library: 0/0, and a pair as it stands.
  QXFractionNumber() = default;
  QXFractionNumber(detail::Passkey, FractionPair pair) : pair_(pair) {}

 private:
  FractionPair pair_;
};

QX_EXPORT const Class& classObject(detail::Type<QXFractionNumber>);

}  // namespace qx

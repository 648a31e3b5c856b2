// Number and DecimalNumber: numbers as objects. Most code never meets them: a PropertyValue is made
// from a C++ number directly and holds most numbers inline.
//
//     auto price = qx::DecimalNumber::initWithString("19.90");
//     qx::PropertyValue(price) == 19.9;   // false: 19.9 the double is not exactly 19.90
//
// Numbers of all kinds compare and hash by exact numeric value: 1, 1u, 1.0 and true are equal. NaN
// equals itself and orders below every other number.
#pragma once

#include <cstdint>
#include <string>

#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string.h>

namespace qx {

namespace detail {
class Decimal;
struct NumericValue;
}  // namespace detail

// A number. The class is "NSNumber". Immutable, thread-safe. The views follow PropertyValue's
// lenient ones.
class QX_EXPORT Number : public Object {
 public:
  // How the number was made, and its lenient views, as PropertyValue's.
  virtual NumberKind kind() const;
  virtual int intValue() const;
  virtual unsigned unsignedIntValue() const;
  virtual std::int64_t longLongValue() const;
  virtual std::uint64_t unsignedLongLongValue() const;
  virtual float floatValue() const;
  virtual double doubleValue() const;
  virtual bool boolValue() const;
  // The decimal text of the number; "1" and "0" for bools.
  virtual std::string stringValue() const;
  ComparisonResult compare(const PropertyValue& other) const;

  bool isEqual(const PropertyValue& other) const override;
  std::size_t hash() const override;
  std::string description() const override;
  Ref<Object> copy() const override;

  // What comparing, hashing and the views rest on; a subclass gives its own.
  virtual detail::NumericValue numeric() const;

  // Inside the library.
  Number(detail::Passkey, NumberKind kind, std::uint64_t bits);

 protected:
  Number();

 private:
  NumberKind kind_ = NumberKind::signedInteger;
  std::uint64_t bits_ = 0;
};

// A decimal number of 38 significant digits and an exponent of -128 to 127, exact in text and
// comparison. The class is "NSDecimalNumber". Immutable, thread-safe. Overflow gives NaN, what is
// nearer to 0 than to the least number gives 0; NaN in an operation gives NaN.
class QX_EXPORT DecimalNumber : public Number {
 public:
  // The number at the start of the text ("-12.50", "1e3"); NaN where there is none, nil for nil.
  // Digits beyond 38 are rounded half to even.
  static Ref<DecimalNumber> initWithString(StringArg text);
  static Ref<DecimalNumber> decimalNumberWithString(StringArg text) { return initWithString(text); }
  // The exact decimal of an integer; the shortest decimal that reads back as a floating number.
  // What is no number, and nil, raises InvalidArgumentException.
  static Ref<DecimalNumber> fromNumber(const PropertyValue& number);
  static Ref<DecimalNumber> notANumber();

  // Whether this is the value that is no number.
  bool isNaN() const;
  // Rounded half away from zero where 38 digits do not hold the result; division by zero gives NaN.
  // Nil raises InvalidArgumentException, by selector a number of another class too.
  Ref<DecimalNumber> decimalNumberByAdding(In<DecimalNumber> other) const;
  Ref<DecimalNumber> decimalNumberBySubtracting(In<DecimalNumber> other) const;
  Ref<DecimalNumber> decimalNumberByMultiplyingBy(In<DecimalNumber> other) const;
  Ref<DecimalNumber> decimalNumberByDividingBy(In<DecimalNumber> other) const;

  std::string stringValue() const override;
  // A decimal number.
  NumberKind kind() const override { return NumberKind::decimal; }
  detail::NumericValue numeric() const override;

  // Inside the library.
  DecimalNumber(detail::Passkey, const detail::Decimal& value);
  const detail::Decimal& decimal() const { return *value_; }

 protected:
  ~DecimalNumber() override;

 private:
  const detail::Decimal* value_;
};

QX_EXPORT const Class& classObject(detail::Type<Number>);
QX_EXPORT const Class& classObject(detail::Type<DecimalNumber>);

}  // namespace qx

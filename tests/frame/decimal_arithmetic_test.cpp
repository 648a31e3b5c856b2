#include <gtest/gtest.h>

#include <random>
#include <string>

#include "frame/decimal.h"
#include "tests/frame/decimal_reference.h"

namespace qx::detail {
namespace {

// The exact value rounded to what a decimal can hold, half away from zero.
std::string slowRound(const Rational& value) {
  const bool negative = value < 0;
  const Rational magnitude = mp::abs(value);
  const Integer ten = 10;
  if (magnitude == 0) return "0";
  int exponent = Decimal::kMinExponent;
  const Integer limit = mp::pow(ten, 38);
  const auto scaled = [&magnitude, &ten](int power) {
    const Integer unit = mp::pow(ten, static_cast<unsigned>(std::abs(power)));
    const Rational shifted = power >= 0 ? Rational(magnitude / unit) : Rational(magnitude * unit);
    return Integer((mp::numerator(shifted) * 2 + mp::denominator(shifted)) /
                   (mp::denominator(shifted) * 2));
  };
  // Digits are cut as long as the unrounded number needs it.
  const auto tooLong = [&](int power) {
    const Integer unit = mp::pow(ten, static_cast<unsigned>(std::abs(power)));
    return power >= 0 ? magnitude >= Rational(limit * unit) : Rational(magnitude * unit) >= limit;
  };
  while (tooLong(exponent)) ++exponent;
  const Integer significand = scaled(exponent);
  if (significand == 0) return "0";
  std::string digits = significand.str();
  if (exponent >= 0) {
    digits += zeros(exponent);
    const Integer largest = (limit - 1) * mp::pow(ten, Decimal::kMaxExponent);
    if (Integer(digits) > largest) return "NaN";
  } else {
    const auto places = static_cast<std::size_t>(-exponent);
    if (digits.size() <= places) digits.insert(0, places - digits.size() + 1, '0');
    digits.insert(digits.size() - places, ".");
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.') digits.pop_back();
  }
  return negative ? "-" + digits : digits;
}

TEST(DecimalArithmetic, RandomResultsAgreeWithRoundedRationals) {
  std::mt19937_64 random(13);
  for (int round = 0; round < 500; ++round) {
    const Decimal left = randomDecimal(random);
    const Decimal right = randomDecimal(random);
    const Rational a = exact(left);
    const Rational b = exact(right);
    const std::string name = left.text() + " and " + right.text();
    ASSERT_EQ((left + right).text(), slowRound(a + b)) << name;
    ASSERT_EQ((left - right).text(), slowRound(a - b)) << name;
    ASSERT_EQ((left * right).text(), slowRound(a * b)) << name;
    if (!right.isZero()) {
      ASSERT_EQ((left / right).text(), slowRound(a / b)) << name;
    }
  }
}

TEST(DecimalArithmetic, Table) {
  const struct {
    std::string left;
    char operation;
    std::string right;
    std::string result;
  } cases[] = {
      {"0.1", '+', "0.2", "0.3"},
      {"1", '-', "1", "0"},
      {"-1", '+', "1", "0"},
      {"1", '-', "1.5", "-0.5"},
      {"-1", '-', "-1.5", "0.5"},
      {"0", '+', "-3", "-3"},
      {"0", '-', "3", "-3"},
      {"0", '-', "0", "0"},
      {nines(38), '+', "1", "1" + zeros(38)},
      {nines(38), '+', "0.5", "1" + zeros(38)},  // half away from zero
      {nines(38), '+', "0.4", nines(38)},
      {"-" + nines(38), '-', "0.5", "-1" + zeros(38)},
      {"1e164", '+', "1e-128", "1" + zeros(164)},
      {"1e164", '-', "1e-128", "1" + zeros(164)},
      {nines(38) + "e127", '+', "5e126", "NaN"},
      {nines(38) + "e127", '+', "4e126", nines(38) + zeros(127)},
      {nines(38) + "e127", '+', nines(38) + "e127", "NaN"},
      {"1.5", '*', "1.5", "2.25"},
      {"-2", '*', "0", "0"},
      {"-2", '*', "3", "-6"},
      {"1e100", '*', "1e64", "1" + zeros(164)},
      {"1e100", '*', "1e65", "NaN"},
      {"1e-100", '*', "1e-28", "0." + zeros(127) + "1"},
      {"1e-100", '*', "1e-29", "0"},
      {"5e-100", '*', "1e-29", "0." + zeros(127) + "1"},
      {"-5e-100", '*', "1e-29", "-0." + zeros(127) + "1"},
      {"1", '/', "3", "0." + std::string(38, '3')},
      {"2", '/', "3", "0." + std::string(37, '6') + "7"},
      {"-2", '/', "3", "-0." + std::string(37, '6') + "7"},
      {"1", '/', "8", "0.125"},
      {"0", '/', "7", "0"},
      {"0", '/', "-7", "0"},
      {"7", '/', "0", "NaN"},
      {"0", '/', "0", "NaN"},
      {"1e164", '/', "1e-128", "NaN"},
      {"1e-128", '/', "1e164", "0"},
      {"1e-128", '/', "2", "0." + zeros(127) + "1"},
      {"1e-128", '/', "3", "0"},
      {"NaN", '+', "1", "NaN"},
      {"1", '-', "NaN", "NaN"},
      {"0", '*', "NaN", "NaN"},
      {"NaN", '/', "1", "NaN"},
      {"0", '/', "NaN", "NaN"},
  };
  for (const auto& c : cases) {
    const Decimal left = dec(c.left);
    const Decimal right = dec(c.right);
    const Decimal result = c.operation == '+'   ? left + right
                           : c.operation == '-' ? left - right
                           : c.operation == '*' ? left * right
                                                : left / right;
    EXPECT_EQ(result.text(), c.result) << c.left << c.operation << c.right;
  }
}

TEST(DecimalArithmetic, NegationKeepsZeroAndNaN) {
  EXPECT_EQ(dec("1.5").negated(), dec("-1.5"));
  EXPECT_EQ(dec("-1.5").negated(), dec("1.5"));
  EXPECT_EQ(dec("0").negated(), dec("0"));
  EXPECT_EQ(dec("NaN").negated(), dec("NaN"));
}

}  // namespace
}  // namespace qx::detail

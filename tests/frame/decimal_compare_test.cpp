#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "frame/decimal.h"
#include "tests/frame/decimal_reference.h"

namespace qx::detail {
namespace {

TEST(DecimalCompare, OrdersByValue) {
  const std::vector<std::string> ordered = {"NaN",
                                            "-1e164",
                                            "-1e3",
                                            "-999.999",
                                            "-1",
                                            "-0.1",
                                            "-1e-128",
                                            "0",
                                            "1e-128",
                                            "0.01",
                                            "0.099",
                                            "0.1",
                                            "0.10000000000000000000000000000000000001",
                                            "1",
                                            "1.5",
                                            "2",
                                            "10",
                                            "999.999",
                                            "1e3",
                                            nines(38),
                                            "1e38",
                                            "1e127",
                                            "1e128",
                                            "1e164",
                                            nines(38) + "e127"};
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    for (std::size_t j = 0; j < ordered.size(); ++j) {
      const int expected = (i > j) - (i < j);
      EXPECT_EQ(dec(ordered[i]).compare(dec(ordered[j])), expected) << ordered[i] << ordered[j];
      EXPECT_EQ(dec(ordered[i]) == dec(ordered[j]), expected == 0);
    }
  }
}

TEST(DecimalCompare, RandomNumbersAgreeWithRationals) {
  std::mt19937_64 random(11);
  for (int round = 0; round < 20000; ++round) {
    const Decimal left = randomDecimal(random);
    const Decimal right = random() % 4 == 0 ? left + randomDecimal(random) : randomDecimal(random);
    if (right.isNaN()) continue;
    ASSERT_EQ(left.compare(right), order(exact(left), exact(right)))
        << left.text() << ' ' << right.text();
    if (left == right) {
      ASSERT_EQ(left.hash(), right.hash());
    }
  }
}

TEST(DecimalCompare, KnowsIntegersOfBothKinds) {
  EXPECT_EQ(dec("1.5").compare(std::int64_t{1}), 1);
  EXPECT_EQ(dec("1.5").compare(std::int64_t{2}), -1);
  EXPECT_EQ(dec("-1.5").compare(std::int64_t{-1}), -1);
  EXPECT_EQ(dec("-9223372036854775808").compare(kLeast64), 0);
  EXPECT_EQ(dec("-9223372036854775808.0000000000000000001").compare(kLeast64), -1);
  EXPECT_EQ(dec("9223372036854775807.1").compare(kMost64), 1);
  EXPECT_EQ(dec("18446744073709551615").compare(kMostU64), 0);
  EXPECT_EQ(dec("18446744073709551614.9").compare(kMostU64), -1);
  EXPECT_EQ(dec("-1").compare(std::uint64_t{0}), -1);
  EXPECT_EQ(dec("NaN").compare(kLeast64), -1);
  EXPECT_EQ(dec("NaN").compare(std::uint64_t{0}), -1);
}

TEST(DecimalCompare, TakesDoublesAtTheirBinaryValue) {
  const struct {
    std::string text;
    double value;
    int order;
  } cases[] = {
      {"0.5", 0.5, 0},
      {"0", -0.0, 0},
      {"0.1", 0.1, -1},  // the double is a bit more than a tenth
      {"0.3", 0.3, 1},   // and this one a bit less
      {"-0.1", -0.1, 1},
      {"0.1000000000000000055511151231257827", 0.1, -1},
      {"0.10000000000000000555111512312578270212", 0.1, 1},
      {"1e22", 1e22, 0},
      {"1e23", 1e23, 1},
      {"9007199254740993", 9007199254740992.0, 1},
      {"9007199254740993", 9007199254740994.0, -1},
      {"1e164", 1e164, -1},
      {"1e-128", 5e-324, 1},
      {"0", 5e-324, -1},
      {"0", -5e-324, 1},
      {"1e164", 1e308, -1},
      {"-1e164", -1e308, 1},
      {"1e164", kInfinity, -1},
      {"-1e164", -kInfinity, 1},
      {"NaN", -kInfinity, -1},
      {"NaN", 0, -1},
      {"NaN", kNaN, 0},
      {"0", kNaN, 1},
      {"-1e164", kNaN, 1},
  };
  for (const auto& c : cases)
    EXPECT_EQ(dec(c.text).compare(c.value), c.order) << c.text << ' ' << c.value;
}

TEST(DecimalCompare, RandomDoublesAgreeWithRationals) {
  std::mt19937_64 random(12);
  int equal = 0;
  for (int round = 0; round < 20000; ++round) {
    const double value = round % 2 == 0 ? randomDouble(random, -360, 540)
                                        : std::ldexp(static_cast<double>(random() % 1000),
                                                     static_cast<int>(random() % 40) - 20);
    Decimal near = Decimal::fromDouble(value);
    if (round % 3 == 0) near = near + randomDecimal(random);
    if (near.isNaN()) continue;
    const int expected = order(exact(near), exact(value));
    equal += expected == 0;
    ASSERT_EQ(near.compare(value), expected) << near.text() << ' ' << value;
    const std::optional<double> same = near.exactDouble();
    if (expected == 0) {
      ASSERT_EQ(same, value) << near.text();
    }
    if (same) {
      ASSERT_EQ(exact(*same), exact(near)) << near.text();
    }
    if (!same) {
      ASSERT_NE(exact(near.toDouble()), exact(near)) << near.text();
    }
  }
  EXPECT_GT(equal, 1000);
}

TEST(DecimalHash, EqualNumbersHashAlike) {
  EXPECT_EQ(dec("1.50").hash(), dec("15e-1").hash());
  EXPECT_EQ(dec("-0").hash(), dec("0").hash());
  EXPECT_EQ(dec("NaN").hash(), Decimal::notANumber().hash());
  EXPECT_NE(dec("1").hash(), dec("-1").hash());
  EXPECT_NE(dec("1").hash(), dec("10").hash());
  EXPECT_NE(dec("NaN").hash(), dec("0").hash());
}

}  // namespace
}  // namespace qx::detail

#include "frame/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "tests/frame/storage_forms.h"

namespace qx::detail {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t kMost64 = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int32_t kMost32 = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast32 = std::numeric_limits<std::int32_t>::min();
constexpr std::uint64_t kMostU64 = std::numeric_limits<std::uint64_t>::max();

TEST(ScanInteger, ReadsPrefixesAndSaturates) {
  const struct {
    std::string text;
    std::int64_t int64;
    std::int32_t int32;
    std::uint64_t uint64;
  } cases[] = {
      {"", 0, 0, 0},
      {"abc", 0, 0, 0},
      {"12", 12, 12, 12},
      {"+12", 12, 12, 12},
      {"-12", -12, -12, kMostU64 - 11},
      {"-1", -1, -1, kMostU64},
      {" \t\n\v\f\r42", 42, 42, 42},
      {"4 2", 4, 4, 4},
      {"12abc", 12, 12, 12},
      {"1.9", 1, 1, 1},
      {"1e3", 1, 1, 1},
      {"0x10", 0, 0, 0},
      {"007", 7, 7, 7},
      {"+-5", 0, 0, 0},
      {"- 5", 0, 0, 0},
      {"-", 0, 0, 0},
      {"1,000", 1, 1, 1},
      {"2147483647", kMost32, kMost32, 2147483647},
      {"2147483648", 2147483648, kMost32, 2147483648},
      {"-2147483648", kLeast32, kLeast32, kMostU64 - 2147483647},
      {"-2147483649", -2147483649, kLeast32, kMostU64 - 2147483648},
      {"9223372036854775807", kMost64, kMost32, 9223372036854775807u},
      {"9223372036854775808", kMost64, kMost32, 9223372036854775808u},
      {"-9223372036854775808", kLeast64, kLeast32, 9223372036854775808u},
      {"-9223372036854775809", kLeast64, kLeast32, 9223372036854775808u},
      {"18446744073709551615", kMost64, kMost32, kMostU64},
      {"18446744073709551616", kMost64, kMost32, kMostU64},
      {"-18446744073709551616", kLeast64, kLeast32, 9223372036854775808u},
      {"99999999999999999999999999999999", kMost64, kMost32, kMostU64},
      {"\xA0"
       "5",
       0, 0, 0},
      {"\xB2", 0, 0, 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(scanInt64(TextSpan::latin1(c.text)), c.int64) << c.text;
    EXPECT_EQ(scanInt32(TextSpan::latin1(c.text)), c.int32) << c.text;
    EXPECT_EQ(scanUInt64(TextSpan::latin1(c.text)), c.uint64) << c.text;
    if (c.text[0] == '\xA0' || c.text[0] == '\xB2') continue;
    const std::u16string wide = widened(c.text) + u"\x20AC";
    EXPECT_EQ(scanInt64(wide), c.int64) << c.text;
    EXPECT_EQ(scanInt32(wide), c.int32) << c.text;
    EXPECT_EQ(scanUInt64(wide), c.uint64) << c.text;
  }
  EXPECT_EQ(scanInt64(u"\x661\x662"), 0);  // digits of other scripts are no digits here
}

TEST(ScanDouble, ReadsPrefixes) {
  const struct {
    std::string text;
    double value;
  } cases[] = {
      {"", 0},
      {"abc", 0},
      {".", 0},
      {"-", 0},
      {"-.", 0},
      {"e5", 0},
      {"1.5", 1.5},
      {" \t\n\v\f\r-1.5e2xyz", -150},
      {"+.5", .5},
      {"5.", 5},
      {"5.e1", 50},
      {"1e", 1},
      {"1e+", 1},
      {"1e+x", 1},
      {"1E-2", .01},
      {"1e5.5", 1e5},
      {"1.2.3", 1.2},
      {"0x1p4", 0},
      {"inf", 0},
      {"nan", 0},
      {"1d3", 1},
      {"1,5", 1},
      {"-0", -0.0},
      {"-0.000e7", -0.0},
      {"0.1", 0.1},
      {"123456789012345678901234567890", 123456789012345678901234567890.0},
      {"9007199254740993", 9007199254740992.0},
      {"9007199254740993.00000000000000000000000000000000000000000000001", 9007199254740994.0},
      {"1.7976931348623157e308", std::numeric_limits<double>::max()},
      {"1.7976931348623159e308", kInfinity},
      {"-1e309", -kInfinity},
      {"1e999999999999999999999999", kInfinity},
      {"0e999999999999999999999999", 0},
      {"0e9999", 0},
      {"0.0e9999", 0},
      {"1e-999999999999999999999999", 0},
      {"-1e-400", -0.0},
      {"5e-324", 5e-324},
      {"2e-324", 0},
      {"3e-324", 5e-324},
      {"2.2250738585072011e-308", 2.2250738585072011e-308},
  };
  for (const auto& c : cases) {
    const double value = scanDouble(TextSpan::latin1(c.text));
    EXPECT_EQ(value, c.value) << c.text;
    EXPECT_EQ(std::signbit(value), std::signbit(c.value)) << c.text;
    const double wide = scanDouble(widened(c.text));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(wide), std::bit_cast<std::uint64_t>(value)) << c.text;
  }
}

TEST(ScanDouble, MegabytesOfDigitsAreReadInLinearTime) {
  constexpr std::size_t kMany = 1'000'000;
  const std::string zeros(kMany, '0');
  const std::string nines(kMany, '9');
  EXPECT_EQ(scanDouble(TextSpan::latin1("0." + zeros + "15e1000001")), 1.5);
  EXPECT_EQ(scanDouble(TextSpan::latin1("15" + zeros + "e-1000001")), 1.5);
  EXPECT_EQ(scanDouble(TextSpan::latin1(nines)), kInfinity);
  EXPECT_EQ(scanDouble(TextSpan::latin1("0." + nines)), 1.0);
  EXPECT_EQ(scanDouble(TextSpan::latin1("." + zeros + "1")), 0.0);
  EXPECT_EQ(scanDouble(widened("-15" + zeros + "e-1000001")), -1.5);
}

TEST(ScanDouble, RoundsRandomTextsCorrectly) {
  std::mt19937_64 random(5);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    const auto digits = 1 + random() % 30;
    for (unsigned i = 0; i < digits; ++i) text += static_cast<char>('0' + random() % 10);
    text.insert(random() % (text.size() + 1), ".");
    text += "e" + std::to_string(static_cast<int>(random() % 640) - 330);
    ASSERT_EQ(scanDouble(TextSpan::latin1(text)), std::strtod(text.c_str(), nullptr)) << text;
  }
}

TEST(ScanBool, LooksAtTheFirstTellingCharacter) {
  for (const char* text :
       {"Y", "y", "T", "t", "yes", "TRUE", "1", "9", "007", "  +1", "-3", " 0y", "\t-005x", "0t"}) {
    EXPECT_TRUE(scanBool(TextSpan::latin1(text))) << text;
    EXPECT_TRUE(scanBool(widened(text))) << text;
  }
  for (const char* text : {"", " ", "N", "no", "false", "0", "000", "-0", "+", "+-1", "0 1", "- 1",
                           "x1", ".5", "on"}) {
    EXPECT_FALSE(scanBool(TextSpan::latin1(text))) << text;
    EXPECT_FALSE(scanBool(widened(text))) << text;
  }
}

TEST(ShortestText, LaysOutDoubles) {
  const struct {
    double value;
    const char* text;
  } cases[] = {
      {0, "0"},
      {-0.0, "-0"},
      {1, "1"},
      {3, "3"},
      {-3, "-3"},
      {1.5, "1.5"},
      {0.1, "0.1"},
      {-0.25, "-0.25"},
      {1.0 / 3, "0.3333333333333333"},
      {100, "100"},
      {1200, "1200"},
      {100000, "100000"},
      {123456.789, "123456.789"},
      {1e15, "1000000000000000"},
      {1e16, "10000000000000000"},
      {12345678901234568.0, "12345678901234568"},
      {1e17, "1e+17"},
      {1e22, "1e+22"},
      {-1.5e300, "-1.5e+300"},
      {0.001, "0.001"},
      {0.0001, "0.0001"},
      {0.00012345, "0.00012345"},
      {0.00001, "1e-05"},
      {1.5e-7, "1.5e-07"},
      {5e-324, "5e-324"},
      {std::numeric_limits<double>::max(), "1.7976931348623157e+308"},
      {9007199254740993.0, "9007199254740992"},
      {kInfinity, "inf"},
      {-kInfinity, "-inf"},
      {std::numeric_limits<double>::quiet_NaN(), "nan"},
      {-std::numeric_limits<double>::quiet_NaN(), "nan"},
  };
  for (const auto& c : cases) EXPECT_EQ(shortestText(c.value), c.text);
}

TEST(ShortestText, KnowsTheTypeOfTheNumber) {
  EXPECT_EQ(shortestText(0.1f), "0.1");
  EXPECT_EQ(shortestText(static_cast<double>(0.1f)), "0.10000000149011612");
  EXPECT_EQ(shortestText(3.0f), "3");
  EXPECT_EQ(shortestText(16777216.0f), "16777216");
  EXPECT_EQ(shortestText(1e20f), "1e+20");
  EXPECT_EQ(shortestText(-std::numeric_limits<float>::infinity()), "-inf");
  EXPECT_EQ(shortestText(std::numeric_limits<float>::quiet_NaN()), "nan");
}

TEST(ShortestText, ReadsBackAsTheSameNumber) {
  std::mt19937_64 random(6);
  for (int round = 0; round < 50000; ++round) {
    const auto value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    const std::string text = shortestText(value);
    ASSERT_EQ(std::bit_cast<std::uint64_t>(scanDouble(TextSpan::latin1(text))),
              std::bit_cast<std::uint64_t>(value))
        << text;
    const auto single = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    if (!std::isfinite(single)) continue;
    ASSERT_EQ(std::strtof(shortestText(single).c_str(), nullptr), single);
  }
  for (int round = 0; round < 50000; ++round) {
    const double value =
        std::ldexp(static_cast<double>(random() % 100000), static_cast<int>(random() % 40) - 20);
    ASSERT_EQ(scanDouble(TextSpan::latin1(shortestText(value))), value);
  }
}

TEST(FixedText, HasSixDecimals) {
  EXPECT_EQ(fixedText(0.0), "0.000000");
  EXPECT_EQ(fixedText(-0.0), "-0.000000");
  EXPECT_EQ(fixedText(1.5), "1.500000");
  EXPECT_EQ(fixedText(0.1f), "0.100000");
  EXPECT_EQ(fixedText(-2.0 / 3), "-0.666667");
  EXPECT_EQ(fixedText(0.0000005), "0.000000");           // the double is below the half
  EXPECT_EQ(fixedText(0.0000015), "0.000002");           // and this one not
  EXPECT_EQ(fixedText(0.5 / (1 << 6) / 1), "0.007812");  // 0.0078125: a tie goes to even
  EXPECT_EQ(fixedText(1e22), "10000000000000000000000.000000");
  EXPECT_EQ(fixedText(16777216.0f), "16777216.000000");
  EXPECT_EQ(fixedText(std::numeric_limits<double>::max()).size(), 309u + 7u);
  EXPECT_EQ(fixedText(-std::numeric_limits<double>::max()).size(), 1u + 309u + 7u);
  EXPECT_EQ(fixedText(kInfinity), "inf");
  EXPECT_EQ(fixedText(-kInfinity), "-inf");
  EXPECT_EQ(fixedText(std::numeric_limits<float>::quiet_NaN()), "nan");
  EXPECT_EQ(fixedText(-std::numeric_limits<double>::quiet_NaN()), "nan");
}

TEST(DecimalText, WritesWholeIntegers) {
  EXPECT_EQ(decimalText(std::int64_t{0}), "0");
  EXPECT_EQ(decimalText(std::int64_t{-42}), "-42");
  EXPECT_EQ(decimalText(kLeast64), "-9223372036854775808");
  EXPECT_EQ(decimalText(kMost64), "9223372036854775807");
  EXPECT_EQ(decimalText(kMostU64), "18446744073709551615");
}

}  // namespace
}  // namespace qx::detail

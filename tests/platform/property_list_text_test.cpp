// The texts of XML property lists: numbers, dates and data.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "platform/plist_text.h"
#include "tests/platform/property_list/dump.h"

namespace qx {
namespace {

using detail::plistDate;
using detail::plistInteger;
using detail::plistReal;

TEST(PlistText, IntegersOf64BitsAreRead) {
  const struct {
    const char* text;
    const char* read;
  } kCases[] = {
      {"0", "i0"},
      {"-0", "i0"},
      {"+5", "i5"},
      {"007", "i7"},
      {"-9223372036854775808", "i-9223372036854775808"},
      {"9223372036854775807", "i9223372036854775807"},
      {"9223372036854775808", "i9223372036854775808"},
      {"18446744073709551615", "i18446744073709551615"},
      {"0x1F", "i31"},
      {"0XfF", "i255"},
      {"-0x10", "i-16"},
      {"0xFFFFFFFFFFFFFFFF", "i18446744073709551615"},
      {"-0x8000000000000000", "i-9223372036854775808"},
      {"18446744073709551616", "nil"},
      {"-9223372036854775809", "nil"},
      {"-0x8000000000000001", "nil"},
      {"0x10000000000000000", "nil"},
      {"99999999999999999999999999", "nil"},
      {"", "nil"},
      {"-", "nil"},
      {"+-5", "nil"},
      {"- 5", "nil"},
      {"0x", "nil"},
      {"0x-5", "nil"},
      {"x5", "nil"},
      {"1F", "nil"},
      {"1.0", "nil"},
      {"1e3", "nil"},
      {"1_000", "nil"},
      {"\xD9\xA3", "nil"},
      {"five", "nil"},
  };
  for (const auto& c : kCases) EXPECT_EQ(plist::dump(plistInteger(c.text)), c.read) << c.text;
}

TEST(PlistText, RealsAreRead) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const struct {
    const char* text;
    double read;
  } kCases[] = {
      {"1.5", 1.5},
      {"-1.5e3", -1500},
      {"+2", 2},
      {".5", 0.5},
      {"5.", 5},
      {"1E-2", 0.01},
      {"0x", -1},
      {"inf", kInfinity},
      {"+Infinity", kInfinity},
      {"-INF", -kInfinity},
      {"1e-400", 0},
      {"1.7976931348623157e308", 1.7976931348623157e308},
      {"5e-324", 5e-324},
      {"-1e-999999999", 0},
  };
  for (const auto& c : kCases) {
    if (c.read == -1) {
      EXPECT_FALSE(plistReal(c.text)) << c.text;
    } else {
      EXPECT_EQ(plistReal(c.text), c.read) << c.text;
    }
  }
  EXPECT_TRUE(std::isnan(plistReal("nan").value()));
  EXPECT_TRUE(std::isnan(plistReal("-NaN").value()));
  for (const char* const text :
       {"", "+", ".", "e5", "1e", "1e+", "1,5", "1 5", "1.5f", "0x10", "in", "infinit", "nan(5)",
        "1e400", "-1e99999999999", "--1", "one"}) {
    EXPECT_FALSE(plistReal(text)) << text;
  }
}

TEST(PlistText, RealsAreWrittenSoThatTheyReadBackTheSame) {
  const auto textOf = [](double d) {
    char out[detail::kPlistRealSize];
    return std::string(out, detail::writePlistReal(d, out));
  };
  EXPECT_EQ(textOf(0.1), "0.1");
  EXPECT_EQ(textOf(-0.0), "-0");
  EXPECT_EQ(textOf(1e22), "1e+22");
  EXPECT_EQ(textOf(std::numeric_limits<double>::quiet_NaN()), "nan");
  EXPECT_EQ(textOf(std::numeric_limits<double>::infinity()), "+infinity");
  EXPECT_EQ(textOf(-std::numeric_limits<double>::infinity()), "-infinity");
  std::mt19937_64 random(1);
  for (int i = 0; i < 100000; ++i) {
    const auto d = std::bit_cast<double>(random());
    if (!std::isfinite(d)) continue;
    const std::string text = textOf(d);
    ASSERT_LE(text.size(), detail::kPlistRealSize);
    ASSERT_EQ(plistReal(text), d) << text;
  }
}

TEST(PlistText, DatesAreRead) {
  EXPECT_EQ(plistDate("1970-01-01T00:00:00Z"), 0);
  EXPECT_EQ(plistDate("2001-01-01T00:00:00Z"), Date::kReferenceDate);
  EXPECT_EQ(plistDate("1969-12-31T23:59:59Z"), -1);
  EXPECT_EQ(plistDate("2000-02-29T12:00:00Z"), 951825600);
  EXPECT_EQ(plistDate("0001-01-01T00:00:00Z"), -62135596800);
  EXPECT_EQ(plistDate("9999-12-31T23:59:59Z"), 253402300799);
  for (const char* const text : {"",
                                 "2001-01-01",
                                 "2001-01-01T00:00:00",
                                 "2001-01-01 00:00:00Z",
                                 "2001-13-01T00:00:00Z",
                                 "2001-00-01T00:00:00Z",
                                 "2001-02-29T00:00:00Z",
                                 "1900-02-29T00:00:00Z",
                                 "2001-04-31T00:00:00Z",
                                 "2001-01-00T00:00:00Z",
                                 "2001-01-01T24:00:00Z",
                                 "2001-01-01T00:60:00Z",
                                 "2001-01-01T00:00:60Z",
                                 "0000-01-01T00:00:00Z",
                                 "-001-01-01T00:00:00Z",
                                 "2001-01-01T00:00:0aZ",
                                 "2001-01-01T00:00:00z",
                                 "20010-01-01T00:00:00Z",
                                 "2001-01-01T00:00:00.5Z",
                                 "2001-01-01T+1:00:00Z",
                                 "2001/01/01T00:00:00Z"}) {
    EXPECT_FALSE(plistDate(text)) << text;
  }
}

// Against the calendar's own rules, day by day.
TEST(PlistText, EveryDayFrom1869To2199IsWrittenAndRead) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  double seconds = -101.0 * 365 * 86400 - 24.0 * 86400;  // 24 leap days from 1869 to 1969
  for (int year = 1869; year < 2200; ++year) {
    const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    for (int month = 1; month <= 12; ++month) {
      const int days = kDays[month - 1] + (month == 2 && isLeap ? 1 : 0);
      for (int day = 1; day <= days; ++day, seconds += 86400) {
        char wanted[64];
        snprintf(wanted, sizeof wanted, "%04d-%02d-%02dT23:59:59Z", year, month, day);
        char out[detail::kPlistDateSize];
        detail::writePlistDate(seconds + 86399.5, out);
        ASSERT_EQ(std::string(out, sizeof out), wanted);
        ASSERT_EQ(plistDate(wanted), seconds + 86399);
      }
    }
  }
}

TEST(PlistText, DatesOfFourDigitYearsAlone) {
  EXPECT_TRUE(detail::isPlistDate(-62135596800.0));
  EXPECT_FALSE(detail::isPlistDate(-62135596800.5));
  EXPECT_TRUE(detail::isPlistDate(253402300799.9));
  EXPECT_FALSE(detail::isPlistDate(253402300800.0));
  EXPECT_FALSE(detail::isPlistDate(std::numeric_limits<double>::quiet_NaN()));
}

std::string decoded(std::string_view text) {
  std::string out;
  return detail::decodeBase64(text, out) ? out : "refused";
}

TEST(PlistText, Base64IsRead) {
  EXPECT_EQ(decoded(""), "");
  EXPECT_EQ(decoded(" \n\t\r"), "");
  EXPECT_EQ(decoded("Zg=="), "f");
  EXPECT_EQ(decoded("Zm8="), "fo");
  EXPECT_EQ(decoded("Zm9v"), "foo");
  EXPECT_EQ(decoded(" Z m\n9\tv\rYg = = "), "foob");
  EXPECT_EQ(decoded("+/+/"), "\xFB\xFF\xBF");
  for (const char* const text :
       {"Z", "Zg", "Zm8", "Zg=", "Zg===", "=", "====", "Zm9v=", "Zg==Zg==", "Z=g=", "Zm9-", "Zm9_",
        "Zm9v!", "Zh==", "Zm9=", "Zg==Z", "\xC3\xA9"}) {
    EXPECT_EQ(decoded(text), "refused") << text;
  }
}

TEST(PlistText, Base64ReadsBackWhatItWrites) {
  std::string bytes;
  for (int i = 0; i < 300; ++i) {
    std::string text(bytes.size() * 2 + 8, '\0');
    text.resize(static_cast<std::size_t>(detail::encodeBase64(bytes, text.data()) - text.data()));
    EXPECT_EQ(text.size(), (bytes.size() + 2) / 3 * 4);
    EXPECT_EQ(decoded(text), bytes);
    bytes += static_cast<char>(i * 37);
  }
}

}  // namespace
}  // namespace qx

// compare: and the ordering operations over numbers, texts and dates.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"
#include "tests/frame/sample_values.h"

namespace qx {
namespace {

using Groups = std::vector<std::vector<PropertyValue>>;

PropertyValue decimal(const char* text) { return DecimalNumber::initWithString(text); }
PropertyValue date(double seconds) { return Date::dateWithTimeIntervalSince1970(seconds); }

int sign(std::size_t a, std::size_t b) { return (a > b) - (a < b); }

// The groups ascend, and the members of one are the same: checked over all pairs of members.
void expectAscending(const Groups& groups) {
  for (std::size_t i = 0; i < groups.size(); ++i) {
    for (std::size_t j = 0; j < groups.size(); ++j) {
      for (const PropertyValue& a : groups[i]) {
        for (const PropertyValue& b : groups[j]) {
          SCOPED_TRACE(testing::PrintToString(a) + " against " + testing::PrintToString(b));
          const int expected = sign(i, j);
          ASSERT_EQ(static_cast<int>(a.compare(b)), expected);
          ASSERT_EQ(performSelector(a, "compare:", b).to<int>(), expected);
          ASSERT_EQ(a.isLessThan(b), expected < 0);
          ASSERT_EQ(a.isLessThanOrEqualTo(b), expected <= 0);
          ASSERT_EQ(a.isGreaterThan(b), expected > 0);
          ASSERT_EQ(a.isGreaterThanOrEqualTo(b), expected >= 0);
          ASSERT_EQ(a.isEqualTo(b), expected == 0);
          ASSERT_EQ(a.isNotEqualTo(b), expected != 0);
        }
      }
    }
  }
}

TEST(CompareLaws, OrderNumbersByExactValue) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  constexpr std::uint64_t kMostUnsigned = std::numeric_limits<std::uint64_t>::max();
  const std::int64_t two53 = std::int64_t{1} << 53;
  const double two63 = std::ldexp(1.0, 63);
  const double two64 = std::ldexp(1.0, 64);
  expectAscending({
      {std::nan(""), std::numeric_limits<float>::quiet_NaN(), decimal("none")},
      {-kInfinity, -std::numeric_limits<float>::infinity()},
      {-1e300},
      {decimal("-1e100")},
      {std::nextafter(-two63, -kInfinity)},
      {decimal("-9223372036854775808.5")},
      {kLeast, -two63, decimal("-9223372036854775808")},
      {decimal("-9223372036854775807.5")},
      {kLeast + 1},
      {std::nextafter(-two63, 0.0)},
      {-two53 - 1, decimal("-9007199254740993")},
      {-two53, -static_cast<double>(two53)},
      {-2, -2.0, -2.0F},
      {-1.5, decimal("-1.5")},
      {-1},
      {-1e-300},
      {0, 0U, 0.0, -0.0, false, decimal("0")},
      {1e-300},
      {decimal("1e-100")},
      {decimal("0.1")},
      {0.1},  // a little more than one tenth
      {0.1F},
      {0.5, 0.5F, decimal("0.5")},
      {std::nextafter(1.0, 0.0)},
      {1, 1U, 1.0, 1.0F, true, decimal("1.0")},
      {std::nextafter(1.0, 2.0)},
      {decimal("1.1")},
      {1.1},
      {two53 - 1},
      {two53, static_cast<double>(two53), decimal("9007199254740992")},
      {decimal("9007199254740992.5")},
      {two53 + 1, decimal("9007199254740993")},
      {two53 + 2, static_cast<double>(two53 + 2)},
      {std::nextafter(two63, 0.0), kMost - 1023},
      {kMost - 1},
      {kMost, static_cast<std::uint64_t>(kMost), decimal("9223372036854775807")},
      {decimal("9223372036854775807.5")},
      {static_cast<std::uint64_t>(kMost) + 1, two63, decimal("9223372036854775808")},
      {static_cast<std::uint64_t>(kMost) + 2},
      {std::nextafter(two63, kInfinity)},
      {std::nextafter(two64, 0.0)},
      {kMostUnsigned - 1},
      {kMostUnsigned, decimal("18446744073709551615")},
      {decimal("18446744073709551615.5")},
      {two64, decimal("18446744073709551616")},
      {std::nextafter(two64, kInfinity)},
      {decimal("1e100")},
      {1e300},
      {kInfinity, std::numeric_limits<float>::infinity()},
  });
}

TEST(CompareLaws, OrderTextsByCodeUnit) {
  const char16_t surrogate[] = {0xD800};
  const auto wideForm = [](const char* text) {
    auto s = MutableString::from("\xE6\xBC\xA2");
    s->setString(text);
    return PropertyValue(s);
  };
  expectAscending({
      {"", MutableString::init()},
      {std::string("\0", 1)},
      {"1"},
      {"10"},
      {"2"},
      {"A", wideForm("A")},
      {"Ab"},
      {"B"},
      {"a", MutableString::from("a"), wideForm("a")},
      {"ab"},
      {"ab\xC3\xA9", wideForm("ab\xC3\xA9")},
      {"b"},
      {"\xC3\xA9", wideForm("\xC3\xA9")},
      {"\xC3\xBF"},
      {"\xC4\x80"},
      {"\xE6\xBC\xA2", MutableString::from("\xE6\xBC\xA2")},
      {String::fromUtf16({surrogate, 1})},
      {"\xF0\x9F\x98\x80"},  // its first unit is a surrogate
      {"\xEF\xBF\xBD"},
  });
}

TEST(CompareLaws, OrderDates) {
  const double kInfinity = std::numeric_limits<double>::infinity();
  expectAscending({{date(std::nan(""))},
                   {date(-kInfinity)},
                   {date(-1e20)},
                   {date(-1)},
                   {date(0), date(-0.0)},
                   {date(1e-9)},
                   {date(1)},
                   {date(1e20)},
                   {date(kInfinity)}});
}

TEST(CompareLaws, OrderTextsFreeOfCase) {
  const Groups groups = {
      {""},
      {"a", "A"},
      {"AB", "ab", "Ab"},
      {"b", "B"},
      {"stra\xC3\x9F"
       "e",
       "STRASSE"},
      {"\xC3\xA4", "\xC3\x84"},
  };
  for (std::size_t i = 0; i < groups.size(); ++i) {
    for (std::size_t j = 0; j < groups.size(); ++j) {
      for (const PropertyValue& a : groups[i]) {
        for (const PropertyValue& b : groups[j]) {
          EXPECT_EQ(static_cast<int>(a.caseInsensitiveCompare(b)), sign(i, j))
              << a.description() << " against " << b.description();
          EXPECT_EQ(performSelector(a, "caseInsensitiveCompare:", b).to<int>(), sign(i, j));
        }
      }
    }
  }
}

// What does not compare orders neither way, and compare: raises.
TEST(CompareLaws, RefuseOtherPairsOfKinds) {
  const std::vector<frame_test::Sample> samples = frame_test::sampleValues();
  const auto kind = [](const PropertyValue& v) {
    return v.isNumber() ? 1 : v.isString() ? 2 : v.isDate() ? 3 : 0;
  };
  for (const auto& a : samples) {
    for (const auto& b : samples) {
      SCOPED_TRACE(a.group + " against " + b.group);
      if (kind(a.value) != 0 && kind(a.value) == kind(b.value)) {
        const int order = static_cast<int>(a.value.compare(b.value));
        ASSERT_EQ(order, -static_cast<int>(b.value.compare(a.value)));
        ASSERT_EQ(order == 0, a.group == b.group);
        continue;
      }
      ASSERT_FALSE(a.value.isLessThan(b.value));
      ASSERT_FALSE(a.value.isLessThanOrEqualTo(b.value));
      ASSERT_FALSE(a.value.isGreaterThan(b.value));
      ASSERT_FALSE(a.value.isGreaterThanOrEqualTo(b.value));
      ASSERT_THROW((void)a.value.compare(b.value), InvalidArgumentException);
      ASSERT_THROW(performSelector(a.value, "compare:", b.value), InvalidArgumentException);
    }
  }
}

TEST(Compare, RaisesWithAReason) {
  const struct {
    PropertyValue receiver;
    PropertyValue argument;
    const char* reason;
  } cases[] = {
      {null, 1, "-[NSNull compare:]: the receiver has no such operation"},
      {array(), array(), "-[NSArray compare:]: the receiver has no such operation"},
      {MutableDictionary::init(), 1,
       "-[NSMutableDictionary compare:]: the receiver has no such operation"},
      {Data::from(""), Data::from(""), "-[NSData compare:]: the receiver has no such operation"},
      {classOf<String>(), 1, "+[NSString compare:]: the receiver has no such operation"},
      {1, "1", "a value of class NSString (1) can not stand for the argument of compare:"},
      {"1", 1, "a value of class NSNumber (1) can not stand for the argument of compare:"},
      {"1", nullptr, "nil can not stand for the argument of compare:"},
      {true, null, "a value of class NSNull can not stand for the argument of compare:"},
      {date(0), 0, "a value of class NSNumber (0) can not stand for the argument of compare:"},
      {1, std::string(100, 'x'),
       "a value of class NSString "
       "(xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"
       "xxxxxxxxxxx...) can not stand for the argument of compare:"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)c.receiver.compare(c.argument); }),
              c.reason);
  }
  EXPECT_EQ(reasonOf<InvalidArgumentException>(
                [] { (void)PropertyValue(1).caseInsensitiveCompare("a"); }),
            "-[NSNumber caseInsensitiveCompare:]: the receiver has no such operation");
  EXPECT_EQ(reasonOf<InvalidArgumentException>(
                [] { (void)PropertyValue("a").caseInsensitiveCompare(1); }),
            "-[NSString caseInsensitiveCompare:]: a value of class NSNumber (1) can not stand for "
            "the argument of caseInsensitiveCompare:");
}

TEST(Compare, OfNilIsSame) {
  EXPECT_EQ(PropertyValue().compare(1), ComparisonResult::same);
  EXPECT_EQ(PropertyValue().caseInsensitiveCompare("a"), ComparisonResult::same);
}

TEST(Compare, OfObjectsGoesTheSameWay) {
  EXPECT_EQ(PropertyValue(2).as<Number>()->compare(1.5), ComparisonResult::descending);
  EXPECT_THROW((void)PropertyValue(2).as<Number>()->compare("2"), InvalidArgumentException);
  EXPECT_EQ(Date::dateWithTimeIntervalSince1970(1)->compare(date(2)), ComparisonResult::ascending);
  EXPECT_THROW((void)Date::dateWithTimeIntervalSince1970(1)->compare(2), InvalidArgumentException);
  EXPECT_EQ(String::from("b")->compare("a"), ComparisonResult::descending);
  EXPECT_EQ(String::from("B")->caseInsensitiveCompare("b"), ComparisonResult::same);
}

}  // namespace
}  // namespace qx

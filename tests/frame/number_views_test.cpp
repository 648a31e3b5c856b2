// The lenient views (intValue and its like) and the strict ones (to, valueOr, as, peek).

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/print_values.h"

namespace qx {
namespace {

constexpr std::int32_t kMost32 = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMost64 = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast64 = std::numeric_limits<std::int64_t>::min();
constexpr std::uint64_t kMostU64 = std::numeric_limits<std::uint64_t>::max();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kTwo63 = 9223372036854775808.0;
constexpr double kTwo64 = 18446744073709551616.0;

PropertyValue decimal(const char* text) { return DecimalNumber::initWithString(text); }

struct ViewCase {
  PropertyValue value;
  std::int32_t asInt;
  std::int64_t asInteger;
  std::uint64_t asUnsigned;
  bool asBool;
};

void expectViews(const std::vector<ViewCase>& cases) {
  for (const ViewCase& c : cases) {
    SCOPED_TRACE(c.value.description());
    EXPECT_EQ(c.value.intValue(), c.asInt);
    EXPECT_EQ(c.value.integerValue(), c.asInteger);
    EXPECT_EQ(c.value.unsignedIntegerValue(), c.asUnsigned);
    EXPECT_EQ(c.value.boolValue(), c.asBool);
    if (!c.value.isNumber()) continue;
    const Ref<Number> boxed = c.value.as<Number>();
    EXPECT_EQ(boxed->intValue(), c.asInt);
    EXPECT_EQ(boxed->longLongValue(), c.asInteger);
    EXPECT_EQ(boxed->unsignedLongLongValue(), c.asUnsigned);
    EXPECT_EQ(boxed->boolValue(), c.asBool);
    EXPECT_EQ(performSelector(c.value, "intValue").intValue(), c.asInt);
    EXPECT_EQ(performSelector(c.value, "longLongValue").integerValue(), c.asInteger);
    EXPECT_EQ(performSelector(c.value, "integerValue").integerValue(), c.asInteger);
    EXPECT_EQ(performSelector(c.value, "unsignedLongLongValue").unsignedIntegerValue(),
              c.asUnsigned);
    EXPECT_EQ(performSelector(c.value, "unsignedIntegerValue").unsignedIntegerValue(),
              c.asUnsigned);
    EXPECT_EQ(performSelector(c.value, "boolValue").boolValue(), c.asBool);
  }
}

TEST(LenientViews, WrapIntegers) {
  expectViews({
      {0, 0, 0, 0, false},
      {-1, -1, -1, kMostU64, true},
      {kMost32, kMost32, kMost32, kMost32, true},
      {std::int64_t{kMost32} + 1, kLeast32, std::int64_t{kMost32} + 1, 2147483648U, true},
      {std::int64_t{kLeast32} - 1, kMost32, std::int64_t{kLeast32} - 1, kMostU64 - 2147483648U,
       true},
      {std::int64_t{1} << 32, 0, std::int64_t{1} << 32, std::uint64_t{1} << 32, true},
      {kMost64, -1, kMost64, static_cast<std::uint64_t>(kMost64), true},
      {kLeast64, 0, kLeast64, std::uint64_t{1} << 63, true},
      {kMostU64, -1, -1, kMostU64, true},
      {std::uint64_t{1} << 63, 0, kLeast64, std::uint64_t{1} << 63, true},
      {true, 1, 1, 1, true},
      {false, 0, 0, 0, false},
  });
}

TEST(LenientViews, CutFloatingNumbersAndStopAtTheLimits) {
  expectViews({
      {0.0, 0, 0, 0, false},
      {-0.0, 0, 0, 0, false},
      {1.9, 1, 1, 1, true},
      {-1.9, -1, -1, 0, true},
      {0.5, 0, 0, 0, true},
      {-0.5, 0, 0, 0, true},
      {1.9F, 1, 1, 1, true},
      {2147483646.9, kMost32 - 1, 2147483646, 2147483646, true},
      {2147483647.5, kMost32, 2147483647, 2147483647, true},
      {2147483648.0, kMost32, 2147483648, 2147483648U, true},
      {-2147483648.9, kLeast32, -2147483648, 0, true},
      {-2147483649.0, kLeast32, -2147483649, 0, true},
      {std::nextafter(kTwo63, 0.0), kMost32, kMost64 - 1023, kMost64 - 1023, true},
      {kTwo63, kMost32, kMost64, std::uint64_t{1} << 63, true},
      {-kTwo63, kLeast32, kLeast64, 0, true},
      {std::nextafter(kTwo64, 0.0), kMost32, kMost64, kMostU64 - 2047, true},
      {kTwo64, kMost32, kMost64, kMostU64, true},
      {1e300, kMost32, kMost64, kMostU64, true},
      {-1e300, kLeast32, kLeast64, 0, true},
      {1e-300, 0, 0, 0, true},
      {kInfinity, kMost32, kMost64, kMostU64, true},
      {-kInfinity, kLeast32, kLeast64, 0, true},
      {kNaN, 0, 0, 0, true},
      {std::numeric_limits<float>::max(), kMost32, kMost64, kMostU64, true},
  });
}

TEST(LenientViews, CutDecimalsAndStopAtTheLimits) {
  expectViews({
      {decimal("0"), 0, 0, 0, false},
      {decimal("1.99"), 1, 1, 1, true},
      {decimal("-1.99"), -1, -1, 0, true},
      {decimal("0.00001"), 0, 0, 0, true},
      {decimal("2147483648"), kMost32, 2147483648, 2147483648U, true},
      {decimal("9223372036854775807.5"), kMost32, kMost64, static_cast<std::uint64_t>(kMost64),
       true},
      {decimal("9223372036854775808"), kMost32, kMost64, std::uint64_t{1} << 63, true},
      {decimal("1e38"), kMost32, kMost64, kMostU64, true},
      {decimal("-1e38"), kLeast32, kLeast64, 0, true},
      {decimal("nothing"), 0, 0, 0, true},
  });
}

TEST(LenientViews, ReadStringsAsNumberText) {
  expectViews({
      {"", 0, 0, 0, false},
      {"12", 12, 12, 12, true},
      {" \t12 apples", 12, 12, 12, true},
      {"-12", -12, -12, kMostU64 - 11, true},
      {"1.9", 1, 1, 1, true},
      {"1e3", 1, 1, 1, true},
      {"apple", 0, 0, 0, false},
      {"2147483648", kMost32, 2147483648, 2147483648U, true},
      {"-2147483649", kLeast32, -2147483649, kMostU64 - 2147483648U, true},
      {"9223372036854775808", kMost32, kMost64, std::uint64_t{1} << 63, true},
      {"-9223372036854775809", kLeast32, kLeast64, std::uint64_t{1} << 63, true},
      {"18446744073709551616", kMost32, kMost64, kMostU64, true},
      {"99999999999999999999999999", kMost32, kMost64, kMostU64, true},
      {"-99999999999999999999999999", kLeast32, kLeast64, std::uint64_t{1} << 63, true},
      {"Yes", 0, 0, 0, true},
      {"no", 0, 0, 0, false},
      {"true", 0, 0, 0, true},
      {"-007", -7, -7, kMostU64 - 6, true},
      {MutableString::from("5"), 5, 5, 5, true},
      {"\xE6\xBC\xA2"
       "7",
       0, 0, 0, false},
  });
}

TEST(LenientViews, GiveNothingForOtherKinds) {
  expectViews({
      {nullptr, 0, 0, 0, false},
      {null, 0, 0, 0, false},
      {array(1), 0, 0, 0, false},
      {dict({{"a", 1}}), 0, 0, 0, false},
      {Data::from("1"), 0, 0, 0, false},
      {Date::dateWithTimeIntervalSince1970(1), 0, 0, 0, false},
      {MutableSet::init(), 0, 0, 0, false},
      {classOf<String>(), 0, 0, 0, false},
  });
}

TEST(LenientViews, GiveRealNumbers) {
  const struct {
    PropertyValue value;
    double asDouble;
    float asFloat;
  } cases[] = {
      {3, 3.0, 3.0F},
      {kMost64, kTwo63, static_cast<float>(kTwo63)},
      {kMostU64, kTwo64, static_cast<float>(kTwo64)},
      {true, 1.0, 1.0F},
      {0.1, 0.1, 0.1F},
      {0.1F, static_cast<double>(0.1F), 0.1F},
      {decimal("0.1"), 0.1, 0.1F},
      {decimal("1e30"), 1e30, 1e30F},
      {1e300, 1e300, std::numeric_limits<float>::infinity()},
      {-1e300, -1e300, -std::numeric_limits<float>::infinity()},
      {"2.5e2x", 250.0, 250.0F},
      {"1e400", kInfinity, std::numeric_limits<float>::infinity()},
      {"-1e400", -kInfinity, -std::numeric_limits<float>::infinity()},
      {"1e-400", 0.0, 0.0F},
      {"nan", 0.0, 0.0F},
      {"0x10", 0.0, 0.0F},
      {nullptr, 0.0, 0.0F},
      {null, 0.0, 0.0F},
      {array(1), 0.0, 0.0F},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.value.doubleValue(), c.asDouble) << c.value.description();
    EXPECT_EQ(c.value.floatValue(), c.asFloat) << c.value.description();
  }
  EXPECT_TRUE(std::isnan(PropertyValue(kNaN).doubleValue()));
  EXPECT_TRUE(std::isnan(PropertyValue(kNaN).floatValue()));
  EXPECT_TRUE(std::isnan(decimal("").doubleValue()));
}

// Numbers that lie a little beyond the middle of two floats, and whose double is that middle: the
// way over the double would give the even one.
struct RoundedValue {
  PropertyValue value;
  float nearest;
};
std::vector<RoundedValue> besideTheMiddle() {
  return {
      {std::int64_t{9007199791611905}, 9007200328482816.0F},
      {std::int64_t{-9007199791611905}, -9007200328482816.0F},
      {std::uint64_t{9007199791611905}, 9007200328482816.0F},
      {(std::int64_t{1} << 62) + (std::int64_t{1} << 38) + 1,
       std::nextafter(std::ldexp(1.0F, 62), 1e30F)},
      {(std::uint64_t{1} << 63) + (std::uint64_t{1} << 39) + 1,
       std::nextafter(std::ldexp(1.0F, 63), 1e30F)},
      {decimal("1.000000059604644775390625000000001"), 1.0000001192092896F},
      {decimal("-1.000000059604644775390625000000001"), -1.0000001192092896F},
      {decimal("1.000000059604644775390625"), 1.0F},
  };
}

TEST(LenientViews, RoundToTheNearestFloatOnce) {
  for (const auto& c : besideTheMiddle()) {
    EXPECT_EQ(c.value.floatValue(), c.nearest) << c.value.description();
    EXPECT_EQ(c.value.as<Number>()->floatValue(), c.nearest) << c.value.description();
    EXPECT_EQ(performSelector(c.value, "floatValue"), PropertyValue(c.nearest));
  }
  const struct {
    const char* text;
    float nearest;
  } texts[] = {
      {"1.000000059604644775390625000000001", 1.0000001192092896F},
      {"1.000000059604644775390625", 1.0F},
      {"9007199791611905", 9007200328482816.0F},
      {"1e39", std::numeric_limits<float>::infinity()},
      {"-1e39", -std::numeric_limits<float>::infinity()},
      {"1e-46", 0.0F},
      {"1e-45", std::numeric_limits<float>::denorm_min()},
      {"0", 0.0F},
  };
  for (const auto& c : texts) {
    EXPECT_EQ(PropertyValue(c.text).floatValue(), c.nearest) << c.text;
    EXPECT_EQ(decimal(c.text).floatValue(), c.nearest) << c.text;
  }
  EXPECT_TRUE(std::isnan(decimal("").floatValue()));
}

TEST(LenientViews, OfUnsignedIntWrapAndStop) {
  const struct {
    PropertyValue value;
    unsigned expected;
  } cases[] = {{-1, 4294967295U},
               {std::int64_t{1} << 32, 0U},
               {(std::int64_t{1} << 32) + 7, 7U},
               {4294967295.5, 4294967295U},
               {4294967296.0, 4294967295U},
               {-0.5, 0U},
               {-7.0, 0U},
               {kNaN, 0U},
               {decimal("4294967296"), 4294967295U},
               {decimal("-1"), 0U}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.value.as<Number>()->unsignedIntValue(), c.expected) << c.value.description();
    EXPECT_EQ(performSelector(c.value, "unsignedIntValue").to<unsigned>(), c.expected);
  }
}

template <class T>
void expectRange(std::int64_t least, std::uint64_t most) {
  EXPECT_EQ(PropertyValue(least).to<T>(), static_cast<T>(least));
  EXPECT_EQ(PropertyValue(most).to<T>(), static_cast<T>(most));
  if (least > kLeast64) {
    EXPECT_EQ(PropertyValue(least - 1).to<T>(), std::nullopt);
  }
  if (most < kMostU64) {
    EXPECT_EQ(PropertyValue(most + 1).to<T>(), std::nullopt);
  }
  EXPECT_EQ(PropertyValue(7).to<T>(), T{7});
  EXPECT_EQ(PropertyValue(7U).to<T>(), T{7});
}

TEST(StrictViews, OfIntegersCheckTheRange) {
  expectRange<std::int8_t>(-128, 127);
  expectRange<std::uint8_t>(0, 255);
  expectRange<std::int16_t>(-32768, 32767);
  expectRange<std::uint16_t>(0, 65535);
  expectRange<std::int32_t>(kLeast32, kMost32);
  expectRange<std::uint32_t>(0, 4294967295U);
  expectRange<std::int64_t>(kLeast64, static_cast<std::uint64_t>(kMost64));
  expectRange<std::uint64_t>(0, kMostU64);
  expectRange<long long>(kLeast64, static_cast<std::uint64_t>(kMost64));
}

TEST(StrictViews, OfIntegersTakeNothingButIntegers) {
  const PropertyValue others[] = {1.0,  1.0F,    true,     decimal("1"),    "1",
                                  null, nullptr, array(1), Data::from("1"), classOf<String>()};
  for (const PropertyValue& v : others) {
    EXPECT_EQ(v.to<int>(), std::nullopt) << v.description();
    EXPECT_EQ(v.to<std::uint64_t>(), std::nullopt) << v.description();
  }
}

TEST(StrictViews, OfRealNumbersTakeAnyNumberButABool) {
  EXPECT_EQ(PropertyValue(2.5).to<double>(), 2.5);
  EXPECT_EQ(PropertyValue(2.5F).to<double>(), 2.5);
  EXPECT_EQ(PropertyValue(2).to<double>(), 2.0);
  EXPECT_EQ(PropertyValue(kMostU64).to<double>(), kTwo64);
  EXPECT_EQ(decimal("2.5").to<double>(), 2.5);
  EXPECT_EQ(PropertyValue(2.5).to<float>(), 2.5F);
  EXPECT_EQ(PropertyValue(1e300).to<float>(), std::numeric_limits<float>::infinity());
  for (const auto& c : besideTheMiddle()) {
    EXPECT_EQ(c.value.to<float>(), c.nearest) << c.value.description();
  }
  for (const PropertyValue& v : {PropertyValue(true), PropertyValue("2"), PropertyValue(null),
                                 PropertyValue(), PropertyValue(array(2))}) {
    EXPECT_EQ(v.to<double>(), std::nullopt) << v.description();
    EXPECT_EQ(v.to<float>(), std::nullopt) << v.description();
  }
}

TEST(StrictViews, OfBoolsTakeBoolsAlone) {
  EXPECT_EQ(PropertyValue(true).to<bool>(), true);
  EXPECT_EQ(PropertyValue(false).to<bool>(), false);
  for (const PropertyValue& v : {PropertyValue(1), PropertyValue(0), PropertyValue(1.0),
                                 PropertyValue("true"), PropertyValue(null), PropertyValue()}) {
    EXPECT_EQ(v.to<bool>(), std::nullopt) << v.description();
  }
}

TEST(StrictViews, OfTextTakeStringsAlone) {
  EXPECT_EQ(PropertyValue("t\xC3\xA4xt").to<std::string>(), "t\xC3\xA4xt");
  EXPECT_EQ(PropertyValue(MutableString::from("m")).to<std::string>(), "m");
  const char16_t lone[] = {u'a', 0xD800, 0};
  EXPECT_EQ(PropertyValue(String::fromUtf16(lone)).to<std::string>(), "a\xEF\xBF\xBD");
  for (const PropertyValue& v :
       {PropertyValue(1), PropertyValue(null), PropertyValue(), PropertyValue(Data::from("x"))}) {
    EXPECT_EQ(v.to<std::string>(), std::nullopt) << v.description();
  }
}

TEST(StrictViews, FallBackOnADefault) {
  EXPECT_EQ(PropertyValue(3).valueOr(7), 3);
  EXPECT_EQ(PropertyValue("3").valueOr(7), 7);
  EXPECT_EQ(PropertyValue().valueOr(7), 7);
  EXPECT_EQ(PropertyValue(false).valueOr(true), false);
  EXPECT_EQ(PropertyValue("x").valueOr(std::string("y")), "x");
  EXPECT_EQ(PropertyValue(1).valueOr(std::string("y")), "y");
  EXPECT_EQ(PropertyValue(3000000000LL).valueOr(7), 7);
}

TEST(ObjectViews, GiveTheObjectOfItsClassOrABaseOfIt) {
  const auto m = MutableArray::init();
  const PropertyValue v = m;
  EXPECT_EQ(v.as<MutableArray>().get(), m.get());
  EXPECT_EQ(v.as<Array>().get(), m.get());
  EXPECT_EQ(v.as<Object>().get(), m.get());
  EXPECT_EQ(v.as<Dictionary>(), nullptr);
  EXPECT_EQ(v.peek<MutableArray>(), m.get());
  EXPECT_EQ(v.peek<Array>(), m.get());
  EXPECT_EQ(v.peek<Object>(), m.get());
  EXPECT_EQ(v.peek<String>(), nullptr);
  const PropertyValue fixed = array();
  EXPECT_EQ(fixed.as<MutableArray>(), nullptr);
  EXPECT_EQ(fixed.peek<MutableArray>(), nullptr);
}

TEST(ObjectViews, BoxInlineNumbersOnlyForAs) {
  const PropertyValue number = 5;
  EXPECT_EQ(number.peek<Number>(), nullptr);
  EXPECT_EQ(number.as<Number>()->intValue(), 5);
  EXPECT_EQ(number.as<Object>(), nullptr);
  EXPECT_EQ(number.as<DecimalNumber>(), nullptr);
  EXPECT_EQ(PropertyValue(null).as<Number>(), nullptr);
  EXPECT_EQ(PropertyValue().as<Number>(), nullptr);
  EXPECT_EQ(PropertyValue("5").as<Number>(), nullptr);
  EXPECT_EQ(PropertyValue(true).as<Number>()->kind(), NumberKind::boolean);
}

TEST(ObjectViews, OwnWhatTheyGive) {
  Ref<String> s = PropertyValue("temporary").as<String>();
  EXPECT_EQ(s->utf8(), "temporary");
}

}  // namespace
}  // namespace qx

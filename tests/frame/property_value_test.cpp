#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/property_value.h>

#include "frame/numeric.h"
#include "frame/word_access.h"
#include "tests/frame/print_values.h"

namespace qx {
namespace {

constexpr std::int64_t kMaxInlineSigned = (std::int64_t{1} << 60) - 1;
constexpr std::int64_t kMinInlineSigned = -(std::int64_t{1} << 60);
constexpr std::uint64_t kMaxInlineUnsigned = (std::uint64_t{1} << 61) - 1;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool isInline(const PropertyValue& v) { return v.object() == nullptr; }

NumberKind kindOf(const PropertyValue& v) {
  detail::NumericValue n;
  EXPECT_TRUE(detail::numericOf(v, n));
  return n.kind;
}

static_assert(sizeof(PropertyValue) == 8, "one word");

TEST(PropertyValueWord, IsNilWhenDefaultConstructed) {
  const PropertyValue v;
  EXPECT_TRUE(v.isNil());
  EXPECT_TRUE(v == nullptr);
  EXPECT_TRUE(isSame(v, nullptr));
  EXPECT_EQ(v.cls(), nullptr);
  EXPECT_EQ(v.description(), "");
  EXPECT_TRUE(v.copy().isNil());
  EXPECT_TRUE(v.mutableCopy().isNil());
}

TEST(PropertyValueWord, TellsNullFromNil) {
  const PropertyValue v = null;
  EXPECT_FALSE(v.isNil());
  EXPECT_TRUE(v.isNull());
  EXPECT_TRUE(v != nullptr);
  EXPECT_FALSE(v.isNumber());
  EXPECT_TRUE(isInline(v));
  EXPECT_STREQ(v.cls()->name(), "NSNull");
  EXPECT_EQ(v.description(), "<null>");
}

TEST(PropertyValueWord, KeepsSignedIntegersOf61BitsInline) {
  const struct {
    std::int64_t number;
    bool isInline;
  } cases[] = {
      {0, true},
      {1, true},
      {-1, true},
      {kMaxInlineSigned - 1, true},
      {kMaxInlineSigned, true},
      {kMaxInlineSigned + 1, false},
      {kMinInlineSigned + 1, true},
      {kMinInlineSigned, true},
      {kMinInlineSigned - 1, false},
      {std::numeric_limits<std::int64_t>::max(), false},
      {std::numeric_limits<std::int64_t>::min(), false},
  };
  for (const auto& c : cases) {
    const PropertyValue v = c.number;
    EXPECT_EQ(isInline(v), c.isInline) << c.number;
    EXPECT_EQ(v.integerValue(), c.number);
    EXPECT_EQ(v.to<std::int64_t>(), c.number);
    EXPECT_EQ(kindOf(v), NumberKind::signedInteger);
    EXPECT_EQ(v.description(), std::to_string(c.number));
  }
}

TEST(PropertyValueWord, KeepsUnsignedIntegersOf61BitsInline) {
  const struct {
    std::uint64_t number;
    bool isInline;
  } cases[] = {
      {0, true},
      {1, true},
      {kMaxInlineUnsigned, true},
      {kMaxInlineUnsigned + 1, false},
      {std::uint64_t{1} << 63, false},
      {std::numeric_limits<std::uint64_t>::max(), false},
  };
  for (const auto& c : cases) {
    const PropertyValue v = c.number;
    EXPECT_EQ(isInline(v), c.isInline) << c.number;
    EXPECT_EQ(v.unsignedIntegerValue(), c.number);
    EXPECT_EQ(v.to<std::uint64_t>(), c.number);
    EXPECT_EQ(kindOf(v), NumberKind::unsignedInteger);
    EXPECT_EQ(v.description(), std::to_string(c.number));
  }
}

TEST(PropertyValueWord, KeepsUsualDoublesInline) {
  const double least = std::ldexp(1.0, -255);
  const double bound = std::ldexp(1.0, 257);
  const struct {
    double number;
    bool isInline;
  } cases[] = {
      {0.0, true},
      {-0.0, true},
      {1.0, true},
      {-1.0, true},
      {0.1, true},
      {3.141592653589793, true},
      {least, true},
      {-least, true},
      {std::nextafter(least, 0.0), false},
      {-std::nextafter(least, 0.0), false},
      {std::nextafter(bound, 0.0), true},
      {-std::nextafter(bound, 0.0), true},
      {bound, false},
      {-bound, false},
      {1e300, false},
      {1e-300, false},
      {std::numeric_limits<double>::min(), false},
      {std::numeric_limits<double>::denorm_min(), false},
      {std::numeric_limits<double>::max(), false},
      {std::numeric_limits<double>::lowest(), false},
      {kInfinity, true},
      {-kInfinity, true},
  };
  for (const auto& c : cases) {
    const PropertyValue v = c.number;
    EXPECT_EQ(isInline(v), c.isInline) << c.number;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(v.doubleValue()), std::bit_cast<std::uint64_t>(c.number))
        << c.number;
    EXPECT_EQ(kindOf(v), NumberKind::real);
    EXPECT_TRUE(v.isNumber());
  }
}

// Every exponent, with the least and the greatest fraction.
TEST(PropertyValueWord, KeepsDoublesOfEveryExponent) {
  for (std::uint64_t exponent = 0; exponent < 0x7FF; ++exponent) {
    for (const std::uint64_t fraction :
         {std::uint64_t{0}, std::uint64_t{1}, (std::uint64_t{1} << 52) - 1}) {
      for (const std::uint64_t sign : {std::uint64_t{0}, std::uint64_t{1} << 63}) {
        const std::uint64_t bits = sign | exponent << 52 | fraction;
        const PropertyValue v = std::bit_cast<double>(bits);
        ASSERT_EQ(std::bit_cast<std::uint64_t>(v.doubleValue()), bits);
        const bool usual = exponent >= 0x300 && exponent <= 0x4FF;
        ASSERT_EQ(isInline(v), usual || (exponent == 0 && fraction == 0)) << exponent;
      }
    }
  }
}

TEST(PropertyValueWord, KeepsEveryFloatInline) {
  for (const float f :
       {0.0F, -0.0F, 1.0F, 0.1F, -2.5F, std::numeric_limits<float>::max(),
        std::numeric_limits<float>::lowest(), std::numeric_limits<float>::denorm_min(),
        std::numeric_limits<float>::infinity()}) {
    const PropertyValue v = f;
    EXPECT_TRUE(isInline(v)) << f;
    EXPECT_EQ(std::bit_cast<std::uint32_t>(v.floatValue()), std::bit_cast<std::uint32_t>(f));
    EXPECT_EQ(kindOf(v), NumberKind::single);
  }
}

TEST(PropertyValueWord, KnowsOneNaNOfEachPrecision) {
  for (const std::uint64_t bits : {0x7FF8000000000000U, 0xFFF8000000000000U, 0x7FF0000000000001U,
                                   0x7FFFFFFFFFFFFFFFU, 0xFFF0000000000001U}) {
    const PropertyValue v = std::bit_cast<double>(std::uint64_t{bits});
    EXPECT_TRUE(isInline(v));
    EXPECT_TRUE(std::isnan(v.doubleValue()));
    EXPECT_TRUE(isSame(v, kNaN)) << std::hex << bits;
    EXPECT_EQ(v, PropertyValue(kNaN));
  }
  for (const std::uint32_t bits : {0x7FC00000U, 0xFFC00000U, 0x7F800001U, 0x7FFFFFFFU}) {
    const PropertyValue v = std::bit_cast<float>(bits);
    EXPECT_TRUE(std::isnan(v.floatValue()));
    EXPECT_TRUE(isSame(v, std::numeric_limits<float>::quiet_NaN())) << std::hex << bits;
    EXPECT_EQ(v, PropertyValue(kNaN));
    EXPECT_FALSE(isSame(v, kNaN));
  }
}

TEST(PropertyValueWord, IsMadeFromEveryIntegerType) {
  EXPECT_EQ(PropertyValue(static_cast<signed char>(-3)).intValue(), -3);
  EXPECT_EQ(PropertyValue(static_cast<unsigned char>(200)).intValue(), 200);
  EXPECT_EQ(PropertyValue(static_cast<short>(-300)).intValue(), -300);
  EXPECT_EQ(PropertyValue(static_cast<unsigned short>(60000)).intValue(), 60000);
  EXPECT_EQ(PropertyValue(-5L).integerValue(), -5);
  EXPECT_EQ(PropertyValue(5UL).integerValue(), 5);
  EXPECT_EQ(PropertyValue(-5LL).integerValue(), -5);
  EXPECT_EQ(PropertyValue(5ULL).integerValue(), 5);
  EXPECT_EQ(kindOf(static_cast<unsigned char>(1)), NumberKind::unsignedInteger);
  EXPECT_EQ(kindOf(static_cast<short>(1)), NumberKind::signedInteger);
  EXPECT_EQ(kindOf(true), NumberKind::boolean);
}

TEST(PropertyValueWord, IsMadeFromEveryFormOfText) {
  const char* nothing = nullptr;
  const std::string text = "t\xC3\xA4xt";
  EXPECT_EQ(PropertyValue(text), PropertyValue("t\xC3\xA4xt"));
  EXPECT_EQ(PropertyValue(std::string_view(text)), PropertyValue(text.c_str()));
  EXPECT_TRUE(PropertyValue(nothing).isNil());
  EXPECT_TRUE(PropertyValue(StringArg(nullptr)).isNil());
  EXPECT_TRUE(PropertyValue(Ref<String>()).isNil());
  EXPECT_TRUE(PropertyValue(static_cast<String*>(nullptr)).isNil());
  EXPECT_EQ(PropertyValue(std::string("a\0b", 3)).to<std::string>(), std::string("a\0b", 3));
}

TEST(PropertyValueIdentity, IsOfKindAndValueForInlineNumbers) {
  EXPECT_TRUE(isSame(1, 1));
  EXPECT_TRUE(isSame(1U, 1U));
  EXPECT_TRUE(isSame(0.5, 0.5));
  EXPECT_TRUE(isSame(true, true));
  EXPECT_TRUE(isSame(null, null));
  const PropertyValue ones[] = {1, 1U, 1.0, 1.0F, true};
  for (const auto& a : ones) {
    for (const auto& b : ones) {
      EXPECT_EQ(a, b);
      EXPECT_EQ(isSame(a, b), &a == &b);
    }
  }
  EXPECT_FALSE(isSame(0.0, -0.0));
  EXPECT_EQ(PropertyValue(0.0), PropertyValue(-0.0));
}

TEST(PropertyValueIdentity, IsOfTheObjectForEverythingElse) {
  const PropertyValue a = "text";
  const PropertyValue b = "text";
  const PropertyValue alias = a;
  EXPECT_EQ(a, b);
  EXPECT_FALSE(isSame(a, b));
  EXPECT_TRUE(isSame(a, alias));
  const PropertyValue large = std::numeric_limits<std::int64_t>::max();
  EXPECT_FALSE(isSame(large, std::numeric_limits<std::int64_t>::max()));
  EXPECT_EQ(large, PropertyValue(std::numeric_limits<std::int64_t>::max()));
}

TEST(PropertyValueIdentity, SurvivesBoxing) {
  const PropertyValue values[] = {1,
                                  -1,
                                  0,
                                  1U,
                                  0U,
                                  true,
                                  false,
                                  0.5,
                                  0.0,
                                  -0.0,
                                  kNaN,
                                  2.5F,
                                  0.0F,
                                  kInfinity,
                                  -kInfinity,
                                  kMaxInlineSigned,
                                  kMinInlineSigned,
                                  kMaxInlineUnsigned};
  for (const PropertyValue& v : values) {
    const Ref<Number> boxed = v.as<Number>();
    ASSERT_NE(boxed, nullptr);
    EXPECT_EQ(boxed->kind(), kindOf(v)) << v.description();
    EXPECT_EQ(boxed->description(), v.description());
    EXPECT_EQ(boxed->hash(), v.hash());
    EXPECT_TRUE(boxed->isEqual(v));
    EXPECT_TRUE(isSame(PropertyValue(boxed), v)) << v.description();
    EXPECT_TRUE(isSame(PropertyValue(boxed.get()), v));
    EXPECT_TRUE(isSame(PropertyValue(v.as<Number>()), v));
  }
}

TEST(PropertyValueIdentity, KeepsTheObjectOfALargeNumber) {
  for (const PropertyValue& v :
       {PropertyValue(kMaxInlineSigned + 1), PropertyValue(kMinInlineSigned - 1),
        PropertyValue(kMaxInlineUnsigned + 1), PropertyValue(1e300), PropertyValue(1e-300)}) {
    const Ref<Number> boxed = v.as<Number>();
    EXPECT_EQ(boxed.get(), v.object());
    EXPECT_TRUE(isSame(PropertyValue(boxed), v));
  }
  const PropertyValue decimal = DecimalNumber::initWithString("1");
  EXPECT_EQ(decimal.as<Number>().get(), decimal.object());
  EXPECT_FALSE(isSame(decimal, 1));
}

TEST(PropertyValueWord, TellsItsKind) {
  enum Kind { nil, nullObject, number, string, array, dictionary, data, date, set, other };
  const struct {
    PropertyValue value;
    Kind kind;
  } cases[] = {
      {nullptr, nil},
      {null, nullObject},
      {0, number},
      {false, number},
      {1U, number},
      {0.0, number},
      {kNaN, number},
      {1.5F, number},
      {1e300, number},
      {std::numeric_limits<std::int64_t>::min(), number},
      {std::numeric_limits<std::uint64_t>::max(), number},
      {DecimalNumber::initWithString("1"), number},
      {"", string},
      {MutableString::init(), string},
      {Array::init(), array},
      {MutableArray::init(), array},
      {Dictionary::init(), dictionary},
      {MutableDictionary::init(), dictionary},
      {Data::from(""), data},
      {MutableData::init(), data},
      {Date::dateWithTimeIntervalSince1970(0), date},
      {Set::from(Array::init()), set},
      {MutableSet::init(), set},
      {Error::errorWithDomain("D", 1, nullptr), other},
      {classOf<String>(), other},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.value));
    EXPECT_EQ(c.value.isNil(), c.kind == nil);
    EXPECT_EQ(c.value.isNull(), c.kind == nullObject);
    EXPECT_EQ(c.value.isNumber(), c.kind == number);
    EXPECT_EQ(c.value.isString(), c.kind == string);
    EXPECT_EQ(c.value.isArray(), c.kind == array);
    EXPECT_EQ(c.value.isDictionary(), c.kind == dictionary);
    EXPECT_EQ(c.value.isData(), c.kind == data);
    EXPECT_EQ(c.value.isDate(), c.kind == date);
    EXPECT_EQ(c.value.isSet(), c.kind == set);
  }
}

TEST(PropertyValueCopying, OfMutableVariantsGivesTheImmutableClass) {
  const struct {
    PropertyValue value;
    const char* fixed;
    const char* changing;
  } cases[] = {
      {MutableString::from("a"), "NSString", "NSMutableString"},
      {MutableArray::init(), "NSArray", "NSMutableArray"},
      {MutableDictionary::init(), "NSDictionary", "NSMutableDictionary"},
      {MutableSet::init(), "NSSet", "NSMutableSet"},
      {MutableData::from("a"), "NSData", "NSMutableData"},
  };
  for (const auto& c : cases) {
    EXPECT_STREQ(c.value.cls()->name(), c.changing);
    const PropertyValue fixed = c.value.copy();
    EXPECT_STREQ(fixed.cls()->name(), c.fixed);
    EXPECT_EQ(fixed, c.value);
    EXPECT_TRUE(isSame(fixed.copy(), fixed));
    const PropertyValue changing = fixed.mutableCopy();
    EXPECT_STREQ(changing.cls()->name(), c.changing);
    EXPECT_EQ(changing, c.value);
    EXPECT_FALSE(isSame(c.value.mutableCopy(), c.value));
    EXPECT_FALSE(isSame(c.value.copy(), c.value));
  }
}

TEST(PropertyValueCopying, CountsReferences) {
  const auto s = String::from("counted");
  const auto references = [&] {
    return detail::ObjectAccess::refs(*s).load() / detail::ObjectAccess::kOne;
  };
  ASSERT_EQ(references(), 1U);
  {
    PropertyValue a = s;
    EXPECT_EQ(references(), 2U);
    PropertyValue b = a;
    EXPECT_EQ(references(), 3U);
    PropertyValue c = std::move(a);
    EXPECT_EQ(references(), 3U);
    EXPECT_TRUE(a.isNil());  // NOLINT(bugprone-use-after-move): moved-from values are nil
    b = c;
    EXPECT_EQ(references(), 3U);
    b = 5;
    EXPECT_EQ(references(), 2U);
    PropertyValue& itself = c;
    c = itself;
    EXPECT_EQ(references(), 2U);
    c = std::move(itself);
    EXPECT_EQ(references(), 2U);
    EXPECT_TRUE(isSame(c, s));
  }
  EXPECT_EQ(references(), 1U);
}

TEST(PropertyValueCopying, GivesConstantsAtCompileTime) {
  static constexpr PropertyValue kNil;
  static constexpr PropertyValue kNumber = 42;
  static constexpr PropertyValue kReal = 2.5;
  static constexpr PropertyValue kYes = true;
  EXPECT_TRUE(kNil.isNil());
  EXPECT_EQ(kNumber.intValue(), 42);
  EXPECT_EQ(kReal.doubleValue(), 2.5);
  EXPECT_TRUE(kYes.boolValue());
}

}  // namespace
}  // namespace qx

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <limits>
#include <random>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/size_formatter.h>

namespace qx {
namespace {

class Folder : public Object {
 public:
  explicit Folder(std::int64_t size) : size_(size) {}
  std::int64_t longLongValue() const { return size_; }

 private:
  std::int64_t size_;
};
void describe(ClassBuilder<Folder>& c) {
  c.name("SizeTestFolder").operation("longLongValue", &Folder::longLongValue);
}

TEST(SizeFormatter, PrintsCountsWithoutRounding) {
  const std::pair<std::int64_t, const char*> cases[] = {
      {0, "0 bytes"},
      {1, "1 bytes"},
      {999, "999 bytes"},
      {1000, "1000 bytes"},
      {1001, "1.1 KB"},
      {1005, "1.5 KB"},
      {1050, "1.50 KB"},
      {1500, "1.500 KB"},
      {2000, "2 KB"},
      {999999, "999.999 KB"},
      {1000000, "1 MB"},
      {1005000, "1 MB"},
      {1009999, "1 MB"},
      {1010000, "1.1 MB"},
      {1050000, "1.5 MB"},
      {1990000, "1.99 MB"},
      {999999999, "999.99 MB"},
      {1000000000, "1 GB"},
      {1009999999, "1 GB"},
      {1010000000, "1.1 GB"},
      {1999999999, "1.99 GB"},
      {2147483648000000000, "2147483648 GB"},
      {std::numeric_limits<std::int64_t>::max(), "9223372036.85 GB"},
      {-1, "-1 bytes"},
      {-5000000000, "-5000000000 bytes"},
      {std::numeric_limits<std::int64_t>::min(), "-9223372036854775808 bytes"},
  };
  const auto formatter = QXSizeFormatter::init();
  for (const auto& [count, text] : cases) {
    EXPECT_EQ(formatter->stringForObjectValue(count), text) << count;
    EXPECT_EQ(QXSizeFormatter::stringForByteCount(count)->utf8(), text) << count;
  }
}

// The rules as they are laid down, with the texts that printf makes.
std::string byPrintf(std::int64_t n) {
  char text[64];
  const auto count = static_cast<std::uint64_t>(n);
  const auto print = [&](std::uint64_t unit, std::uint64_t least, const char* name) {
    const std::uint64_t q = count / unit;
    const std::uint64_t r = count - q * unit;
    if (r >= least) {
      std::snprintf(text, sizeof text, "%" PRIu64 ".%" PRIu64 " %s", q, r / least, name);
    } else {
      std::snprintf(text, sizeof text, "%" PRIu64 " %s", q, name);
    }
  };
  if (n >= 1000000000) {
    print(1000000000, 10000000, "GB");
  } else if (n >= 1000000) {
    print(1000000, 10000, "MB");
  } else if (n <= 1000) {
    std::snprintf(text, sizeof text, "%" PRId64 " bytes", n);
  } else {
    print(1000, 1, "KB");
  }
  return text;
}

TEST(SizeFormatter, FollowsTheRules) {
  const auto formatter = QXSizeFormatter::init();
  const auto same = [&](std::int64_t n) {
    ASSERT_EQ(QXSizeFormatter::stringForByteCount(n)->utf8(), byPrintf(n));
    // Integers alone are read in another way than texts that begin with a number.
    if (n % 16 == 0) {
      ASSERT_EQ(formatter->stringForObjectValue(std::to_string(n)), byPrintf(n));
      ASSERT_EQ(formatter->stringForObjectValue(' ' + std::to_string(n)), byPrintf(n));
    }
  };
  for (std::int64_t n = -2000; n <= 200000; ++n) same(n);
  for (const std::int64_t unit : {1000, 1000000, 1000000000}) {
    for (std::int64_t n = -1000; n <= 1000; ++n) {
      same(unit + n);
      same(unit * 7 + n * (unit / 1000));
    }
  }
  std::mt19937_64 random(67);
  for (int i = 0; i < 200000; ++i) same(static_cast<std::int64_t>(random()) >> (random() % 64));
}

TEST(SizeFormatter, TakesNumbersOfEveryKindAndStrings) {
  const auto formatter = QXSizeFormatter::init();
  const std::pair<PropertyValue, const char*> cases[] = {
      {2048U, "2.48 KB"},
      {2048.9, "2.48 KB"},
      {2048.9F, "2.48 KB"},
      {-0.5, "0 bytes"},
      {true, "1 bytes"},
      {QXFractionNumber::initWithNumerator(4097, 2), "2.48 KB"},
      {DecimalNumber::initWithString("2048.9"), "2.48 KB"},
      {"2048", "2.48 KB"},
      {"2048.9", "2.48 KB"},
      {"2.048e3", "2.48 KB"},
      {"-7", "-7 bytes"},
      {" 12 KB", "12 bytes"},
      {"", "0 bytes"},
      {"many", "0 bytes"},
      {"9007199254740993", "9007199.25 GB"},
      {"007", "7 bytes"},
      {"-0", "0 bytes"},
      {"+7", "7 bytes"},
      {"-9223372036854775808", "-9223372036854775808 bytes"},
      {MutableString::from("1001 \u4E00"), "1.1 KB"},
      {MutableString::from("1001"), "1.1 KB"},
      {make<Folder>(1500), "1.500 KB"},
  };
  for (const auto& [value, text] : cases) {
    EXPECT_EQ(formatter->stringForObjectValue(value), text) << value.description();
  }
}

TEST(SizeFormatter, HasNoTextForAnythingElse) {
  const auto formatter = QXSizeFormatter::init();
  for (const PropertyValue& v :
       {PropertyValue(), PropertyValue(qx::null), PropertyValue(Date::date()),
        PropertyValue(array(1)), PropertyValue(dict({{"a", 1}})), PropertyValue(Data::from("1")),
        PropertyValue(MutableSet::init()), PropertyValue(formatter)}) {
    EXPECT_TRUE(formatter->stringForObjectValue(v).isNil()) << v.description();
    EXPECT_EQ(formatter->attributedStringForObjectValue(v, nullptr), nullptr) << v.description();
  }
}

TEST(SizeFormatter, PutsTheAttributesOnAllOfTheText) {
  const auto formatter = QXSizeFormatter::init();
  const auto attributes = dict({{"color", "red"}});
  const auto text = formatter->attributedStringForObjectValue(1500, attributes);
  EXPECT_EQ(text->string()->utf8(), "1.500 KB");
  Range run;
  EXPECT_TRUE(text->attributesAtIndex(3, &run)->isEqualToDictionary(attributes));
  EXPECT_EQ(run, (Range{0, 8}));
  const auto plain = formatter->attributedStringForObjectValue(1500, nullptr);
  EXPECT_EQ(plain->attributesAtIndex(0, nullptr)->count(), 0U);
}

class SpelledSizes : public QXSizeFormatter {
 public:
  PropertyValue stringForObjectValue(const PropertyValue& value) const override {
    return value.isNumber() ? PropertyValue("some bytes") : PropertyValue(nullptr);
  }
};

void describe(ClassBuilder<SpelledSizes>& c) { c.name("SpelledSizes").inherits<QXSizeFormatter>(); }

TEST(SizeFormatter, PutsTheAttributesOnTheTextOfADerivedClass) {
  const auto formatter = make<SpelledSizes>();
  EXPECT_EQ(formatter->attributedStringForObjectValue(1500, nullptr)->string()->utf8(),
            "some bytes");
  EXPECT_EQ(formatter->attributedStringForObjectValue("1500", nullptr), nullptr);
}

TEST(SizeFormatter, NeverParses) {
  const auto formatter = QXSizeFormatter::init();
  PropertyValue object = "before";
  Ref<String> why = String::from("before");
  EXPECT_FALSE(formatter->getObjectValue(&object, "1 KB", &why));
  EXPECT_EQ(object, "before");
  EXPECT_EQ(why->utf8(), "before");
  EXPECT_FALSE(formatter->getObjectValue(nullptr, nullptr, nullptr));
}

TEST(SizeFormatter, IsAFormatterByNameAndSelector) {
  const PropertyValue formatter = QXSizeFormatter::init();
  EXPECT_TRUE(formatter.isKindOfClass(classOf<Formatter>()));
  EXPECT_EQ(classNamed("QXSizeFormatter"), formatter.cls());
  EXPECT_EQ(performSelector(formatter, "stringForObjectValue:", 1001), "1.1 KB");
  const PropertyValue text = performSelector(
      formatter, "attributedStringForObjectValue:withDefaultAttributes:", 1001, dict());
  EXPECT_EQ(text["string"], "1.1 KB");
}

}  // namespace
}  // namespace qx

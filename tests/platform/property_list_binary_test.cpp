// Binary property lists byte by byte: every kind and width, read and written.

#include <gtest/gtest.h>

#include <limits>

#include "tests/platform/property_list/binary_maker.h"
#include "tests/platform/property_list/reading.h"
#include "tests/platform/property_list/same_list.h"

namespace qx {
namespace {

using plist::BinaryMaker;
using plist::eachWidthOfOffsetsAndReferences;
using plist::kReadingInEveryWidth;
using plist::listOfOne;
using plist::readBytes;
using plist::readingOf;
using plist::wide;

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

std::string binaryOf(const PropertyValue& v) {
  return plist::writingOf(v, PropertyListFormat::binary);
}

// The one object of a list that holds one object.
std::string objectOf(const PropertyValue& v) {
  const std::string bytes = binaryOf(v);
  return bytes.substr(8, bytes.size() - 8 - 32 - (bytes.size() > 255 + 33 ? 2 : 1));
}

TEST(BinaryPropertyList, EveryWidthOfOffsetsAndReferencesIsRead) {
  int widths = 0;
  eachWidthOfOffsetsAndReferences([&](const std::string& list) {
    ++widths;
    EXPECT_EQ(readingOf(list), kReadingInEveryWidth) << widths;
  });
  EXPECT_EQ(widths, 64);
}

TEST(BinaryPropertyList, EveryWidthOfReferencesIsUsedWhereItIsNeeded) {
  // Two bytes from 257 objects on, four from 65,537 on.
  for (const int count : {254, 255, 256, 65534, 65535, 65536}) {
    const auto list = MutableArray::init();
    for (int i = 0; i < count; ++i) list->addObject(i);
    const std::string bytes = binaryOf(list);
    const int width = count <= 255 ? 1 : count <= 65535 ? 2 : 4;
    EXPECT_EQ(bytes[bytes.size() - 25], width) << count;
    EXPECT_TRUE(plist::sameList(list, readBytes(bytes).value, plist::Kept::asBinary)) << count;
  }
}

TEST(BinaryPropertyList, EveryWidthOfOffsetsIsUsedWhereItIsNeeded) {
  for (const std::size_t size : {10U, 250U, 65000U, 70000U, 17000000U}) {
    const auto list = array(Data::from(std::string(size, 'x')), 1);
    const std::string bytes = binaryOf(list);
    const int width = size < 200 ? 1 : size <= 65000 ? 2 : 4;
    EXPECT_EQ(bytes[bytes.size() - 26], width) << size;
    EXPECT_TRUE(plist::sameList(list, readBytes(bytes).value, plist::Kept::asBinary)) << size;
  }
}

struct IntegerCase {
  std::string object;
  std::string read;
};

TEST(BinaryPropertyList, EveryWidthOfIntegersIsRead) {
  const IntegerCase kCases[] = {
      {BinaryMaker::integer(1, 0), "i0"},
      {BinaryMaker::integer(1, 255), "i255"},
      {BinaryMaker::integer(2, 1), "i1"},
      {BinaryMaker::integer(2, 65535), "i65535"},
      {BinaryMaker::integer(4, 4294967295), "i4294967295"},
      {BinaryMaker::integer(8, 5), "i5"},
      {BinaryMaker::integer(8, kMost), "i-1"},
      {BinaryMaker::integer(8, kMost >> 1), "i9223372036854775807"},
      {BinaryMaker::integer(8, (kMost >> 1) + 1), "i-9223372036854775808"},
      {BinaryMaker::longInteger(0, 5), "i5"},
      {BinaryMaker::longInteger(0, (kMost >> 1) + 1), "i9223372036854775808"},
      {BinaryMaker::longInteger(0, kMost), "i18446744073709551615"},
      {BinaryMaker::longInteger(kMost, kMost), "i-1"},
      {BinaryMaker::longInteger(kMost, (kMost >> 1) + 1), "i-9223372036854775808"},
  };
  for (const IntegerCase& c : kCases) EXPECT_EQ(readingOf(listOfOne(c.object)), c.read);
}

TEST(BinaryPropertyList, IntegersTakeTheNarrowestWidth) {
  const auto expect = [](const PropertyValue& v, const std::string& object) {
    EXPECT_EQ(objectOf(v), object) << v.description();
  };
  expect(0, BinaryMaker::integer(1, 0));
  expect(255, BinaryMaker::integer(1, 255));
  expect(256, BinaryMaker::integer(2, 256));
  expect(65535U, BinaryMaker::integer(2, 65535));
  expect(65536, BinaryMaker::integer(4, 65536));
  expect(std::uint64_t{4294967295}, BinaryMaker::integer(4, 4294967295));
  expect(std::int64_t{4294967296}, BinaryMaker::integer(8, 4294967296));
  expect(-1, BinaryMaker::integer(8, kMost));
  expect(kMost >> 1, BinaryMaker::integer(8, kMost >> 1));
  expect((kMost >> 1) + 1, BinaryMaker::longInteger(0, (kMost >> 1) + 1));
  expect(kMost, BinaryMaker::longInteger(0, kMost));
}

TEST(BinaryPropertyList, RealsKeepTheirWidth) {
  EXPECT_EQ(objectOf(1.5F), std::string("\x22\x3F\xC0\0\0", 5));
  EXPECT_EQ(objectOf(1.5), BinaryMaker::real(1.5));
  detail::NumericValue n;
  ASSERT_TRUE(detail::numericOf(readBytes(binaryOf(0.1F)).value, n));
  EXPECT_EQ(n.kind, NumberKind::single);
  ASSERT_TRUE(detail::numericOf(readBytes(binaryOf(0.1)).value, n));
  EXPECT_EQ(n.kind, NumberKind::real);
  for (const double d : {-0.0, 5e-324, std::numeric_limits<double>::infinity(),
                         -std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(objectOf(d), BinaryMaker::real(d));
    EXPECT_TRUE(plist::sameList(d, readBytes(binaryOf(d)).value, plist::Kept::asBinary));
  }
  EXPECT_EQ(readingOf(binaryOf(std::numeric_limits<double>::quiet_NaN())), "rnan");
}

TEST(BinaryPropertyList, OtherNumbersAreWrittenAsWhatTheyAre) {
  EXPECT_EQ(objectOf(true), "\x09");
  EXPECT_EQ(objectOf(false), "\x08");
  EXPECT_EQ(objectOf(DecimalNumber::initWithString("-5")), BinaryMaker::integer(8, kMost - 4));
  EXPECT_EQ(objectOf(DecimalNumber::initWithString("18446744073709551615")),
            BinaryMaker::longInteger(0, kMost));
  EXPECT_EQ(objectOf(DecimalNumber::initWithString("18446744073709551616")),
            BinaryMaker::real(18446744073709551616.0));
  EXPECT_EQ(objectOf(DecimalNumber::initWithString("0.1")), BinaryMaker::real(0.1));
}

TEST(BinaryPropertyList, StringsAreAsciiOrUtf16) {
  EXPECT_EQ(objectOf(""), "\x50");
  EXPECT_EQ(objectOf("\x7F"), "\x51\x7F");
  EXPECT_EQ(objectOf("na\xC3\xAFve"), BinaryMaker::utf16(u"na\u00EFve"));
  EXPECT_EQ(objectOf("\xF0\x9F\x98\x80"), BinaryMaker::utf16(u"\U0001F600"));
  EXPECT_EQ(objectOf(MutableString::from("changeable")), BinaryMaker::ascii("changeable"));
  for (const std::size_t size : {14U, 15U, 255U, 256U, 65535U, 65536U}) {
    const std::string text(size, 'x');
    EXPECT_EQ(readBytes(binaryOf(text)).value, text);
    EXPECT_EQ(readBytes(listOfOne(BinaryMaker::ascii(text))).value, text);
    EXPECT_EQ(readBytes(listOfOne(BinaryMaker::utf16(std::u16string(size, u'x')))).value, text);
  }
}

TEST(BinaryPropertyList, SizesOfEveryWidthAreRead) {
  for (const std::size_t width : {1U, 2U, 4U, 8U}) {
    EXPECT_EQ(readBytes(listOfOne("\x5F" + BinaryMaker::integer(width, 3) + "abc")).value, "abc");
  }
}

TEST(BinaryPropertyList, DatesAreSecondsSince2001) {
  EXPECT_EQ(objectOf(Date::dateWithTimeIntervalSinceReferenceDate(0.25)), BinaryMaker::date(0.25));
  for (const double seconds : {0.0, -1.5, 1e15, -62135596800.0, 300000000000.0}) {
    const auto date = Date::dateWithTimeIntervalSinceReferenceDate(seconds);
    EXPECT_EQ(readBytes(binaryOf(date)).value, PropertyValue(date)) << seconds;
    EXPECT_EQ(readBytes(listOfOne(BinaryMaker::date(seconds))).value, PropertyValue(date))
        << seconds;
  }
}

TEST(BinaryPropertyList, EqualLeavesAreWrittenOnce) {
  const auto once =
      array("word", 1000, 2.5, Data::from("bytes"), Date::dateWithTimeIntervalSince1970(0));
  const auto twice =
      array("word", 1000, 2.5, Data::from("bytes"), Date::dateWithTimeIntervalSince1970(0), "word",
            MutableString::from("word"), 1000U, 2.5, MutableData::from("bytes"),
            Date::dateWithTimeIntervalSince1970(0));
  EXPECT_EQ(binaryOf(twice).size(), binaryOf(once).size() + 6);
}

TEST(BinaryPropertyList, EqualNumbersOfOtherKindsStayApart) {
  const auto list = array(1, 1.0, 1.0F, true, "1", Data::from("1"), 0, 0.0, -0.0, false);
  const PropertyValue read = readBytes(binaryOf(list)).value;
  EXPECT_TRUE(plist::sameList(list, read, plist::Kept::asBinary)) << plist::dump(read);
}

TEST(BinaryPropertyList, ObjectsStandWhereTheWalkMeetsThem) {
  BinaryMaker m;
  m.add(m.dictionary({1, 2}, {3, 5}));
  m.add(BinaryMaker::ascii("b"));
  m.add(BinaryMaker::ascii("a"));
  m.add(m.array({4, 4}));
  m.add(BinaryMaker::integer(1, 5));
  m.add("\x09");
  EXPECT_EQ(readingOf(binaryOf(dict({{"b", array(5, 5)}, {"a", true}}))), readingOf(m.bytes()));
}

TEST(BinaryPropertyList, SharedContainersAreOneObjectUnlessTheyAreMutable) {
  BinaryMaker m;
  m.add(m.array({1, 1}));
  m.add(m.array({2}));
  m.add("\x09");
  const auto shared = readBytes(m.bytes()).value.as<Array>();
  EXPECT_TRUE(isSame(shared->objectAtIndex(0), shared->objectAtIndex(1)));
  const auto apart =
      readBytes(m.bytes(), PropertyListMutability::mutableContainers).value.as<Array>();
  apart->objectAtIndex(0).as<MutableArray>()->addObject(2);
  EXPECT_EQ(plist::dump(apart), "[[true,i2,],[true,],]");
}

TEST(BinaryPropertyList, KeysOfOneListAreOneString) {
  BinaryMaker m;
  m.add(m.array({1, 2}));
  m.add(m.dictionary({3}, {3}));
  m.add(m.dictionary({4}, {3}));
  m.add(BinaryMaker::ascii("k"));
  m.add(BinaryMaker::utf16(u"k"));
  const auto list = readBytes(m.bytes()).value.as<Array>();
  const auto keyAt = [&](std::size_t i) {
    return list->objectAtIndex(i).as<Dictionary>()->allKeys()->objectAtIndex(0);
  };
  EXPECT_TRUE(isSame(keyAt(0), keyAt(1)));
}

}  // namespace
}  // namespace qx

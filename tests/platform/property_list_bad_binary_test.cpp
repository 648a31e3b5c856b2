// Binary property lists that are damaged, hostile or foreign: each gives a clear error, or is
// accepted for the reason that stands beside it, soon and in little memory.

#include <gtest/gtest.h>

#include <limits>

#include "tests/platform/property_list/binary_maker.h"
#include "tests/platform/property_list/bounded.h"
#include "tests/platform/property_list/reading.h"
#include "tests/platform/property_list/round_trip.h"

namespace qx {
namespace {

using plist::BinaryMaker;
using plist::readBytes;
using plist::wide;

struct BadList {
  const char* name;
  std::string bytes;
  std::string outcome;  // of readingOf
};

void PrintTo(const BadList& list, std::ostream* out) { *out << list.name; }

const std::string kMalformed = "2 The property list can not be read: byte ";
const std::string kUnsupported = "3 The property list can not be read: byte ";
const std::string kLimit = "4 A limit of property lists is passed: byte ";

BinaryMaker made(std::vector<std::string> objects) {
  BinaryMaker m;
  m.objects = std::move(objects);
  return m;
}

template <class Change>
std::string changed(Change change) {
  BinaryMaker m = made({BinaryMaker::ascii("x")});
  change(m);
  return m.bytes();
}

// Containers that each hold the next one twice, the last one a bool.
std::string fanOf(std::size_t levels) {
  BinaryMaker m;
  m.offsetWidth = 2;
  for (std::size_t i = 1; i <= levels; ++i) m.add(m.array({i, i}));
  m.add("\x09");
  return m.bytes();
}

std::string nestedArrays(std::size_t levels) {
  BinaryMaker m;
  m.offsetWidth = m.referenceWidth = 4;
  for (std::size_t i = 1; i < levels; ++i) m.add(m.array({i}));
  m.add("\xA0");
  return m.bytes();
}

std::string longDictionaryWithRepeatedKey() {
  BinaryMaker m;
  m.offsetWidth = 2;
  std::vector<std::uint64_t> keys;
  for (std::uint64_t i = 0; i < 40; ++i) keys.push_back(i + 1);
  keys.push_back(7);
  m.add(m.dictionary(keys, keys));
  for (int i = 0; i < 40; ++i) m.add(BinaryMaker::ascii("key" + std::to_string(i)));
  return m.bytes();
}

// Thousands of objects at one place.
std::string overlappingObjects() {
  constexpr std::uint64_t kCount = 2000;
  BinaryMaker m;
  m.offsetWidth = m.referenceWidth = 2;
  std::vector<std::uint64_t> all;
  for (std::uint64_t i = 1; i <= kCount; ++i) all.push_back(i);
  m.add(m.array(all));
  while (m.objects.size() < kCount) m.add("");
  m.add(BinaryMaker::data(std::string(1000, 'x')));
  return m.bytes();
}

const std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

const BadList kBadLists[] = {
    {"Magic", "bplisu00" + std::string(40, '\0'),
     "1 The property list can not be read: the bytes are neither XML nor binary."},
    {"Version", changed([](BinaryMaker& m) { m.header = "bplist15"; }),
     kUnsupported + "6: this version of the binary form is not read."},
    {"MagicAlone", "bplist00", kMalformed + "8: the list is too short for a trailer."},
    {"HalfMagic", "bplist0", kMalformed + "7: the header is cut off."},
    {"TrailerAlone", "bplist00" + std::string(31, '\0'),
     kMalformed + "39: the list is too short for a trailer."},
    {"NoObjects",
     "bplist00" + std::string(6, '\0') + "\x01\x01" + wide(0, 8) + wide(0, 8) + wide(8, 8),
     kMalformed + "32: the table of offsets is not within the list."},
    {"OffsetWidth0", changed([](BinaryMaker& m) { m.statedOffsetWidth = 0; }),
     kMalformed + "17: offsets are not 1 to 8 bytes wide."},
    {"OffsetWidth9", changed([](BinaryMaker& m) { m.statedOffsetWidth = 9; }),
     kMalformed + "17: offsets are not 1 to 8 bytes wide."},
    {"OffsetWidth255", changed([](BinaryMaker& m) { m.statedOffsetWidth = 255; }),
     kMalformed + "17: offsets are not 1 to 8 bytes wide."},
    {"ReferenceWidth0", changed([](BinaryMaker& m) { m.statedReferenceWidth = 0; }),
     kMalformed + "18: references are not 1 to 8 bytes wide."},
    {"ReferenceWidth9", changed([](BinaryMaker& m) { m.statedReferenceWidth = 9; }),
     kMalformed + "18: references are not 1 to 8 bytes wide."},
    {"TableInHeader", changed([](BinaryMaker& m) { m.table = 7; }),
     kMalformed + "35: the table of offsets is not within the list."},
    {"TableBehindEnd", changed([](BinaryMaker& m) { m.table = 12; }),
     kMalformed + "35: the table of offsets is not within the list."},
    {"TableFarAway", changed([](BinaryMaker& m) { m.table = kMost; }),
     kMalformed + "35: the table of offsets is not within the list."},
    {"HugeObjectCount", changed([](BinaryMaker& m) { m.objectCount = kMost; }),
     kMalformed + "19: the number of objects is not that of the table of offsets."},
    {"ObjectCountThatWraps", changed([](BinaryMaker& m) {
       m.statedOffsetWidth = 8;
       m.objectCount = (std::uint64_t{1} << 61) + 1;
     }),
     kMalformed + "19: the number of objects is not that of the table of offsets."},
    {"ObjectCount0", changed([](BinaryMaker& m) { m.objectCount = 0; }),
     kMalformed + "19: the number of objects is not that of the table of offsets."},
    {"BytesBehindTable", changed([](BinaryMaker& m) { m.behindTable = "junk"; }),
     kMalformed + "23: the number of objects is not that of the table of offsets."},
    {"BytesBehindTrailer", changed([](BinaryMaker&) {}) + "j",
     kMalformed + "19: references are not 1 to 8 bytes wide."},
    {"RootOutOfRange", changed([](BinaryMaker& m) { m.root = 1; }),
     kMalformed + "27: the root is none of the objects."},
    {"OffsetInHeader", changed([](BinaryMaker& m) {
       m.objects = {m.array({1}), "\x09"};
       m.secondOffset = 3;
     }),
     kMalformed + "12: an object is not within the list."},
    {"OffsetInTable", changed([](BinaryMaker& m) {
       m.objects = {m.array({1}), "\x09"};
       m.secondOffset = 11;
     }),
     kMalformed + "12: an object is not within the list."},
    {"ReferenceOutOfRange", made({"\xA1\x01"}).bytes(),
     kMalformed + "9: a reference names no object."},
    {"KeyReferenceOutOfRange", made({"\xD1\x05\x01", "\x51k"}).bytes(),
     kMalformed + "9: a reference names no object."},
    {"HugeArray", made({"\xAF\x13" + wide(kMost, 8)}).bytes(),
     kMalformed + "8: an object reaches beyond the objects."},
    {"HugeDictionary", made({"\xDF\x13" + wide(std::uint64_t{1} << 63, 8)}).bytes(),
     kMalformed + "8: an object reaches beyond the objects."},
    {"HugeUtf16", made({"\x6F\x13" + wide(std::uint64_t{1} << 63, 8)}).bytes(),
     kMalformed + "8: an object reaches beyond the objects."},
    {"HugeData", made({"\x4F\x12" + wide(0xFFFFFFFF, 4)}).bytes(),
     kMalformed + "8: an object reaches beyond the objects."},
    {"DataOneByteShort", made({"\x42x"}).bytes(),
     kMalformed + "8: an object reaches beyond the objects."},
    {"RealOneByteShort", made({std::string("\x23\0\0\0\0\0\0\0", 8)}).bytes(),
     kMalformed + "8: an object reaches beyond the objects."},
    {"SizeThatIsNoInteger", made({"\x5F\x09"}).bytes(),
     kMalformed + "8: the size of an object is missing."},
    {"SizeThatIsMissing", made({"\x5F"}).bytes(),
     kMalformed + "8: the size of an object is missing."},
    {"SizeThatIsTooWide", made({"\x4F\x14" + std::string(16, '\0')}).bytes(),
     kMalformed + "8: the size of an object is wider than 8 bytes."},
    {"SizeThatIsCutOff", made({"\x4F\x13\x01"}).bytes(),
     kMalformed + "8: the size of an object is cut off."},
    {"IntegerOf32Bytes", made({"\x15" + std::string(32, '\0')}).bytes(),
     kMalformed + "8: an integer is wider than 16 bytes."},
    {"IntegerAbove64Bits", made({BinaryMaker::longInteger(1, 0)}).bytes(),
     kMalformed + "8: an integer is beyond 64 bits."},
    {"IntegerBelow64Bits", made({BinaryMaker::longInteger(kMost, 5)}).bytes(),
     kMalformed + "8: an integer is beyond 64 bits."},
    {"SelfReference", made({std::string("\xA1\x00", 2)}).bytes(),
     kMalformed + "8: a container holds itself."},
    {"MutualReference", made({"\xA1\x01", std::string("\xD1\x02\x00", 3), "\x51k"}).bytes(),
     kMalformed + "10: a container holds itself."},
    {"DictionaryAsItsOwnKey", made({std::string("\xD1\x00\x00", 3)}).bytes(),
     kMalformed + "8: a key of a dictionary is no string."},
    {"KeyThatIsNoString", made({"\xD1\x01\x01", "\x10\x05"}).bytes(),
     kMalformed + "8: a key of a dictionary is no string."},
    {"KeyThatWasReadAsANumber", made({"\xA2\x01\x02", "\x10\x05", "\xD1\x01\x01"}).bytes(),
     kMalformed + "13: a key of a dictionary is no string."},
    {"RepeatedKey", made({"\xD2\x01\x01\x01\x01", "\x51k"}).bytes(),
     kMalformed + "8: the key \"k\" stands twice."},
    {"RepeatedKeyInTwoObjects",
     made({"\xD2\x01\x02\x01\x02", "\x51k", "\x61" + wide('k', 2)}).bytes(),
     kMalformed + "8: the key \"k\" stands twice."},
    {"RepeatedKeyOfMany", longDictionaryWithRepeatedKey(),
     kMalformed + "8: the key \"key6\" stands twice."},
    {"FanOf2To30", fanOf(30),
     kLimit + "8: containers that are met again and again make a list of too many values."},
    {"FanBeyondCounting", fanOf(200),
     kLimit + "8: containers that are met again and again make a list of too many values."},
    {"NestedArrays", nestedArrays(1000000),
     kLimit + "2568: containers are nested more than 512 deep."},
    {"OverlappingObjects", overlappingObjects(), kMalformed + "4014: objects overlap."},
    {"AsciiWithOtherBytes", made({"\x52x\x80"}).bytes(),
     kMalformed + "8: an ASCII string holds other bytes."},
    {"LoneHighSurrogate", made({BinaryMaker::utf16(u"a\xD800")}).bytes(),
     kMalformed + "8: a string holds a lone surrogate."},
    {"LoneLowSurrogate", made({BinaryMaker::utf16(u"\xDC00\xD800")}).bytes(),
     kMalformed + "8: a string holds a lone surrogate."},
    {"DateThatIsNone", made({BinaryMaker::date(std::numeric_limits<double>::quiet_NaN())}).bytes(),
     kMalformed + "8: a date is no moment in time."},
    {"EndlessDate", made({BinaryMaker::date(std::numeric_limits<double>::infinity())}).bytes(),
     kMalformed + "8: a date is no moment in time."},
    {"Uid", made({"\x80\x05"}).bytes(),
     kUnsupported + "8: the identifiers of keyed archives are no values of property lists."},
    {"SetOfValues", made({std::string("\xC0", 1)}).bytes(),
     kUnsupported + "8: a set is no value of a property list."},
    {"NullObject", made({std::string("\0", 1)}).bytes(),
     kUnsupported + "8: an object is of a kind that is not known."},
    {"UnknownKinds", made({"\x0F"}).bytes(),
     kUnsupported + "8: an object is of a kind that is not known."},
    {"RealOfTwoBytes", made({std::string("\x21\0\0", 3)}).bytes(),
     kUnsupported + "8: an object is of a kind that is not known."},
    {"DateOfFourBytes", made({std::string("\x32\0\0\0\0", 5)}).bytes(),
     kUnsupported + "8: an object is of a kind that is not known."},
    {"KindB", made({"\xB0"}).bytes(),
     kUnsupported + "8: an object is of a kind that is not known."},
    {"KindF", made({"\xF0"}).bytes(),
     kUnsupported + "8: an object is of a kind that is not known."},
    // Accepted: other programs share equal containers too, and the list holds few values in all.
    {"SmallFan", fanOf(2), "[[true,true,],[true,true,],]"},
    // Accepted: an object that nothing refers to is never looked at.
    {"UnusedObjectThatIsWrong", made({"\x09", "\xF7"}).bytes(), "true"},
    // Accepted: the six first bytes of the trailer say nothing about values.
    {"UnusedBytesOfTrailer",
     [] {
       std::string bytes = made({"\x09"}).bytes();
       bytes.replace(bytes.size() - 32, 6, "sorted");
       return bytes;
     }(),
     "true"},
};

class BadBinaryList : public testing::TestWithParam<BadList> {};

TEST_P(BadBinaryList, GivesAClearOutcomeSoonAndInLittleMemory) {
  for (const auto mutability :
       {PropertyListMutability::immutable, PropertyListMutability::mutableContainers,
        PropertyListMutability::mutableContainersAndLeaves}) {
    const plist::Outcome o = readBytes(GetParam().bytes, mutability);
    const bool isImmutable = mutability == PropertyListMutability::immutable;
    if (isImmutable) {
      EXPECT_EQ(o.text(), GetParam().outcome);
    } else {
      EXPECT_EQ(o.text().substr(0, 1), GetParam().outcome.substr(0, 1));
    }
  }
  plist::expectBoundedReading(GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(PropertyLists, BadBinaryList, testing::ValuesIn(kBadLists),
                         [](const auto& list) { return std::string(list.param.name); });

std::string sample() {
  return plist::writingOf(
      dict({{"text", "0123456789abcdef"},
            {"wide", "\xE2\x82\xAC"},
            {"numbers", array(1, -1, 300, 70000, 5000000000, kMost, 1.5, 2.5F, true, false)},
            {"date", Date::dateWithTimeIntervalSince1970(0)},
            {"data", Data::from("bytes")},
            {"empty", array(array(), dict())}}),
      PropertyListFormat::binary);
}

TEST(BadBinaryLists, EveryTruncationIsAnError) {
  const std::string whole = sample();
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_NE(readBytes(whole.substr(0, size)).error, nullptr) << size;
  }
  for (std::size_t from = 9; from < whole.size(); ++from) {
    EXPECT_NE(readBytes(whole.substr(from)).error, nullptr) << from;
    EXPECT_NE(readBytes("bplist00" + whole.substr(from)).error, nullptr) << from;
  }
}

// All of them in one process: what one takes is not hidden by what another has left.
TEST(BadBinaryLists, TruncatedAndChangedListsTakeLittleMemory) {
  const std::string whole = sample();
  const auto cost = plist::costOf([&] {
    for (std::size_t size = 0; size < whole.size(); ++size) (void)readBytes(whole.substr(0, size));
    for (std::size_t at = 0; at < whole.size(); ++at) {
      for (unsigned value = 0; value < 256; value += 5) {
        std::string bytes = whole;
        bytes[at] = static_cast<char>(value);
        (void)readBytes(bytes);
      }
    }
  });
  EXPECT_LT(cost.memory, plist::memoryFor(whole.size(), 40));
}

TEST(BadBinaryLists, EveryChangedByteGivesAValueOrAnError) {
  const std::string whole = sample();
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const unsigned change : {1U, 2U, 4U, 8U, 16U, 32U, 64U, 128U, 255U}) {
      std::string bytes = whole;
      bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) ^ change);
      EXPECT_EQ(plist::checkBytes(bytes).what, "") << at << " " << change;
    }
  }
}

// A string that is long, and an array that refers to it again and again.
TEST(BadBinaryLists, CopiesForMutableListsAreBounded) {
  BinaryMaker m;
  m.referenceWidth = 1;
  m.offsetWidth = 4;
  m.add(m.array(std::vector<std::uint64_t>(100000, 1)));
  m.add(BinaryMaker::ascii(std::string(100000, 'x')));
  const std::string bytes = m.bytes();
  EXPECT_EQ(readBytes(bytes).value.as<Array>()->count(), 100000U);
  EXPECT_EQ(readBytes(bytes, PropertyListMutability::mutableContainers).error, nullptr);
  const auto o = readBytes(bytes, PropertyListMutability::mutableContainersAndLeaves);
  EXPECT_EQ(o.text().substr(0, kLimit.size()), kLimit);
  EXPECT_LT(o.seconds, 1.0);
  // A few copies of a long text are what a list may well hold.
  const std::string few = plist::writingOf(
      Array::from(std::vector<PropertyValue>(100, std::string(50000, 'x')).data(), 100),
      PropertyListFormat::binary);
  EXPECT_LT(few.size(), 51000U);
  EXPECT_EQ(readBytes(few, PropertyListMutability::mutableContainersAndLeaves).error, nullptr);
}

}  // namespace
}  // namespace qx

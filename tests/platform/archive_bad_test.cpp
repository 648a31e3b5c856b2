// Archives that are damaged, hostile or foreign: each gives a clear error with its byte, or is
// accepted for the reason that stands beside it, soon and in little memory.

#include <gtest/gtest.h>

#include <functional>

#include "tests/platform/archive/coded.h"
#include "tests/platform/property_list/cost.h"

namespace qx {
namespace {

using namespace std::string_literals;
using plist::costOf;
using plist::memoryFor;

// Bytes of memory for each byte of an archive; an empty mutable set takes the most, in two bytes.
constexpr std::size_t kMemoryPerByte = 160;

struct BadArchive {
  const char* name;
  std::string bytes;
  std::string reason;  // empty where the bytes are accepted
};
void PrintTo(const BadArchive& archive, std::ostream* out) { *out << archive.name; }

std::string archive(const std::string& values) { return "QXArchive\x01" + values; }

std::string number(std::uint64_t n) {
  std::string bytes;
  for (; n >= 0x80; n >>= 7) bytes += static_cast<char>(n | 0x80);
  return bytes + static_cast<char>(n);
}
std::string repeated(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

const std::string kHuge = "\xff\xff\xff\xff\xff\xff\xff\xff\x7f";  // 2^63 - 1

// Arrays within each other, each of which says that it has all the bytes behind it as elements.
std::string nestedCounts(std::size_t size) {
  std::string values;
  for (int level = 0; level < 500; ++level) values += "\x0f" + number(size - values.size() - 10);
  return archive(values + std::string(size - values.size(), '\x01'));
}

// Arrays that each hold the next one and a reference to it; the objects are numbered from `first`.
std::string fanOf(std::size_t levels, std::size_t first) {
  std::string inner = "\x0f\x01\x03";
  for (std::size_t i = levels - 1; i-- > 0;) {
    inner = "\x0f\x02" + inner + "\x08" + number(first + i + 1);
  }
  return inner;
}

// A set of arrays that differ in what is nested within them alone.
std::string setOfAlikeMembers(std::size_t count) {
  std::string values = "\x11" + number(count);
  for (std::size_t i = 0; i < count; ++i) values += "\x0f\x01\x0f\x01\x05" + number(i);
  return archive(values);
}

const std::string kTooLarge = "a count is larger than what follows";
const std::string kCut = "it ends within a value";
const std::string kUnknown = "a value of an unknown kind";
const std::string kHoldsItself = "an immutable container holds itself";

const BadArchive kBadArchives[] = {
    // ---- header
    {"Nothing", "", "byte 0: these bytes are no archive"},
    {"PropertyList", "bplist00", "byte 0: these bytes are no archive"},
    {"WrongMagic", "QXArchivf\x01\x01", "byte 0: these bytes are no archive"},
    {"MagicAlone", "QXArchive", "byte 9: " + kCut},
    {"OtherVersion", "QXArchive\x02\x01",
     "byte 10: the archive is of a version that is not known here"},
    {"NoRoot", archive(""), "byte 10: " + kCut},
    {"TwoRoots", archive("\x01\x01"), "byte 11: there are bytes after the root object"},
    // ---- kinds
    {"UnknownKind", archive("\x14"), "byte 11: " + kUnknown},
    {"MutableNull", archive("\x41"), "byte 11: " + kUnknown},
    {"MutableDate", archive("\x4d"), "byte 11: " + kUnknown},
    {"HighBit", archive("\x8f"), "byte 11: " + kUnknown},
    {"EndAlone", archive("\x13"), "byte 11: " + kUnknown},
    // ---- numbers
    {"NumberTooLarge", archive("\x05\xff\xff\xff\xff\xff\xff\xff\xff\xff\x02"),
     "byte 21: a number is too large"},
    {"NumberWithoutEnd", archive("\x05" + std::string(1000000, '\xff')),
     "byte 21: a number is too large"},
    {"NumberCutOff", archive("\x05\x80"), "byte 12: " + kCut},
    {"RealCutOff", archive("\x07\x01\x02"), "byte 11: " + kCut},
    {"DecimalThatIsNone", archive("\x0e\x03one"), "byte 15: a decimal number is malformed"},
    {"DecimalWithMore",
     archive("\x0e\x03"
             "1 x"),
     "byte 15: a decimal number is malformed"},
    {"EmptyDecimal", archive("\x0e\x00"s), "byte 12: a decimal number is malformed"},
    {"DecimalOfAMillionDigits", archive("\x0e" + number(1000000) + std::string(1000000, '7')),
     "byte 1000014: a decimal number is malformed"},
    // ---- references and cycles
    {"ReferenceToNothing", archive("\x08\x00"s),
     "byte 12: a reference to an object that is not there"},
    {"ReferenceAhead", archive("\x0f\x02\x08\x01\x0f\x00"s),
     "byte 14: a reference to an object that is not there"},
    {"HugeReference", archive("\x0f\x01\x08" + kHuge),
     "byte 22: a reference to an object that is not there"},
    {"ArrayThatHoldsItself", archive("\x0f\x01\x08\x00"s), "byte 14: " + kHoldsItself},
    {"ArraysThatHoldEachOther", archive("\x0f\x01\x0f\x01\x08\x00"s), "byte 16: " + kHoldsItself},
    {"DictionaryThatHoldsItself", archive("\x10\x01\x0a\x01k\x08\x00"s),
     "byte 17: " + kHoldsItself},
    {"SetThatHoldsItself", archive("\x11\x01\x08\x00"s),
     "byte 14: a reference to an object that is not there"},
    {"SetWithinAnArrayThatItHolds", archive("\x0f\x01\x11\x01\x08\x00"s),
     "byte 16: " + kHoldsItself},
    // Accepted: programs make such circles.
    {"MutableArrayThatHoldsItself", archive("\x4f\x01\x08\x00"s), ""},
    {"MutableSetThatHoldsItself", archive("\x51\x01\x08\x00"s), ""},
    {"MutableDictionaryThatHoldsItself", archive("\x50\x01\x0a\x01k\x08\x00"s), ""},
    // Accepted: what is referred to again is one object again, and nothing is multiplied.
    {"FanOf2To30", archive(fanOf(30, 0)), ""},
    {"FanOf2To400", archive(fanOf(400, 0)), ""},
    {"TwoEqualFansInASet", archive("\x11\x02" + fanOf(100, 1) + fanOf(100, 101)), ""},
    // ---- counts
    {"HugeArray", archive("\x0f" + kHuge), "byte 20: " + kTooLarge},
    {"HugeMutableArray", archive("\x4f" + kHuge), "byte 20: " + kTooLarge},
    {"HugeDictionary", archive("\x10" + kHuge), "byte 20: " + kTooLarge},
    {"HugeMutableDictionary", archive("\x50" + kHuge), "byte 20: " + kTooLarge},
    {"HugeSet", archive("\x11" + kHuge), "byte 20: " + kTooLarge},
    {"HugeMutableSet", archive("\x51" + kHuge), "byte 20: " + kTooLarge},
    {"HugeNarrowString", archive("\x0a" + kHuge), "byte 20: " + kTooLarge},
    {"HugeWideString", archive("\x0b" + kHuge), "byte 20: " + kTooLarge},
    {"HugeData", archive("\x0c" + kHuge), "byte 20: " + kTooLarge},
    {"HugeDecimal", archive("\x0e" + kHuge), "byte 20: " + kTooLarge},
    {"HugeClassName", archive("\x12\x00"s + kHuge), "byte 21: " + kTooLarge},
    {"ArrayOneShort", archive("\x0f\x03\x01\x01"), "byte 12: " + kTooLarge},
    {"StringOneShort",
     archive("\x0a\x05"
             "abcd"),
     "byte 12: " + kTooLarge},
    {"WideStringOneShort",
     archive("\x0b\x02"
             "abc"),
     "byte 12: " + kTooLarge},
    {"DictionaryWithoutValues", archive("\x10\x01\x0a\x01k"), "byte 14: " + kTooLarge},
    {"CountsWithinEachOther", nestedCounts(1000000), "byte 18: " + kTooLarge},
    {"NestedArrays", archive(repeated("\x0f\x01", 1000000) + "\x01"),
     "byte 1035: objects are nested more than 512 deep"},
    {"NestedMutableDictionaries", archive(repeated("\x50\x01\x0a\x01k", 1000) + "\x01"),
     "byte 2568: objects are nested more than 512 deep"},
    {"NestedObjects",
     archive("\x12\x00\x0b"
             "CodedPerson\x0a\x00\x04\x00"s +
             repeated("\x12\x00\x0a\x00\x04\x00"s, 100000)),
     "byte 3091: objects are nested more than 512 deep"},
    // ---- containers
    {"NilInAnArray", archive("\x0f\x01\x00"s), "byte 13: a container holds nil"},
    {"NilInASet", archive("\x51\x01\x00"s), "byte 13: a container holds nil"},
    {"NilInADictionary", archive("\x10\x01\x0a\x01k\x00"s), "byte 16: a container holds nil"},
    {"KeyThatIsNoString", archive("\x10\x01\x04\x02\x01"), "byte 14: a key is no string"},
    {"KeyThatIsNil", archive("\x10\x01\x00\x01"s), "byte 13: a key is no string"},
    {"RepeatedKey", archive("\x10\x02\x0a\x01k\x0a\x01k\x01\x01"),
     "byte 18: a key stands twice in a dictionary"},
    {"RepeatedKeyOfAMutableDictionary", archive("\x50\x02\x0a\x01k\x08\x01\x01\x01"),
     "byte 17: a key stands twice in a dictionary"},
    // Accepted: mutable members may have become equal after they entered the set.
    {"RepeatedMember", archive("\x11\x02\x01\x01"), ""},
    {"AlikeMembers", setOfAlikeMembers(900), ""},
    {"TooManyAlikeMembers", setOfAlikeMembers(20000),
     "byte 143502: isEqual: too many containers are too much alike"},
    // ---- classes
    {"UnknownClass", archive("\x12\x00\x04Nope\x13"s), "byte 17: the class Nope is not known"},
    {"UnknownClassAsAnObject", archive("\x09\x00\x04Nope"s),
     "byte 17: the class Nope is not known"},
    {"EmptyClassName", archive("\x12\x00\x00\x13"s), "byte 13: the class  is not known"},
    {"LongClassName", archive("\x12\x00"s + number(100000) + std::string(100000, 'x')),
     "byte 100015: the class " + std::string(100, 'x') + " is not known"},
    {"ClassWithoutArchiving", archive("\x12\x00\x05Plain\x13"s),
     "byte 18: the class Plain declares no archiving"},
    {"ClassOfTheLibraryWithoutArchiving", archive("\x12\x00\x08NSString\x13"s),
     "byte 21: the class NSString declares no archiving"},
    {"ClassThatIsNotThere", archive("\x12\x01\x05Plain\x13"s),
     "byte 12: a class that is not there"},
    {"ObjectThatHoldsMore", archive("\x12\x00\x06Greedy\x04\x02\x04\x04\x13"s),
     "byte 22: an object of the class Greedy holds more than it decodes"},
    {"ObjectThatHoldsLess", archive("\x12\x00\x06Greedy\x13"s), "byte 20: " + kUnknown},
    {"ObjectOfOtherKinds",
     archive("\x12\x00\x0b"
             "CodedPerson\x01\x13"s),
     "byte 25: a value of class NSNull can not stand for a string"},
    {"ObjectWithoutEnd", archive("\x12\x00\x06Greedy\x04\x02"s), "byte 21: " + kCut},
};

// The error's text without its first word; empty where the bytes are accepted.
std::string reasonFor(std::string_view bytes) {
  Ref<Error> error;
  const PropertyValue v = Unarchiver::unarchiveObjectWithData(Data::from(bytes), &error);
  EXPECT_TRUE(v.isNil() || error == nullptr);
  if (const auto a = v.as<MutableArray>()) a->removeAllObjects();
  if (const auto s = v.as<MutableSet>()) s->removeAllObjects();
  if (const auto d = v.as<MutableDictionary>()) d->removeAllObjects();
  coded::Person::letGo();
  if (error == nullptr) return "";
  EXPECT_EQ(error->domain()->utf8(), QXArchiveErrorDomain);
  EXPECT_EQ(error->code(), 1);
  const std::string text = error->localizedDescription();
  EXPECT_EQ(text.substr(0, 9), "archive, ");
  return text.substr(9);
}

void expectBounded(std::size_t size, const std::function<void()>& work) {
  const auto cost = costOf(work);
  EXPECT_LT(cost.seconds, 1.0);
  EXPECT_LT(cost.memory, memoryFor(size, kMemoryPerByte)) << size << " bytes";
}

void read(std::string_view bytes) {
  Ref<Error> error;
  (void)Unarchiver::unarchiveObjectWithData(Data::from(bytes), &error);
}

class BadArchives : public testing::TestWithParam<BadArchive> {
 protected:
  void SetUp() override {
    registerClass<coded::Plain>();
    registerClass<coded::Person>();
    registerClass<coded::Greedy>();
  }
};

TEST_P(BadArchives, GiveAClearOutcomeSoonAndInLittleMemory) {
  EXPECT_EQ(reasonFor(GetParam().bytes), GetParam().reason);
  expectBounded(GetParam().bytes.size(), [&] { read(GetParam().bytes); });
}

INSTANTIATE_TEST_SUITE_P(Archives, BadArchives, testing::ValuesIn(kBadArchives),
                         [](const auto& archive) { return std::string(archive.param.name); });

// Every kind of value, objects and references.
std::string sample() {
  const auto bob = make<coded::Person>();
  bob->name = "Bob";
  const auto list = MutableArray::init();
  list->addObject(DecimalNumber::initWithString("-12.5"));
  list->addObject(const_cast<Class*>(&classOf<coded::Person>()));
  bob->friends =
      array("x", 1, 2.5, 1.5F, true, null, 18446744073709551615U,
            dict({{"k", true}, {"l", Data::from("abc")}}), Set::from(array(1, 2)),
            String::from("漢"), Date::dateWithTimeIntervalSince1970(5), list,
            MutableSet::from(array("m")), MutableDictionary::dictionaryWithDictionary(dict()));
  return std::string(Archiver::archivedDataWithRootObject(array(bob, bob))->view());
}

TEST(BadArchive, EveryTruncationIsAnError) {
  const std::string whole = sample();
  ASSERT_EQ(reasonFor(whole), "");
  for (std::size_t n = 0; n < whole.size(); ++n) EXPECT_NE(reasonFor(whole.substr(0, n)), "") << n;
  expectBounded(whole.size(), [&] {
    for (std::size_t n = 0; n < whole.size(); ++n) read(whole.substr(0, n));
  });
}

// A changed byte gives an error or another value, and never more than that. Values may have become
// circles through objects of the application, which are let go here.
TEST(BadArchive, EveryFlippedByteGivesAValueOrAnError) {
  const std::string whole = sample();
  const auto eachDamage = [&](const std::function<void(const std::string&)>& work) {
    for (std::size_t i = 0; i < whole.size(); ++i) {
      for (const unsigned change : {1U, 2U, 4U, 8U, 16U, 32U, 64U, 128U, 255U}) {
        std::string damaged = whole;
        damaged[i] = static_cast<char>(static_cast<unsigned char>(damaged[i]) ^ change);
        work(damaged);
      }
    }
  };
  std::size_t accepted = 0;
  std::size_t refused = 0;
  eachDamage(
      [&](const std::string& damaged) { ++(reasonFor(damaged).empty() ? accepted : refused); });
  EXPECT_GT(accepted, 100U);
  EXPECT_GT(refused, 100U);
  expectBounded(whole.size(), [&] {
    eachDamage([](const std::string& damaged) {
      read(damaged);
      coded::Person::letGo();
    });
  });
}

TEST(BadArchive, MemoryIsInProportionToTheBytes) {
  // Small values of each kind, a hundred thousand of each.
  for (const std::string& value :
       {"\x0f\x00"s, "\x10\x00"s, "\x11\x00"s, "\x4f\x00"s, "\x50\x00"s, "\x51\x00"s, "\x0a\x00"s,
        "\x4a\x00"s, "\x0c\x00"s, "\x4c\x00"s, "\x0b\x00"s,
        "\x0e\x01"
        "1"s,
        "\x01"s, "\x08\x00"s}) {
    const std::string bytes =
        archive("\x4f" + number(100001) + "\x0f\x00"s + repeated(value, 100000));
    SCOPED_TRACE(static_cast<int>(value[0]));
    expectBounded(bytes.size(), [&] { read(bytes); });
  }
}

}  // namespace
}  // namespace qx

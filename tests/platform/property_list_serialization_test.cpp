// What PropertyListSerialization promises for both formats: what it takes and refuses, what it
// makes, and how it tells.

#include <gtest/gtest.h>

#include <limits>
#include <thread>

#include "tests/platform/property_list/binary_maker.h"
#include "tests/platform/property_list/bounded.h"
#include "tests/platform/property_list/reading.h"
#include "tests/platform/property_list/same_list.h"
#include "tests/support/processor_time.h"

namespace listed {

// An object of an application's class.
class Plain : public qx::Object {};
void describe(qx::ClassBuilder<Plain>& c) { c.name("ListedPlain"); }

}  // namespace listed

namespace qx {
namespace {

constexpr PropertyListFormat kFormats[] = {PropertyListFormat::xml, PropertyListFormat::binary};

// The text of the error, for the format; empty where the value is written. The test of validity has
// to agree.
std::string refusal(const PropertyValue& v, PropertyListFormat format) {
  Ref<Error> error;
  const auto data = PropertyListSerialization::dataWithPropertyList(v, format, &error);
  EXPECT_EQ(data == nullptr, error != nullptr);
  EXPECT_EQ(PropertyListSerialization::propertyList(v, format), data != nullptr);
  if (error == nullptr) return "";
  EXPECT_TRUE(error->domain()->isEqualToString(QXPropertyListErrorDomain));
  return std::to_string(error->code()) + " " + error->localizedDescription();
}

void expectRefusal(const PropertyValue& v, const std::string& text) {
  for (const auto format : kFormats) EXPECT_EQ(refusal(v, format), text);
}

const std::string kUnwritable = "5 The value can not be written as a property list: ";
const std::string kLimit = "4 A limit of property lists is passed: ";

PropertyValue nested(std::size_t depth) {
  PropertyValue v = array();
  for (std::size_t i = 1; i < depth; ++i) v = array(v);
  return v;
}

TEST(PropertyListSerialization, ValuesThatAreNoneAreRefusedWithTheirPlace) {
  expectRefusal(nullptr, kUnwritable + "nil is no value of a property list.");
  expectRefusal(null, kUnwritable + "null is no value of a property list.");
  expectRefusal(array(1, null), kUnwritable + "[1]: null is no value of a property list.");
  expectRefusal(dict({{"layout", dict({{"frames", array(1, 2, make<listed::Plain>())}})}}),
                kUnwritable +
                    "layout.frames[2]: an object of the class ListedPlain is no value of a "
                    "property list.");
  expectRefusal(
      array(array(Set::from(array(1)))),
      kUnwritable + "[0][0]: an object of the class NSSet is no value of a property list.");
  expectRefusal(const_cast<Class*>(&classOf<String>()),
                kUnwritable + "an object of the class Class is no value of a property list.");
  expectRefusal(
      dict(
          {{"date", Date::dateWithTimeIntervalSince1970(std::numeric_limits<double>::infinity())}}),
      kUnwritable + "date: a date is no moment in time.");
  expectRefusal(array(String::fromUtf16(u"\xDC00")),
                kUnwritable + "[0]: a string holds the lone surrogate U+DC00.");
}

TEST(PropertyListSerialization, WhatXmlAloneCanNotCarryIsRefusedForXml) {
  const auto far = Date::dateWithTimeIntervalSince1970(253402300800.0);
  EXPECT_EQ(refusal(array(far), PropertyListFormat::binary), "");
  EXPECT_EQ(refusal(array(far), PropertyListFormat::xml),
            kUnwritable + "[0]: a date is beyond the years 1 to 9999 of the XML format.");
  EXPECT_EQ(refusal(dict({{"a\x01", 1}}), PropertyListFormat::binary), "");
  EXPECT_EQ(refusal(dict({{"a\x01", 1}}), PropertyListFormat::xml),
            kUnwritable + "a\x01: a string holds the character U+0001, which XML can not carry.");
  EXPECT_EQ(refusal("\xEF\xBF\xBE", PropertyListFormat::xml),
            kUnwritable + "a string holds the character U+FFFE, which XML can not carry.");
}

TEST(PropertyListSerialization, LongPathsAreCut) {
  PropertyValue v = null;
  for (int i = 0; i < 500; ++i) v = dict({{std::string(1000, 'k'), v}});
  EXPECT_LT(refusal(v, PropertyListFormat::xml).size(), 1000U);
}

TEST(PropertyListSerialization, ContainersThatHoldThemselvesAreRefused) {
  const auto self = MutableArray::init();
  self->addObject(self);
  expectRefusal(self, kUnwritable + "[0]: the container holds itself.");
  self->removeAllObjects();

  const auto outer = MutableDictionary::init();
  const auto inner = MutableArray::init();
  outer->setObject(inner, "inner");
  inner->addObject(1);
  inner->addObject(outer);
  expectRefusal(array(outer), kUnwritable + "[0].inner[1]: the container holds itself.");
  inner->removeAllObjects();
}

TEST(PropertyListSerialization, ContainersNestAsDeepAsPromised) {
  for (const auto format : kFormats) {
    const PropertyValue deepest = nested(kMaxPropertyListDepth);
    ASSERT_EQ(refusal(deepest, format), "");
    EXPECT_EQ(plist::readBytes(plist::writingOf(deepest, format)).value, deepest);
  }
  const PropertyValue tooDeep = nested(kMaxPropertyListDepth + 1);
  for (const auto format : kFormats) {
    EXPECT_EQ(refusal(tooDeep, format).substr(0, kLimit.size()), kLimit);
    EXPECT_EQ(
        refusal(dict({{"a", nested(kMaxPropertyListDepth)}}), format).substr(0, kLimit.size()),
        kLimit);
    // The deep part is known from a shallower place when it is met too deep.
    const PropertyValue part = nested(300);
    PropertyValue deep = part;
    for (int i = 0; i < 213; ++i) deep = array(deep);
    EXPECT_EQ(refusal(array(part, deep), format).substr(0, kLimit.size()), kLimit);
  }
}

TEST(PropertyListSerialization, AMillionNestedContainersAreRefusedSoon) {
  const PropertyValue v = nested(1000000);
  for (const auto format : kFormats) {
    const double start = processorTime();
    EXPECT_EQ(refusal(v, format).substr(0, kLimit.size()), kLimit);
    EXPECT_LT(processorTime() - start, 1.0);
  }
}

TEST(PropertyListSerialization, ContainersMetAgainAreWrittenAgain) {
  const auto shared = MutableArray::init();
  shared->addObject("x");
  const auto list = array(shared, dict({{"k", shared}}), shared);
  for (const auto format : kFormats) {
    const auto read =
        plist::readBytes(plist::writingOf(list, format), PropertyListMutability::mutableContainers)
            .value.as<Array>();
    EXPECT_EQ(plist::dump(read), "[[s78,],{6b=[s78,],},[s78,],]");
    read->objectAtIndex(0).as<MutableArray>()->removeAllObjects();
    EXPECT_EQ(plist::dump(read), "[[],{6b=[s78,],},[s78,],]");
  }
}

TEST(PropertyListSerialization, ContainersMetBeyondCountingAreRefusedSoon) {
  PropertyValue v = true;
  for (int i = 0; i < 30; ++i) v = array(v, v);
  for (const auto format : kFormats) {
    const double start = processorTime();
    EXPECT_EQ(refusal(v, format),
              kLimit + "containers that are met again and again make a list of too many values.");
    EXPECT_LT(processorTime() - start, 1.0);
  }
  // Fewer are fine, and so are many where the list is large by itself.
  PropertyValue some = true;
  for (int i = 0; i < 12; ++i) some = array(some, some);
  for (const auto format : kFormats) EXPECT_EQ(refusal(some, format), "");
}

TEST(PropertyListSerialization, ErrorsCarryTheirPlaceAsNumbers) {
  auto info = plist::readBytes("<plist>\n\xC3\xA4<true/></plist>").error->userInfo();
  EXPECT_EQ(info->objectForKey(QXLineErrorKey), 2);
  EXPECT_EQ(info->objectForKey(QXColumnErrorKey), 1);
  EXPECT_EQ(info->objectForKey(QXByteOffsetErrorKey), nullptr);
  info = plist::readBytes("<plist>\r\n\r<!--\xC3\xA4-->x</plist>").error->userInfo();
  EXPECT_EQ(info->objectForKey(QXLineErrorKey), 3);
  EXPECT_EQ(info->objectForKey(QXColumnErrorKey), 9);
  plist::BinaryMaker maker;
  maker.add("\x0F");
  info = plist::readBytes(maker.bytes()).error->userInfo();
  EXPECT_EQ(info->objectForKey(QXByteOffsetErrorKey), 8);
  EXPECT_EQ(info->objectForKey(QXLineErrorKey), nullptr);
}

TEST(PropertyListSerialization, TheFormatIsToldByTheContent) {
  for (const auto format : kFormats) {
    const auto data = PropertyListSerialization::dataWithPropertyList(array(1), format);
    PropertyListFormat told =
        format == PropertyListFormat::xml ? PropertyListFormat::binary : PropertyListFormat::xml;
    Ref<Error> error;
    EXPECT_EQ(PropertyListSerialization::propertyListWithData(
                  data, PropertyListMutability::immutable, &told, &error),
              array(1));
    EXPECT_EQ(told, format);
    EXPECT_EQ(error, nullptr);
  }
  EXPECT_EQ(PropertyListSerialization::propertyListWithData(
                Data::from("junk"), PropertyListMutability::immutable, nullptr),
            nullptr);
  EXPECT_THROW((void)PropertyListSerialization::propertyListWithData(
                   nullptr, PropertyListMutability::immutable, nullptr),
               InvalidArgumentException);
}

TEST(PropertyListSerialization, MutabilityIsAsAskedFor) {
  const auto list = dict({{"array", array(1)}, {"text", "t"}, {"data", Data::from("d")}});
  const auto classesOf = [](const PropertyValue& v) {
    std::string names = v.cls()->name();
    const auto entries = v.as<Dictionary>();
    for (const auto& [key, value] : *entries) {
      names += std::string(" ") + key.cls().name() + ":" + value.cls()->name();
    }
    return names;
  };
  for (const auto format : kFormats) {
    const std::string bytes = plist::writingOf(list, format);
    EXPECT_EQ(classesOf(plist::readBytes(bytes).value),
              "NSDictionary NSString:NSArray NSString:NSString NSString:NSData");
    EXPECT_EQ(classesOf(plist::readBytes(bytes, PropertyListMutability::mutableContainers).value),
              "NSMutableDictionary NSString:NSMutableArray NSString:NSString NSString:NSData");
    const PropertyValue leaves =
        plist::readBytes(bytes, PropertyListMutability::mutableContainersAndLeaves).value;
    EXPECT_EQ(classesOf(leaves),
              "NSMutableDictionary NSString:NSMutableArray NSString:NSMutableString "
              "NSString:NSMutableData");
    EXPECT_EQ(leaves, list);
  }
}

// Readers expect that a dictionary looks like the one before it; none of these does.
TEST(PropertyListSerialization, DictionariesThatDifferFromTheOneBeforeAreRead) {
  const std::vector<std::vector<const char*>> kKeys = {
      {"a", "b"},        {"a", "b"},        {"a"},
      {"a", "b", "c"},   {"a", "c", "b"},   {},
      {"b", "a"},        {"\xC3\xA9", "a"}, {"\xC3\xA9"},
      {"\xC3\xA9", "b"}, {"\xE2\x82\xAC"},  {"\xC3\x83\xC2\xA9"}};
  const auto list = MutableArray::init();
  for (const auto& keys : kKeys) {
    const auto d = MutableDictionary::init();
    for (const char* const key : keys) {
      d->setObject(dict({{key, 1}, {"x", dict({{"a", 1}})}}), key);
    }
    list->addObject(d);
    const auto large = MutableDictionary::init();
    for (int i = 0; i < 20; ++i) large->setObject(i, std::to_string(i));
    list->addObject(large);
    list->addObject(dict({{"a", 1}, {"b", 2}}));
  }
  for (const auto format : kFormats) {
    const std::string bytes = plist::writingOf(list, format);
    for (const auto mutability :
         {PropertyListMutability::immutable, PropertyListMutability::mutableContainers}) {
      EXPECT_EQ(plist::dump(plist::readBytes(bytes, mutability).value), plist::dump(list));
    }
  }
  const std::string first = "<plist><array><dict><key>a</key><true/><key>b</key><true/></dict>";
  EXPECT_EQ(plist::readingOf(first + "\n<dict><key>a</key><true/>\n<key>a</key><true/></dict>")
                .substr(0, 58),
            "2 The property list can not be read: line 3, column 1: the");
}

TEST(PropertyListSerialization, MutableLeavesAreApart) {
  const std::string bytes = plist::writingOf(array("x", "x"), PropertyListFormat::binary);
  const auto list =
      plist::readBytes(bytes, PropertyListMutability::mutableContainersAndLeaves).value.as<Array>();
  list->objectAtIndex(0).as<MutableString>()->appendString("y");
  EXPECT_EQ(plist::dump(list), "[s7879,s78,]");
}

TEST(PropertyListSerialization, MutableValuesAreWrittenAsWhatTheyHold) {
  const auto list = MutableArray::init();
  const auto d = MutableDictionary::init();
  for (int i = 0; i < 40; ++i) d->setObject(i, std::to_string(i));
  for (int i = 0; i < 40; i += 2) d->removeObjectForKey(std::to_string(i));
  list->addObject(d);
  list->addObject(MutableString::from("text"));
  list->addObject(MutableData::from("data"));
  for (const auto format : kFormats) {
    EXPECT_EQ(plist::readingOf(plist::writingOf(list, format)), plist::dump(list));
  }
}

TEST(PropertyListSerialization, ReadingTakesMemoryInProportionToTheBytes) {
  using plist::BinaryMaker;
  std::vector<std::string> lists;
  std::string xml = "<plist>";
  for (int i = 0; i < 300000; ++i) xml += "<array>";
  lists.push_back(xml);
  xml = "<plist><array>";
  for (int i = 0; i < 100000; ++i) xml += "<array/>";
  lists.push_back(xml);

  BinaryMaker manyTimes;  // one empty array, referred to again and again
  manyTimes.offsetWidth = 4;
  manyTimes.add(manyTimes.array(std::vector<std::uint64_t>(200000, 1)));
  manyTimes.add("\xA0");
  lists.push_back(manyTimes.bytes());
  BinaryMaker fan;
  for (std::uint64_t i = 1; i <= 100; ++i) fan.add(fan.array({i, i}));
  fan.add("\x09");
  fan.offsetWidth = 2;
  lists.push_back(fan.bytes());
  BinaryMaker ladder;  // at each level a large array beside the next level
  ladder.offsetWidth = ladder.referenceWidth = 2;
  constexpr std::uint64_t kLevels = 400;
  for (std::uint64_t i = 1; i < kLevels; ++i) ladder.add(ladder.array({kLevels, i}));
  ladder.add("\x09");
  ladder.add(ladder.array(std::vector<std::uint64_t>(4000, kLevels - 1)));
  lists.push_back(ladder.bytes());
  lists.push_back(BinaryMaker().bytes() + std::string(1000000, '\1'));

  for (const char* const element : {"<dict/>", "<string/>", "<data/>", "<true/>",
                                    "<integer>1</integer>", "<dict><key>a</key><true/></dict>"}) {
    std::string many = "<plist><array>";
    for (int i = 0; i < 100000; ++i) many += element;
    lists.push_back(many + "</array></plist>");
  }
  for (const std::string& object :
       {std::string("\xD0"), std::string("\x50"), std::string("\x40")}) {
    BinaryMaker apart;  // small objects, each referred to once
    apart.offsetWidth = apart.referenceWidth = 4;
    std::vector<std::uint64_t> all;
    for (std::uint64_t i = 1; i <= 100000; ++i) all.push_back(i);
    apart.add(apart.array(all));
    for (int i = 0; i < 100000; ++i) apart.add(object);
    lists.push_back(apart.bytes());
  }

  for (const std::string& bytes : lists) plist::expectBoundedReading(bytes);
}

TEST(PropertyListSerializationThread, OneValueIsWrittenByManyThreads) {
  const auto list = array("text", dict({{"k", array(1, 2.5, "wide \xE2\x82\xAC")}}), "text");
  const std::string xml = plist::writingOf(list, PropertyListFormat::xml);
  const std::string binary = plist::writingOf(list, PropertyListFormat::binary);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 200; ++round) {
        EXPECT_EQ(plist::writingOf(list, PropertyListFormat::xml), xml);
        EXPECT_EQ(plist::writingOf(list, PropertyListFormat::binary), binary);
        EXPECT_EQ(plist::readBytes(xml).value, plist::readBytes(binary).value);
      }
    });
  }
  for (std::thread& t : threads) t.join();
}

}  // namespace
}  // namespace qx

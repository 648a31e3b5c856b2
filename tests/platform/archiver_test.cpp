#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/archiver.h>

#include "tests/platform/archive/coded.h"

namespace qx {
namespace {

PropertyValue roundTrip(const PropertyValue& v) {
  return Unarchiver::unarchiveObjectWithData(Archiver::archivedDataWithRootObject(v));
}

TEST(Archiver, KeepsEveryKindOfValue) {
  const auto nested = dict({{"a", array(1, "x", null)}, {"é漢", dict()}});
  const PropertyValue values[] = {
      nullptr,
      null,
      true,
      false,
      0,
      -1,
      std::numeric_limits<std::int64_t>::min(),
      std::numeric_limits<std::int64_t>::max(),
      0U,
      std::numeric_limits<std::uint64_t>::max(),
      1.5F,
      0.0,
      -0.0,
      0.1,
      5e-324,
      1e308,
      std::numeric_limits<double>::infinity(),
      std::numeric_limits<double>::quiet_NaN(),
      "",
      "plain",
      "naïve",
      "漢字😀",
      Data::from(std::string_view("\0\xff", 2)),
      Date::dateWithTimeIntervalSince1970(-1.25),
      DecimalNumber::initWithString("-12.5"),
      DecimalNumber::notANumber(),
      array(),
      nested,
      Set::from(array(1, "a", array(2))),
  };
  for (const PropertyValue& v : values) {
    const PropertyValue again = roundTrip(v);
    EXPECT_EQ(again, v) << v.description();
    EXPECT_EQ(again.cls(), v.cls()) << v.description();
    EXPECT_EQ(again.isNumber() ? again.as<Number>()->kind() : NumberKind::decimal,
              v.isNumber() ? v.as<Number>()->kind() : NumberKind::decimal)
        << v.description();
  }
  EXPECT_TRUE(std::signbit(roundTrip(-0.0).doubleValue()));
}

TEST(Archiver, KeepsLoneSurrogates) {
  const auto s = String::fromUtf16(u"a\xD800z");
  EXPECT_EQ(roundTrip(s), PropertyValue(s));
}

TEST(Archiver, KeepsTheMutableVariants) {
  const auto list = MutableArray::init();
  list->addObject(MutableString::from("x"));
  list->addObject(MutableData::from("y"));
  list->addObject(MutableDictionary::dictionaryWithDictionary(dict({{"k", 1}})));
  list->addObject(MutableSet::from(array(1)));
  const auto again = roundTrip(list).as<MutableArray>();
  ASSERT_TRUE(again);
  EXPECT_EQ(PropertyValue(again), PropertyValue(list));
  for (std::size_t i = 0; i < list->count(); ++i) {
    EXPECT_EQ(again->objectAtIndex(i).cls(), list->objectAtIndex(i).cls()) << i;
  }
}

TEST(Archiver, KeepsIdentity) {
  const auto shared = String::from("shared");
  const auto twice = String::from("shared");
  const auto again = roundTrip(array(shared, shared, twice)).as<Array>();
  EXPECT_TRUE(isSame(again->objectAtIndex(0), again->objectAtIndex(1)));
  EXPECT_FALSE(isSame(again->objectAtIndex(0), again->objectAtIndex(2)));
}

TEST(Archiver, KeepsClassesAsObjects) {
  const auto& c = classOf<coded::Person>();
  EXPECT_EQ(roundTrip(const_cast<Class*>(&c)).object(), &c);
}

TEST(Archiver, KeepsApplicationObjectsAndCycles) {
  const auto ann = make<coded::Person>();
  const auto bob = make<coded::Person>();
  ann->name = "Ann";
  bob->name = "Bob";
  bob->age = 42;
  ann->boss = bob;
  bob->boss = ann;
  bob->friends = array(ann, bob);
  const auto again = roundTrip(bob).as<coded::Person>();
  ASSERT_TRUE(again);
  EXPECT_EQ(again->name, "Bob");
  EXPECT_EQ(again->age, 42);
  EXPECT_EQ(again->boss->name, "Ann");
  EXPECT_EQ(again->boss->boss.get(), again.get());
  EXPECT_EQ(again->friends->objectAtIndex(1).object(), again.get());
  coded::Person::letGo();
}

TEST(Archiver, KeepsAnArrayThatHoldsItself) {
  const auto list = MutableArray::init();
  list->addObject(list);
  const auto again = roundTrip(list).as<MutableArray>();
  EXPECT_EQ(again->objectAtIndex(0).object(), again.get());
  again->removeAllObjects();
  list->removeAllObjects();
}

TEST(Archiver, WritesSeveralRootsInOrder) {
  Archiver a;
  a.encodeObject("one");
  a.encodeObject(nullptr);
  a.encodeObject(3);
  EXPECT_EQ(a.objectCount(), 3U);
  Unarchiver u(a.archiverData());
  EXPECT_EQ(u.decode<std::string>(), "one");
  EXPECT_FALSE(u.isAtEnd());
  EXPECT_TRUE(u.decodeObject().isNil());
  EXPECT_EQ(u.decode<int>(), 3);
  EXPECT_TRUE(u.isAtEnd());
  EXPECT_THROW(u.decodeObject(), InvalidArgumentException);
}

TEST(Archiver, RefusesClassesThatDeclareNoArchiving) {
  try {
    (void)Archiver::archivedDataWithRootObject(array(make<coded::Plain>()));
    FAIL();
  } catch (const InvalidArgumentException& e) {
    EXPECT_EQ(e.reason(), "-[NSArchiver encodeObject:]: the class Plain declares no archiving");
  }
}

TEST(Archiver, RefusesWhatIsNestedTooDeep) {
  Ref<Array> deep = array();
  for (std::size_t i = 1; i < kMaxArchiveDepth; ++i) deep = array(deep);
  EXPECT_EQ(roundTrip(deep), PropertyValue(deep));
  EXPECT_THROW((void)Archiver::archivedDataWithRootObject(array(deep)), InvalidArgumentException);
  for (int i = 0; i < 1'000'000; ++i) deep = array(deep);
  EXPECT_THROW((void)Archiver::archivedDataWithRootObject(deep), InvalidArgumentException);
}

TEST(Unarchiver, RaisesWhereNoErrorIsAskedFor) {
  EXPECT_THROW((void)Unarchiver::unarchiveObjectWithData(Data::from("x")),
               InvalidArgumentException);
  EXPECT_THROW((void)Unarchiver::unarchiveObjectWithData(nullptr), InvalidArgumentException);
}

}  // namespace
}  // namespace qx

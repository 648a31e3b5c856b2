#include "platform/immutable_copy.h"

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

namespace qx::detail {
namespace {

TEST(ImmutableCopy, SharesWhatIsImmutableThroughout) {
  const PropertyValue values[] = {
      nullptr,
      null,
      1,
      2.5,
      true,
      "text",
      Data::from("d"),
      Date::date(),
      array(1, "x", dict({{"a", array()}})),
      dict({{"k", array(dict())}}),
  };
  for (const PropertyValue& v : values) EXPECT_TRUE(isSame(immutableDeepCopy(v), v));
}

TEST(ImmutableCopy, CopiesMutablePartsAtEveryDepth) {
  const auto text = MutableString::from("text");
  const auto data = MutableData::from("data");
  const auto list = MutableArray::init();
  list->addObject(text);
  const auto map = MutableDictionary::init();
  map->setObject(list, "list");
  map->setObject(data, "data");
  const auto shared = array("untouched");
  const PropertyValue outer = array(map, shared, 1);
  const PropertyValue copy = immutableDeepCopy(outer);
  EXPECT_EQ(copy, outer);
  text->appendString("!");
  data->appendBytes("!");
  list->addObject(1);
  map->setObject(1, "new");
  EXPECT_EQ(copy, array(dict({{"list", array("text")}, {"data", Data::from("data")}}), shared, 1));
  EXPECT_TRUE(isSame(copy.as<Array>()->objectAtIndex(1), shared));
  EXPECT_TRUE(copy.as<Array>()->objectAtIndex(0).as<MutableDictionary>() == nullptr);
}

TEST(ImmutableCopy, KeepsTheOrderOfDictionariesWithHoles) {
  const auto map = MutableDictionary::init();
  for (int i = 0; i < 40; ++i) map->setObject(MutableString::from("v"), "k" + std::to_string(i));
  for (int i = 0; i < 40; i += 3) map->removeObjectForKey("k" + std::to_string(i));
  const PropertyValue copy = immutableDeepCopy(map);
  EXPECT_EQ(copy.description(), map->description());
}

TEST(ImmutableCopy, LeavesSetsAndObjectsAsTheyAre) {
  const auto set = MutableSet::init();
  const auto copy = immutableDeepCopy(array(set)).as<Array>();
  EXPECT_TRUE(isSame(copy->objectAtIndex(0), set));
}

TEST(ImmutableCopy, MeetsASharedContainerOnce) {
  PropertyValue value = PropertyValue(MutableArray::init());
  for (int i = 0; i < 100; ++i) {
    const auto twice = MutableArray::init();
    twice->addObject(value);
    twice->addObject(value);
    value = twice;
  }
  const auto copy = immutableDeepCopy(value).as<Array>();
  EXPECT_TRUE(isSame(copy->objectAtIndex(0), copy->objectAtIndex(1)));
}

TEST(ImmutableCopy, EndsOnWhatIsTooDeepOrHoldsItself) {
  PropertyValue deep = PropertyValue(MutableArray::init());
  for (int i = 0; i < 100'000; ++i) deep = array(deep);
  EXPECT_FALSE(
      PropertyListSerialization::propertyList(immutableDeepCopy(deep), PropertyListFormat::xml));
  const auto circle = MutableArray::init();
  circle->addObject(circle);
  circle->addObject(circle);
  EXPECT_FALSE(
      PropertyListSerialization::propertyList(immutableDeepCopy(circle), PropertyListFormat::xml));
  circle->removeAllObjects();
}

}  // namespace
}  // namespace qx::detail

// Key access through collections that nest deeply, hold themselves, or are widely shared.

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/person.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

using frame_test::Person;

PropertyValue nested(int depth, PropertyValue inner) {
  for (int i = 0; i < depth; ++i) inner = array(inner);
  return inner;
}

TEST(NestedKeyAccess, MapsUpTo500Levels) {
  const PropertyValue leaf = dict({{"a", 1}});
  EXPECT_EQ(nested(500, leaf)["a"], nested(500, 1));
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)nested(501, leaf)["a"]; }),
            "valueForKey: collections are nested more than 500 deep");
  const auto bob = make<Person>();
  nested(500, bob).setValue(5, "age");
  EXPECT_EQ(bob->age, 5);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { nested(501, bob).setValue(6, "age"); }),
            "setValue:forKey: collections are nested more than 500 deep");
  EXPECT_EQ(bob->age, 5);
}

TEST(NestedKeyAccess, RaisesForArraysThatHoldThemselves) {
  const auto a = MutableArray::init();
  a->addObject(a);
  a->addObject(a);
  EXPECT_THROW((void)PropertyValue(a)["x"], InvalidArgumentException);
  EXPECT_THROW(PropertyValue(a).setValue(1, "x"), InvalidArgumentException);
  a->removeAllObjects();
}

// 2^60 ways lead to the one leaf.
TEST(NestedKeyAccess, WalksSharedCollectionsOnce) {
  const auto leaf = MutableDictionary::init();
  leaf->setObject(1, "a");
  PropertyValue shared = leaf;
  for (int i = 0; i < 60; ++i) {
    shared = i % 2 == 0 ? PropertyValue(array(shared, shared)) : PropertyValue(array(shared, 0));
    if (i % 3 == 0) shared = array(shared, shared);
  }
  PropertyValue mapped = shared["a"];
  for (int i = 59; i >= 0; --i) {
    const auto a = mapped.as<Array>();
    ASSERT_EQ(a->count(), 2U);
    mapped = a->firstObject();
    if (i % 3 == 0) mapped = mapped.as<Array>()->firstObject();
  }
  EXPECT_EQ(mapped, PropertyValue(1));

  PropertyValue settable = leaf;
  for (int i = 0; i < 60; ++i) settable = array(settable, settable);
  settable.setValue(2, "a");
  EXPECT_EQ(leaf->objectForKey("a"), PropertyValue(2));
}

TEST(NestedKeyAccess, WalksSharedSetsOnce) {
  PropertyValue shared = Set::from(array(dict({{"a", 1}})));
  for (int i = 0; i < 40; ++i) shared = array(shared, shared);
  PropertyValue mapped = shared["a"];
  for (int i = 0; i < 40; ++i) mapped = mapped.as<Array>()->lastObject();
  EXPECT_EQ(mapped, PropertyValue(Set::from(array(1))));
}

TEST(NestedKeyAccess, FollowsLongPaths) {
  PropertyValue root = 1;
  std::string path;
  for (int i = 0; i < 10000; ++i) {
    root = dict({{"k", root}});
    path += i == 0 ? "k" : ".k";
  }
  EXPECT_EQ(root.valueForKeyPath(path), PropertyValue(1));
  EXPECT_TRUE(root.valueForKeyPath(path + ".k").isNil());
}

}  // namespace
}  // namespace qx

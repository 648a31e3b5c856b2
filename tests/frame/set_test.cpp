#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/set.h>

#include "tests/frame/counted.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

using frame_test::Counted;

TEST(Sets, KeepOneOfEqualMembers) {
  const auto one = String::from("one");
  const auto s = Set::from(array(one, "one", 1, 1.0, true, null, null));
  EXPECT_EQ(s->count(), 3U);
  EXPECT_TRUE(isSame(s->member("one"), one));  // the first stays
  EXPECT_TRUE(isSame(s->member(1.0), 1));
  EXPECT_TRUE(s->containsObject(true));
  EXPECT_FALSE(s->containsObject(2));
  EXPECT_TRUE(s->member(2).isNil());
  EXPECT_TRUE(s->member(nullptr).isNil());
  EXPECT_FALSE(s->containsObject(nullptr));
  EXPECT_EQ(PropertyValue(s->allObjects()), PropertyValue(array("one", 1, null)));
  EXPECT_EQ(Set::from(array())->count(), 0U);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { (void)Set::from(nullptr); }),
            "nil was used as an object in +[NSSet setWithArray:]");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { (void)MutableSet::from(nullptr); }),
            "nil was used as an object in +[NSMutableSet setWithArray:]");
}

TEST(Sets, CompareByTheirMembers) {
  const auto small = Set::from(array(1, 2));
  const auto large = Set::from(array(3, 2, 1));
  EXPECT_TRUE(small->isSubsetOfSet(large));
  EXPECT_FALSE(large->isSubsetOfSet(small));
  EXPECT_TRUE(small->isSubsetOfSet(small));
  EXPECT_TRUE(Set::from(array())->isSubsetOfSet(small));
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)small->isSubsetOfSet(nullptr); }),
            "nil was used as an object in -[NSSet isSubsetOfSet:]");
  EXPECT_THROW((void)Set::from(array())->isSubsetOfSet(nullptr), InvalidArgumentException);
  EXPECT_TRUE(PropertyValue(large) == PropertyValue(MutableSet::from(array(1, 2, 3))));
  EXPECT_FALSE(PropertyValue(large) == PropertyValue(array(3, 2, 1)));
  EXPECT_EQ(PropertyValue(large).hash(), PropertyValue(MutableSet::from(array(1, 2, 3))).hash());
}

TEST(Sets, Copy) {
  const auto s = MutableSet::from(array(1, 2));
  const PropertyValue fixed = PropertyValue(s).copy();
  const PropertyValue changing = fixed.mutableCopy();
  s->addObject(3);
  EXPECT_EQ(fixed, PropertyValue(Set::from(array(2, 1))));
  EXPECT_EQ(changing, fixed);
  EXPECT_STREQ(fixed.cls()->name(), "NSSet");
  EXPECT_STREQ(changing.cls()->name(), "NSMutableSet");
  EXPECT_TRUE(isSame(fixed.copy(), fixed));
}

TEST(MutableSets, ChangeInPlace) {
  const auto s = MutableSet::init();
  s->addObject("a");
  s->addObject("b");
  s->addObject("a");
  EXPECT_EQ(s->count(), 2U);
  s->removeObject("a");
  s->removeObject("absent");
  s->removeObject(nullptr);
  EXPECT_EQ(PropertyValue(s->allObjects()), PropertyValue(array("b")));
  s->addObject("a");
  EXPECT_EQ(PropertyValue(s->allObjects()), PropertyValue(array("b", "a")));
  s->removeObject(s->member("b"));
  s->addObject(s->member("a"));
  EXPECT_EQ(s->count(), 1U);
  s->removeAllObjects();
  EXPECT_EQ(s->count(), 0U);
  EXPECT_FALSE(s->containsObject("a"));
  s->addObject(1);
  EXPECT_EQ(s->count(), 1U);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { s->addObject(nullptr); }),
            "-[NSMutableSet addObject:]: nil can not be stored");
}

TEST(MutableSets, HoldManyMembers) {
  const auto s = MutableSet::init();
  for (int i = 0; i < 100'000; ++i) s->addObject("m" + std::to_string(i));
  EXPECT_EQ(s->count(), 100'000U);
  for (int i = 0; i < 100'000; i += 2) s->removeObject("m" + std::to_string(i));
  EXPECT_EQ(s->count(), 50'000U);
  for (int i = 0; i < 100'000; ++i) {
    ASSERT_EQ(s->containsObject("m" + std::to_string(i)), i % 2 == 1);
  }
  for (int i = 1; i < 100'000; i += 2) s->removeObject("m" + std::to_string(i));
  EXPECT_EQ(s->count(), 0U);
}

TEST(MutableSets, FollowAModel) {
  {
    std::mt19937 random(99);
    const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    const auto s = MutableSet::init();
    std::vector<PropertyValue> objects;
    for (int i = 0; i < 10; ++i) objects.push_back(make<Counted>());
    for (int i = 0; i < 40; ++i) objects.push_back(i);
    for (int i = 0; i < 40; ++i) objects.push_back("m" + std::to_string(i));
    for (int i = 0; i < 20; ++i) objects.push_back(array(i, "x"));
    std::vector<PropertyValue> model;
    for (int step = 0; step < 50000; ++step) {
      const PropertyValue& v = objects[below(objects.size())];
      const auto at = std::find(model.begin(), model.end(), v);
      ASSERT_EQ(s->containsObject(v), at != model.end());
      const bool growing = (step / 2000) % 2 == 0;
      if (below(10) < (growing ? 7U : 3U)) {
        s->addObject(v);
        if (at == model.end()) model.push_back(v);
      } else {
        s->removeObject(v);
        if (at != model.end()) model.erase(at);
      }
      ASSERT_EQ(s->count(), model.size());
      if (step % 500 == 0) {
        const auto all = s->allObjects();
        ASSERT_TRUE(std::equal(model.begin(), model.end(), all->begin(), all->end()));
      }
      if (step == 30000) {
        s->removeAllObjects();
        model.clear();
      }
    }
  }
  EXPECT_EQ(Counted::alive, 0);
}

}  // namespace
}  // namespace qx

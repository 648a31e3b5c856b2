// Containers of a tree at great depth and in circles, and the search through them.

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

namespace qx {
namespace {

TEST(DeepContainers, AreConvertedSearchedAndDestroyedWithoutNesting) {
  PropertyValue deep = array("bottom");
  for (int i = 0; i < 200'000; ++i)
    deep = i % 2 == 0 ? PropertyValue(array(deep)) : PropertyValue(dict({{"d", deep}}));
  const auto d = QXPreferencesDictionary::init();
  d->setObject(deep, "deep");
  EXPECT_TRUE(d->containsObject("bottom"));
  EXPECT_FALSE(d->containsObject("none"));
}

TEST(DeepContainers, ThatHoldThemselvesAreRefused) {
  const auto circle = MutableArray::init();
  circle->addObject(dict({{"back", circle}}));
  EXPECT_THROW(QXPreferencesDictionary::init()->setObject(circle, "k"), InvalidArgumentException);
  circle->removeAllObjects();
  const auto twice = MutableArray::init();
  const auto inner = array(1);
  twice->addObject(inner);
  twice->addObject(inner);
  const auto d = QXPreferencesDictionary::init();
  d->setObject(twice, "k");
  EXPECT_EQ(d->objectForKey("k"), array(array(1), array(1)));
}

// A circle of containers of a tree can be made by hand; the search ends all the same.
TEST(DeepContainers, InACircleAreSearchedOnce) {
  const auto a = QXPreferencesArray::init();
  const auto b = QXPreferencesArray::init();
  a->addObject(b);
  b->addObject(a);
  EXPECT_FALSE(a->containsObject(1));
  EXPECT_TRUE(a->containsObject(b));
  a->removeAllObjects();
  b->removeAllObjects();
}

TEST(ContainsObject, SearchesValuesThroughContainersOfATree) {
  const auto a = QXPreferencesArray::initWithArray(array(1, dict({{"a", array(2)}})), nullptr);
  EXPECT_TRUE(a->containsObject(1));
  EXPECT_TRUE(a->containsObject(2));
  EXPECT_TRUE(a->containsObject(array(2)));
  EXPECT_TRUE(a->containsObject(dict({{"a", array(2)}})));
  EXPECT_TRUE(a->containsObject(2.0)) << "by value";
  EXPECT_FALSE(a->containsObject("a")) << "no keys";
  EXPECT_FALSE(a->containsObject(3));
  EXPECT_FALSE(a->containsObject(nullptr));
  EXPECT_FALSE(a->containsObject(a));
  EXPECT_FALSE(QXPreferencesArray::init()->containsObject(1));
  EXPECT_FALSE(QXPreferencesDictionary::init()->containsObject(1));
  const auto quiet = QXPreferencesDictionary::init();
  quiet->setDictionary(dict({{"k", array(1, 2)}}));
  EXPECT_FALSE(quiet->containsObject(2)) << "not through plain containers";
  EXPECT_TRUE(quiet->containsObject(array(1, 2)));
}

}  // namespace
}  // namespace qx

#include <gtest/gtest.h>

#include <random>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/array.h>

#include "tests/frame/counted.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

using frame_test::Counted;

std::vector<PropertyValue> contents(const Array& a) {
  return std::vector<PropertyValue>(a.begin(), a.end());
}

TEST(Arrays, HoldWhatTheyAreMadeOf) {
  const auto a = array("x", 1, true, null, array());
  EXPECT_EQ(a->count(), 5U);
  EXPECT_EQ(a->objectAtIndex(0), PropertyValue("x"));
  EXPECT_EQ(a->objectAtIndex(3), PropertyValue(null));
  EXPECT_EQ(a->firstObject(), PropertyValue("x"));
  EXPECT_EQ(a->lastObject(), PropertyValue(array()));
  std::size_t n = 0;
  for (const PropertyValue& v : *a) EXPECT_TRUE(isSame(v, a->objectAtIndex(n++)));
  EXPECT_EQ(n, 5U);
  EXPECT_EQ(Array::init()->count(), 0U);
  EXPECT_EQ(array()->count(), 0U);
  EXPECT_TRUE(array()->firstObject().isNil());
  EXPECT_TRUE(array()->lastObject().isNil());
  const auto none = array();
  EXPECT_EQ(none->begin(), none->end());
  EXPECT_EQ(Array::from(nullptr, 0)->count(), 0U);
}

TEST(Arrays, RefuseNil) {
  const PropertyValue values[] = {1, nullptr};
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)Array::from(values, 2); }),
            "+[NSArray arrayWithObjects:count:]: nil can not be stored");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { (void)array(1, nullptr); }),
            "+[NSArray arrayWithObjects:count:]: nil can not be stored");
  EXPECT_EQ(
      reasonOf<InvalidArgumentException>([] { (void)array(1)->arrayByAddingObject(nullptr); }),
      "-[NSArray arrayByAddingObject:]: nil can not be stored");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)MutableArray::from(values, 2); }),
            "+[NSMutableArray arrayWithObjects:count:]: nil can not be stored");
}

TEST(Arrays, RaiseOutsideTheirRange) {
  const auto a = array(1, 2, 3);
  EXPECT_EQ(reasonOf<RangeException>([&] { (void)a->objectAtIndex(3); }),
            "-[NSArray objectAtIndex:]: index 3 is beyond the count 3");
  EXPECT_THROW((void)a->objectAtIndex(~std::size_t{0}), RangeException);
  EXPECT_THROW((void)array()->objectAtIndex(0), RangeException);
  for (const Range r : {Range{4, 0}, Range{3, 1}, Range{0, 4}, Range{1, ~std::size_t{0}},
                        Range{~std::size_t{0}, 1}}) {
    EXPECT_THROW((void)a->subarrayWithRange(r), RangeException);
  }
  EXPECT_EQ(reasonOf<RangeException>([&] { (void)a->subarrayWithRange({2, 2}); }),
            "-[NSArray subarrayWithRange:]: the range of 2 from 2 leaves the length 3");
}

TEST(Arrays, FindElements) {
  const auto one = String::from("one");
  const auto a = array(0, one, "one", 1.0, 1);
  EXPECT_EQ(a->indexOfObject("one"), 1U);
  EXPECT_EQ(a->indexOfObject(true), 3U);
  EXPECT_EQ(a->indexOfObject(2), kNotFound);
  EXPECT_EQ(a->indexOfObject(nullptr), kNotFound);
  EXPECT_EQ(a->indexOfObjectIdenticalTo(one), 1U);
  EXPECT_EQ(a->indexOfObjectIdenticalTo("one"), kNotFound);
  EXPECT_EQ(a->indexOfObjectIdenticalTo(1), 4U);
  EXPECT_TRUE(a->containsObject(1U));
  EXPECT_FALSE(a->containsObject(null));
}

TEST(Arrays, MakeOthers) {
  const auto a = array(1, 2, 3);
  EXPECT_EQ(PropertyValue(a->arrayByAddingObject(4)), PropertyValue(array(1, 2, 3, 4)));
  EXPECT_EQ(PropertyValue(a->subarrayWithRange({1, 2})), PropertyValue(array(2, 3)));
  EXPECT_EQ(PropertyValue(a->subarrayWithRange({3, 0})), PropertyValue(array()));
  EXPECT_EQ(a->count(), 3U);
  EXPECT_EQ(a->copy().get(), static_cast<Object*>(a.get()));
  EXPECT_TRUE(a->isEqualToArray(array(1, 2, 3)));
  EXPECT_FALSE(a->isEqualToArray(array(3, 2, 1)));
  EXPECT_FALSE(a->isEqualToArray(nullptr));
}

TEST(Arrays, CopyShallowly) {
  const auto inner = MutableArray::init();
  const auto outer = MutableArray::init();
  outer->addObject(inner);
  const PropertyValue copy = PropertyValue(outer).copy();
  const PropertyValue changing = PropertyValue(outer).mutableCopy();
  EXPECT_STREQ(copy.cls()->name(), "NSArray");
  EXPECT_STREQ(changing.cls()->name(), "NSMutableArray");
  outer->addObject(2);
  inner->addObject(1);
  EXPECT_EQ(copy, PropertyValue(array(array(1))));
  EXPECT_EQ(changing, PropertyValue(array(array(1))));
  EXPECT_TRUE(isSame(copy.as<Array>()->firstObject(), inner));
}

TEST(MutableArrays, ChangeInPlace) {
  const auto a = MutableArray::arrayWithCapacity(2);
  a->addObject(1);
  a->addObject(2);
  a->addObject(3);
  a->insertObject(0, 0);
  a->insertObject(4, 4);
  a->insertObject("mid", 2);
  EXPECT_EQ(PropertyValue(a), PropertyValue(array(0, 1, "mid", 2, 3, 4)));
  a->replaceObjectAtIndex(2, 1.5);
  a->exchangeObjectAtIndex(0, 5);
  a->exchangeObjectAtIndex(1, 1);
  EXPECT_EQ(PropertyValue(a), PropertyValue(array(4, 1, 1.5, 2, 3, 0)));
  a->removeObjectAtIndex(0);
  a->removeLastObject();
  a->removeObject(1.5);
  EXPECT_EQ(PropertyValue(a), PropertyValue(array(1, 2, 3)));
  a->setArray(array("x"));
  a->addObjectsFromArray(array("y", "z"));
  a->addObjectsFromArray(nullptr);
  EXPECT_EQ(PropertyValue(a), PropertyValue(array("x", "y", "z")));
  a->setArray(nullptr);
  EXPECT_EQ(a->count(), 0U);
  a->reserve(1000);
  EXPECT_EQ(a->count(), 0U);
  a->removeAllObjects();
  a->addObject(1);
  EXPECT_EQ(a->count(), 1U);
}

TEST(MutableArrays, RemoveEveryEqualElement) {
  const auto a = MutableArray::from(array(1, "x", 1.0, true, 2, 1)->begin(), 6);
  a->removeObject(1);
  EXPECT_EQ(PropertyValue(a), PropertyValue(array("x", 2)));
  a->removeObject(7);
  a->removeObject(nullptr);
  EXPECT_EQ(a->count(), 2U);
}

TEST(MutableArrays, TakeTheirOwnElementsAndThemselves) {
  const auto a = MutableArray::init();
  a->addObject(String::from("first"));
  for (int i = 0; i < 100; ++i) a->addObject(a->objectAtIndex(0));
  for (int i = 0; i < 100; ++i) a->insertObject(a->objectAtIndex(a->count() - 1), 0);
  EXPECT_EQ(a->count(), 201U);
  EXPECT_EQ(a->lastObject(), PropertyValue("first"));
  a->addObjectsFromArray(a);
  EXPECT_EQ(a->count(), 402U);
  a->setArray(a);
  EXPECT_EQ(a->count(), 402U);
  a->replaceObjectAtIndex(0, a->objectAtIndex(1));
  a->removeObject(a->objectAtIndex(0));
  EXPECT_EQ(a->count(), 0U);
  a->addObject(a);
  EXPECT_TRUE(isSame(a->firstObject(), a));
  a->removeAllObjects();
}

TEST(MutableArrays, RefuseNilAndWrongIndexes) {
  const auto a = MutableArray::from(array(1, 2)->begin(), 2);
  const struct {
    void (*change)(MutableArray&);
    const char* reason;
  } nils[] = {
      {[](MutableArray& m) { m.addObject(nullptr); },
       "-[NSMutableArray addObject:]: nil can not be stored"},
      {[](MutableArray& m) { m.insertObject(nullptr, 0); },
       "-[NSMutableArray insertObject:atIndex:]: nil can not be stored"},
      {[](MutableArray& m) { m.replaceObjectAtIndex(0, nullptr); },
       "-[NSMutableArray replaceObjectAtIndex:withObject:]: nil can not be stored"},
  };
  for (const auto& c : nils) {
    EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { c.change(*a); }), c.reason);
  }
  const struct {
    void (*change)(MutableArray&);
    const char* reason;
  } ranges[] = {
      {[](MutableArray& m) { m.insertObject(1, 3); },
       "-[NSMutableArray insertObject:atIndex:]: index 3 is beyond the count 2"},
      {[](MutableArray& m) { m.replaceObjectAtIndex(2, 1); },
       "-[NSMutableArray replaceObjectAtIndex:withObject:]: index 2 is beyond the count 2"},
      {[](MutableArray& m) { m.removeObjectAtIndex(2); },
       "-[NSMutableArray removeObjectAtIndex:]: index 2 is beyond the count 2"},
      {[](MutableArray& m) { m.exchangeObjectAtIndex(0, 2); },
       "-[NSArray objectAtIndex:]: index 2 is beyond the count 2"},
      {[](MutableArray&) { MutableArray::init()->removeLastObject(); },
       "-[NSMutableArray removeLastObject]: index 0 is beyond the count 0"},
  };
  for (const auto& c : ranges) {
    EXPECT_EQ(reasonOf<RangeException>([&] { c.change(*a); }), c.reason);
  }
  EXPECT_EQ(PropertyValue(a), PropertyValue(array(1, 2)));
  EXPECT_THROW(a->reserve(~std::size_t{0}), std::bad_alloc);
  EXPECT_EQ(a->count(), 2U);
}

// What an element does as it dies sees the array whole.
class Mourner : public Object {
 public:
  explicit Mourner(MutableArray* a) : array(a) {}
  MutableArray* array;
  static inline std::vector<std::size_t> counts;

 protected:
  ~Mourner() override {
    counts.push_back(array->count());
    for (const PropertyValue& v : *array) EXPECT_FALSE(v.isNil());
    if (array->count() < 3) array->addObject("mourned");
  }
};
void describe(ClassBuilder<Mourner>& c) { c.name("FrameTestMourner"); }

TEST(MutableArrays, AreWholeWhenTheirElementsDie) {
  const auto a = MutableArray::init();
  Mourner::counts.clear();
  for (int i = 0; i < 4; ++i) a->addObject(make<Mourner>(a.get()));
  a->removeObjectAtIndex(0);
  a->removeLastObject();
  a->replaceObjectAtIndex(0, 1);
  EXPECT_EQ(Mourner::counts, (std::vector<std::size_t>{3, 2, 3}));
  EXPECT_EQ(a->lastObject(), PropertyValue("mourned"));
  a->removeAllObjects();
  EXPECT_EQ(Mourner::counts.back(), 0U);
  EXPECT_EQ(PropertyValue(a), PropertyValue(array("mourned")));
}

// Sees every change, as the six primitives carry all of them.
class Watched : public MutableArray {
 public:
  std::vector<std::string> calls;
  void addObject(const PropertyValue& v) override {
    calls.push_back("add " + v.description());
    MutableArray::addObject(v);
  }
  void insertObject(const PropertyValue& v, std::size_t i) override {
    calls.push_back("insert " + v.description() + " at " + std::to_string(i));
    MutableArray::insertObject(v, i);
  }
  void replaceObjectAtIndex(std::size_t i, const PropertyValue& v) override {
    calls.push_back("replace " + std::to_string(i) + " by " + v.description());
    MutableArray::replaceObjectAtIndex(i, v);
  }
  void removeObjectAtIndex(std::size_t i) override {
    calls.push_back("remove " + std::to_string(i));
    MutableArray::removeObjectAtIndex(i);
  }
  void removeLastObject() override {
    calls.push_back("remove last");
    MutableArray::removeLastObject();
  }
  void removeAllObjects() override {
    calls.push_back("remove all");
    MutableArray::removeAllObjects();
  }
};
void describe(ClassBuilder<Watched>& c) { c.name("FrameTestWatched").inherits<MutableArray>(); }

TEST(MutableArrays, GoThroughThePrimitivesOfASubclass) {
  const auto a = make<Watched>();
  a->addObjectsFromArray(array(1, 2));
  a->setArray(array(3, 4, 3));
  a->exchangeObjectAtIndex(0, 1);
  a->removeObject(3);
  performSelector(a, "addObject:", 5);
  performSelector(a, "insertObject:atIndex:", 6, 0);
  performSelector(a, "removeLastObject");
  performSelector(a, "removeAllObjects");
  const std::vector<std::string> expected = {
      "add 1", "add 2",          "remove all",     "add 3",     "add 4",
      "add 3", "replace 0 by 4", "replace 1 by 3", "remove 2",  "remove 1",
      "add 5", "insert 6 at 0",  "remove last",    "remove all"};
  EXPECT_EQ(a->calls, expected);
  EXPECT_STREQ(a->cls().name(), "FrameTestWatched");
  EXPECT_STREQ(PropertyValue(a).copy().cls()->name(), "NSArray");
  EXPECT_STREQ(PropertyValue(a).mutableCopy().cls()->name(), "NSMutableArray");
}

// Random changes against a vector.
TEST(MutableArrays, FollowAModel) {
  std::mt19937 random(7);
  const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  {
    const auto a = MutableArray::init();
    std::vector<PropertyValue> model;
    for (int step = 0; step < 20000; ++step) {
      const PropertyValue v = below(3) == 0 ? PropertyValue(make<Counted>())
                                            : PropertyValue(static_cast<int>(below(10)));
      const std::size_t at = below(model.size() + 1);
      const auto place = model.begin() + static_cast<std::ptrdiff_t>(at);
      switch (below(6)) {
        case 0:
        case 1:
          a->addObject(v);
          model.push_back(v);
          break;
        case 2:
          a->insertObject(v, at);
          model.insert(place, v);
          break;
        case 3:
          if (at == model.size()) break;
          a->replaceObjectAtIndex(at, v);
          model[at] = v;
          break;
        case 4:
          if (at == model.size()) break;
          a->removeObjectAtIndex(at);
          model.erase(place);
          break;
        default:
          if (model.size() < 100) break;
          a->removeObject(v);
          std::erase(model, v);
      }
      ASSERT_EQ(a->count(), model.size());
      if (step % 100 == 0) {
        ASSERT_EQ(contents(*a), model);
      }
    }
    ASSERT_EQ(contents(*a), model);
  }
  EXPECT_EQ(Counted::alive, 0);
}

}  // namespace
}  // namespace qx

#include <gtest/gtest.h>

#include <algorithm>

#include <QXFoundation/mutable_array_operations.h>

#include "tests/collections/sample_objects.h"

namespace {

using qx::array;
using qx::PropertyValue;
using samples::arrayOf;
using samples::containsPlainly;
using samples::mutableArrayOf;
using samples::randomValues;
using samples::sameObjects;
using samples::Values;

// An array that notes what is done to it through the primitives.
class NotingArray : public qx::MutableArray {
 public:
  void addObject(const PropertyValue& value) override {
    notes += "+" + value.description();
    MutableArray::addObject(value);
  }
  void replaceObjectAtIndex(std::size_t index, const PropertyValue& value) override {
    notes += "=" + std::to_string(index);
    MutableArray::replaceObjectAtIndex(index, value);
  }
  void removeObjectAtIndex(std::size_t index) override {
    notes += "-" + std::to_string(index);
    MutableArray::removeObjectAtIndex(index);
  }
  void removeLastObject() override {
    notes += "-last";
    MutableArray::removeLastObject();
  }
  std::string notes;
};
void describe(qx::ClassBuilder<NotingArray>& c) {
  c.name("NotingArray").inherits<qx::MutableArray>();
}

qx::Ref<NotingArray> notingArray(const Values& values) {
  auto a = qx::make<NotingArray>();
  for (const PropertyValue& v : values) a->addObject(v);
  a->notes.clear();
  return a;
}

TEST(MutableArrayOperations, AddCheckNilTakesAllButNil) {
  const auto a = qx::MutableArray::init();
  addObjectCheckNil(a, nullptr);
  addObjectCheckNil(a, "x");
  addObjectCheckNil(a, "x");
  addObjectCheckNil(a, qx::null);
  EXPECT_EQ(PropertyValue(a), array("x", "x", qx::null));
}

TEST(MutableArrayOperations, AddIfAbsentTellsWhetherItAdded) {
  const auto a = mutableArrayOf({"x"});
  EXPECT_FALSE(addObjectIfAbsent(a, qx::MutableString::from("x")));
  EXPECT_FALSE(addObjectIfAbsent(a, nullptr));
  EXPECT_TRUE(addObjectIfAbsent(a, "y"));
  addObjectIfMissing(a, "y");
  addObjectIfMissing(a, nullptr);
  addObjectIfMissing(a, "z");
  EXPECT_EQ(PropertyValue(a), array("x", "y", "z"));
}

TEST(MutableArrayOperations, AddArrayIfAbsentSeesWhatItAdded) {
  const auto a = mutableArrayOf({"a"});
  addObjectsFromArrayIfAbsent(a, array("b", "a", "b", "c"));
  EXPECT_EQ(PropertyValue(a), array("a", "b", "c"));
  addObjectsFromArrayIfAbsent(a, a);
  addObjectsFromArrayIfAbsent(a, nullptr);
  EXPECT_EQ(a->count(), 3U);
}

TEST(MutableArrayOperations, InsertIfAbsentInsertsNilToRaise) {
  const auto a = mutableArrayOf({"a", "b"});
  EXPECT_TRUE(insertObjectIfAbsent(a, "c", 1));
  EXPECT_FALSE(insertObjectIfAbsent(a, "a", 1));
  EXPECT_FALSE(insertObjectIfAbsent(a, "a", 99));
  EXPECT_THROW(insertObjectIfAbsent(a, nullptr, 0), qx::InvalidArgumentException);
  EXPECT_THROW(insertObjectIfAbsent(a, "d", 4), qx::RangeException);
  EXPECT_TRUE(insertObjectIfAbsent(a, "d", 3));
  EXPECT_EQ(PropertyValue(a), array("a", "c", "b", "d"));
}

TEST(MutableArrayOperations, RemoveNotInArrayKeepsTheOrder) {
  const auto a = mutableArrayOf({"a", "b", "a", "c"});
  removeObjectsNotInArray(a, array("c", "a"));
  EXPECT_EQ(PropertyValue(a), array("a", "a", "c"));
  removeObjectsNotInArray(a, a);
  EXPECT_EQ(a->count(), 3U);
  removeObjectsNotInArray(a, qx::Array::init());
  EXPECT_EQ(a->count(), 0U);
  const auto b = mutableArrayOf({"a"});
  removeObjectsNotInArray(b, nullptr);
  EXPECT_EQ(b->count(), 0U);
}

TEST(MutableArrayOperations, RemoveUsingIsEqualTakesOneForEach) {
  const auto a = mutableArrayOf({"a", "a", "b"});
  removeObjectsInArrayUsingIsEqual(a, array("a"));
  EXPECT_EQ(PropertyValue(a), array("a", "b"));
  removeObjectsInArrayUsingIsEqual(a, array("a", "a", "x"));
  EXPECT_EQ(PropertyValue(a), array("b"));
  removeObjectsInArrayUsingIsEqual(a, nullptr);
  removeObjectsInArrayUsingIsEqual(a, a);
  EXPECT_EQ(a->count(), 0U);
}

TEST(MutableArrayOperations, NilReceiversDoNothing) {
  const qx::Ref<qx::MutableArray> nil;
  addObjectCheckNil(nil, "x");
  addObjectIfMissing(nil, "x");
  addObjectsFromArrayIfAbsent(nil, array("x"));
  removeObjectsNotInArray(nil, array("x"));
  removeObjectsInArrayUsingIsEqual(nil, array("x"));
  EXPECT_FALSE(addObjectIfAbsent(nil, "x"));
  EXPECT_FALSE(insertObjectIfAbsent(nil, nullptr, 7));
}

TEST(MutableArrayOperations, AnElementMayBeItsOwnArgument) {
  const auto a = mutableArrayOf({"a"});
  addObjectCheckNil(a, a->objectAtIndex(0));
  EXPECT_FALSE(addObjectIfAbsent(a, a->objectAtIndex(1)));
  EXPECT_EQ(PropertyValue(a), array("a", "a"));
}

TEST(MutableArrayOperations, ClassesOfArraysSeeTheirChanges) {
  const auto a = notingArray({"a", "b", "c", "b"});
  removeObjectsNotInArray(a, array("a", "c"));
  EXPECT_EQ(a->notes, "-3-1");
  a->notes.clear();
  addObjectsFromArrayIfAbsent(a, array("c", "d"));
  EXPECT_EQ(a->notes, "+d");
  a->notes.clear();
  removeObjectsInArrayUsingIsEqual(a, array("d", "a"));
  EXPECT_EQ(a->notes, "-2-0");
  EXPECT_EQ(PropertyValue(a), array("c"));
}

// Puts what it is given to the front.
class FrontArray : public qx::MutableArray {
 public:
  void addObject(const PropertyValue& object) override { insertObject(object, 0); }
};
void describe(qx::ClassBuilder<FrontArray>& c) {
  c.name("FrontArray").inherits<qx::MutableArray>();
}

TEST(MutableArrayOperations, ClassesOfArraysMayPutWhatIsAddedAnywhere) {
  const auto a = qx::make<FrontArray>();
  a->addObject("c");
  addObjectsFromArrayIfAbsent(a, array("b", "b", "c", "a", "b", "a", "x1", "x2", "x3", "x2", "x1"));
  EXPECT_EQ(PropertyValue(a), array("x3", "x2", "x1", "a", "b", "c"));
}

// Its comparison changes the array that is being changed.
class Intruder : public qx::Object {
 public:
  explicit Intruder(qx::MutableArray* a) : array_(a) {}
  bool isEqual(const PropertyValue&) const override {
    array_->addObject("intruded");
    return false;
  }

 private:
  qx::MutableArray* array_;
};
void describe(qx::ClassBuilder<Intruder>& c) { c.name("Intruder"); }

TEST(MutableArrayOperations, AnArrayChangedMeanwhileRaises) {
  const auto a = mutableArrayOf({"a", "b"});
  EXPECT_THROW(removeObjectsNotInArray(a, array(qx::make<Intruder>(a.get()))),
               qx::GenericException);
  EXPECT_EQ(PropertyValue(a), array("a", "b", "intruded", "intruded"));
}

// Its comparison lets go of the array.
class Dropper : public qx::Object {
 public:
  explicit Dropper(qx::Ref<qx::MutableArray>* a) : array_(a) {}
  bool isEqual(const PropertyValue&) const override {
    *array_ = nullptr;
    return false;
  }

 private:
  qx::Ref<qx::MutableArray>* array_;
};
void describe(qx::ClassBuilder<Dropper>& c) { c.name("Dropper"); }

TEST(MutableArrayOperations, ComparisonsMayLetGoOfTheArray) {
  qx::Ref<qx::MutableArray> a;
  const auto fill = [&] { a = mutableArrayOf({qx::make<Dropper>(&a)}); };
  fill();
  EXPECT_TRUE(addObjectIfAbsent(a, "x"));
  fill();
  EXPECT_TRUE(insertObjectIfAbsent(a, "x", 0));
  fill();
  addObjectsFromArrayIfAbsent(a, array("x"));
  fill();
  removeObjectsInArrayUsingIsEqual(a, array("x"));
  EXPECT_EQ(a, nullptr);
}

TEST(MutableArrayOperations, AgreeWithTheirDefinitionOnRandomArrays) {
  std::mt19937 random(11);
  for (int i = 0; i < 3000; ++i) {
    const Values left = randomValues(random, 40);
    const Values right = randomValues(random, 40);

    const auto added = mutableArrayOf(left);
    addObjectsFromArrayIfAbsent(added, arrayOf(right));
    Values union_ = left;
    for (const auto& v : right) {
      if (!containsPlainly(union_, v)) union_.push_back(v);
    }
    ASSERT_TRUE(sameObjects(*added, union_));

    const auto kept = mutableArrayOf(left);
    removeObjectsNotInArray(kept, arrayOf(right));
    Values common = left;
    std::erase_if(common, [&](const auto& e) { return !containsPlainly(right, e); });
    ASSERT_TRUE(sameObjects(*kept, common));

    const auto removed =
        i % 2 == 0 ? mutableArrayOf(left) : qx::Ref<qx::MutableArray>(notingArray(left));
    removeObjectsInArrayUsingIsEqual(removed, arrayOf(right));
    Values rest = left;
    for (const auto& v : right) {
      const auto first =
          std::find_if(rest.begin(), rest.end(), [&](const auto& e) { return e == v; });
      if (first != rest.end()) rest.erase(first);
    }
    ASSERT_TRUE(sameObjects(*removed, rest));
  }
}

}  // namespace

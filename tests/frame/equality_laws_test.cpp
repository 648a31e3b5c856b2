// Equality and hash over all pairs of values of every kind.

#include <gtest/gtest.h>

#include <optional>

#include <QXFoundation/QXFoundation.h>

#include "frame/numeric.h"
#include "tests/frame/print_values.h"
#include "tests/frame/sample_values.h"

namespace qx {
namespace {

using frame_test::Point;
using frame_test::Sample;
using frame_test::sampleValues;

// Of a number the kind that it remembers.
std::optional<NumberKind> kindOf(const PropertyValue& v) {
  detail::NumericValue n;
  if (!detail::numericOf(v, n)) return std::nullopt;
  return n.kind;
}

TEST(EqualityLaws, HoldForAllPairsOfValues) {
  const std::vector<Sample> samples = sampleValues();
  for (const Sample& a : samples) {
    for (const Sample& b : samples) {
      const bool expected = a.group == b.group;
      ASSERT_EQ(a.value == b.value, expected) << a.group << " / " << b.group;
      ASSERT_EQ(isEqual(a.value, b.value), expected);
      ASSERT_EQ(a.value.isEqual(b.value), expected);
      ASSERT_EQ(a.value.isEqualTo(b.value), expected);
      ASSERT_EQ(a.value.isNotEqualTo(b.value), !expected);
      if (expected) {
        ASSERT_EQ(a.value.hash(), b.value.hash()) << a.group;
      }
    }
  }
}

TEST(EqualityLaws, SeparateNilFromEveryValue) {
  const PropertyValue nil;
  EXPECT_TRUE(nil == nil);
  EXPECT_TRUE(nil == PropertyValue(nullptr));
  EXPECT_FALSE(nil.isEqualTo(nil));  // a message to nil answers no
  for (const Sample& s : sampleValues()) {
    EXPECT_FALSE(s.value == nil) << s.group;
    EXPECT_FALSE(nil == s.value) << s.group;
    EXPECT_FALSE(s.value == nullptr) << s.group;
    EXPECT_FALSE(s.value.isEqualTo(nil)) << s.group;
    EXPECT_TRUE(s.value.isNotEqualTo(nil)) << s.group;
  }
}

TEST(EqualityLaws, MakeIdenticalValuesEqual) {
  const std::vector<Sample> samples = sampleValues();
  std::size_t identical = 0;
  for (const Sample& a : samples) {
    for (const Sample& b : samples) {
      ASSERT_EQ(isSame(a.value, b.value), isSame(b.value, a.value)) << a.group << " / " << b.group;
      if (!isSame(a.value, b.value)) continue;
      ++identical;
      ASSERT_EQ(a.group, b.group);
      ASSERT_TRUE(a.value == b.value) << a.group;
      ASSERT_EQ(a.value.cls(), b.value.cls()) << a.group;
      ASSERT_EQ(kindOf(a.value), kindOf(b.value)) << a.group;
      ASSERT_EQ(a.value.description(), b.value.description()) << a.group;
    }
  }
  EXPECT_GT(identical, samples.size());  // inline ones are, without being the same variable
}

TEST(EqualityLaws, TellIdenticalNumbersByKind) {
  const std::vector<Sample> samples = sampleValues();
  for (const Sample& a : samples) {
    for (const Sample& b : samples) {
      if (a.value.object() != nullptr || b.value.object() != nullptr) continue;
      const bool expected = a.group == b.group && kindOf(a.value) == kindOf(b.value) &&
                            a.value.description() == b.value.description();
      ASSERT_EQ(isSame(a.value, b.value), expected) << a.group << " / " << b.group;
    }
  }
}

TEST(EqualityLaws, HoldForCopies) {
  for (const Sample& s : sampleValues()) {
    if (s.value.peek<Point>() != nullptr) continue;  // has no copies
    const PropertyValue copy = s.value.copy();
    EXPECT_EQ(copy, s.value) << s.group;
    EXPECT_EQ(s.value, copy) << s.group;
    EXPECT_EQ(copy.hash(), s.value.hash()) << s.group;
    EXPECT_TRUE(isSame(copy.copy(), copy)) << s.group << ": a copy is immutable";
  }
}

TEST(EqualityLaws, HoldInsideContainers) {
  const std::vector<Sample> samples = sampleValues();
  for (const Sample& a : samples) {
    const PropertyValue arrayA = array(a.value);
    const PropertyValue dictA = dict({{"k", a.value}});
    const PropertyValue setA = Set::from(array(a.value));
    for (const Sample& b : samples) {
      const bool expected = a.group == b.group;
      const PropertyValue arrayB = array(b.value);
      const PropertyValue dictB = dict({{"k", b.value}});
      const PropertyValue setB = Set::from(array(b.value));
      ASSERT_EQ(arrayA == arrayB, expected) << a.group << " / " << b.group;
      ASSERT_EQ(dictA == dictB, expected) << a.group << " / " << b.group;
      ASSERT_EQ(setA == setB, expected) << a.group << " / " << b.group;
      if (expected) {
        ASSERT_EQ(arrayA.hash(), arrayB.hash()) << a.group;
        ASSERT_EQ(dictA.hash(), dictB.hash()) << a.group;
        ASSERT_EQ(setA.hash(), setB.hash()) << a.group;
      }
    }
  }
}

TEST(EqualityLaws, LetSetsKeepOneOfEachGroup) {
  const std::vector<Sample> samples = sampleValues();
  const auto set = MutableSet::init();
  std::vector<std::string> groups;
  for (const Sample& s : samples) {
    if (groups.empty() || groups.back() != s.group) groups.push_back(s.group);
    set->addObject(s.value);
  }
  EXPECT_EQ(set->count(), groups.size());
  for (const Sample& s : samples) EXPECT_TRUE(set->containsObject(s.value)) << s.group;
}

// An element whose class overrides equality is asked itself, the other side's is not.
class Wild : public Object {
 public:
  bool isEqual(const PropertyValue& other) const override {
    ++asked;
    return other.isString();
  }
  std::size_t hash() const override { return 1; }
  static inline int asked = 0;
};
void describe(ClassBuilder<Wild>& c) { c.name("FrameTestWild"); }

TEST(AsymmetricEquality, AsksTheLeftElement) {
  const PropertyValue wild = make<Wild>();
  EXPECT_TRUE(wild == PropertyValue("text"));
  EXPECT_FALSE(PropertyValue("text") == wild);
  EXPECT_TRUE(wild != PropertyValue(1));
  Wild::asked = 0;
  EXPECT_TRUE(PropertyValue(array(wild)) == PropertyValue(array("text")));
  EXPECT_EQ(Wild::asked, 1);
  EXPECT_FALSE(PropertyValue(array("text")) == PropertyValue(array(wild)));
  EXPECT_EQ(Wild::asked, 1);
  EXPECT_TRUE(PropertyValue(dict({{"k", wild}})) == PropertyValue(dict({{"k", "text"}})));
  EXPECT_FALSE(PropertyValue(dict({{"k", "text"}})) == PropertyValue(dict({{"k", wild}})));
  EXPECT_TRUE(array(wild)->containsObject("sought"));
  EXPECT_FALSE(array("element")->containsObject(wild));
  EXPECT_EQ(array(1, wild)->indexOfObject("sought"), 1U);
  EXPECT_TRUE(PropertyValue(array(array(wild))) == PropertyValue(array(array("text"))));
  EXPECT_TRUE(PropertyValue(dict({{"k", wild}})).doesContain("text"));
  EXPECT_FALSE(PropertyValue(dict({{"k", "text"}})).doesContain(wild));
}

// A container class with an equality of its own is asked too, also deep inside others.
class EqualToAll : public MutableArray {
 public:
  bool isEqual(const PropertyValue&) const override { return true; }
  std::size_t hash() const override { return 7; }
};
void describe(ClassBuilder<EqualToAll>& c) {
  c.name("FrameTestEqualToAll").inherits<MutableArray>();
}

TEST(AsymmetricEquality, AsksContainerClassesThatOverrideIt) {
  const PropertyValue all = make<EqualToAll>();
  EXPECT_TRUE(all == PropertyValue(1));
  EXPECT_FALSE(PropertyValue(1) == all);
  EXPECT_TRUE(PropertyValue(array(all)) == PropertyValue(array("anything")));
  EXPECT_FALSE(PropertyValue(array(array(5))) == PropertyValue(array(all)));
  EXPECT_TRUE(PropertyValue(array(array())) == PropertyValue(array(all)));  // its elements count
  EXPECT_TRUE(PropertyValue(array(dict({{"k", all}}))) ==
              PropertyValue(array(dict({{"k", null}}))));
  EXPECT_EQ(PropertyValue(array(all)).hash(), PropertyValue(array(make<EqualToAll>())).hash());
}

}  // namespace
}  // namespace qx

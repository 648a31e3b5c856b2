// Very deep and very wide trees, and trees that are none.

#include <gtest/gtest.h>

#include <string>

#include <QXFoundation/exception.h>
#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier.h>

namespace qx {
namespace {

constexpr int kDepth = 1'000'000;

Ref<QXQualifier> leaf() { return QXKeyValueQualifier::initWithKey("a", "isEqualTo:", 1); }

struct Row {
  int a = 1;
};
void describe(ClassBuilder<Row>& c) { c.name("DeepTreeRow").property("a", &Row::a); }

void useEverything(const Ref<QXQualifier>& q, bool expected) {
  const auto object = dict({{"a", 1}});
  EXPECT_EQ(q->evaluateWithObject(object), expected);
  EXPECT_EQ(filteredArrayUsingQualifier(array(object), q)->count(), expected ? 1U : 0U);
  EXPECT_EQ(Matching<Row>(q)(Row{}), expected);
  EXPECT_LE(q->description().size(), 4096U);
  const auto copy = PropertyValue(q->copy()).as<QXQualifier>();
  EXPECT_EQ(copy->evaluateWithObject(object), expected);
}

TEST(DeepTree, AMillionNots) {
  Ref<QXQualifier> q = leaf();
  for (int i = 0; i < kDepth; ++i) q = QXNotQualifier::initWithQualifier(q);
  useEverything(q, true);
  EXPECT_FALSE(q->evaluateWithObject(nullptr));
}

TEST(DeepTree, AMillionAndsAndOrs) {
  Ref<QXQualifier> q = leaf();
  for (int i = 0; i < kDepth; ++i) {
    if (i % 2 == 0) {
      q = QXAndQualifier::initWithQualifierArray(array(q));
    } else {
      q = QXOrQualifier::initWithQualifierArray(array(q));
    }
  }
  useEverything(q, true);
}

TEST(DeepTree, AFormatOfChangingConnectives) {
  std::string format = "a = a";
  for (int i = 0; i < 200000; ++i) format += i % 2 == 0 ? " and a = a" : " or a = a";
  const auto q = qualifierWithQualifierFormat(runtimeFormat(format));
  EXPECT_TRUE(q->evaluateWithObject(dict({{"a", 1}})));
}

TEST(DeepTree, AMillionMembers) {
  const auto members = MutableArray::init();
  for (int i = 0; i < kDepth; ++i) members->addObject(leaf());
  useEverything(
      QXAndQualifier::initWithQualifierArray(Array::from(members->begin(), members->count())),
      true);
}

TEST(DeepTree, SharedPartsAreNotMultiplied) {
  // 2^64 comparisons, of which the first decides.
  Ref<QXQualifier> q = leaf();
  for (int i = 0; i < 64; ++i) q = QXOrQualifier::initWithQualifierArray(array(q, q));
  useEverything(q, true);
}

TEST(DeepTree, AQualifierThatHoldsItselfRaises) {
  const auto members = MutableArray::init();
  const auto q = QXAndQualifier::initWithQualifierArray(members);
  members->addObject(q);
  EXPECT_THROW((void)q->evaluateWithObject(dict()), InvalidArgumentException);
  EXPECT_THROW((void)filteredArrayUsingQualifier(array(1), q), InvalidArgumentException);
  members->removeAllObjects();
}

}  // namespace
}  // namespace qx

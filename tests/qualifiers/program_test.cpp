// The compiled forms against the plain evaluation: random trees over random objects of many kinds.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier.h>
#include <QXFoundation/qualifier_explanation.h>

#include "tests/qualifiers/generator.h"

namespace qx {
namespace {

using generated::asDictionary;
using generated::Native;
using generated::Plain;

auto generator(unsigned seed) {
  return generated::Generator(
      [random = std::mt19937(seed)](std::size_t n) mutable { return random() % n; });
}

TEST(CompiledEvaluation, AgreesWithThePlainOne) {
  auto g = generator(7);
  for (int round = 0; round < 3000; ++round) {
    const Ref<QXQualifier> q = g.tree();
    const auto list = MutableArray::init();
    std::vector<Plain> rows(4);
    for (int n = 0; n < 6; ++n) list->addObject(g.dictionary());
    for (int n = 0; n < 4; ++n) {
      const auto object = make<Native>();
      g.fill(*object);
      list->addObject(object);
    }
    for (int n = 0; n < 4; ++n) list->addObject(g.object());
    const auto expected = MutableArray::init();
    for (const PropertyValue& object : *list) {
      const bool result = q->evaluateWithObject(object);
      ASSERT_EQ(explain(q, object).result(), result) << PropertyValue(q).description();
      if (result) expected->addObject(object);
    }
    const auto hits = filteredArrayUsingQualifier(list, q);
    ASSERT_EQ(hits->count(), expected->count()) << PropertyValue(q).description();
    for (std::size_t i = 0; i < hits->count(); ++i) {
      ASSERT_TRUE(isSame(hits->objectAtIndex(i), expected->objectAtIndex(i)));
    }
    const Matching<Plain> matching(q);
    for (Plain& row : rows) {
      g.fill(row);
      ASSERT_EQ(matching(row), q->evaluateWithObject(asDictionary(row)))
          << PropertyValue(q).description();
    }
  }
}

// Laws that hold for every tree and object.
TEST(EvaluationLaws, Hold) {
  auto g = generator(11);
  for (int round = 0; round < 3000; ++round) {
    const auto a = g.tree();
    const auto b = g.tree();
    const PropertyValue object = g.below(8) == 0 ? PropertyValue() : g.dictionary();
    const bool isA = a->evaluateWithObject(object);
    const bool isB = b->evaluateWithObject(object);
    const bool present = !object.isNil();
    EXPECT_EQ(QXNotQualifier::initWithQualifier(a)->evaluateWithObject(object), !isA);
    EXPECT_EQ(QXAndQualifier::initWithQualifiers(a, b)->evaluateWithObject(object),
              present && isA && isB);
    EXPECT_EQ(QXOrQualifier::initWithQualifierArray(array(a, b))->evaluateWithObject(object),
              present && (isA || isB));
    EXPECT_EQ(PropertyValue(a->copy()).as<QXQualifier>()->evaluateWithObject(object), isA);
    EXPECT_EQ(a->qualifierByApplyingBindings(nullptr)->evaluateWithObject(object), isA);
    EXPECT_EQ(explain(a, object).result(), isA);
  }
}

TEST(EvaluationLaws, NegatedOperatorsOfPresentValues) {
  auto g = generator(13);
  for (int round = 0; round < 2000; ++round) {
    const PropertyValue left = g.value();
    const PropertyValue right = g.value();
    const auto object = dict({{"k", left}});
    const auto is = [&](Selector s) {
      return QXKeyValueQualifier::initWithKey("k", s, right)->evaluateWithObject(object);
    };
    EXPECT_NE(is("isEqualTo:"), is("isNotEqualTo:"));
    if (left.isNumber() && right.isNumber()) {
      EXPECT_EQ(is("isLessThanOrEqualTo:"), is("isLessThan:") || is("isEqualTo:"));
      EXPECT_NE(is("isGreaterThan:"), is("isLessThanOrEqualTo:"));
      EXPECT_NE(is("isGreaterThanOrEqualTo:"), is("isLessThan:"));
    }
  }
}

}  // namespace
}  // namespace qx

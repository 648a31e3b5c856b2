// The fast path against the rules, a million times: random qualifiers over random mixed arrays.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier.h>

#include "tests/qualifiers/generator.h"
#include "tests/qualifiers/reference_walk.h"

namespace qx {
namespace {

constexpr int kRounds = 5000;
constexpr int kObjects = 200;
constexpr int kExchanged = 20;  // in each round

TEST(FilterAgainstTheRules, AMillionComparisonsAgree) {
  generated::Generator g(
      [random = std::mt19937(17)](std::size_t n) mutable { return random() % n; });
  g.drawOwnRules();
  std::vector<PropertyValue> objects(kObjects);
  for (PropertyValue& object : objects) object = g.object();
  std::size_t compared = 0;
  std::size_t accepted = 0;
  for (int round = 0; round < kRounds; ++round) {
    for (int n = 0; n < kExchanged; ++n) objects[g.below(kObjects)] = g.object();
    const auto list = MutableArray::init();
    for (const PropertyValue& object : objects) list->addObject(object);
    const Ref<QXQualifier> q = g.tree();
    const auto hits = round % 2 == 0
                          ? filteredArrayUsingQualifier(list, q)
                          : filteredArrayUsingQualifier(PropertyValue(list->copy()).as<Array>(), q);
    std::size_t next = 0;
    for (const PropertyValue& object : objects) {
      const bool isHit = next < hits->count() && isSame(hits->objectAtIndex(next), object);
      ASSERT_EQ(reference::walk(q, object), isHit)
          << PropertyValue(q).description() << " of " << object.description();
      next += isHit ? 1 : 0;
      ++compared;
    }
    ASSERT_EQ(next, hits->count()) << PropertyValue(q).description();
    ASSERT_EQ(reference::walk(q, nullptr), q->evaluateWithObject(nullptr));
    accepted += next;
  }
  EXPECT_EQ(compared, 1000000U);
  // Both answers are frequent: neither path can have agreed by always saying the same.
  EXPECT_GT(accepted, compared / 10);
  EXPECT_LT(accepted, compared / 10 * 9);
}

}  // namespace
}  // namespace qx

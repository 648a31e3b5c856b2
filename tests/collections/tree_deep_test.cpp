// Trees deeper than any stack, and wider than is good for them.

#include <gtest/gtest.h>

#include <QXFoundation/tree.h>

#include "tests/collections/sample_objects.h"

namespace {

using qx::PropertyValue;
using qx::QXTree;
using qx::Ref;

constexpr int kLevels = 1'000'000;

class Counter : public QXTree {
 public:
  Counter() { ++alive; }
  ~Counter() override { --alive; }
  void count() { ++visits; }
  static int visits;
  static int alive;
};
int Counter::visits = 0;
int Counter::alive = 0;
void describe(qx::ClassBuilder<Counter>& c) {
  c.name("DeepTreeCounter")
      .inherits<QXTree>()
      .operation(
          "count:",
          +[](const PropertyValue& r, const PropertyValue&) { r.as<Counter>()->count(); });
  c.operation("countIt", &Counter::count);
}

struct Chain {
  Ref<Counter> top;
  Ref<Counter> bottom;
};

Chain chain(int levels) {
  Chain made{qx::make<Counter>(), nullptr};
  made.bottom = made.top;
  for (int i = 1; i < levels; ++i) {
    auto next = qx::make<Counter>();
    made.bottom->addChild(next);
    made.bottom = next;
  }
  return made;
}

class DeepTree : public testing::Test {
 protected:
  DeepTree() { Counter::visits = 0; }
  ~DeepTree() override { EXPECT_EQ(Counter::alive, 0); }
};

TEST_F(DeepTree, IsWalkedSearchedTakenApartAndDestroyed) {
  auto [top, bottom] = chain(kLevels);
  top->traversePreorder("countIt");
  EXPECT_EQ(Counter::visits, kLevels);
  top->traverseInorder("countIt");
  top->traversePostorder("count:", 1);
  EXPECT_EQ(Counter::visits, 3 * kLevels);
  EXPECT_EQ(top->findItem(bottom, true).get(), bottom.get());
  EXPECT_FALSE(top->containsItem("nowhere", true));
  top->takeApart();
  EXPECT_EQ(Counter::alive, 2);
}

TEST_F(DeepTree, IsDestroyedFromAboveOnceTheParentsAreCleared) {
  auto [top, bottom] = chain(kLevels);
  for (Ref<QXTree> node = bottom; node != nullptr;) {
    const Ref<QXTree> parent = node->parent();
    node->setParent(nullptr);
    node = parent;
  }
  bottom = nullptr;
  EXPECT_EQ(Counter::alive, kLevels);
  top = nullptr;
}

TEST_F(DeepTree, IsDestroyedFromBelowOnceTheListsAreEmpty) {
  auto [top, bottom] = chain(kLevels);
  for (Ref<QXTree> node = bottom->parent(); node != nullptr; node = node->parent())
    node->childs()->removeAllObjects();
  top = nullptr;
  EXPECT_EQ(Counter::alive, kLevels);
  bottom = nullptr;
}

TEST_F(DeepTree, WideTreesAreTakenApartToo) {
  auto top = qx::make<Counter>();
  for (int i = 0; i < 1000; ++i) {
    auto middle = qx::make<Counter>();
    top->addChild(middle);
    for (int k = 0; k < 1000; ++k) middle->addChild(qx::make<Counter>());
  }
  top->traversePostorder("countIt");
  EXPECT_EQ(Counter::visits, 1'001'001);
  top->takeApart();
  EXPECT_EQ(Counter::alive, 1);
}

TEST_F(DeepTree, CirclesAreNoticedWhereverTheyStand) {
  // A circle of three at the end of a long way, beside finite ways that are longer still: the walk
  // comes back from those before it meets the circle.
  for (const int lead : {1, 70'000, 140'000}) {
    Counter::visits = 0;
    auto [top, bottom] = chain(lead);
    for (const int finite : {65'000, 300'000}) bottom->addChild(chain(finite).top);
    Ref<Counter> last = bottom;
    for (int i = 0; i < 3; ++i) {
      last->addChild(qx::make<Counter>());  // a leaf before the way goes on
      auto next = qx::make<Counter>();
      last->addChild(next);
      last = next;
    }
    last->addChild(bottom->childAtIndex(3));
    EXPECT_THROW(top->traversePostorder("countIt"), qx::InvalidArgumentException);
    EXPECT_GE(Counter::visits, 365'000);
    EXPECT_THROW((void)top->findItem("nowhere", true), qx::InvalidArgumentException);
    top->takeApart();
  }
}

TEST_F(DeepTree, SharedSubtreesAreVisitedOnEachWayToThem) {
  auto top = qx::make<Counter>();
  Ref<Counter> below = top;
  for (int i = 0; i < 16; ++i) {
    auto next = qx::make<Counter>();
    below->addChild(next);
    below->addChild(next);
    below = next;
  }
  top->traversePostorder("countIt");
  EXPECT_EQ(Counter::visits, (1 << 17) - 1);
  top->takeApart();
}

}  // namespace

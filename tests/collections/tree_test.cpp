#include <gtest/gtest.h>

#include <functional>

#include <QXFoundation/tree.h>

#include "tests/collections/sample_objects.h"

namespace {

using qx::PropertyValue;
using qx::QXTree;
using qx::Ref;

// A node with a name that tells a list of its visits, and does what it is told during them.
class Node : public QXTree {
 public:
  explicit Node(std::string n) : QXTree(qx::String::from(n)), name(std::move(n)) {}
  void visit() {
    visits += name + " ";
    if (during) std::exchange(during, nullptr)();
  }
  void visitWith(const PropertyValue& argument) { visits += name + argument.description() + " "; }

  const std::string name;
  std::function<void()> during;
  static std::string visits;
};
std::string Node::visits;
void describe(qx::ClassBuilder<Node>& c) {
  c.name("TreeTestNode").inherits<QXTree>();
  c.operation("visit", &Node::visit).operation("visitWith:", &Node::visitWith);
}

Ref<Node> under(const Ref<Node>& parent, const char* name) {
  auto node = qx::make<Node>(name);
  if (parent != nullptr) parent->addChild(node);
  return node;
}

// R(A(A1, A2), B)
class TreeTest : public testing::Test {
 protected:
  TreeTest()
      : r(under(nullptr, "R")),
        a(under(r, "A")),
        a1(under(a, "A1")),
        a2(under(a, "A2")),
        b(under(r, "B")) {
    Node::visits.clear();
  }
  ~TreeTest() override { r->takeApart(); }

  std::string visitsOf(const std::function<void()>& walk) {
    Node::visits.clear();
    walk();
    return Node::visits;
  }

  Ref<Node> r, a, a1, a2, b;
};

TEST_F(TreeTest, TraversalsGoIntoDepthInPostorder) {
  EXPECT_EQ(visitsOf([&] { r->traversePostorder("visit"); }), "A1 A2 A B R ");
  EXPECT_EQ(visitsOf([&] { r->traversePreorder("visit"); }), "R A1 A2 A B ");
  EXPECT_EQ(visitsOf([&] { r->traverseInorder("visit"); }), "A1 A2 A R B ");
  EXPECT_EQ(visitsOf([&] { a->traverseInorder("visit"); }), "A1 A A2 ");
}

TEST_F(TreeTest, TraversalsHandOnTheirArgument) {
  EXPECT_EQ(visitsOf([&] { r->traversePostorder("visitWith:", 1); }), "A11 A21 A1 B1 R1 ");
  EXPECT_EQ(visitsOf([&] { r->traversePreorder("visitWith:", 1); }), "R1 A11 A21 A1 B1 ");
  EXPECT_EQ(visitsOf([&] { r->traverseInorder("visitWith:", 1); }), "A11 A21 A1 R1 B1 ");
}

TEST_F(TreeTest, EveryTraversalVisitsASingleNodeOnce) {
  EXPECT_EQ(visitsOf([&] { b->traversePostorder("visit"); }), "B ");
  EXPECT_EQ(visitsOf([&] { b->traversePreorder("visit"); }), "B ");
  EXPECT_EQ(visitsOf([&] { b->traverseInorder("visit"); }), "B ");
  b->addChild(qx::make<Node>("B1"));
  b->removeChildItem(b->childAtIndex(0)->object());
  EXPECT_NE(b->childs(), nullptr);
  EXPECT_EQ(visitsOf([&] { b->traverseInorder("visit"); }), "B ");
}

TEST_F(TreeTest, VisitsMayChangeTheTree) {
  // What is added to a node after its turn has come is not walked, what comes before it is.
  a1->during = [&] {
    under(a, "A3");
    under(b, "B1");
    under(r, "C");
    a->removeChild(a2);
  };
  EXPECT_EQ(visitsOf([&] { r->traversePostorder("visit"); }), "A1 A2 A B1 B R ");
  EXPECT_EQ(visitsOf([&] { r->traversePostorder("visit"); }), "A1 A3 A B1 B C R ");
  r->during = [&] { under(r, "D"); };
  EXPECT_EQ(visitsOf([&] { r->traversePreorder("visit"); }), "R A1 A3 A B1 B C ");
}

TEST_F(TreeTest, VisitsMayTakeTheTreeApart) {
  a1->during = [&] {
    r->takeApart();
    a1 = a2 = a = b = nullptr;
  };
  EXPECT_EQ(visitsOf([&] { r->traversePostorder("visit"); }), "A1 A2 A B R ");
}

TEST_F(TreeTest, VisitingWhatANodeLacksRaises) {
  r->addChildItem("plain");
  EXPECT_THROW(r->traversePostorder("visit"), qx::InvalidArgumentException);
  EXPECT_EQ(Node::visits, "A1 A2 A B ");
  EXPECT_THROW(b->traversePostorder(qx::Selector::named("nope")), qx::InvalidArgumentException);
}

TEST_F(TreeTest, WhatIsNoNodeCanNotBeWalked) {
  a->childs()->addObject("text");
  EXPECT_THROW(r->traversePostorder("visit"), qx::InvalidArgumentException);
  EXPECT_EQ(Node::visits, "A1 A2 ");
  EXPECT_THROW((void)r->findItem("x", true), qx::InvalidArgumentException);
  EXPECT_EQ(a->childAtIndex(2), nullptr);
}

TEST_F(TreeTest, FindLooksAtItselfThenAtItsChildrenThenBelow) {
  EXPECT_EQ(r->findItem(a1->object(), false), nullptr);
  EXPECT_EQ(r->findItem(a1->object(), true).get(), a1.get());
  EXPECT_EQ(r->findItem(r->object(), false).get(), r.get());
  EXPECT_EQ(r->findItem(b, false).get(), b.get());
  EXPECT_EQ(r->findItem("A1", true), nullptr);  // equal to what is carried, but another object
  EXPECT_TRUE(r->containsItem(a->object()));
  EXPECT_FALSE(r->containsItem(a1->object()));
  EXPECT_TRUE(r->containsItem(a1->object(), true));
  // A child is found before what lies below an earlier child.
  const auto low = QXTree::initWithObject(b->object());
  a1->addChild(low);
  EXPECT_EQ(r->findItem(b->object(), true).get(), b.get());
}

TEST_F(TreeTest, OfTwoThatCarryTheSameTheFirstIsFound) {
  const auto again = QXTree::initWithObject(a->object());
  r->addChild(again);
  EXPECT_EQ(r->findItem(a->object(), false).get(), a.get());
  EXPECT_EQ(r->indexOfItem(a->object()), 0);
  EXPECT_EQ(r->indexOfItem(again), 2);
}

TEST_F(TreeTest, IndexOfWhatIsNotThere) {
  EXPECT_EQ(b->indexOfItem("x"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(r->indexOfItem("x"), qx::kItemNotFound);
  EXPECT_EQ(r->indexOfItem(r->object()), qx::kItemNotFound);
}

TEST_F(TreeTest, ANodeAddedTwiceIsListedTwiceAndRemovedAtOnce) {
  r->addChild(b);
  EXPECT_EQ(r->count(), 3U);
  r->removeChild(b);
  EXPECT_EQ(r->count(), 1U);
  EXPECT_EQ(b->parent(), nullptr);
}

TEST_F(TreeTest, ANodeStaysInTheListOfAFormerParent) {
  b->addChild(a1);
  EXPECT_EQ(a1->parent().get(), b.get());
  EXPECT_EQ(a->count(), 2U);
  a->removeChild(a1);
  EXPECT_EQ(a1->parent(), nullptr);  // whoever that was
  EXPECT_EQ(b->count(), 1U);
}

TEST_F(TreeTest, RemovingTheItemOfTheNodeItselfClearsItsOwnParent) {
  a->removeChildItem(a->object());
  EXPECT_EQ(a->parent(), nullptr);
  EXPECT_EQ(a->count(), 2U);
  EXPECT_EQ(r->count(), 2U);
}

TEST_F(TreeTest, RemovingItemsAndNodes) {
  r->removeChildItem(a1->object());  // no child
  EXPECT_EQ(a->count(), 2U);
  a->removeChildItem(a1->object());
  EXPECT_EQ(a->count(), 1U);
  a2->removeFromParent();
  a2->removeFromParent();
  EXPECT_TRUE(a->isLeaf());
  EXPECT_NE(a->childs(), nullptr);
  b->removeChild(a);
  EXPECT_EQ(a->parent(), nullptr);
  EXPECT_EQ(r->count(), 2U);
}

TEST_F(TreeTest, ANodeIsEqualToWhatItCarries) {
  EXPECT_TRUE(a->isEqual(a));
  EXPECT_TRUE(a->isEqual(a->object()));
  EXPECT_FALSE(a->isEqual("A"));
  EXPECT_FALSE(a->isEqual(b));
  EXPECT_FALSE(a->isEqual(nullptr));
  EXPECT_TRUE(QXTree::init()->isEqual(nullptr));
  EXPECT_TRUE(QXTree::initWithObject(7)->isEqual(7));
  EXPECT_FALSE(QXTree::initWithObject(7)->isEqual(7.0));
}

TEST(Tree, FreshNodes) {
  const auto node = QXTree::init();
  EXPECT_EQ(node->parent(), nullptr);
  EXPECT_EQ(node->object(), nullptr);
  EXPECT_EQ(node->childs(), nullptr);
  EXPECT_TRUE(node->isLeaf());
  EXPECT_EQ(node->count(), 0U);
  EXPECT_EQ(node->childAtIndex(5), nullptr);
  node->removeChild(nullptr);
  node->removeFromParent();
  node->takeApart();
  const auto child = node->addChildItem("x");
  EXPECT_EQ(child->object(), "x");
  EXPECT_EQ(child->parent().get(), node.get());
  EXPECT_EQ(node->childAtIndex(0).get(), child.get());
  EXPECT_THROW((void)node->childAtIndex(1), qx::RangeException);
  EXPECT_THROW(node->addChild(nullptr), qx::InvalidArgumentException);
  EXPECT_EQ(node->count(), 1U);
  node->takeApart();
}

TEST(Tree, ParentAndChildKeepEachOtherAlive) {
  qx::WeakRef<QXTree> weak;
  {
    const auto root = QXTree::initWithObject("root");
    weak = root;
    root->addChildItem("child");
  }
  const auto root = weak.lock();
  ASSERT_NE(root, nullptr);
  const auto child = root->childAtIndex(0);
  root->takeApart();
  EXPECT_EQ(child->parent(), nullptr);
  EXPECT_EQ(child->object(), "child");
  EXPECT_EQ(root->count(), 0U);
}

TEST(Tree, ADestroyedNodeClearsTheParentOfItsChildren) {
  const auto child = QXTree::initWithObject("child");
  const auto other = QXTree::init();
  auto node = QXTree::init();
  node->addChild(child);
  other->addChild(child);  // which takes the child's reference to the node away
  node = nullptr;
  EXPECT_EQ(child->parent(), nullptr);
  EXPECT_EQ(other->count(), 1U);
}

TEST(Tree, RemovingMayFreeTheNodeThatDoesIt) {
  auto root = QXTree::initWithObject("root");
  QXTree* child = root->addChildItem("child").get();
  const qx::WeakRef<QXTree> weak = root;
  root = nullptr;
  child->removeFromParent();
  EXPECT_EQ(weak.lock(), nullptr);
}

TEST(Tree, TakingApartEndsOnCircles) {
  const auto a = QXTree::init();
  const auto b = QXTree::init();
  a->addChild(b);
  b->addChild(a);
  EXPECT_THROW(a->traversePostorder("isLeaf"), qx::InvalidArgumentException);
  EXPECT_THROW((void)a->findItem("x", true), qx::InvalidArgumentException);
  a->takeApart();
  EXPECT_TRUE(a->isLeaf());
  EXPECT_TRUE(b->isLeaf());
  EXPECT_EQ(a->parent(), nullptr);
  EXPECT_EQ(b->parent(), nullptr);
}

TEST_F(TreeTest, IsTraversedBySelector) {
  const PropertyValue root = r;
  const auto visits = [&](const char* traversal) {
    return visitsOf([&] { performSelector(root, qx::Selector::named(traversal), "visit"); });
  };
  EXPECT_EQ(visits("traversePreorder:"), "R A1 A2 A B ");
  EXPECT_EQ(visits("traverseInorder:"), "A1 A2 A R B ");
  EXPECT_EQ(visits("traversePostorder:"), "A1 A2 A B R ");
  const auto visitsWith = [&](const char* traversal) {
    return visitsOf(
        [&] { performSelector(root, qx::Selector::named(traversal), "visitWith:", 1); });
  };
  EXPECT_EQ(visitsWith("traversePreorder:withObject:"), "R1 A11 A21 A1 B1 ");
  EXPECT_EQ(visitsWith("traverseInorder:withObject:"), "A11 A21 A1 R1 B1 ");
  EXPECT_EQ(visitsWith("traversePostorder:withObject:"), "A11 A21 A1 B1 R1 ");
}

TEST(Tree, IsReachedByKeyAndSelector) {
  const PropertyValue root = QXTree::initWithObject("root");
  const PropertyValue child = performSelector(root, "addChildItem:", "child");
  EXPECT_EQ(child.valueForKeyPath("parent.object"), "root");
  EXPECT_EQ(root["count"], 1);
  EXPECT_EQ(root["isLeaf"], false);
  EXPECT_EQ(performSelector(root, "indexOfItem:", child), 0);
  EXPECT_TRUE(isSame(performSelector(root, "findItem:deep:", child, false), child));
  EXPECT_EQ(performSelector(root, "containsItem:", "other"), false);
  EXPECT_EQ(performSelector(root, "containsItem:deep:", child, true), true);
  EXPECT_TRUE(isSame(performSelector(root, "childAtIndex:", 0), child));
  performSelector(child, "removeFromParent");
  EXPECT_EQ(child["parent"], nullptr);
  performSelector(child, "setParent:", root);
  EXPECT_TRUE(isSame(child["parent"], root));
  child.setValue(nullptr, "parent");
  EXPECT_EQ(child["parent"], nullptr);
  performSelector(root, "addChild:", child);
  EXPECT_TRUE(isSame(performSelector(performSelector(root, "childs"), "objectAtIndex:", 0), child));
  performSelector(root, "removeChild:", child);
  EXPECT_EQ(root["count"], 0);
  performSelector(root, "addChild:", child);
  performSelector(root, "removeChildItem:", performSelector(child, "object"));
  EXPECT_EQ(performSelector(root, "isLeaf"), true);
  performSelector(root, "takeApart");
}

}  // namespace

#pragma once

// Walks through trees by a list of the nodes on the way instead of the stack.

#include <cstddef>

#include <QXFoundation/tree.h>

namespace qx::detail {

struct TreeAccess {
  // Borrowed; null before the first child.
  static MutableArray* childs(const QXTree& node) { return node.childs_.get(); }
};

// Tells nodes from other objects that stand in a list of children.
class NodeTest {
 public:
  // The value as a node, borrowed; anything else raises InvalidArgumentException, as an object that
  // does not perform the operation.
  QXTree& node(const PropertyValue& value, Selector operation) {
    Object* o = value.object();
    if (o == nullptr || !known_ || ObjectAccess::classIndex(*o) != classIndex_)
      return look(value, operation);
    return static_cast<QXTree&>(*o);
  }

 private:
  QXTree& look(const PropertyValue& value, Selector operation);
  std::uint16_t classIndex_ = 0;  // of the last node
  bool known_ = false;
};

// Notices a way that comes round to a node on it, at no cost to speak of. A walk without end
// follows the same successor from a node each time it gets there, so that the way comes round to
// every node of the circle: one node is remembered, a later one at depths that double.
class CircleWatch {
 public:
  // A node stands on the way at this depth; the way has got longer by it.
  void entered(const QXTree& node, std::size_t depth) {
    if (&node == mark_) refuse();
    if (depth < nextDepth_) return;
    mark_ = &node;
    markDepth_ = depth;
    nextDepth_ = depth * 2;
  }
  // The way has got shorter: the node at this depth was its last.
  void left(std::size_t depth) {
    if (depth > markDepth_ || mark_ == nullptr) return;
    mark_ = nullptr;
    nextDepth_ = markDepth_;
  }

 private:
  [[noreturn]] static void refuse();
  const QXTree* mark_ = nullptr;  // stands on the way, and is compared alone
  std::size_t markDepth_ = 0;
  std::size_t nextDepth_ = 1U << 16;
};

}  // namespace qx::detail

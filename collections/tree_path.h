#pragma once

// Walks through trees by a list of the nodes on the way instead of the stack.

#include <cstddef>
#include <vector>

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

// Notices a way that comes round to a node on it. To be asked at each level entered; looks at the
// way at depths that double, so that it costs next to nothing.
class CircleWatch {
 public:
  // `way` lists the nodes of the way when it is called.
  template <class Way>
  void entered(std::size_t depth, Way&& way) {
    if (depth < next_) return;
    next_ = depth * 2;
    refuseRepeated(way());
  }

 private:
  static void refuseRepeated(std::vector<const Object*> way);
  std::size_t next_ = 1U << 16;
};

}  // namespace qx::detail

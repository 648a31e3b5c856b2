// Finding nodes.

#include <deque>

#include <QXFoundation/tree.h>

#include "collections/tree_path.h"

namespace qx {
namespace {

// The children of one node, whose subtrees are searched one after the other. Their number counts as
// it was at first, whatever `isEqual` of the application does to the list.
struct Level {
  PropertyValue node;
  Ref<MutableArray> childs;
  std::size_t count;
  std::size_t next;
};

class Search {
 public:
  explicit Search(const PropertyValue& item) : item_(item) {}

  Ref<QXTree> find(const QXTree& top, bool deep) {
    if (Ref<QXTree> found = findNear(const_cast<QXTree*>(&top))) return found;
    while (deep && !levels_.empty()) {
      Level& level = levels_.back();
      if (level.next == level.count) {
        watch_.left(levels_.size());
        levels_.pop_back();
        continue;
      }
      const PropertyValue child = level.childs->objectAtIndex(level.next++);
      if (Ref<QXTree> found = findNear(child)) return found;
    }
    return nullptr;
  }

 private:
  // The node itself or a child of it. Where there is neither, its subtrees are the next to be
  // searched.
  Ref<QXTree> findNear(const PropertyValue& value) {
    QXTree& node = test_.node(value, "findItem:deep:");
    if (node.isEqual(item_)) return Ref<QXTree>(&node);
    const Ref<MutableArray> childs = node.childs();
    const std::size_t count = childs == nullptr ? 0 : childs->count();
    if (count == 0) return nullptr;
    for (std::size_t i = 0; i < count; ++i) {
      const PropertyValue child = childs->objectAtIndex(i);
      QXTree& near = test_.node(child, "findItem:deep:");
      if (near.isEqual(item_)) return Ref<QXTree>(&near);
    }
    levels_.push_back({value, childs, count, 0});
    watch_.entered(node, levels_.size());
    return nullptr;
  }

  const PropertyValue item_;
  std::deque<Level> levels_;  // grows without being moved
  detail::NodeTest test_;
  detail::CircleWatch watch_;
};

}  // namespace

Ref<QXTree> QXTree::findItem(const PropertyValue& item, bool deep) const {
  return Search(item).find(*this, deep);
}

}  // namespace qx

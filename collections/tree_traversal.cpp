// Walking trees.

#include <deque>

#include <QXFoundation/tree.h>

#include "collections/selector_call.h"
#include "collections/tree_path.h"

namespace qx {
namespace {

using detail::SelectorCall;

// Nodes that wait for their turn, the next one last. Copies of the lists of children stand in it
// one after the other, so that it holds every node that the walk still needs.
class Walk {
 public:
  Walk(SelectorCall& visit, Selector operation) : visit_(visit), operation_(operation) {}

  void addVisit(const PropertyValue& node) {
    steps_.push_back({node, true});
    ++depth_;
  }
  // The subtrees of the list's elements from `first` on, the first of them next.
  void addSubtrees(const Array& childs, std::size_t first) {
    for (std::size_t i = childs.count(); i-- > first;) addSubtree(childs.begin()[i]);
  }
  void addSubtree(const PropertyValue& node) {
    __builtin_prefetch(node.object());
    steps_.push_back({node, false});
  }

  void run() {
    while (!steps_.empty()) {
      Step& step = steps_.back();
      if (!step.isVisit && enter(step)) continue;
      if (step.isVisit) watch_.left(depth_--);
      const PropertyValue node = std::move(step.node);
      steps_.pop_back();
      visit_(node);
    }
  }

 private:
  struct Step {
    PropertyValue node;
    bool isVisit;  // else its children go first
  };

  // Whether the node has children, which then go first.
  bool enter(Step& step) {
    const QXTree& node = test_.node(step.node, operation_);
    const MutableArray* childs = detail::TreeAccess::childs(node);
    if (childs == nullptr || childs->count() == 0) return false;
    step.isVisit = true;
    watch_.entered(node, ++depth_);
    addSubtrees(*childs, 0);
    return true;
  }

  SelectorCall& visit_;
  const Selector operation_;
  std::deque<Step> steps_;  // grows without being moved
  std::size_t depth_ = 0;
  detail::NodeTest test_;
  detail::CircleWatch watch_;
};

enum class Order : unsigned char { pre, in, post };

// The children's places in the walk are taken before the first visit.
void traverse(QXTree& top, Order order, SelectorCall visit, Selector operation) {
  const PropertyValue self = &top;
  Walk walk(visit, operation);
  const MutableArray* childs = detail::TreeAccess::childs(top);
  if (childs == nullptr || childs->count() == 0) {
    visit(self);
    return;
  }
  switch (order) {
    case Order::pre:
      walk.addSubtrees(*childs, 0);
      visit(self);
      break;
    case Order::in:
      walk.addSubtrees(*childs, 1);
      walk.addVisit(self);
      walk.addSubtree(childs->begin()[0]);
      break;
    case Order::post:
      walk.addSubtree(self);
      break;
  }
  walk.run();
}

// What a node below is asked to do, and what one that can not is said to lack.
constexpr Selector kPlain = "traversePostorder:";
constexpr Selector kWithObject = "traversePostorder:withObject:";

}  // namespace

void QXTree::traversePreorder(SelectorFor<0> selector) {
  traverse(*this, Order::pre, SelectorCall(selector), kPlain);
}
void QXTree::traversePreorder(SelectorFor<1> selector, const PropertyValue& withObject) {
  traverse(*this, Order::pre, SelectorCall(selector, withObject), kWithObject);
}
void QXTree::traverseInorder(SelectorFor<0> selector) {
  traverse(*this, Order::in, SelectorCall(selector), kPlain);
}
void QXTree::traverseInorder(SelectorFor<1> selector, const PropertyValue& withObject) {
  traverse(*this, Order::in, SelectorCall(selector, withObject), kWithObject);
}
void QXTree::traversePostorder(SelectorFor<0> selector) {
  traverse(*this, Order::post, SelectorCall(selector), kPlain);
}
void QXTree::traversePostorder(SelectorFor<1> selector, const PropertyValue& withObject) {
  traverse(*this, Order::post, SelectorCall(selector, withObject), kWithObject);
}

}  // namespace qx

#pragma once

// Evaluation of qualifier trees with a stack of its own, so that nesting costs no stack of the
// thread, and on the arrays as they stand: a caller's mutable array may change at any time.

#include <cstddef>
#include <vector>

#include "qualifiers/node.h"

namespace qx::detail {

// Frames of a walk; the first ones need no allocation.
template <class T, std::size_t Inline>
class WalkStack {
 public:
  bool empty() const { return count_ == 0; }
  std::size_t size() const { return count_; }
  T& top() { return count_ <= Inline ? first_[count_ - 1] : more_.back(); }
  void push(T item) {
    if (count_ < Inline) {
      first_[count_] = std::move(item);
    } else {
      more_.push_back(std::move(item));
    }
    ++count_;
  }
  void pop() {
    if (count_ <= Inline) {
      first_[count_ - 1] = T();
    } else {
      more_.pop_back();
    }
    --count_;
  }

 private:
  T first_[Inline];
  std::vector<T> more_;
  std::size_t count_ = 0;
};

// Evaluates the tree below `root`, whose members are asked in order, as far as needed. `leaf(node,
// member)` evaluates what is no and, or, not; `absent` tells that the evaluated object is nil.
template <class Leaf>
class TreeWalk {
 public:
  TreeWalk(Leaf& leaf, bool absent) : leaf_(leaf), absent_(absent) {}

  bool evaluate(const Node& root) {
    enter(root, const_cast<Object*>(root.object));
    while (!stack_.empty()) goOn();
    return result_;
  }

 private:
  // Holds its node, which code of the application might take out of the tree meanwhile.
  struct Frame {
    PropertyValue held;
    NodeKind kind = NodeKind::custom;
    std::size_t next = 0;
  };

  // Leaves the result of the node, or a frame for it.
  void enter(const Node& node, const PropertyValue& member) {
    if (!node.isCompound()) {
      result_ = leaf_(node, member);
    } else if (node.kind == NodeKind::negation ? node.inner() == nullptr : absent_) {
      result_ = false;
    } else {
      if (stack_.size() == kMaxNesting) raiseNesting();
      stack_.push({member, node.kind, 0});
    }
  }

  void goOn() {
    Frame& frame = stack_.top();
    const Node node{frame.kind, frame.held.object()};
    const std::size_t at = frame.next++;
    if (node.kind == NodeKind::negation) {
      if (at == 0) {
        const PropertyValue inner = const_cast<QXQualifier*>(node.inner());
        return enter(Node::of(inner), inner);
      }
      result_ = !result_;
      return stack_.pop();
    }
    const bool decisive = node.kind == NodeKind::disjunction;
    if (at != 0 && result_ == decisive) return stack_.pop();
    const Array* members = node.members();
    if (members == nullptr || at >= members->count()) {
      result_ = !decisive;
      return stack_.pop();
    }
    const PropertyValue member = members->begin()[at];
    enter(Node::of(member), member);
  }

  Leaf& leaf_;
  const bool absent_;
  bool result_ = false;
  WalkStack<Frame, 8> stack_;
};

// The tree evaluated for a value. The node's kind may be that of a base class of the object's.
bool evaluateTree(const Node& root, const PropertyValue& object);

}  // namespace qx::detail

#pragma once

// A queue of many senders and one reader.

#include <atomic>
#include <cstdint>
#include <utility>

namespace qx::detail {

// Bytes between what different threads write often, so that they do not share a line of the cache.
// Alignment would ask for an allocation of its own kind.
inline constexpr int kCacheLine = 64;

// Nodes have a member `Node* next`, which is the list's while they are in it. Any thread adds,
// without a lock and without allocating; one takes all that was added, in the order of adding. As
// nodes are never taken singly, one that comes back to the list can not deceive a sender that still
// sees its old place.
//
// `add` and `takeAll` take their places in the one order of all sequentially consistent operations,
// so that whoever adds and then finds a flag still set, and whoever clears that flag and then
// takes, can not miss each other.
template <class Node>
class SendList {
 public:
  // False when the list was closed: then the node is the caller's still.
  bool add(Node* node) noexcept {
    Node* last = last_.load(std::memory_order_relaxed);
    do {
      if (last == closedMark()) return false;
      node->next = last;
    } while (!last_.compare_exchange_weak(last, node, std::memory_order_seq_cst,
                                          std::memory_order_relaxed));
    return true;
  }

  // The nodes, oldest first, linked by `next`; null when there are none.
  Node* takeAll() noexcept {
    Node* last = nullptr;
    return takeAll(last);
  }
  // The same; `last` becomes the last of them, if there are any.
  Node* takeAll(Node*& last) noexcept {
    Node* taken = last_.exchange(nullptr, std::memory_order_seq_cst);
    if (taken != nullptr) last = taken;
    return reversed(taken);
  }

  // Takes the nodes for the last time.
  Node* close() noexcept {
    return reversed(last_.exchange(closedMark(), std::memory_order_seq_cst));
  }

  bool empty() const noexcept {
    const Node* last = last_.load(std::memory_order_seq_cst);
    return last == nullptr || last == closedMark();
  }

 private:
  // An address at which no node stands.
  static Node* closedMark() noexcept { return reinterpret_cast<Node*>(std::uintptr_t{1}); }

  static Node* reversed(Node* last) noexcept {
    if (last == closedMark()) return nullptr;
    Node* first = nullptr;
    while (last != nullptr) {
      Node* before = std::exchange(last->next, first);
      first = std::exchange(last, before);
    }
    return first;
  }

  std::atomic<Node*> last_{nullptr};
};

}  // namespace qx::detail

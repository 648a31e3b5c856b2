#pragma once

// Doubly linked lists whose links stand in the items: no allocation, and removal without a search.

namespace qx::detail {

class Link {
 public:
  Link() = default;
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  bool isLinked() const { return behind_ != this; }
  void unlink() {
    before_->behind_ = behind_;
    behind_->before_ = before_;
    before_ = behind_ = this;
  }

 private:
  template <class Item, class Node>
  friend class LinkList;
  void insertBefore(Link& place) {
    before_ = place.before_;
    behind_ = &place;
    before_->behind_ = this;
    place.before_ = this;
  }
  Link* before_ = this;
  Link* behind_ = this;
};

// `Item` derives from `Node`, which derives from Link: one kind of Node for each list that an item
// can be in at the same time. An item is in one list of its Node at most.
template <class Item, class Node>
class LinkList {
 public:
  bool empty() const { return !head_.isLinked(); }
  // Null when empty.
  Item* first() const { return after(head_); }
  Item* after(const Item& item) const { return after(static_cast<const Node&>(item)); }
  void append(Item& item) { static_cast<Node&>(item).insertBefore(head_); }
  // Moves what the other list holds before all of this one.
  void prependAll(LinkList& other) {
    while (!other.empty()) {
      Link* last = other.head_.before_;
      last->unlink();
      last->insertBefore(*head_.behind_);
    }
  }

 private:
  Item* after(const Link& link) const {
    return link.behind_ == &head_ ? nullptr : static_cast<Item*>(static_cast<Node*>(link.behind_));
  }
  Link head_;
};

}  // namespace qx::detail

// QXTree: a node of an ordered tree, which carries one object.
//
//     auto root = qx::QXTree::initWithObject("root");
//     auto a = root->addChildItem("a");
//     root->findItem("a", true);                        // nil: "a" is another string object
//     root->findItem(a->object(), true);                // a
//     root->traversePostorder("show");                  // every node performs "show", of its class
//     root->takeApart();
//
// A node is found by the object it carries, which means that very object (isSame), not an equal
// one.
//
// Letting a tree go: a parent owns its children, and a child owns its parent, so that each keeps
// the other alive. A tree that nobody refers to any more is therefore not freed by itself. Take it
// apart with `takeApart()` on its root, or break each link by `removeChild` or `removeFromParent`.
// A tree of 1,000,000 levels is walked, searched, taken apart and destroyed without nesting on the
// stack.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include <QXFoundation/array.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>

namespace qx {

namespace detail {
struct TreeAccess;
}

// What indexOfItem gives where there is no such child.
inline constexpr std::int64_t kItemNotFound = std::numeric_limits<std::int64_t>::max();

// Belongs to one thread at a time, the whole tree together. Applications derive from it to give the
// nodes operations of their own.
class QX_EXPORT QXTree : public Object {
 public:
  // A node without parent and children, with this object.
  static Ref<QXTree> init();
  static Ref<QXTree> initWithObject(const PropertyValue& object);

  // Without parent and children.
  QXTree() = default;
  explicit QXTree(const PropertyValue& object) : object_(object) {}

  // What the node carries, or nil.
  const PropertyValue& object() const { return object_; }
  Ref<QXTree> parent() const { return parent_; }
  // Owns the new parent and lets go of the old one; neither's children change. A node that is being
  // destroyed calls it on its children: an override must not raise then.
  virtual void setParent(In<QXTree> parent);
  // The list of the children itself, not a copy; nil before the first child came.
  Ref<MutableArray> childs() const { return childs_; }

  // Whether it has no children, and how many there are.
  bool isLeaf() const { return count() == 0; }
  std::size_t count() const { return childs_ == nullptr ? 0 : childs_->count(); }
  // Nil for a node without a list; an index beyond its end raises RangeException.
  Ref<QXTree> childAtIndex(std::size_t index) const;

  // Appends the node and becomes its parent. A node that has another parent stays in that one's
  // list too; one that is added twice is listed twice. Nil raises InvalidArgumentException.
  void addChild(In<QXTree> node);
  // Clears the node's parent, whoever that is, and removes all children that are equal to the node.
  void removeChild(In<QXTree> node);
  // Has the parent remove this node; nothing without a parent.
  void removeFromParent();

  // A new child that carries the object: a plain QXTree, whatever the class of this node is. Nodes
  // of a class of the application's own come by addChild.
  Ref<QXTree> addChildItem(const PropertyValue& object);
  // Removes the child that carries the object. The object of this node itself is found first: then
  // this node's parent is cleared, and the lists stay as they are.
  void removeChildItem(const PropertyValue& object);
  bool containsItem(const PropertyValue& item) const;
  bool containsItem(const PropertyValue& item, bool deep) const;
  // The index of the first child that is equal to the item; kItemNotFound when there is none.
  std::int64_t indexOfItem(const PropertyValue& item) const;

  // This node, if it is equal to the item; else the first child that is; else, when `deep`, what
  // the first child that finds something finds below itself. Nil when there is nothing.
  Ref<QXTree> findItem(const PropertyValue& item, bool deep) const;

  // Traversals. To visit a node is to have it perform the operation; a node without it raises
  // InvalidArgumentException, and so does a node that is found below itself. The children of a node
  // are taken when its turn comes, so that visits may add and remove children without disturbing
  // the walk.
  //
  // Postorder: the children's subtrees in order, then the node. The two others differ from it for
  // the node they are called on alone, and walk every subtree below it in postorder: preorder
  // visits that node first, inorder after its first child's subtree.
  void traversePreorder(SelectorFor<0> selector);
  void traversePreorder(SelectorFor<1> selector, const PropertyValue& withObject);
  void traverseInorder(SelectorFor<0> selector);
  void traverseInorder(SelectorFor<1> selector, const PropertyValue& withObject);
  void traversePostorder(SelectorFor<0> selector);
  void traversePostorder(SelectorFor<1> selector, const PropertyValue& withObject);

  // Parts this node and all nodes below it from each other: each list becomes empty, each node
  // below this one loses its parent. They keep their objects. What nobody else refers to is freed.
  void takeApart();

  // Whether `other` is this very node, or the very object that it carries. Nil is what a node
  // without an object carries.
  bool isEqual(const PropertyValue& other) const override;

 protected:
  // Clears the parent of each child.
  ~QXTree() override;

 private:
  friend struct detail::TreeAccess;

  Ref<QXTree> parent_;
  PropertyValue object_;
  Ref<MutableArray> childs_;
};

QX_EXPORT const Class& classObject(detail::Type<QXTree>);

}  // namespace qx

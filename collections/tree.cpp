#include <vector>

#include <QXFoundation/tree.h>

#include "frame/array_storage.h"
#include "frame/library_class.h"
#include "frame/raise.h"

namespace qx {

Ref<QXTree> QXTree::init() { return make<QXTree>(); }
Ref<QXTree> QXTree::initWithObject(const PropertyValue& object) { return make<QXTree>(object); }

QXTree::~QXTree() {
  if (childs_ == nullptr) return;
  for (std::size_t i = 0; i < childs_->count(); ++i) {
    if (const Ref<QXTree> child = childs_->begin()[i].as<QXTree>()) child->setParent(nullptr);
  }
}

// The old parent may own this node through its list, and go with this reference.
void QXTree::setParent(In<QXTree> parent) {
  const Ref<QXTree> self = this;
  parent_ = Ref<QXTree>(parent.get());
}

Ref<QXTree> QXTree::childAtIndex(std::size_t index) const {
  if (childs_ == nullptr) return nullptr;
  return childs_->objectAtIndex(index).as<QXTree>();
}

void QXTree::addChild(In<QXTree> node) {
  if (!node) detail::raiseNilStored("-[QXTree addChild:]");
  const Ref<QXTree> added = node.get();
  if (childs_ == nullptr) childs_ = MutableArray::init();
  childs_->addObject(added);
  added->setParent(this);
}

// Node and child may each be all that keeps the other alive.
void QXTree::removeChild(In<QXTree> node) {
  const Ref<QXTree> self = this;
  const Ref<QXTree> removed = node.get();
  if (removed != nullptr) removed->setParent(nullptr);
  const Ref<MutableArray> childs = childs_;
  if (childs != nullptr) childs->removeObject(removed);
}

void QXTree::removeFromParent() {
  const Ref<QXTree> self = this;
  const Ref<QXTree> parent = parent_;
  if (parent != nullptr) parent->removeChild(self);
}

Ref<QXTree> QXTree::addChildItem(const PropertyValue& object) {
  const Ref<QXTree> node = initWithObject(object);
  addChild(node);
  return node;
}

void QXTree::removeChildItem(const PropertyValue& object) {
  const Ref<QXTree> found = findItem(object, false);
  if (found != nullptr) removeChild(found);
}

bool QXTree::containsItem(const PropertyValue& item) const { return containsItem(item, false); }
bool QXTree::containsItem(const PropertyValue& item, bool deep) const {
  return findItem(item, deep) != nullptr;
}

std::int64_t QXTree::indexOfItem(const PropertyValue& item) const {
  const Ref<MutableArray> childs = childs_;
  const std::size_t index = childs == nullptr ? kNotFound : childs->indexOfObject(item);
  return index == kNotFound ? kItemNotFound : static_cast<std::int64_t>(index);
}

bool QXTree::isEqual(const PropertyValue& other) const {
  return other.object() == this || isSame(object_, other);
}

void QXTree::takeApart() {
  std::vector<Ref<QXTree>> pending{Ref<QXTree>(this)};
  while (!pending.empty()) {
    const Ref<QXTree> node = std::move(pending.back());
    pending.pop_back();
    if (node->childs_ == nullptr) continue;
    const Ref<Array> childs = detail::ArrayStorage::steady(*node->childs_);
    node->childs_->removeAllObjects();
    for (const PropertyValue& value : *childs) {
      Ref<QXTree> child = value.as<QXTree>();
      if (child == nullptr) continue;
      child->setParent(nullptr);
      pending.push_back(std::move(child));
    }
  }
}

namespace {

using Value = const PropertyValue&;
using Node = const Ref<QXTree>&;
using Name = const Ref<String>&;

void describeTraversals(ClassBuilder<QXTree>& c) {
  c.operation(
      "traversePreorder:",
      +[](Value r, Name s) { r.as<QXTree>()->traversePreorder(Selector::named(s)); });
  c.operation(
      "traversePreorder:withObject:",
      +[](Value r, Name s, Value a) { r.as<QXTree>()->traversePreorder(Selector::named(s), a); });
  c.operation(
      "traverseInorder:",
      +[](Value r, Name s) { r.as<QXTree>()->traverseInorder(Selector::named(s)); });
  c.operation(
      "traverseInorder:withObject:",
      +[](Value r, Name s, Value a) { r.as<QXTree>()->traverseInorder(Selector::named(s), a); });
  c.operation(
      "traversePostorder:",
      +[](Value r, Name s) { r.as<QXTree>()->traversePostorder(Selector::named(s)); });
  c.operation(
      "traversePostorder:withObject:",
      +[](Value r, Name s, Value a) { r.as<QXTree>()->traversePostorder(Selector::named(s), a); });
}

void describeItems(ClassBuilder<QXTree>& c) {
  c.operation("addChildItem:", &QXTree::addChildItem);
  c.operation("removeChildItem:", &QXTree::removeChildItem);
  c.operation("containsItem:", +[](Value r, Value x) { return r.as<QXTree>()->containsItem(x); });
  c.operation(
      "containsItem:deep:",
      +[](Value r, Value x, bool deep) { return r.as<QXTree>()->containsItem(x, deep); });
  c.operation("indexOfItem:", &QXTree::indexOfItem);
  c.operation("findItem:deep:", &QXTree::findItem);
}

}  // namespace

void describe(ClassBuilder<QXTree>& c) {
  c.name("QXTree").inherits<Object>();
  c.property("object", &QXTree::object).property("parent", &QXTree::parent);
  c.property("childs", &QXTree::childs).property("isLeaf", &QXTree::isLeaf);
  c.property("count", &QXTree::count);
  c.operation("setParent:", +[](Value r, Node parent) { r.as<QXTree>()->setParent(parent); });
  c.operation("childAtIndex:", &QXTree::childAtIndex);
  c.operation("addChild:", +[](Value r, Node node) { r.as<QXTree>()->addChild(node); });
  c.operation("removeChild:", +[](Value r, Node node) { r.as<QXTree>()->removeChild(node); });
  c.operation("removeFromParent", &QXTree::removeFromParent);
  c.operation("takeApart", &QXTree::takeApart);
  describeItems(c);
  describeTraversals(c);
}

const Class& classObject(detail::Type<QXTree>) { return detail::buildLibraryClass<QXTree>(); }

}  // namespace qx

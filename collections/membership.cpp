#include "collections/membership.h"

#include <algorithm>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/set.h>

#include "frame/array_storage.h"

namespace qx::detail {
namespace {

// Fewer elements are sooner asked than looked up.
constexpr std::size_t kFew = 8;

bool overridesBothOrNeither(const Object& o) {
  return ObjectAccess::has(o, kOwnEquality) == ObjectAccess::has(o, kOwnHash);
}
bool isReliable(const PropertyValue& v) {
  return v.object() == nullptr || overridesBothOrNeither(*v.object());
}

// What lies deeper takes no part in a container's hash.
bool membersAreReliable(const Object& o) {
  switch (ObjectAccess::kind(o)) {
    case ObjectKind::array: {
      const auto& array = static_cast<const Array&>(o);
      return std::all_of(array.begin(), array.end(), isReliable);
    }
    case ObjectKind::dictionary:
      for (const auto& item : static_cast<const Dictionary&>(o)) {
        if (!isReliable(item.value)) return false;
      }
      return true;
    case ObjectKind::set: {
      const Ref<Array> members = static_cast<const Set&>(o).allObjects();
      return std::all_of(members->begin(), members->end(), isReliable);
    }
    default:
      return true;
  }
}

}  // namespace

bool hashesLikeItCompares(const PropertyValue& value) {
  const Object* o = value.object();
  if (o == nullptr) return true;
  if (!overridesBothOrNeither(*o)) return false;
  return ObjectAccess::has(*o, kOwnEquality) || membersAreReliable(*o);
}

Membership::Membership(In<Array> elements) {
  if (!elements) return;
  elements_.assign(elements->begin(), elements->end());
  indexNew();
}

void Membership::add(const PropertyValue& value) {
  elements_.push_back(value);
  indexNew();
}

void Membership::indexNew() {
  if (elements_.size() <= kFew) return;
  for (; indexed_ < elements_.size(); ++indexed_) {
    const PropertyValue& element = elements_[indexed_];
    if (hashesLikeItCompares(element)) {
      byHash_.addInFront(element.hash(), indexed_);
    } else {
      unhashed_.push_back(indexed_);
    }
  }
}

bool Membership::contains(const PropertyValue& value) const {
  const auto equals = [&](std::size_t position) { return elements_[position] == value; };
  if (indexed_ == 0 || !hashesLikeItCompares(value)) {
    return std::any_of(elements_.begin(), elements_.end(),
                       [&](const PropertyValue& element) { return element == value; });
  }
  return byHash_.find(value.hash(), equals) != PositionIndex::kAbsent ||
         std::any_of(unhashed_.begin(), unhashed_.end(), equals);
}

}  // namespace qx::detail

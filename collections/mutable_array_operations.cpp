#include <algorithm>
#include <vector>

#include <QXFoundation/array_shuffle.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/mutable_array_operations.h>

#include "collections/added_operations.h"
#include "collections/membership.h"
#include "frame/array_storage.h"

namespace qx {

using detail::ArrayStorage;
using detail::Membership;
using detail::PositionIndex;

namespace {

bool holdsStill(const MutableArray& array, const Array& before) {
  if (array.count() != before.count()) return false;
  for (std::size_t i = 0; i < array.count(); ++i) {
    if (!isSame(array.begin()[i], before.begin()[i])) return false;
  }
  return true;
}

// Moves what stays to the front and cuts off the rest; `before` keeps what goes until the array is
// whole again.
void closeUp(MutableArray& array, const Array& before, const std::vector<bool>& goes) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < before.count(); ++i) {
    if (goes[i]) continue;
    if (kept != i) array.replaceObjectAtIndex(kept, before.begin()[i]);
    ++kept;
  }
  while (array.count() > kept) array.removeLastObject();
}

// Removes the marked elements of an array that held `before` when they were marked.
void removeMarked(MutableArray& array, const Array& before, const std::vector<bool>& goes) {
  if (!holdsStill(array, before))
    throw GenericException("an array was changed while its elements were compared");
  if (&array.cls() == &classOf<MutableArray>()) {
    closeUp(array, before, goes);
    return;
  }
  for (std::size_t i = before.count(); i-- > 0;) {
    if (goes[i]) array.removeObjectAtIndex(i);
  }
}

// The elements of an array, from which the first one equal to a value is taken, again and again.
class Takeaway {
 public:
  explicit Takeaway(const Array& elements) : elements_(elements), taken_(elements.count(), false) {
    for (std::size_t i = elements.count(); i-- > 0;) {
      const PropertyValue& element = elements.begin()[i];
      if (detail::hashesLikeItCompares(element)) {
        byHash_.addInFront(element.hash(), i);
      } else {
        unhashed_.push_back(i);
      }
    }
    std::reverse(unhashed_.begin(), unhashed_.end());
  }

  void takeFirst(const PropertyValue& value) {
    const std::size_t at = detail::hashesLikeItCompares(value) ? takeByHash(value) : scan(value);
    if (at != PositionIndex::kAbsent) taken_[at] = true;
  }
  const std::vector<bool>& taken() const { return taken_; }

 private:
  bool equals(std::size_t position, const PropertyValue& value) const {
    return !taken_[position] && elements_.begin()[position] == value;
  }

  std::size_t scan(const PropertyValue& value) const {
    for (std::size_t i = 0; i < elements_.count(); ++i) {
      if (equals(i, value)) return i;
    }
    return PositionIndex::kAbsent;
  }

  // An element that has to be asked goes before the one that was looked up where it stands before
  // it.
  std::size_t takeByHash(const PropertyValue& value) {
    const std::size_t hash = value.hash();
    const std::size_t found = byHash_.find(hash, [&](std::size_t i) { return equals(i, value); });
    for (const std::size_t asked : unhashed_) {
      if (asked > found) break;
      if (equals(asked, value)) return asked;
    }
    return byHash_.take(hash, [found](std::size_t i) { return i == found; });
  }

  const Array& elements_;
  std::vector<bool> taken_;
  PositionIndex byHash_;
  std::vector<std::size_t> unhashed_;  // ascending
};

}  // namespace

// Comparing may run code of the application, which may let go of the array: each operation holds
// it.

void addObjectCheckNil(In<MutableArray> array, const PropertyValue& object) {
  if (array && !object.isNil()) array->addObject(object);
}

bool addObjectIfAbsent(In<MutableArray> array, const PropertyValue& object) {
  if (!array || object.isNil()) return false;
  const Ref<MutableArray> self = Ref<MutableArray>(array.get());
  const PropertyValue held = object;  // it may stand in the array
  if (self->containsObject(held)) return false;
  self->addObject(held);
  return true;
}

void addObjectIfMissing(In<MutableArray> array, const PropertyValue& object) {
  addObjectIfAbsent(array, object);
}

// A class of arrays may store something else than it is given: what counts is what stands there.
void addObjectsFromArrayIfAbsent(In<MutableArray> array, In<Array> other) {
  if (!array || !other) return;
  const Ref<MutableArray> self = Ref<MutableArray>(array.get());
  const Ref<Array> held = ArrayStorage::steady(*other);
  Membership known(self);
  for (const PropertyValue& value : *held) {
    if (known.contains(value)) continue;
    self->addObject(value);
    known.add(self->lastObject());
  }
}

bool insertObjectIfAbsent(In<MutableArray> array, const PropertyValue& object,
                          std::uint32_t atIndex) {
  if (!array) return false;
  const Ref<MutableArray> self = Ref<MutableArray>(array.get());
  const PropertyValue held = object;
  if (!held.isNil() && self->containsObject(held)) return false;
  self->insertObject(held, atIndex);
  return true;
}

void removeObjectsNotInArray(In<MutableArray> array, In<Array> other) {
  if (!array) return;
  const Ref<MutableArray> self = Ref<MutableArray>(array.get());
  const Ref<Array> before = ArrayStorage::steady(*self);
  const Membership wanted(other);
  std::vector<bool> goes(before->count(), false);
  for (std::size_t i = 0; i < before->count(); ++i) goes[i] = !wanted.contains(before->begin()[i]);
  removeMarked(*self, *before, goes);
}

void removeObjectsInArrayUsingIsEqual(In<MutableArray> array, In<Array> other) {
  if (!array || !other) return;
  const Ref<MutableArray> self = Ref<MutableArray>(array.get());
  const Ref<Array> before = ArrayStorage::steady(*self);
  const Ref<Array> held = ArrayStorage::steady(*other);
  Takeaway elements(*before);
  for (const PropertyValue& value : *held) elements.takeFirst(value);
  removeMarked(*self, *before, elements.taken());
}

namespace detail {

void addMutableArrayOperations(ClassBuilderBase& c) {
  using Value = const PropertyValue&;
  using Other = const Ref<Array>&;
  c.addFunction(
      "addObjectCheckNil:", +[](Value r, Value x) { addObjectCheckNil(r.as<MutableArray>(), x); });
  c.addFunction(
      "addObjectIfAbsent:",
      +[](Value r, Value x) { return addObjectIfAbsent(r.as<MutableArray>(), x); });
  c.addFunction(
      "addObjectIfMissing:",
      +[](Value r, Value x) { addObjectIfMissing(r.as<MutableArray>(), x); });
  c.addFunction(
      "addObjectsFromArrayIfAbsent:",
      +[](Value r, Other other) { addObjectsFromArrayIfAbsent(r.as<MutableArray>(), other); });
  c.addFunction(
      "insertObjectIfAbsent:atIndex:", +[](Value r, Value x, std::uint32_t index) {
        return insertObjectIfAbsent(r.as<MutableArray>(), x, index);
      });
  c.addFunction(
      "removeObjectsNotInArray:",
      +[](Value r, Other other) { removeObjectsNotInArray(r.as<MutableArray>(), other); });
  c.addFunction(
      "removeObjectsInArrayUsingIsEqual:",
      +[](Value r, Other other) { removeObjectsInArrayUsingIsEqual(r.as<MutableArray>(), other); });
  c.addFunction("kwRandomize", +[](Value r) { kwRandomize(r.as<MutableArray>()); });
}

}  // namespace detail
}  // namespace qx

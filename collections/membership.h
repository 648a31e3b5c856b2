#pragma once

// Whether a sequence contains a value, as asking its elements one after the other would tell.

#include <cstddef>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/property_value.h>

#include "collections/position_index.h"

namespace qx::detail {

// Whether equality and hash of the value go together, so that a hash can rule equality out: not for
// a class that overrides one of them without the other, nor for a container of such, whose hash is
// made of theirs.
bool hashesLikeItCompares(const PropertyValue& value);

// Holds its elements.
class Membership {
 public:
  Membership() = default;
  // Nil has no elements.
  explicit Membership(In<Array> elements);

  void add(const PropertyValue& value);
  // Calls `isEqual` of an element, and `hash` of the value; both may be the application's. The
  // value is not nil.
  bool contains(const PropertyValue& value) const;

 private:
  void indexNew();

  std::vector<PropertyValue> elements_;
  PositionIndex byHash_;
  std::vector<std::size_t> unhashed_;  // positions of the elements that have to be asked
  std::size_t indexed_ = 0;            // so many of the elements are in one of the two
};

}  // namespace qx::detail

#pragma once

// Whether a sequence contains a value, and where it stands, as asking its elements one after the
// other would tell.

#include <cstddef>
#include <limits>
#include <unordered_set>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/property_value.h>

#include "collections/position_index.h"

namespace qx::detail {

// Whether the array still has the very elements that it had before.
bool holdsStill(const Array& array, const Array& before);

// Positions of elements, by how they are to be found.
struct ElementIndex {
  // Position by position, each next to the one before.
  void add(const PropertyValue& element, std::size_t position);

  PositionIndex byHash;
  std::vector<std::size_t> unhashed;  // what every value has to be compared with
  std::vector<std::size_t> open;      // what a value has to be compared with that has no hash
};

// Holds its elements. Calls `isEqual` of an element and `hash` of both sides, which may be the
// application's.
class Membership {
 public:
  // `lookups` is how often it will be asked, at most: for a few questions nothing is prepared. Nil
  // has no elements.
  explicit Membership(In<Array> elements,
                      std::size_t lookups = std::numeric_limits<std::size_t>::max());

  void add(const PropertyValue& value);
  // The value is not nil.
  bool contains(const PropertyValue& value) const;

 private:
  void indexNew();
  bool anyOf(const std::vector<std::size_t>& positions, const PropertyValue& value) const;

  const bool prepares_;
  std::vector<PropertyValue> elements_;
  std::size_t indexed_ = 0;  // so many of the elements are in the index
  ElementIndex index_;
  std::unordered_set<const Object*> unhashedObjects_;
};

// The elements of an array, of which the first one equal to a value is taken away, again and again.
// Borrows the array, which must not change.
class Takeaway {
 public:
  Takeaway(const Array& elements, std::size_t lookups);

  void takeFirst(const PropertyValue& value);
  // By position.
  const std::vector<bool>& taken() const { return taken_; }

 private:
  // Ascending positions, of which those in front that are taken are passed over once for all.
  struct Candidates {
    std::vector<std::size_t> positions;
    std::size_t next = 0;
  };

  bool equals(std::size_t position, const PropertyValue& value) const {
    return !taken_[position] && elements_.begin()[position] == value;
  }
  std::size_t firstOf(Candidates& candidates, const PropertyValue& value, std::size_t limit) const;
  std::size_t firstByHash(std::size_t hash, const PropertyValue& value);

  const Array& elements_;
  std::vector<bool> taken_;
  PositionIndex byHash_;
  Candidates unhashed_;
  Candidates open_;
  Candidates all_;
  const bool prepares_;
};

}  // namespace qx::detail

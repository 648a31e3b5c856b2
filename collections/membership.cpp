#include "collections/membership.h"

#include <algorithm>
#include <numeric>

#include "collections/equality_hash.h"

namespace qx::detail {
namespace {

// Fewer elements are sooner asked than looked up, and fewer questions are sooner answered than
// prepared for.
constexpr std::size_t kFew = 8;

// Whether a value without a hash can be equal to no more than the open elements.
bool isForeign(const PropertyValue& value) {
  return ObjectAccess::kind(*value.object()) == ObjectKind::object;
}

}  // namespace

bool holdsStill(const Array& array, const Array& before) {
  return std::equal(array.begin(), array.end(), before.begin(), before.end(),
                    [](const PropertyValue& a, const PropertyValue& b) { return isSame(a, b); });
}

void ElementIndex::add(const PropertyValue& element, std::size_t position) {
  if (const auto hash = equalityHash(element)) {
    byHash.addInFront(*hash, position);
  } else {
    unhashed.push_back(position);
  }
  if (mayEqualForeign(element)) open.push_back(position);
}

Membership::Membership(In<Array> elements, std::size_t lookups) : prepares_(lookups > kFew) {
  if (!elements) return;
  elements_.assign(elements->begin(), elements->end());
  indexNew();
}

void Membership::add(const PropertyValue& value) {
  elements_.push_back(value);
  indexNew();
}

void Membership::indexNew() {
  if (!prepares_ || elements_.size() <= kFew) return;
  for (; indexed_ < elements_.size(); ++indexed_) {
    const std::size_t unhashed = index_.unhashed.size();
    index_.add(elements_[indexed_], indexed_);
    if (index_.unhashed.size() != unhashed) unhashedObjects_.insert(elements_[indexed_].object());
  }
}

bool Membership::anyOf(const std::vector<std::size_t>& positions,
                       const PropertyValue& value) const {
  return std::any_of(positions.begin(), positions.end(),
                     [&](std::size_t position) { return elements_[position] == value; });
}

bool Membership::contains(const PropertyValue& value) const {
  if (indexed_ != 0) {
    if (const auto hash = equalityHash(value)) {
      const auto equals = [&](std::size_t position) { return elements_[position] == value; };
      return index_.byHash.find(*hash, equals) != PositionIndex::kAbsent ||
             anyOf(index_.unhashed, value);
    }
    if (unhashedObjects_.contains(value.object())) return true;
    if (isForeign(value)) return anyOf(index_.open, value);
  }
  return std::any_of(elements_.begin(), elements_.end(),
                     [&](const PropertyValue& element) { return element == value; });
}

// The index gives those first that were added last.
Takeaway::Takeaway(const Array& elements, std::size_t lookups)
    : elements_(elements), taken_(elements.count(), false), prepares_(lookups > kFew) {
  all_.positions.resize(elements.count());
  std::iota(all_.positions.begin(), all_.positions.end(), std::size_t{0});
  if (!prepares_) return;
  ElementIndex index;
  for (std::size_t i = elements.count(); i-- > 0;) index.add(elements.begin()[i], i);
  std::reverse(index.unhashed.begin(), index.unhashed.end());
  std::reverse(index.open.begin(), index.open.end());
  byHash_ = std::move(index.byHash);
  unhashed_.positions = std::move(index.unhashed);
  open_.positions = std::move(index.open);
}

void Takeaway::takeFirst(const PropertyValue& value) {
  std::size_t found = PositionIndex::kAbsent;
  if (const auto hash = prepares_ ? equalityHash(value) : std::nullopt) {
    found = firstByHash(*hash, value);
  } else {
    Candidates& candidates = prepares_ && isForeign(value) ? open_ : all_;
    found = firstOf(candidates, value, elements_.count());
  }
  if (found != PositionIndex::kAbsent) taken_[found] = true;
}

// The first that is equal, before the limit.
std::size_t Takeaway::firstOf(Candidates& candidates, const PropertyValue& value,
                              std::size_t limit) const {
  const auto& positions = candidates.positions;
  while (candidates.next < positions.size() && taken_[positions[candidates.next]])
    ++candidates.next;
  for (std::size_t i = candidates.next; i < positions.size() && positions[i] < limit; ++i) {
    if (equals(positions[i], value)) return positions[i];
  }
  return PositionIndex::kAbsent;
}

// An element that has to be asked goes before the one that was looked up where it stands before it.
std::size_t Takeaway::firstByHash(std::size_t hash, const PropertyValue& value) {
  const std::size_t found = byHash_.find(hash, [&](std::size_t i) { return equals(i, value); });
  const std::size_t asked = firstOf(unhashed_, value, std::min(found, elements_.count()));
  if (asked != PositionIndex::kAbsent || found == PositionIndex::kAbsent) return asked;
  return byHash_.take(hash, [found](std::size_t i) { return i == found; });
}

}  // namespace qx::detail

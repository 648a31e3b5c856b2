#include "platform/plist_walk.h"

#include <algorithm>
#include <limits>

#include "frame/array_storage.h"
#include "platform/plist_limits.h"

namespace qx::detail {
namespace {

// A container that is met twice on one walk has an owner for each meeting.
bool mayBeShared(const Object& o) {
  return ObjectAccess::refs(o).load(std::memory_order_relaxed) >= 2 * ObjectAccess::kOne;
}

std::uint64_t saturatedSum(std::uint64_t a, std::uint64_t b) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  return a > kMost - b ? kMost : a + b;
}

[[noreturn]] void refuseDepth() {
  throw PlistFault{
      PropertyListErrorCode::limitExceeded,
      "containers are nested more than " + std::to_string(kMaxPropertyListDepth) + " deep"};
}

}  // namespace

PlistTrail::Known* PlistTrail::meet(const Object& container) {
  if (steps.size() >= kMaxPropertyListDepth) refuseDepth();
  if (!mayBeShared(container)) return nullptr;
  Known& known = shared_[&container];
  if (known.open) {
    throw PlistFault{PropertyListErrorCode::unwritable, "the container holds itself"};
  }
  return &known;
}

void PlistTrail::push(const Array& a, Known* known) {
  push({&a, nullptr, ArrayStorage::values(a), a.count(), known}, a.count());
}

void PlistTrail::push(const Dictionary& d, Known* known) {
  const Shape& shape = DictionaryStorage::shape(d);
  push({&d, &shape, DictionaryStorage::values(d), shape.slots(), known}, shape.count());
}

void PlistTrail::push(Step step, std::size_t count) {
  step.expanded += count;
  distinct_ += count;
  if (step.known != nullptr) step.known->open = true;
  steps.push_back(step);
}

// The container itself was counted with what it stands in.
void PlistTrail::addKnown(const Known& known) {
  if (steps.size() + known.height > kMaxPropertyListDepth) refuseDepth();
  if (steps.empty()) return;
  Step& outer = steps.back();
  outer.expanded = saturatedSum(outer.expanded, known.expanded - 1);
  outer.height = std::max(outer.height, known.height + 1);
}

void PlistTrail::pop() {
  const Step s = steps.back();
  steps.pop_back();
  if (s.known != nullptr) *s.known = {s.expanded, s.height, true, false};
  if (steps.empty()) {
    expanded_ = s.expanded;
    return;
  }
  Step& outer = steps.back();
  outer.expanded = saturatedSum(outer.expanded, s.expanded - 1);
  outer.height = std::max(outer.height, s.height + 1);
}

void PlistTrail::requireBounded() const {
  if (expanded_ <= maxExpandedValues(distinct_)) return;
  throw PlistFault{PropertyListErrorCode::limitExceeded,
                   "containers that are met again and again make a list of too many values"};
}

std::string PlistTrail::path() const {
  constexpr std::size_t kMostShown = 400;
  std::string text;
  for (const Step& s : steps) {
    if (s.next == 0) break;
    if (text.size() > kMostShown) return text + "...";
    if (s.shape == nullptr) {
      text += "[" + std::to_string(s.next - 1) + "]";
    } else {
      if (!text.empty()) text += ".";
      text += s.shape->key(s.next - 1)->utf8().substr(0, 100);
    }
  }
  return text;
}

}  // namespace qx::detail

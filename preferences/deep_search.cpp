// The search for a value through the containers of a tree.

#include <unordered_set>
#include <vector>

#include "preferences/containers.h"

namespace qx::detail {
namespace {

// The elements of a container as they are when it is entered: equality may run code of the
// application.
Ref<Array> elementsOf(const PropertyValue& container) {
  if (const auto* d = treeDictionary(container)) return d->allValues();
  if (const auto* a = treeArray(container)) return Array::from(a->begin(), a->count());
  return nullptr;
}

struct Level {
  Ref<Array> elements;
  std::size_t next = 0;
};

}  // namespace

bool containsDeeply(const PropertyValue& container, const PropertyValue& value) {
  std::vector<Level> open{{elementsOf(container)}};
  // A container met again was searched in vain, or is being searched: it is not entered twice.
  std::unordered_set<const Object*> entered{container.object()};
  while (!open.empty()) {
    Level& level = open.back();
    if (level.next == level.elements->count()) {
      open.pop_back();
      continue;
    }
    const PropertyValue element = level.elements->objectAtIndex(level.next++);
    if (element == value) return true;
    if (linkOf(element) == nullptr || !entered.insert(element.object()).second) continue;
    open.push_back({elementsOf(element)});
  }
  return false;
}

}  // namespace qx::detail

// Arbitrary bytes as an archive: a value or a clear error. What is read is written again, read back
// and written once more; both writings must be the same bytes, which also tells objects apart that
// have no equality of their own, such as qualifiers. Sets are left out of that: crafted bytes can
// put an array into a set before the array has all its elements, and its hash changes under the
// set.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/archiver.h>

namespace {

// Everything that can be reached from the root, each object once.
std::vector<qx::PropertyValue> reachable(const qx::PropertyValue& root) {
  std::vector<qx::PropertyValue> pending{root};
  std::vector<qx::PropertyValue> found;
  std::unordered_set<const qx::Object*> seen;
  while (!pending.empty()) {
    const qx::PropertyValue v = pending.back();
    pending.pop_back();
    if (v.object() == nullptr || !seen.insert(v.object()).second) continue;
    if (const auto a = v.as<qx::Array>()) pending.insert(pending.end(), a->begin(), a->end());
    if (const auto s = v.as<qx::Set>()) {
      const auto members = s->allObjects();
      pending.insert(pending.end(), members->begin(), members->end());
    }
    if (const auto d = v.as<qx::Dictionary>()) {
      for (const auto& item : *d) pending.push_back(item.value);
    }
    found.push_back(v);
  }
  return found;
}

// Empties the mutable containers, so that no circle stays behind.
void takeApart(const std::vector<qx::PropertyValue>& found) {
  for (const qx::PropertyValue& v : found) {
    if (const auto a = v.as<qx::MutableArray>()) a->removeAllObjects();
    if (const auto s = v.as<qx::MutableSet>()) s->removeAllObjects();
    if (const auto d = v.as<qx::MutableDictionary>()) d->removeAllObjects();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto bytes = qx::Data::from({reinterpret_cast<const char*>(data), size});
  qx::Ref<qx::Error> error;
  const qx::PropertyValue value = qx::Unarchiver::unarchiveObjectWithData(bytes, &error);
  if (error != nullptr) return 0;
  const auto written = qx::Archiver::archivedDataWithRootObject(value);
  const qx::PropertyValue again = qx::Unarchiver::unarchiveObjectWithData(written);
  const auto found = reachable(value);
  const bool holdsSets =
      std::any_of(found.begin(), found.end(), [](const qx::PropertyValue& v) { return v.isSet(); });
  if (!holdsSets && !qx::Archiver::archivedDataWithRootObject(again)->isEqual(written))
    std::abort();
  takeApart(found);
  takeApart(reachable(again));
  return 0;
}

#include "platform/immutable_copy.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/property_list.h>

#include "frame/array_storage.h"
#include "frame/dictionary_storage.h"

namespace qx::detail {
namespace {

bool isMutable(const Object& o) { return ObjectAccess::has(o, kMutableVariant); }

class Copier {
 public:
  PropertyValue copy(const PropertyValue& v) {
    const Object* o = v.object();
    if (o == nullptr) return v;
    switch (ObjectAccess::kind(*o)) {
      case ObjectKind::string:
      case ObjectKind::data:
        return isMutable(*o) ? v.copy() : v;
      case ObjectKind::array:
      case ObjectKind::dictionary:
        return copyContainer(v, *o);
      default:
        return v;
    }
  }

 private:
  PropertyValue copyContainer(const PropertyValue& v, const Object& o) {
    if (path_.size() == kMaxPropertyListDepth) return v;
    if (std::find(path_.begin(), path_.end(), &o) != path_.end()) return v;
    // A container that others hold too may be met again, and then costs nothing.
    const bool isShared =
        ObjectAccess::refs(o).load(std::memory_order_relaxed) >= 2 * ObjectAccess::kOne;
    if (isShared) {
      if (const auto known = copies_.find(&o); known != copies_.end()) return known->second;
    }
    path_.push_back(&o);
    PropertyValue result = ObjectAccess::kind(o) == ObjectKind::array
                               ? copyArray(v, static_cast<const Array&>(o))
                               : copyDictionary(v, static_cast<const Dictionary&>(o));
    path_.pop_back();
    if (isShared) copies_.emplace(&o, result);
    return result;
  }

  // Copies the values in place; false when they were all immutable already.
  bool copyAll(PropertyValue* values, std::size_t count) {
    bool changed = false;
    for (std::size_t i = 0; i < count; ++i) {
      PropertyValue copied = copy(values[i]);
      if (isSame(copied, values[i])) continue;
      values[i] = std::move(copied);
      changed = true;
    }
    return changed;
  }

  PropertyValue copyArray(const PropertyValue& v, const Array& a) {
    const Ref<Array> result = Array::from(a.begin(), a.count());
    const bool changed = copyAll(ArrayStorage::values(*result), result->count());
    return changed || isMutable(a) ? PropertyValue(result) : v;
  }

  PropertyValue copyDictionary(const PropertyValue& v, const Dictionary& d) {
    const Ref<Dictionary> result = DictionaryStorage::immutableCopy(d);
    const bool changed = copyAll(DictionaryStorage::values(*result), result->count());
    return changed || isMutable(d) ? PropertyValue(result) : v;
  }

  std::vector<const Object*> path_;  // the containers around the one at work
  std::unordered_map<const Object*, PropertyValue> copies_;
};

}  // namespace

PropertyValue immutableDeepCopy(const PropertyValue& value) { return Copier().copy(value); }

}  // namespace qx::detail

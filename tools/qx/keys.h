// The keys that --keys asks for.
#pragma once

#include <string_view>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/property_value.h>

namespace qxtool {

struct Key {
  qx::Ref<qx::String> path;
  // Of a path of several steps the first; else nil.
  qx::Ref<qx::String> firstStep;
};

using Keys = std::vector<Key>;

// Of "name,address.city"; a key that is named again counts once. A Failure for an empty key.
Keys keysFromList(std::string_view list);
// Every key of the records, in the order of its first appearance.
Keys keysOf(const qx::Array& records);

// An element of an array of records.
inline const qx::Dictionary& recordOf(const qx::PropertyValue& element) {
  return static_cast<const qx::Dictionary&>(*element.object());
}

// The record's entry with that key, else what the key path leads to; nil where there is nothing.
qx::PropertyValue valueAt(const qx::PropertyValue& record, const Key& key);

// The record with nothing but those keys, in its own order; a key path stands where the record has
// its first step. The record itself when there are no keys.
qx::PropertyValue chosenFrom(const qx::PropertyValue& record, const Keys& keys);

}  // namespace qxtool

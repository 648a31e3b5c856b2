#pragma once

// Makes the values of a property list that is being read, mutable or not. Both readers use it.

#include <cstddef>
#include <string_view>
#include <vector>

#include <QXFoundation/property_list.h>
#include <QXFoundation/string.h>

#include "frame/dictionary_storage.h"
#include "frame/hash_index.h"
#include "frame/shape.h"
#include "frame/text_span.h"

namespace qx::detail {

class PlistBuilder {
 public:
  explicit PlistBuilder(PropertyListMutability mutability) : mutability_(mutability) {}

  bool makesMutableContainers() const { return mutability_ != PropertyListMutability::immutable; }
  bool makesMutableLeaves() const {
    return mutability_ == PropertyListMutability::mutableContainersAndLeaves;
  }

  // A leaf as it stands in the list: the immutable one itself, or its mutable copy.
  PropertyValue leaf(PropertyValue immutable) const {
    if (makesMutableLeaves()) return mutableLeaf(immutable);
    return immutable;
  }
  // Takes the values.
  PropertyValue array(PropertyValue* values, std::size_t count) const;
  // Takes the values; nil when two keys are equal. `depth` is the dictionary's own: dictionaries of
  // one depth mostly look alike, so that each depth remembers the last one's keys.
  PropertyValue dictionary(std::size_t depth, const Ref<String>* keys, PropertyValue* values,
                           std::size_t count);
  // What the next dictionary of that depth probably looks like: the keys of the last one, until
  // another one is made there. Null where there was none, and where that would not help.
  const Shape* expected(std::size_t depth) const {
    return depth < last_.size() ? last_[depth].get() : nullptr;
  }
  // The expected dictionary, whose values are nil until the caller has filled every one.
  Ref<Dictionary> emptyExpectedDictionary(std::size_t depth) const {
    return DictionaryStorage::allocate(last_[depth]->another());
  }
  // The expected dictionary, with as many values as it has keys, which are taken.
  PropertyValue expectedDictionary(std::size_t depth, PropertyValue* values) const;

  // One string for all equal keys of the list. The text is well-formed UTF-8.
  Ref<String> key(std::string_view utf8);
  Ref<String> key(Ref<String> made);

 private:
  static PropertyValue mutableLeaf(const PropertyValue& immutable);
  std::size_t find(std::uint32_t hash, TextSpan text) const;

  PropertyListMutability mutability_;
  DictionaryBuilder dictionaries_;
  std::vector<ShapeCount> last_;  // by depth
  std::vector<Ref<String>> keys_;
  HashIndex index_;  // of keys_
};

// Whether the key's text is that well-formed UTF-8.
bool isKey(const String& key, std::string_view utf8);
// The position of the first key that an earlier one equals; `count` when all are distinct.
std::size_t firstRepeatedKey(const Ref<String>* keys, std::size_t count);

}  // namespace qx::detail

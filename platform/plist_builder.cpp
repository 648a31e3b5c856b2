#include "platform/plist_builder.h"

#include <algorithm>

#include <QXFoundation/array.h>
#include <QXFoundation/data.h>
#include <QXFoundation/dictionary.h>

#include "frame/array_storage.h"
#include "frame/hashing.h"
#include "frame/string_storage.h"
#include "frame/unicode.h"
#include "frame/utf.h"

namespace qx::detail {

PropertyValue PlistBuilder::mutableLeaf(const PropertyValue& immutable) {
  if (const auto* s = immutable.isString() ? immutable.peek<String>() : nullptr) {
    return MutableString::from(*s);
  }
  if (const auto* d = immutable.isData() ? immutable.peek<Data>() : nullptr) {
    return MutableData::from(d->view());
  }
  return immutable;
}

PropertyValue PlistBuilder::array(PropertyValue* values, std::size_t count) const {
  if (makesMutableContainers()) return MutableArray::from(values, count);
  Ref<Array> a = ArrayStorage::allocate(count);
  std::move(values, values + count, ArrayStorage::values(*a));
  return a;
}

PropertyValue PlistBuilder::dictionary(std::size_t depth, const Ref<String>* keys,
                                       PropertyValue* values, std::size_t count) {
  if (makesMutableContainers()) {
    const auto d = MutableDictionary::init();
    DictionaryStorage::reserve(*d, count);
    for (std::size_t i = 0; i < count; ++i) {
      DictionaryStorage::set(*d, std::move(values[i]), keys[i]);
    }
    if (d->count() != count) return {};
    return d;
  }
  Ref<Dictionary> d = dictionaries_.build(keys, values, count);
  if (d->count() != count) return {};
  if (count <= Shape::kMaxShared) {
    if (last_.size() <= depth) last_.resize(depth + 1);
    last_[depth] = const_cast<Shape&>(DictionaryStorage::shape(*d)).another();
  }
  return d;
}

PropertyValue PlistBuilder::expectedDictionary(std::size_t depth, PropertyValue* values) const {
  Ref<Dictionary> d = emptyExpectedDictionary(depth);
  std::move(values, values + last_[depth]->slots(), DictionaryStorage::values(*d));
  return d;
}

std::size_t PlistBuilder::find(std::uint32_t hash, TextSpan text) const {
  return index_.find(
      hash, [&](std::size_t at) { return equalUnits(StringStorage::span(*keys_[at]), text); });
}

Ref<String> PlistBuilder::key(std::string_view utf8) {
  if (asciiPrefix(utf8) != utf8.size()) return key(immutableString(utf8));
  const TextSpan text = TextSpan::latin1(utf8);
  const std::size_t at = find(hashText(text), text);
  return at != HashIndex::kAbsent ? keys_[at] : key(immutableString(utf8));
}

Ref<String> PlistBuilder::key(Ref<String> made) {
  const std::uint32_t hash = StringStorage::hash(*made);
  const std::size_t at = find(hash, StringStorage::span(*made));
  if (at != HashIndex::kAbsent) return keys_[at];
  keys_.push_back(made);
  index_.insert(hash, keys_.size() - 1);
  return made;
}

bool isKey(const String& key, std::string_view utf8) {
  const TextSpan text = StringStorage::span(key);
  if (asciiPrefix(utf8) != utf8.size()) {
    return equalUnits(text, StringStorage::span(*immutableString(utf8)));
  }
  return !text.wide && text.latin1View() == utf8;
}

std::size_t firstRepeatedKey(const Ref<String>* keys, std::size_t count) {
  HashIndex index;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint32_t hash = StringStorage::hash(*keys[i]);
    const TextSpan text = StringStorage::span(*keys[i]);
    const auto equals = [&](std::size_t j) {
      return equalUnits(StringStorage::span(*keys[j]), text);
    };
    if (index.find(hash, equals) != HashIndex::kAbsent) return i;
    index.insert(hash, i);
  }
  return count;
}

}  // namespace qx::detail

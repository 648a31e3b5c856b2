#include "preferences/tree_path.h"

#include <algorithm>
#include <cstring>

#include <QXFoundation/preferences_array.h>

#include "frame/dictionary_storage.h"
#include "frame/hashing.h"
#include "frame/key_text.h"
#include "frame/raise.h"
#include "frame/string_storage.h"
#include "frame/utf.h"
#include "preferences/containers.h"
#include "preferences/plain_path.h"
#include "preferences/store_access.h"

namespace qx::detail {
namespace {

std::size_t findUnit(TextSpan text, char unit, std::size_t from) {
  if (from > text.size) return kNotFound;
  const std::size_t at = text.wide ? text.utf16View().find(static_cast<char16_t>(unit), from)
                                   : text.latin1View().find(unit, from);
  return at == std::string_view::npos ? kNotFound : at;
}

// The last place of the unit among the first `count` units.
std::size_t findLastUnit(TextSpan text, char unit, std::size_t count) {
  for (std::size_t i = count; i-- > 0;) {
    if (text[i] == static_cast<char16_t>(unit)) return i;
  }
  return kNotFound;
}

// One component of a path: its key, borrowed from the path, and its index.
class Component {
 public:
  Component() = default;
  // `mayBeCut`: an opening bracket stands somewhere in the path.
  Component(TextSpan text, bool mayBeCut) : key_(text) {
    if (endsLikeIndex(text)) index_ = indexOfComponent(text);
    if (mayBeCut) key_ = text.substr(0, findLastUnit(text, '[', text.size));
  }
  static bool endsLikeIndex(TextSpan text) { return text.size >= 4 && text[text.size - 1] == u']'; }

  TextSpan key() const { return key_; }
  std::int32_t index() const { return index_; }

 private:
  TextSpan key_;
  std::int32_t index_ = kNoIndex;
};

bool hasBracket(TextSpan path) { return findUnit(path, '[', 0) != kNotFound; }

// Calls `visit(text)` for each piece between dots.
template <class Visit>
void eachComponent(TextSpan path, Visit visit) {
  for (std::size_t start = 0;;) {
    const std::size_t dot = findUnit(path, '.', start);
    visit(path.substr(start, dot == kNotFound ? kNotFound : dot - start));
    if (dot == kNotFound) return;
    start = dot + 1;
  }
}

const PropertyValue* findKey(const Dictionary& d, TextSpan key) {
  if (key.wide) return DictionaryStorage::find(d, KeyText(key));  // a part may need less room
  return DictionaryStorage::find(d, KeyView{key, hashText(key)});
}

[[noreturn]] void raiseNoDictionary(const PropertyValue& value) {
  raiseUnsupported(value, "objectForKey:");
}

const Dictionary& asDictionary(const PropertyValue& value) {
  if (!value.isDictionary()) raiseNoDictionary(value);
  return static_cast<const Dictionary&>(*value.object());
}

const Array* asArray(const PropertyValue& value) {
  return value.isArray() ? static_cast<const Array*>(value.object()) : nullptr;
}

bool isWithin(std::int32_t index, const Array& array) {
  return index < 0 || static_cast<std::size_t>(index) < array.count();
}
// A negative index is no place in an array, and raises.
std::size_t place(std::int32_t index) { return static_cast<std::size_t>(std::int64_t{index}); }

void setAtIndex(const PropertyValue& parent, const PropertyValue& value, std::int32_t index) {
  const Array* array = asArray(parent);
  const std::size_t count = array != nullptr ? array->count() : asDictionary(parent).count();
  if (index >= 0 && place(index) > count) return;
  const bool isNew = index >= 0 && place(index) == count;
  if (array == nullptr || !ObjectAccess::has(*array, kMutableVariant)) {
    raiseUnsupported(parent,
                     isNew ? Selector("addObject:") : Selector("replaceObjectAtIndex:withObject:"));
  }
  auto& elements = static_cast<MutableArray&>(*parent.object());
  if (isNew) {
    elements.addObject(value);
  } else {
    elements.replaceObjectAtIndex(place(index), value);
  }
}

// The walk along a path that is about to be written.
class Walk {
 public:
  Walk(const PropertyValue& root, bool create, bool mayBeCut)
      : parent_(root), current_(root), create_(create), mayBeCut_(mayBeCut) {}

  void step(TextSpan text, bool isFirst) {
    if (create_ && !isFirst) createCurrent();
    const PropertyValue container = std::move(current_);
    last_ = Component(text, mayBeCut_);
    const PropertyValue* found =
        container.isNil() ? nullptr : findKey(asDictionary(container), last_.key());
    current_ = found != nullptr ? *found : PropertyValue();
    const Array* array = asArray(current_);
    if (array == nullptr || last_.index() == kNoIndex) {
      parent_ = container;
      wantedIndex_ = last_.index();
      return;
    }
    parent_ = std::move(current_);
    current_ = nullptr;
    wantedIndex_ = kNoIndex;
    if (!isWithin(last_.index(), *array)) return;
    current_ = array->objectAtIndex(place(last_.index()));
    if (create_) store(nullptr);
    wantedIndex_ = last_.index();
  }

  PathEnd end() { return {std::move(current_), std::move(parent_)}; }

 private:
  // What the last component names, and does not exist yet, is made; in any case it is stored
  // (again), by which a plain container becomes one of the tree.
  void createCurrent() {
    if (current_.isNil()) {
      if (wantedIndex_ != kNoIndex) {
        const PropertyValue array = QXPreferencesArray::init();
        changeableDictionary(parent_, "setObject:forKey:").setObject(array, PartText(last_.key()));
        parent_ = array;
      }
      current_ = QXPreferencesDictionary::init();
    }
    store(PartText(last_.key()));
  }

  // Goes on in what the parent then holds, so that what is written below is not lost.
  void store(StringArg key) {
    const bool isPlain = isPlainContainer(current_);
    setInParent(parent_, current_, key, last_.index());
    if (!isPlain) return;
    if (const Array* array = asArray(parent_); array != nullptr && last_.index() != kNoIndex) {
      if (place(last_.index()) < array->count()) {
        current_ = array->objectAtIndex(place(last_.index()));
      }
    } else if (last_.index() == kNoIndex) {
      current_ = asDictionary(parent_).objectForKey(key);
    }
  }

  PropertyValue parent_;
  PropertyValue current_;
  Component last_;
  // An index that the last component has, unless it lies beyond the end of an array that is there.
  std::int32_t wantedIndex_ = kNoIndex;
  bool create_;
  bool mayBeCut_;
};

// What is done where a path leads through a value that is no dictionary.
enum class OnLeaf : unsigned char { raise, giveNull };

// The walk of any path, component by component.
const PropertyValue* valueAlongPath(const QXPreferencesDictionary& root, StringArg keyPath,
                                    OnLeaf onLeaf) {
  const ArgText path(keyPath);
  const bool mayBeCut = hasBracket(path);
  const PropertyValue* current = nullptr;
  const Dictionary* container = &root;
  eachComponent(path, [&](TextSpan text) {
    const Component component(text, mayBeCut);
    if (container == nullptr && current != nullptr) {
      const bool isLeaf = onLeaf == OnLeaf::giveNull && !current->isDictionary();
      container = isLeaf ? nullptr : &asDictionary(*current);
    }
    current = container == nullptr ? nullptr : findKey(*container, component.key());
    container = nullptr;
    if (current == nullptr || component.index() == kNoIndex) return;
    if (const Array* array = asArray(*current)) {
      current = isWithin(component.index(), *array)
                    ? &array->objectAtIndex(place(component.index()))
                    : nullptr;
    }
  });
  return current;
}

}  // namespace

PartText::PartText(TextSpan text) {
  if (!text.wide && asciiPrefix(text.latin1View()) == text.size) {
    bytes_ = text.latin1View();
  } else {
    string_ = StringStorage::make(text);
  }
}

std::int32_t indexOfComponent(TextSpan component) {
  if (component.size < 4 || component[component.size - 1] != u']') return kNoIndex;
  std::size_t at = component.size - 2;
  if (component[at] == u'[') return 0;
  std::uint32_t sum = 0;
  for (std::uint32_t k = 0;; ++k, --at) {
    sum += (std::uint32_t{component[at]} - 48U) * (k ^ 10U);
    if (at == 0) {
      throw RangeException("the key \"" + toUtf8(component) +
                           "\" of a key path has a closing bracket without an opening one");
    }
    if (component[at - 1] == u'[') return static_cast<std::int32_t>(sum);
  }
}

Ref<String> standardizedKeyPath(StringArg keyPath) {
  if (keyPath.isNil()) return nullptr;
  const ArgText path(keyPath);
  if (findUnit(path, '[', 0) == kNotFound) return keyPath.string();
  std::u16string result;
  eachComponent(path, [&](TextSpan component) {
    const std::size_t cut = findLastUnit(path, '[', component.size);
    const bool isFirst =
        component.data == static_cast<const TextSpan&>(path).data && result.empty();
    if (!isFirst) result += u'.';
    result += component.substr(0, cut).toUtf16();
  });
  return String::fromUtf16(result);
}

namespace {

const PropertyValue* valueAt(const QXPreferencesDictionary& root, StringArg keyPath,
                             OnLeaf onLeaf) {
  const PropertyValue* found = nullptr;
  const Dictionary* container = &root;
  const bool isPlain = eachPlainKey(keyPath, [&](TextSpan key, bool isLast) {
    found = DictionaryStorage::find(*container, {key, hashText(key)});
    if (isLast) return true;
    if (found == nullptr || !found->isDictionary()) return false;
    container = static_cast<const Dictionary*>(found->object());
    return true;
  });
  return isPlain ? found : valueAlongPath(root, keyPath, onLeaf);
}

}  // namespace

const PropertyValue* valueAtPath(const QXPreferencesDictionary& root, StringArg keyPath) {
  return valueAt(root, keyPath, OnLeaf::raise);
}

const PropertyValue* reachableValueAtPath(const QXPreferencesDictionary& root, StringArg keyPath) {
  return valueAt(root, keyPath, OnLeaf::giveNull);
}

TreeEnd endWithinTree(QXPreferencesDictionary& root, const PreferencesLink& link,
                      StringArg keyPath) {
  TreeEnd end;
  if (!(PreferencesAccess::link(root) == link)) return end;
  end.parent = &root;
  const bool isWithin = eachPlainKey(keyPath, [&](TextSpan key, bool isLast) {
    end.key = key;
    end.hash = hashText(key);
    end.found = const_cast<PropertyValue*>(DictionaryStorage::find(*end.parent, {key, end.hash}));
    if (isLast) return !key.empty() || end.parent == &root;
    QXPreferencesDictionary* next = end.found == nullptr ? nullptr : ownTreeDictionary(*end.found);
    if (next == nullptr || !(PreferencesAccess::link(*next) == link)) return false;
    end.parent = next;
    return true;
  });
  return isWithin ? end : TreeEnd{};
}

PathEnd walkPath(const PropertyValue& root, StringArg keyPath, bool create) {
  if (keyPath.isNil()) return {root, root};
  const ArgText path(keyPath);
  Walk walk(root, create, hasBracket(path));
  bool isFirst = true;
  eachComponent(path, [&](TextSpan component) {
    walk.step(component, isFirst);
    isFirst = false;
  });
  return walk.end();
}

MutableDictionary& changeableDictionary(const PropertyValue& value, Selector operation) {
  if (!value.isDictionary() || !ObjectAccess::has(*value.object(), kMutableVariant)) {
    raiseUnsupported(value, operation);
  }
  return static_cast<MutableDictionary&>(*value.object());
}

void setInParent(const PropertyValue& parent, const PropertyValue& value, StringArg key,
                 std::int32_t index) {
  if (index != kNoIndex) return setAtIndex(parent, value, index);
  changeableDictionary(parent, "setObject:forKey:").setObject(value, key);
}

WrittenNames namesOfWrite(StringArg keyPath, bool hasPath) {
  const ArgText text(keyPath);
  const TextSpan path = text;
  const std::size_t dot = findLastUnit(path, '.', path.size);
  const auto part = [&](std::size_t from, std::size_t to) {
    return standardizedKeyPath(StringStorage::make(path.substr(from, to - from)));
  };
  if (dot == kNotFound) {
    const Ref<String> name = standardizedKeyPath(keyPath);
    return {name, name, true};
  }
  if (dot + 1 == path.size) return {nullptr, nullptr, true};
  return {part(dot + 1, path.size), hasPath ? nullptr : part(0, findUnit(path, '.', 0)), false};
}

}  // namespace qx::detail

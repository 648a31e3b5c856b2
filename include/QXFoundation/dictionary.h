// Dictionary and MutableDictionary: maps from string keys to values, in insertion order.
//
//     auto d = qx::dict({{"name", "Bob"}, {"age", 42}});
//     for (auto [key, value] : *d) use(key, value);
//
// Small dictionaries with the same keys in the same order share one layout, so that a million
// records of one form store their keys once.
#pragma once

#include <cstddef>
#include <initializer_list>

#include <QXFoundation/array.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string_arg.h>

namespace qx {

namespace detail {
class Shape;
struct DictionaryStorage;
}  // namespace detail

// One key and value of a dictionary literal.
struct Entry {
  // The key, which is not nil, and its value.
  StringArg key;
  PropertyValue value;
};

// An immutable dictionary; values are never nil. The class is "NSDictionary". As thread-safe as its
// values. Equality and description have limits, see PropertyValue.
class QX_EXPORT Dictionary : public Object {
 public:
  // Of a key given twice the last value stays, at the first place. A nil key or value raises
  // InvalidArgumentException.
  static Ref<Dictionary> from(const Entry* first, std::size_t count);
  static Ref<Dictionary> init();

  // The number of entries.
  std::size_t count() const;
  // Nil when absent, and for a nil key.
  PropertyValue objectForKey(StringArg key) const;
  // The same, borrowed: null when absent; a mutable dictionary's ends with its next change.
  const PropertyValue* find(StringArg key) const;
  Ref<Array> allKeys() const;
  Ref<Array> allValues() const;
  bool isEqualToDictionary(In<Dictionary> other) const;

  // An entry of the dictionary, borrowed.
  struct Item {
    // Both are borrowed.
    const String& key;
    const PropertyValue& value;
  };
  // Walks the entries in order; ends with the dictionary's next change.
  class Iterator {
   public:
    // What every forward iterator does.
    Item operator*() const;
    Iterator& operator++();
    friend bool operator==(const Iterator& a, const Iterator& b) { return a.slot_ == b.slot_; }

   private:
    friend class Dictionary;
    Iterator(const Dictionary* owner, std::size_t slot) : owner_(owner), slot_(slot) {}
    const Dictionary* owner_;
    std::size_t slot_;
  };
  // The entries in their order; a mutable dictionary's end with its next change.
  Iterator begin() const;
  Iterator end() const;

  bool isEqual(const PropertyValue& other) const override;
  std::size_t hash() const override;
  std::string description() const override;
  Ref<Object> copy() const override;
  Ref<Object> mutableCopy() const override;

  // Inside the library.
  Dictionary(detail::Passkey, detail::Shape* shape, unsigned bits);

 protected:
  ~Dictionary() override;

 private:
  friend struct detail::DictionaryStorage;
  detail::Shape* shape_;
};

// A dictionary that changes in place. The class is "NSMutableDictionary". Belongs to one thread at
// a time. A subclass that wants to see every change overrides the primitives, through which all
// others go.
class QX_EXPORT MutableDictionary : public Dictionary {
 public:
  MutableDictionary();
  // An empty dictionary; one with the entries of another, where nil counts as empty.
  static Ref<MutableDictionary> init();
  static Ref<MutableDictionary> dictionaryWithDictionary(In<Dictionary> other);

  // The primitives. A nil key or value raises InvalidArgumentException, and nothing changes;
  // removing under a key that is absent does nothing. A new key goes last; a mutable string as key
  // is copied.
  virtual void setObject(const PropertyValue& value, StringArg forKey);
  virtual void removeObjectForKey(StringArg key);
  virtual void removeAllObjects();

  // Adds the other's entries, replacing those of the same keys; takes them in place of all.
  // Nil counts as empty.
  virtual void addEntriesFromDictionary(In<Dictionary> other);
  virtual void setDictionary(In<Dictionary> other);
  // Nil as value removes the entry; a nil key raises InvalidArgumentException.
  virtual void setValueForKey(const PropertyValue& value, StringArg key);

  Ref<Object> copy() const override;

 protected:
  ~MutableDictionary() override;

 private:
  friend struct detail::DictionaryStorage;
  PropertyValue* values_ = nullptr;
  std::size_t capacity_ = 0;
};

QX_EXPORT const Class& classObject(detail::Type<Dictionary>);
QX_EXPORT const Class& classObject(detail::Type<MutableDictionary>);

// A dictionary of the entries given.
[[nodiscard]] QX_EXPORT Ref<Dictionary> dict();
[[nodiscard]] QX_EXPORT Ref<Dictionary> dict(std::initializer_list<Entry> entries);

}  // namespace qx

// Set and MutableSet: collections without duplicates, by equality and hash. They keep insertion
// order.
//
//     auto s = qx::MutableSet::init();  s->addObject("a");  s->containsObject("a");
#pragma once

#include <cstddef>

#include <QXFoundation/array.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string.h>

namespace qx {

namespace detail {
struct SetStorage;
}

// An immutable set. The class is "NSSet". As thread-safe as its members, which must not change in
// equality or hash while they are in a set. Comparing sets that nest more than 500 deep raises
// InvalidArgumentException. Key access reads from every member, but stores on none.
class QX_EXPORT Set : public Object {
 public:
  // Of equal members the first stays. A nil array raises InvalidArgumentException.
  static Ref<Set> from(In<Array> members);

  // The number of members, and whether an equal one is there.
  std::size_t count() const;
  bool containsObject(const PropertyValue& value) const { return !member(value).isNil(); }
  // The member equal to the value; nil when there is none.
  PropertyValue member(const PropertyValue& value) const;
  Ref<Array> allObjects() const;
  // Nil as `other` raises InvalidArgumentException.
  bool isSubsetOfSet(In<Set> other) const;

  bool isEqual(const PropertyValue& other) const override;
  std::size_t hash() const override;
  std::string description() const override;
  Ref<Object> copy() const override;
  Ref<Object> mutableCopy() const override;

  // Inside the library.
  explicit Set(detail::Passkey, unsigned bits = 0);
  const detail::SetStorage& storage() const { return *storage_; }

 protected:
  ~Set() override;
  // Inside the library.
  detail::SetStorage* storage_;
};

// A set that changes in place. The class is "NSMutableSet". Belongs to one thread at a time.
class QX_EXPORT MutableSet : public Set {
 public:
  MutableSet();
  // An empty set; one of these members, of equal ones the first. Nil counts as none.
  static Ref<MutableSet> init();
  static Ref<MutableSet> from(In<Array> members);

  // An equal member that is there already stays. Nil raises InvalidArgumentException.
  void addObject(const PropertyValue& value);
  // Nil, and what is no member, does nothing.
  void removeObject(const PropertyValue& value);
  void removeAllObjects();

  Ref<Object> copy() const override;
};

QX_EXPORT const Class& classObject(detail::Type<Set>);
QX_EXPORT const Class& classObject(detail::Type<MutableSet>);

}  // namespace qx

// SortDescriptor: compares two objects by what they have under a key path.
//
//     auto byCity = qx::SortDescriptor::sortDescriptorWithKey("address.city", true);
//     if (byCity->compareObject(ann, bob) < 0) ...
#pragma once

#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>
#include <QXFoundation/string.h>

namespace qx {

// The class is "NSSortDescriptor". Immutable, thread-safe. A subclass compares otherwise by
// overriding `compareObject`.
class QX_EXPORT SortDescriptor : public Object {
 public:
  // By the objects themselves, ascending, with "compare:".
  SortDescriptor();
  SortDescriptor(StringArg key, bool ascending, Selector selector);

  // The key is a key path; with a nil one the objects themselves are compared. The selector, of
  // which "compare:" is the usual one, names an operation with a number as result: negative where
  // the receiver is before the argument.
  static Ref<SortDescriptor> sortDescriptorWithKey(StringArg key, bool ascending);
  static Ref<SortDescriptor> sortDescriptorWithKey(StringArg key, bool ascending,
                                                   SelectorFor<1> selector);
  static Ref<SortDescriptor> initWithKey(StringArg key, bool ascending);
  static Ref<SortDescriptor> initWithKey(StringArg key, bool ascending, SelectorFor<1> selector);

  // What it was made with, and the descriptor of the opposite order.
  const Ref<String>& key() const { return key_; }
  bool ascending() const { return ascending_; }
  Selector selector() const { return selector_; }
  Ref<SortDescriptor> reversedSortDescriptor() const;

  // -1, 0 or 1: the first object is before, with or behind the second. Missing values are before
  // all others, and behind them in a descending order. Raises InvalidArgumentException where the
  // values do not compare.
  virtual int compareObject(const PropertyValue& object, const PropertyValue& toObject) const;

 protected:
  ~SortDescriptor() override;

 private:
  int compareAscending(const PropertyValue& a, const PropertyValue& b) const;

  Ref<String> key_;
  bool ascending_ = true;
  Selector selector_;
};

QX_EXPORT const Class& classObject(detail::Type<SortDescriptor>);

}  // namespace qx

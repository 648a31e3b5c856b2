// QXPreferencesArray: the arrays of a preferences tree. They tell their store of every change.
//
//     auto recent = preferences->arrayForKeyPath("recent").as<qx::QXPreferencesArray>();
//     recent->insertObject("/tmp/letter.txt", 0);   // the store is dirty
#pragma once

#include <QXFoundation/array.h>
#include <QXFoundation/preferences_link.h>

namespace qx {

// As QXPreferencesDictionary, for arrays: what is put in is converted alike, and changes are
// reported, addObjectsFromArray once for all elements (even for none). A subclass that overrides
// `emptyInstance` passes its class on to arrays among the elements that addObjectsFromArray adds.
// Belongs to the store's thread.
class QX_EXPORT QXPreferencesArray : public MutableArray {
 public:
  // An array that reports its changes to the store, empty or with these contents; without a
  // store it is a plain one. Nil contents count as none.
  static Ref<QXPreferencesArray> init();
  static Ref<QXPreferencesArray> initWithPreferences(In<QXPreferences> preferences);
  static Ref<QXPreferencesArray> initWithArray(In<Array> contents, In<QXPreferences> preferences);
  static Ref<QXPreferencesArray> arrayWithArray(In<Array> contents, In<QXPreferences> preferences);

  // The store to report to from now on; nil for none.
  void setPreferences(In<QXPreferences> preferences);
  // Nil without a store.
  Ref<QXPreferences> preferences() const;

  // Whether an equal value stands here, or in a container of this kind at any depth below.
  bool containsObject(const PropertyValue& value) const;

  void addObject(const PropertyValue& value) override;
  void insertObject(const PropertyValue& value, std::size_t atIndex) override;
  void replaceObjectAtIndex(std::size_t index, const PropertyValue& withObject) override;
  void removeObjectAtIndex(std::size_t index) override;
  void removeLastObject() override;
  void removeAllObjects() override;
  void addObjectsFromArray(In<Array> other) override;

  // A new empty array of this one's class, without a store.
  virtual Ref<QXPreferencesArray> emptyInstance() const;

  // Instances come from the functions above, those of a subclass from qx::make.
  QXPreferencesArray();

 protected:
  ~QXPreferencesArray() override;

 private:
  friend struct detail::PreferencesAccess;
  detail::PreferencesLink link_;
};

QX_EXPORT const Class& classObject(detail::Type<QXPreferencesArray>);

}  // namespace qx

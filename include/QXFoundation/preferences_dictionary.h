// QXPreferencesDictionary: the dictionaries of a preferences tree. They tell their store of every
// change.
//
//     auto panel = preferences->objectForKeyPath("panel").as<qx::QXPreferencesDictionary>();
//     panel->setObject(qx::array(1, 2), "frame");   // kept as a QXPreferencesArray
//     preferences->isDirty();                       // true
#pragma once

#include <QXFoundation/dictionary.h>
#include <QXFoundation/preferences_link.h>

namespace qx {

// Every dictionary and array that is put in is kept as a container of this kind, at every depth:
// one that is already is taken over and reports to this one's store from then on (the containers
// within it stay as they are), any other is copied. Each change is reported to the store, and marks
// it dirty, even where it changes nothing. Without a store, or once it is gone, this is a plain
// mutable dictionary. The reference to the store does not keep it alive. Belongs to the store's
// thread.
//
// A subclass that overrides `emptyInstance` passes its class on to the dictionaries put in.
class QX_EXPORT QXPreferencesDictionary : public MutableDictionary {
 public:
  // Empty, without a store.
  static Ref<QXPreferencesDictionary> init();
  // Empty, with a store (may be nil).
  static Ref<QXPreferencesDictionary> initWithPreferences(In<QXPreferences> preferences);
  // With these entries, each put in as by setObject.
  static Ref<QXPreferencesDictionary> initWithDictionary(In<Dictionary> contents,
                                                         In<QXPreferences> preferences);
  static Ref<QXPreferencesDictionary> dictionaryWithDictionary(In<Dictionary> contents,
                                                               In<QXPreferences> preferences);

  // Reports go to that store from now on, or nowhere; nothing is told of it. The containers within
  // keep theirs.
  void setPreferences(In<QXPreferences> preferences);
  // Nil without a store.
  Ref<QXPreferences> preferences() const;

  // The entries as a plain immutable dictionary; the containers among them are the same objects.
  Ref<Dictionary> dictionary() const;

  // Whether an equal value stands here, or in a container of this kind at any depth below. Keys do
  // not count.
  bool containsObject(const PropertyValue& value) const;

  void setObject(const PropertyValue& value, StringArg forKey) override;
  void removeObjectForKey(StringArg key) override;
  // Removes one key after the other.
  void removeAllObjects() override;
  // Sets one entry after the other.
  void addEntriesFromDictionary(In<Dictionary> other) override;
  // Replaces all entries quietly: what is given is not converted, and the store is not told.
  void setDictionary(In<Dictionary> other) override;

  // A new empty dictionary of this one's class, without a store.
  virtual Ref<QXPreferencesDictionary> emptyInstance() const;

  // Instances come from the functions above, those of a subclass from qx::make.
  QXPreferencesDictionary();

 protected:
  ~QXPreferencesDictionary() override;

 private:
  friend struct detail::PreferencesAccess;
  detail::PreferencesLink link_;
};

QX_EXPORT const Class& classObject(detail::Type<QXPreferencesDictionary>);

}  // namespace qx

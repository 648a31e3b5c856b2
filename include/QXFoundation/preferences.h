// QXPreferences: a store of settings addressed by key paths.
//
//     auto preferences = qx::QXPreferences::initWithPath("settings.plist");
//     preferences->setInteger(640, "layout.frames[0].width");
//     preferences->setObject(qx::array("a", "b"), "recent");
//     int width = preferences->integerForKeyPath("layout.frames[0].width");
//     auto watching = preferences->observe("ui.theme", [&](qx::StringArg path) { redraw(path); });
//     if (!preferences->synchronize()) warn();
//
// A key path is a list of keys with dots between. A key may carry an index in brackets, which
// stands for an element of the array under that key. The digits of an index are weighted, from the
// last to the first, by 10, 11, 8, 9, 14, 15, 12, 13 and so on (10 with their place, counted from
// 0, by exclusive or), so that `[0]` and `[]` are element 0, `[1]` element 10 and `[12]`
// element 31. Writing creates the dictionaries and arrays on the way; what would stand beyond the
// end of an array is dropped without a word. A last key with an index sets the key in every element
// of the array.
//
// A store works in one of three modes: with a file, on the user defaults, or for custom
// information. Without a file, every change is also written, with the whole entry of the root that
// it belongs to, to the standard user defaults.
#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/error.h>
#include <QXFoundation/notification_center.h>
#include <QXFoundation/object.h>
#include <QXFoundation/preference_key.h>
#include <QXFoundation/preferences_link.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>

namespace qx {

class QXPreferencesDictionary;

// Posted by every write of a store, about the key path without its indexes. The user information
// holds the path as it was written, under "keyPath".
inline constexpr char QXPreferencesDidChangeNotification[] = "QXPreferencesDidChangeNotification";

// A store, its containers and its observations belong to one thread at a time. Arguments that are
// nil where a path or value is needed, and a path that leads through a value that is no container,
// raise (but for `get`); a path that is merely not there reads as nil.
class QX_EXPORT QXPreferences : public Object {
 public:
  // On the user defaults: starts with all that they hold.
  static Ref<QXPreferences> init();
  // With a file, which is read if it is there (missing and unreadable ones count as empty); on the
  // user defaults where the path is nil or empty.
  static Ref<QXPreferences> initWithPath(StringArg path);
  // For custom information: starts empty, and `synchronize` writes nothing.
  static Ref<QXPreferences> initForCustomInfo();

  // The entries of the root as a plain dictionary. Setting them replaces all quietly: nothing is
  // converted, marked, mirrored or posted.
  Ref<Dictionary> userValues() const;
  void setUserValues(In<Dictionary> values);

  // Reading: the value at the path, else the default registered under exactly this text, else nil.
  // What is found is given as it is, whatever its kind, and containers are the store's own:
  // changing them changes the store (without a notification).
  PropertyValue objectForKeyPath(StringArg keyPath) const;
  PropertyValue arrayForKeyPath(StringArg keyPath) const;
  PropertyValue dictionaryForKeyPath(StringArg keyPath) const;
  PropertyValue stringForKeyPath(StringArg keyPath) const;
  PropertyValue dataForKeyPath(StringArg keyPath) const;
  PropertyValue stringArrayForKeyPath(StringArg keyPath) const;
  PropertyValue valueForKey(StringArg keyPath) const;
  // Lenient, as PropertyValue's: 0 and false where nothing is found.
  int integerForKeyPath(StringArg keyPath) const;
  float floatForKeyPath(StringArg keyPath) const;
  double doubleForKeyPath(StringArg keyPath) const;
  bool boolForKeyPath(StringArg keyPath) const;
  // The object that setDataObject stored; nil where nothing is found. What is no data, or no
  // archive, raises InvalidArgumentException.
  PropertyValue dataObjectForKeyPath(StringArg keyPath) const;

  // Strict: empty where nothing is found, or a value of another kind. See PropertyValue::to. Where
  // a path leads through a value that is no container, nothing is found here, and nothing raised:
  // somebody else may have put that value there.
  template <class T>
  [[nodiscard]] std::optional<T> get(StringArg keyPath) const {
    return reachableValue(keyPath).template to<T>();
  }
  // The setting, or the key's own value where there is none of its kind.
  template <PreferenceType T>
  [[nodiscard]] T get(const PreferenceKey<T>& key) const {
    auto found = get<T>(key.path);
    return found ? *std::move(found) : T(key.standard);
  }

  // Writing. Each write marks the store dirty and posts QXPreferencesDidChangeNotification, even
  // one that was dropped. A nil value removes.
  void setObject(const PropertyValue& value, StringArg forKeyPath);
  void setValue(const PropertyValue& value, StringArg forKey);
  void removeObjectForKeyPath(StringArg keyPath);
  template <Integer I>
    requires(sizeof(I) < sizeof(int) || std::same_as<I, int>)
  void setInteger(I value, StringArg forKeyPath) {
    setObject(int{value}, forKeyPath);
  }
  template <std::same_as<float> F>
  void setFloat(F value, StringArg forKeyPath) {
    setObject(value, forKeyPath);
  }
  template <detail::Floating F>
  void setDouble(F value, StringArg forKeyPath) {
    setObject(double{value}, forKeyPath);
  }
  template <std::same_as<bool> B>
  void setBool(B value, StringArg forKeyPath) {
    setObject(value, forKeyPath);
  }
  // Stores the object as an archive (see Archiver, which tells what can be archived).
  void setDataObject(const PropertyValue& object, StringArg forKeyPath);
  template <PreferenceType T, class V>
    requires PreferenceValueFor<V, T>
  void set(const PreferenceKey<T>& key, const V& value) {
    if constexpr (std::same_as<T, std::string>) {
      setObject(PropertyValue(value), key.path);
    } else {
      setObject(T{value}, key.path);
    }
  }

  // Defaults, by the whole text of a path. They are never saved, and do not notify.
  PropertyValue defaultObjectForKeyPath(StringArg keyPath) const;
  void setDefaultObject(const PropertyValue& value, StringArg forKeyPath);
  void removeDefaultObjectForKeyPath(StringArg keyPath);
  PropertyValue defaultDataObjectForKeyPath(StringArg keyPath) const;
  void setDefaultDataObject(const PropertyValue& object, StringArg forKeyPath);

  // Takes over the value of the path from another store; what is absent there is removed here.
  void updateKey(StringArg keyPath, In<QXPreferences> fromPrefs);

  // The observer performs the selector with the notification, on each write of that path (not of
  // those above or below). It is referred to weakly.
  void addObserver(In<Object> observer, SelectorFor<1> selector, StringArg forKeyPath);
  void removeObserver(In<Object> observer, StringArg forKeyPath);
  // The same for a callable of the path as it was written, or of nothing, while the result exists.
  template <class F>
    requires std::invocable<std::remove_cvref_t<F>&, StringArg> ||
             std::invocable<std::remove_cvref_t<F>&>
  Observation observe(StringArg keyPath, F&& action) {
    return observeNotifications(
        keyPath, [f = std::forward<F>(action)](const Notification& n) mutable {
          if constexpr (std::invocable<std::remove_cvref_t<F>&, StringArg>) {
            f(StringArg(writtenPath(n)));
          } else {
            f();
          }
        });
  }
  // The same for a callable of the setting's new value.
  template <PreferenceType T, class F>
    requires std::invocable<std::remove_cvref_t<F>&, T>
  Observation observe(const PreferenceKey<T>& key, F&& action) {
    return observeNotifications(key.path, [this, key, f = std::forward<F>(action)](
                                              const Notification&) mutable { f(get(key)); });
  }

  // A change was made since the last `synchronize`.
  bool isDirty() const { return isDirty_; }
  // Called by every change, of the store and of its containers. A store that applies changes
  // immediately synchronizes, and is clean; any other takes the flag.
  void setDirty(bool flag);
  bool appliesImmediately() const { return appliesImmediately_; }
  // From now on each operation that changes something saves at its end.
  void setAppliesImmediately(bool flag);

  // Saves: with a file, writes the whole tree as an XML property list, durably and so that the file
  // is the old or the new one at any moment; on the user defaults, synchronizes them. The store is
  // clean afterwards, also where that failed. False where it did: the folder, the disk, a value
  // that is no property list. What was there stays then. A file that was damaged when the store was
  // made is kept as "<file>.damaged" before it is replaced; where another stands under that name,
  // nothing is saved.
  [[nodiscard]] bool synchronize();
  // Why the last saving failed, also one that a change made immediately: the system's code in
  // NSPOSIXErrorDomain where the system refused. Nil where it succeeded, or none was made yet.
  Ref<Error> lastSaveError() const;

  // A container of the tree has changed (under that key, for a dictionary): without a file, writes
  // the entry of the root that holds it to the user defaults. Called by the containers.
  void updatedObject(const PropertyValue& container, StringArg forKey);

  PropertyValue valueForUndefinedKey(StringArg key) const override;
  void setValueForUndefinedKey(const PropertyValue& value, StringArg key) override;

  // Inside the library.
  QXPreferences(detail::Passkey, StringArg path, bool customInfo);

 protected:
  ~QXPreferences() override;

 private:
  friend struct detail::PreferencesAccess;
  struct Parts;

  void load();
  const PropertyValue* find(StringArg keyPath) const;
  PropertyValue reachableValue(StringArg keyPath) const;
  void write(const PropertyValue& value, StringArg keyPath);
  bool writeWithinTree(const PropertyValue& value, StringArg keyPath);
  void writeStepByStep(const PropertyValue& value, StringArg keyPath);
  void mirror(const Ref<String>& key);
  void post(StringArg keyPath);
  PropertyValue canonicalKey(StringArg keyPath);
  void updateQuickness();
  Observation observeNotifications(StringArg keyPath, detail::NotificationAction action);
  static Ref<String> writtenPath(const Notification& notification);

  detail::PreferencesLink link_;  // to this store, for its containers
  bool usesFile_ = false;
  bool customInfo_ = false;
  bool initialized_ = false;
  bool appliesImmediately_ = false;
  bool isDirty_ = false;
  // A change of a container does no more than mark the store dirty.
  bool onlyMarks_ = true;
  std::unique_ptr<Parts> parts_;
};

QX_EXPORT const Class& classObject(detail::Type<QXPreferences>);

}  // namespace qx

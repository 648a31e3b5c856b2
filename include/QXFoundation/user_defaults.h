// UserDefaults: the settings of the application's user, kept from one run to the next.
//
//     auto defaults = qx::UserDefaults::standardUserDefaults();
//     defaults->registerDefaults(qx::dict({{"fontSize", 11}}));   // below what the user chose
//     int size = defaults->get<int>("fontSize").value_or(11);
//     defaults->setObject(12, "fontSize");
//     if (!defaults->synchronize()) warn();
//
// Every application has one property list, `$XDG_CONFIG_HOME/NAME.plist`
// (`$HOME/.config/NAME.plist` where that variable is not set), with NAME the name of the process
// unless setApplicationName was called. It is read at first use. Changes are kept in memory until
// `synchronize`.
#pragma once

#include <optional>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/error.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string_arg.h>

namespace qx {

// The class is "NSUserDefaults". Thread-safe.
class QX_EXPORT UserDefaults : public Object {
 public:
  // The one object of the process, made when it is first asked for.
  static Ref<UserDefaults> standardUserDefaults();
  // Names the application instead of the process's name. Raises InvalidArgumentException for a name
  // that can not be a file's (empty, with a slash or NUL, "." or ".."), and
  // InternalInconsistencyException once the standard user defaults are in use.
  static void setApplicationName(StringArg name);
  // Where the property list of an application of that name stands; nil when the user's home is not
  // known, and nothing can be kept. Raises as setApplicationName does for a name that can not be a
  // file's.
  static Ref<String> pathForApplicationName(StringArg name);

  // The value of the key, else the one registered for it, else nil. What is given out is immutable:
  // containers, strings and data were copied when they were set.
  virtual PropertyValue objectForKey(StringArg key) const = 0;
  // The same as a C++ type; empty where there is none, or one of another kind. See
  // PropertyValue::to.
  template <class T>
  [[nodiscard]] std::optional<T> get(StringArg key) const {
    return objectForKey(key).template to<T>();
  }

  // Keeps a copy of the value (deep: later changes of mutable parts do not reach it); nil removes.
  // A nil key raises InvalidArgumentException. Any value is taken; one that is no property list
  // makes `synchronize` give false until it is replaced.
  virtual void setObject(const PropertyValue& value, StringArg forKey) = 0;
  // The registered value, if any, shows again.
  virtual void removeObjectForKey(StringArg key) = 0;

  // Adds values that are given for keys without a value of their own; they are never saved.
  virtual void registerDefaults(In<Dictionary> values) = 0;
  // All keys and what objectForKey gives for them, registered ones included.
  virtual Ref<Dictionary> dictionaryRepresentation() const = 0;

  // Writes the keys changed since the last time, and these alone, into what the file holds now, and
  // takes over what other processes have changed there. True when everything is on the disk. False
  // where that failed (no folder, no room, no permission, a value that is no property list, another
  // process that keeps the lock for 10 seconds): the file is as it was, or lacks only what could
  // not be written, and what is missing is tried again the next time. A damaged file is kept under
  // its name with ".damaged" behind it before it is replaced.
  virtual bool synchronize() = 0;
  // Why the last `synchronize` gave false, with the system's code where the system refused
  // (NSPOSIXErrorDomain; EAGAIN for a lock that was not to be had); nil where it gave true, or was
  // not called yet, and by user defaults of the application's own that do not tell.
  virtual Ref<Error> lastSaveError() const { return nullptr; }
};

QX_EXPORT const Class& classObject(detail::Type<UserDefaults>);

}  // namespace qx

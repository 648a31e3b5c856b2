// QXPreferencesController: preferences stores by name, for the whole process.
//
//     auto controller = qx::QXPreferencesController::sharedPreferencesController();
//     controller->registerPreferencesName("panels", "/home/bob/.config/panels.plist");
//     int width = controller->integerForKeyPath("inspector.width", "panels");
//     int size = controller->integerForKeyPath("fontSize", nullptr);   // the user defaults
#pragma once

#include <QXFoundation/object.h>
#include <QXFoundation/preferences.h>
#include <QXFoundation/property_value.h>

namespace qx {

// One store is always there at first: that of the user defaults, under the empty name. The
// controller keeps its stores; it never saves them. Belongs to one thread at a time, as its stores
// do.
class QX_EXPORT QXPreferencesController : public Object {
 public:
  // The one of the process, made when it is first asked for, which one thread does before others
  // use it.
  static Ref<QXPreferencesController> sharedPreferencesController();
  static Ref<QXPreferencesController> init();

  // The store of that name; a new one with that path (see QXPreferences::initWithPath) where there
  // was none. Of a name that is known, the path is ignored. A nil name raises
  // InvalidArgumentException.
  Ref<QXPreferences> registerPreferencesName(StringArg name, StringArg path);
  // Lets go of the store without saving it.
  void unregisterPreferencesName(StringArg name);
  // The store of that name, nil standing for the empty one; nil where there is none.
  Ref<QXPreferences> preferencesName(StringArg name) const;

  // What the store of that name gives; nil, 0 or false where there is no such store. Writing goes
  // to the store itself.
  PropertyValue objectForKeyPath(StringArg keyPath, StringArg preferencesName) const;
  PropertyValue arrayForKeyPath(StringArg keyPath, StringArg preferencesName) const;
  PropertyValue dictionaryForKeyPath(StringArg keyPath, StringArg preferencesName) const;
  PropertyValue stringForKeyPath(StringArg keyPath, StringArg preferencesName) const;
  PropertyValue dataForKeyPath(StringArg keyPath, StringArg preferencesName) const;
  PropertyValue stringArrayForKeyPath(StringArg keyPath, StringArg preferencesName) const;
  PropertyValue dataObjectForKeyPath(StringArg keyPath, StringArg preferencesName) const;
  int integerForKeyPath(StringArg keyPath, StringArg preferencesName) const;
  float floatForKeyPath(StringArg keyPath, StringArg preferencesName) const;
  double doubleForKeyPath(StringArg keyPath, StringArg preferencesName) const;
  bool boolForKeyPath(StringArg keyPath, StringArg preferencesName) const;

  // Inside the library.
  explicit QXPreferencesController(detail::Passkey);

 private:
  Ref<MutableDictionary> preferencesToNames_;
};

QX_EXPORT const Class& classObject(detail::Type<QXPreferencesController>);

}  // namespace qx

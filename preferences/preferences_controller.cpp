#include <QXFoundation/preferences_controller.h>

#include "frame/library_class.h"
#include "frame/raise.h"

namespace qx {

QXPreferencesController::QXPreferencesController(detail::Passkey)
    : preferencesToNames_(MutableDictionary::init()) {}

Ref<QXPreferencesController> QXPreferencesController::init() {
  auto controller = make<QXPreferencesController>(detail::Passkey{});
  controller->registerPreferencesName("", nullptr);
  return controller;
}

Ref<QXPreferencesController> QXPreferencesController::sharedPreferencesController() {
  // Never destroyed: settings are read until the end of the process.
  static const auto* shared = new Ref<QXPreferencesController>(init());
  return *shared;
}

Ref<QXPreferences> QXPreferencesController::registerPreferencesName(StringArg name,
                                                                    StringArg path) {
  if (name.isNil()) {
    detail::raiseNilStored("-[QXPreferencesController registerPreferencesName:path:]");
  }
  if (auto known = preferencesName(name)) return known;
  auto store = QXPreferences::initWithPath(path);
  preferencesToNames_->setObject(store, name);
  return store;
}

void QXPreferencesController::unregisterPreferencesName(StringArg name) {
  preferencesToNames_->removeObjectForKey(name);
}

Ref<QXPreferences> QXPreferencesController::preferencesName(StringArg name) const {
  return preferencesToNames_->objectForKey(name.isNil() ? StringArg("") : name).as<QXPreferences>();
}

namespace {

// What the store's getter gives; the type's own nothing without a store.
template <class R>
R read(const Ref<QXPreferences>& store, R (QXPreferences::*get)(StringArg) const,
       StringArg keyPath) {
  return store == nullptr ? R() : ((*store).*get)(keyPath);
}

}  // namespace

PropertyValue QXPreferencesController::objectForKeyPath(StringArg keyPath,
                                                        StringArg preferencesName) const {
  return read(this->preferencesName(preferencesName), &QXPreferences::objectForKeyPath, keyPath);
}
PropertyValue QXPreferencesController::arrayForKeyPath(StringArg keyPath,
                                                       StringArg preferencesName) const {
  return read(this->preferencesName(preferencesName), &QXPreferences::arrayForKeyPath, keyPath);
}
PropertyValue QXPreferencesController::dictionaryForKeyPath(StringArg keyPath,
                                                            StringArg preferencesName) const {
  return read(this->preferencesName(preferencesName), &QXPreferences::dictionaryForKeyPath,
              keyPath);
}
PropertyValue QXPreferencesController::stringForKeyPath(StringArg keyPath,
                                                        StringArg preferencesName) const {
  return read(this->preferencesName(preferencesName), &QXPreferences::stringForKeyPath, keyPath);
}
PropertyValue QXPreferencesController::dataForKeyPath(StringArg keyPath,
                                                      StringArg preferencesName) const {
  return read(this->preferencesName(preferencesName), &QXPreferences::dataForKeyPath, keyPath);
}
PropertyValue QXPreferencesController::stringArrayForKeyPath(StringArg keyPath,
                                                             StringArg preferencesName) const {
  return read(this->preferencesName(preferencesName), &QXPreferences::stringArrayForKeyPath,
              keyPath);
}
PropertyValue QXPreferencesController::dataObjectForKeyPath(StringArg keyPath,
                                                            StringArg preferencesName) const {
  return read(this->preferencesName(preferencesName), &QXPreferences::dataObjectForKeyPath,
              keyPath);
}
int QXPreferencesController::integerForKeyPath(StringArg keyPath, StringArg preferencesName) const {
  return read(this->preferencesName(preferencesName), &QXPreferences::integerForKeyPath, keyPath);
}
float QXPreferencesController::floatForKeyPath(StringArg keyPath, StringArg preferencesName) const {
  return read(this->preferencesName(preferencesName), &QXPreferences::floatForKeyPath, keyPath);
}
double QXPreferencesController::doubleForKeyPath(StringArg keyPath,
                                                 StringArg preferencesName) const {
  return read(this->preferencesName(preferencesName), &QXPreferences::doubleForKeyPath, keyPath);
}
bool QXPreferencesController::boolForKeyPath(StringArg keyPath, StringArg preferencesName) const {
  return read(this->preferencesName(preferencesName), &QXPreferences::boolForKeyPath, keyPath);
}

namespace {

QXPreferencesController& controller(const PropertyValue& receiver) {
  return static_cast<QXPreferencesController&>(*receiver.object());
}

template <auto Get>
auto reading(const PropertyValue& receiver, const Ref<String>& keyPath, const Ref<String>& name) {
  return (controller(receiver).*Get)(keyPath, name);
}

}  // namespace

void describe(ClassBuilder<QXPreferencesController>& c) {
  using C = QXPreferencesController;
  c.name("QXPreferencesController").inherits<Object>();
  c.operation(
      "registerPreferencesName:path:",
      +[](const PropertyValue& r, const Ref<String>& name, const Ref<String>& path) {
        return controller(r).registerPreferencesName(name, path);
      });
  c.operation(
      "unregisterPreferencesName:", +[](const PropertyValue& r, const Ref<String>& name) {
        controller(r).unregisterPreferencesName(name);
      });
  c.operation(
      "preferencesName:", +[](const PropertyValue& r, const Ref<String>& name) {
        return controller(r).preferencesName(name);
      });
  c.operation("objectForKeyPath:preferencesName:", &reading<&C::objectForKeyPath>);
  c.operation("arrayForKeyPath:preferencesName:", &reading<&C::arrayForKeyPath>);
  c.operation("dictionaryForKeyPath:preferencesName:", &reading<&C::dictionaryForKeyPath>);
  c.operation("stringForKeyPath:preferencesName:", &reading<&C::stringForKeyPath>);
  c.operation("dataForKeyPath:preferencesName:", &reading<&C::dataForKeyPath>);
  c.operation("stringArrayForKeyPath:preferencesName:", &reading<&C::stringArrayForKeyPath>);
  c.operation("dataObjectForKeyPath:preferencesName:", &reading<&C::dataObjectForKeyPath>);
  c.operation("integerForKeyPath:preferencesName:", &reading<&C::integerForKeyPath>);
  c.operation("floatForKeyPath:preferencesName:", &reading<&C::floatForKeyPath>);
  c.operation("doubleForKeyPath:preferencesName:", &reading<&C::doubleForKeyPath>);
  c.operation("boolForKeyPath:preferencesName:", &reading<&C::boolForKeyPath>);
  c.addClassOperation({"sharedPreferencesController",
                       [](const PropertyValue&, const detail::Payload&, const PropertyValue*) {
                         return PropertyValue(C::sharedPreferencesController());
                       },
                       0,
                       {}});
}

const Class& classObject(detail::Type<QXPreferencesController>) {
  return detail::buildLibraryClass<QXPreferencesController>();
}

}  // namespace qx

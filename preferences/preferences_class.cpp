// QXPreferences by selector.

#include <QXFoundation/preferences.h>

#include "frame/library_class.h"

namespace qx {
namespace {

QXPreferences& store(const PropertyValue& receiver) {
  return static_cast<QXPreferences&>(*receiver.object());
}

template <auto Get>
auto reading(const PropertyValue& receiver, const Ref<String>& keyPath) {
  return (store(receiver).*Get)(keyPath);
}

template <auto Set>
void writing(const PropertyValue& receiver, const PropertyValue& value,
             const Ref<String>& keyPath) {
  (store(receiver).*Set)(value, keyPath);
}

template <auto Remove>
void removing(const PropertyValue& receiver, const Ref<String>& keyPath) {
  (store(receiver).*Remove)(keyPath);
}

void addReading(ClassBuilder<QXPreferences>& c) {
  using P = QXPreferences;
  c.operation("objectForKeyPath:", &reading<&P::objectForKeyPath>);
  c.operation("arrayForKeyPath:", &reading<&P::arrayForKeyPath>);
  c.operation("dictionaryForKeyPath:", &reading<&P::dictionaryForKeyPath>);
  c.operation("stringForKeyPath:", &reading<&P::stringForKeyPath>);
  c.operation("dataForKeyPath:", &reading<&P::dataForKeyPath>);
  c.operation("stringArrayForKeyPath:", &reading<&P::stringArrayForKeyPath>);
  c.operation("integerForKeyPath:", &reading<&P::integerForKeyPath>);
  c.operation("floatForKeyPath:", &reading<&P::floatForKeyPath>);
  c.operation("doubleForKeyPath:", &reading<&P::doubleForKeyPath>);
  c.operation("boolForKeyPath:", &reading<&P::boolForKeyPath>);
  c.operation("dataObjectForKeyPath:", &reading<&P::dataObjectForKeyPath>);
  c.operation("defaultObjectForKeyPath:", &reading<&P::defaultObjectForKeyPath>);
  c.operation("defaultDataObjectForKeyPath:", &reading<&P::defaultDataObjectForKeyPath>);
}

void addWriting(ClassBuilder<QXPreferences>& c) {
  using P = QXPreferences;
  c.operation("setObject:forKeyPath:", &writing<&P::setObject>);
  c.operation("setDataObject:forKeyPath:", &writing<&P::setDataObject>);
  c.operation("setDefaultObject:forKeyPath:", &writing<&P::setDefaultObject>);
  c.operation("setDefaultDataObject:forKeyPath:", &writing<&P::setDefaultDataObject>);
  c.operation("removeObjectForKeyPath:", &removing<&P::removeObjectForKeyPath>);
  c.operation("removeDefaultObjectForKeyPath:", &removing<&P::removeDefaultObjectForKeyPath>);
  c.operation(
      "setInteger:forKeyPath:", +[](const PropertyValue& r, int value, const Ref<String>& path) {
        store(r).setInteger(value, path);
      });
  c.operation(
      "setFloat:forKeyPath:", +[](const PropertyValue& r, float value, const Ref<String>& path) {
        store(r).setFloat(value, path);
      });
  c.operation(
      "setDouble:forKeyPath:", +[](const PropertyValue& r, double value, const Ref<String>& path) {
        store(r).setDouble(value, path);
      });
  c.operation(
      "setBool:forKeyPath:", +[](const PropertyValue& r, bool value, const Ref<String>& path) {
        store(r).setBool(value, path);
      });
  c.operation(
      "updateKey:fromPrefs:",
      +[](const PropertyValue& r, const Ref<String>& path, const Ref<QXPreferences>& other) {
        store(r).updateKey(path, other);
      });
}

}  // namespace

// No properties: reading and storing by key goes by key paths, whatever their names.
void describe(ClassBuilder<QXPreferences>& c) {
  using P = QXPreferences;
  c.name("QXPreferences").inherits<Object>();
  addReading(c);
  addWriting(c);
  c.operation("userValues", &P::userValues);
  c.operation(
      "setUserValues:", +[](const PropertyValue& r, const Ref<Dictionary>& values) {
        store(r).setUserValues(values);
      });
  c.operation(
      "removeObserver:forKeyPath:",
      +[](const PropertyValue& r, const Ref<Object>& observer, const Ref<String>& path) {
        store(r).removeObserver(observer, path);
      });
  c.operation("isDirty", &P::isDirty);
  c.operation("setDirty:", &P::setDirty);
  c.operation("appliesImmediately", &P::appliesImmediately);
  c.operation("setAppliesImmediately:", &P::setAppliesImmediately);
  c.operation("synchronize", &P::synchronize);
  c.operation(
      "updatedObject:forKey:",
      +[](const PropertyValue& r, const PropertyValue& container, const Ref<String>& key) {
        store(r).updatedObject(container, key);
      });
}

const Class& classObject(detail::Type<QXPreferences>) {
  return detail::buildLibraryClass<QXPreferences>();
}

}  // namespace qx

#include <QXFoundation/preferences_dictionary.h>

#include "frame/dictionary_storage.h"
#include "frame/library_class.h"
#include "preferences/containers.h"
#include "preferences/store_access.h"

namespace qx {

using detail::ChangeReport;
using detail::PreferencesAccess;
using detail::SyncScope;

QXPreferencesDictionary::QXPreferencesDictionary() = default;
QXPreferencesDictionary::~QXPreferencesDictionary() = default;

Ref<QXPreferencesDictionary> QXPreferencesDictionary::init() {
  return make<QXPreferencesDictionary>();
}

Ref<QXPreferencesDictionary> QXPreferencesDictionary::initWithPreferences(
    In<QXPreferences> preferences) {
  auto d = init();
  d->link_ = PreferencesAccess::link(preferences);
  return d;
}

Ref<QXPreferencesDictionary> QXPreferencesDictionary::initWithDictionary(
    In<Dictionary> contents, In<QXPreferences> preferences) {
  auto d = initWithPreferences(preferences);
  d->addEntriesFromDictionary(contents);
  return d;
}

Ref<QXPreferencesDictionary> QXPreferencesDictionary::dictionaryWithDictionary(
    In<Dictionary> contents, In<QXPreferences> preferences) {
  return initWithDictionary(contents, preferences);
}

Ref<QXPreferencesDictionary> QXPreferencesDictionary::emptyInstance() const { return init(); }

void QXPreferencesDictionary::setPreferences(In<QXPreferences> preferences) {
  detail::repoint(this, PreferencesAccess::link(preferences));
}
Ref<QXPreferences> QXPreferencesDictionary::preferences() const { return link_.store(); }

Ref<Dictionary> QXPreferencesDictionary::dictionary() const {
  return detail::DictionaryStorage::immutableCopy(*this);
}

bool QXPreferencesDictionary::containsObject(const PropertyValue& value) const {
  return detail::containsDeeply(const_cast<QXPreferencesDictionary*>(this), value);
}

void QXPreferencesDictionary::setObject(const PropertyValue& value, StringArg forKey) {
  if (value.isNil() || forKey.isNil()) return MutableDictionary::setObject(value, forKey);
  const ChangeReport report(link_, forKey);
  if (!detail::isContainer(value)) {
    MutableDictionary::setObject(value, forKey);
    return report(*this);
  }
  const SyncScope scope(detail::isPlainContainer(value) ? link_.store() : nullptr);
  MutableDictionary::setObject(detail::converted(value, link_, {.dictionary = this}), forKey);
  report(*this);
}

void QXPreferencesDictionary::removeObjectForKey(StringArg key) {
  const ChangeReport report(link_, key);
  MutableDictionary::removeObjectForKey(key);
  report(*this);
}

void QXPreferencesDictionary::removeAllObjects() {
  const SyncScope scope(link_.store());
  const Ref<Array> keys = allKeys();
  for (const PropertyValue& key : *keys) removeObjectForKey(key.as<String>());
}

void QXPreferencesDictionary::addEntriesFromDictionary(In<Dictionary> other) {
  if (!other) return;
  const SyncScope scope(link_.store());
  const Ref<Dictionary> entries = detail::DictionaryStorage::isMutable(*other)
                                      ? detail::DictionaryStorage::immutableCopy(*other)
                                      : Ref<Dictionary>(other.get());
  for (const auto& [key, value] : *entries) setObject(value, key);
}

void QXPreferencesDictionary::setDictionary(In<Dictionary> other) {
  const Ref<Dictionary> entries =
      other ? detail::DictionaryStorage::immutableCopy(*other) : Dictionary::init();
  if (const QXPreferences* store = link_.store()) {
    PreferencesAccess::parts(*store).branches.forgetAll();
  }
  MutableDictionary::removeAllObjects();
  for (const auto& [key, value] : *entries) MutableDictionary::setObject(value, key);
}

namespace {

Ref<QXPreferencesDictionary> emptyOf(const PropertyValue& receivingClass) {
  return detail::emptyOfClass(receivingClass, "dictionary").as<QXPreferencesDictionary>();
}

}  // namespace

void describe(ClassBuilder<QXPreferencesDictionary>& c) {
  c.name("QXPreferencesDictionary").inherits<MutableDictionary>();
  c.operation("dictionary", &QXPreferencesDictionary::dictionary);
  c.operation("containsObject:", &detail::containsDeeply);
  c.operation(
      "setPreferences:", +[](const PropertyValue& r, const Ref<QXPreferences>& preferences) {
        detail::repoint(r, PreferencesAccess::link(In<QXPreferences>(preferences)));
      });
  c.addClassOperation({"dictionary",
                       [](const PropertyValue& r, const detail::Payload&, const PropertyValue*) {
                         return PropertyValue(emptyOf(r));
                       },
                       0,
                       {}});
  c.addClassOperation(
      {"dictionaryWithDictionary:preferences:",
       [](const PropertyValue& r, const detail::Payload&, const PropertyValue* arguments) {
         const auto d = emptyOf(r);
         d->setPreferences(FromValue<Ref<QXPreferences>>::get(arguments[1]));
         d->addEntriesFromDictionary(FromValue<Ref<Dictionary>>::get(arguments[0]));
         return PropertyValue(d);
       },
       2,
       {}});
}

const Class& classObject(detail::Type<QXPreferencesDictionary>) {
  return detail::buildLibraryClass<QXPreferencesDictionary>();
}

}  // namespace qx

#include <vector>

#include <QXFoundation/preferences_array.h>

#include "frame/library_class.h"
#include "preferences/containers.h"
#include "preferences/store_access.h"

namespace qx {

using detail::ChangeReport;
using detail::PreferencesAccess;
using detail::SyncScope;

QXPreferencesArray::QXPreferencesArray() = default;
QXPreferencesArray::~QXPreferencesArray() = default;

Ref<QXPreferencesArray> QXPreferencesArray::init() { return make<QXPreferencesArray>(); }

Ref<QXPreferencesArray> QXPreferencesArray::initWithPreferences(In<QXPreferences> preferences) {
  auto a = init();
  a->link_ = PreferencesAccess::link(preferences);
  return a;
}

Ref<QXPreferencesArray> QXPreferencesArray::initWithArray(In<Array> contents,
                                                          In<QXPreferences> preferences) {
  auto a = initWithPreferences(preferences);
  a->addObjectsFromArray(contents);
  return a;
}

Ref<QXPreferencesArray> QXPreferencesArray::arrayWithArray(In<Array> contents,
                                                           In<QXPreferences> preferences) {
  return initWithArray(contents, preferences);
}

Ref<QXPreferencesArray> QXPreferencesArray::emptyInstance() const { return init(); }

void QXPreferencesArray::setPreferences(In<QXPreferences> preferences) {
  detail::repoint(this, PreferencesAccess::link(preferences));
}
Ref<QXPreferences> QXPreferencesArray::preferences() const { return link_.store(); }

bool QXPreferencesArray::containsObject(const PropertyValue& value) const {
  return detail::containsDeeply(const_cast<QXPreferencesArray*>(this), value);
}

void QXPreferencesArray::addObject(const PropertyValue& value) {
  const SyncScope scope(detail::isPlainContainer(value) ? link_.store() : nullptr);
  const ChangeReport report(link_, nullptr);
  MutableArray::addObject(detail::converted(value, link_, {}));
  report(*this);
}

void QXPreferencesArray::insertObject(const PropertyValue& value, std::size_t atIndex) {
  const SyncScope scope(detail::isPlainContainer(value) ? link_.store() : nullptr);
  const ChangeReport report(link_, nullptr);
  MutableArray::insertObject(detail::converted(value, link_, {}), atIndex);
  report(*this);
}

void QXPreferencesArray::replaceObjectAtIndex(std::size_t index, const PropertyValue& withObject) {
  const SyncScope scope(detail::isPlainContainer(withObject) ? link_.store() : nullptr);
  const ChangeReport report(link_, nullptr);
  MutableArray::replaceObjectAtIndex(index, detail::converted(withObject, link_, {}));
  report(*this);
}

void QXPreferencesArray::removeObjectAtIndex(std::size_t index) {
  const ChangeReport report(link_, nullptr);
  MutableArray::removeObjectAtIndex(index);
  report(*this);
}

void QXPreferencesArray::removeLastObject() {
  const ChangeReport report(link_, nullptr);
  MutableArray::removeLastObject();
  report(*this);
}

void QXPreferencesArray::removeAllObjects() {
  const ChangeReport report(link_, nullptr);
  MutableArray::removeAllObjects();
  report(*this);
}

void QXPreferencesArray::addObjectsFromArray(In<Array> other) {
  const SyncScope scope(link_.store());
  std::vector<PropertyValue> elements;
  if (other) elements.assign(other->begin(), other->end());
  for (PropertyValue& element : elements) {
    element = detail::converted(element, link_, {.array = this});
  }
  const ChangeReport report(link_, nullptr);
  reserve(count() + elements.size());
  for (const PropertyValue& element : elements) MutableArray::addObject(element);
  report(*this);
}

namespace {

Ref<QXPreferencesArray> emptyOf(const PropertyValue& receivingClass) {
  return detail::emptyOfClass(receivingClass, "array").as<QXPreferencesArray>();
}

}  // namespace

void describe(ClassBuilder<QXPreferencesArray>& c) {
  c.name("QXPreferencesArray").inherits<MutableArray>();
  c.operation("containsObject:", &detail::containsDeeply);
  c.operation(
      "setPreferences:", +[](const PropertyValue& r, const Ref<QXPreferences>& preferences) {
        detail::repoint(r, PreferencesAccess::link(In<QXPreferences>(preferences)));
      });
  c.addClassOperation({"array",
                       [](const PropertyValue& r, const detail::Payload&, const PropertyValue*) {
                         return PropertyValue(emptyOf(r));
                       },
                       0,
                       {}});
  c.addClassOperation(
      {"arrayWithArray:preferences:",
       [](const PropertyValue& r, const detail::Payload&, const PropertyValue* arguments) {
         const auto a = emptyOf(r);
         a->setPreferences(FromValue<Ref<QXPreferences>>::get(arguments[1]));
         a->addObjectsFromArray(FromValue<Ref<Array>>::get(arguments[0]));
         return PropertyValue(a);
       },
       2,
       {}});
}

const Class& classObject(detail::Type<QXPreferencesArray>) {
  return detail::buildLibraryClass<QXPreferencesArray>();
}

}  // namespace qx

#include "preferences/containers.h"

#include "frame/class_record.h"
#include "frame/raise.h"
#include "preferences/store_access.h"

namespace qx::detail {
namespace {

template <class T>
std::uint16_t ownIndex() {
  static const std::uint16_t own = classIndexOf(classOf<T>());
  return own;
}

// Most containers are of the class itself, which their header tells; a subclass takes a cast.
template <class T>
T* asTreeContainer(const PropertyValue& value, ObjectKind kind) {
  Object* o = value.object();
  if (o == nullptr || ObjectAccess::kind(*o) != kind || !ObjectAccess::has(*o, kMutableVariant)) {
    return nullptr;
  }
  return ObjectAccess::classIndex(*o) == ownIndex<T>() ? static_cast<T*>(o) : dynamic_cast<T*>(o);
}

template <class T>
void repointTo(T& container, const PreferencesLink& link) {
  const PreferencesLink& old = PreferencesAccess::link(container);
  if (old == link) return;
  if (const QXPreferences* store = old.store())
    PreferencesAccess::parts(*store).branches.forgetAll();
  PreferencesAccess::setLink(container, link);
}

}  // namespace

QXPreferencesArray* treeArray(const PropertyValue& value) {
  return asTreeContainer<QXPreferencesArray>(value, ObjectKind::array);
}

QXPreferencesDictionary* treeDictionary(const PropertyValue& value) {
  return asTreeContainer<QXPreferencesDictionary>(value, ObjectKind::dictionary);
}

QXPreferencesDictionary* ownTreeDictionary(const PropertyValue& value) {
  Object* o = value.object();
  if (o == nullptr || ObjectAccess::classIndex(*o) != ownIndex<QXPreferencesDictionary>()) {
    return nullptr;
  }
  return static_cast<QXPreferencesDictionary*>(o);
}

bool isPlainContainer(const PropertyValue& value) {
  const Object* o = value.object();
  if (o == nullptr) return false;
  if (ObjectAccess::kind(*o) == ObjectKind::array) return treeArray(value) == nullptr;
  return ObjectAccess::kind(*o) == ObjectKind::dictionary && treeDictionary(value) == nullptr;
}

const PreferencesLink* linkOf(const PropertyValue& value) {
  if (const auto* d = treeDictionary(value)) return &PreferencesAccess::link(*d);
  if (const auto* a = treeArray(value)) return &PreferencesAccess::link(*a);
  return nullptr;
}

void repoint(const PropertyValue& value, const PreferencesLink& link) {
  if (auto* d = treeDictionary(value)) repointTo(*d, link);
  if (auto* a = treeArray(value)) repointTo(*a, link);
}

PropertyValue emptyOfClass(const PropertyValue& receivingClass, Selector operation) {
  const auto& cls = *receivingClass.peek<Class>();
  if (&cls == &classOf<QXPreferencesArray>()) return QXPreferencesArray::init();
  if (&cls == &classOf<QXPreferencesDictionary>()) return QXPreferencesDictionary::init();
  if (cls.record().makeEmpty == nullptr) raiseUnsupported(receivingClass, operation);
  return cls.record().makeEmpty();
}

SyncScope::SyncScope(QXPreferences* store) : store_(store) {
  if (store_ != nullptr) ++PreferencesAccess::parts(*store_).held;
}

SyncScope::~SyncScope() {
  if (store_ == nullptr) return;
  PreferencesAccess::Parts& parts = PreferencesAccess::parts(*store_);
  if (--parts.held != 0 || !parts.syncWasAsked) return;
  parts.syncWasAsked = false;
  try {
    (void)store_->synchronize();  // as setDirty, which has nobody to tell
  } catch (...) {
    // For want of memory; the store then stays dirty, and the next change saves.
    PreferencesAccess::mark(*store_);
  }
}

ChangeReport::ChangeReport(const PreferencesLink& link, StringArg key) : link_(link) {
  QXPreferences* store = link.store();
  if (store == nullptr || PreferencesAccess::onlyMarks(*store)) return;
  told_ = store;
  key_ = key.string();
}

void ChangeReport::operator()(Object& container) const {
  if (told_ != nullptr) {
    told_->updatedObject(&container, key_);
    told_->setDirty(true);
  } else if (QXPreferences* store = link_.store()) {
    PreferencesAccess::mark(*store);
  }
}

}  // namespace qx::detail

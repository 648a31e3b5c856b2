#include <QXFoundation/archiver.h>
#include <QXFoundation/preferences.h>
#include <QXFoundation/user_defaults.h>

#include "frame/raise.h"
#include "preferences/containers.h"
#include "preferences/store_access.h"
#include "preferences/tree_path.h"

namespace qx {

using detail::SyncScope;

namespace {

const Ref<String>& changeNotification() {
  static const auto* name = new Ref<String>(String::from(QXPreferencesDidChangeNotification));
  return *name;
}

const Ref<String>& keyPathKey() {
  static const auto* key = new Ref<String>(String::from("keyPath"));
  return *key;
}

constexpr Selector kRemove = "removeObjectForKey:";

// The object that an archive holds; what is no data raises.
PropertyValue unarchived(const PropertyValue& value) {
  if (value.isNil()) return {};
  return Unarchiver::unarchiveObjectWithData(FromValue<Ref<Data>>::get(value));
}

}  // namespace

QXPreferences::QXPreferences(detail::Passkey, StringArg path, bool customInfo)
    : link_(this), customInfo_(customInfo), parts_(std::make_unique<Parts>()) {
  parts_->center = NotificationCenter::init();
  parts_->defaults = MutableDictionary::init();
  parts_->notificationKeys = MutableDictionary::init();
  parts_->path = path.string();
  usesFile_ = parts_->path != nullptr && parts_->path->length() > 0;
}

QXPreferences::~QXPreferences() { link_.cut(); }

void QXPreferences::load() {
  Ref<Dictionary> contents;
  if (usesFile_) {
    parts_->file = std::make_unique<detail::PropertyListFile>(parts_->path->utf8());
    (void)parts_->file->read(contents);
  } else if (!customInfo_) {
    contents = UserDefaults::standardUserDefaults()->dictionaryRepresentation();
  }
  parts_->root = QXPreferencesDictionary::initWithDictionary(contents, this);
  isDirty_ = false;
  initialized_ = true;
  updateQuickness();
}

Ref<QXPreferences> QXPreferences::init() { return initWithPath(nullptr); }

Ref<QXPreferences> QXPreferences::initWithPath(StringArg path) {
  auto store = make<QXPreferences>(detail::Passkey{}, path, false);
  store->load();
  return store;
}

Ref<QXPreferences> QXPreferences::initForCustomInfo() {
  auto store = make<QXPreferences>(detail::Passkey{}, StringArg(nullptr), true);
  store->load();
  return store;
}

Ref<Dictionary> QXPreferences::userValues() const { return parts_->root->dictionary(); }

void QXPreferences::setUserValues(In<Dictionary> values) { parts_->root->setDictionary(values); }

// ---- reading

// Borrowed from the tree or the defaults; null where there is none. The path is not nil.
const PropertyValue* QXPreferences::find(StringArg keyPath) const {
  if (const PropertyValue* v = detail::valueAtPath(*parts_->root, keyPath)) return v;
  return parts_->defaults->find(keyPath);
}

PropertyValue QXPreferences::objectForKeyPath(StringArg keyPath) const {
  if (keyPath.isNil()) return parts_->root;
  const PropertyValue* v = find(keyPath);
  return v == nullptr ? PropertyValue() : *v;
}

// The same, and nil where the way ends at a value that is no container.
PropertyValue QXPreferences::reachableValue(StringArg keyPath) const {
  if (keyPath.isNil()) return parts_->root;
  const PropertyValue* v = detail::reachableValueAtPath(*parts_->root, keyPath);
  if (v == nullptr) v = parts_->defaults->find(keyPath);
  return v == nullptr ? PropertyValue() : *v;
}

PropertyValue QXPreferences::arrayForKeyPath(StringArg keyPath) const {
  return objectForKeyPath(keyPath);
}
PropertyValue QXPreferences::dictionaryForKeyPath(StringArg keyPath) const {
  return objectForKeyPath(keyPath);
}
PropertyValue QXPreferences::stringForKeyPath(StringArg keyPath) const {
  return objectForKeyPath(keyPath);
}
PropertyValue QXPreferences::dataForKeyPath(StringArg keyPath) const {
  return objectForKeyPath(keyPath);
}
PropertyValue QXPreferences::stringArrayForKeyPath(StringArg keyPath) const {
  return objectForKeyPath(keyPath);
}
PropertyValue QXPreferences::valueForKey(StringArg keyPath) const {
  return objectForKeyPath(keyPath);
}

int QXPreferences::integerForKeyPath(StringArg keyPath) const {
  return objectForKeyPath(keyPath).intValue();
}
float QXPreferences::floatForKeyPath(StringArg keyPath) const {
  return objectForKeyPath(keyPath).floatValue();
}
double QXPreferences::doubleForKeyPath(StringArg keyPath) const {
  return objectForKeyPath(keyPath).doubleValue();
}
bool QXPreferences::boolForKeyPath(StringArg keyPath) const {
  return objectForKeyPath(keyPath).boolValue();
}
PropertyValue QXPreferences::dataObjectForKeyPath(StringArg keyPath) const {
  return unarchived(objectForKeyPath(keyPath));
}

PropertyValue QXPreferences::valueForUndefinedKey(StringArg key) const {
  return objectForKeyPath(key);
}

// ---- writing

void QXPreferences::setObject(const PropertyValue& value, StringArg forKeyPath) {
  write(value, forKeyPath);
}
void QXPreferences::setValue(const PropertyValue& value, StringArg forKey) { write(value, forKey); }
void QXPreferences::removeObjectForKeyPath(StringArg keyPath) { write(nullptr, keyPath); }
void QXPreferences::setDataObject(const PropertyValue& object, StringArg forKeyPath) {
  write(Archiver::archivedDataWithRootObject(object), forKeyPath);
}
void QXPreferences::setValueForUndefinedKey(const PropertyValue& value, StringArg key) {
  write(value, key);
}

void QXPreferences::write(const PropertyValue& value, StringArg keyPath) {
  // What is replaced may hold the last reference to the store, to the value or to the path.
  const Ref<QXPreferences> self(this);
  const Ref<const String> path(keyPath.object());
  const PropertyValue kept = value;
  if (!onlyMarks_ || !writeWithinTree(kept, keyPath)) writeStepByStep(kept, keyPath);
  post(keyPath);
}

// What a write comes to where reports only mark the store, and the way to the value is there.
bool QXPreferences::writeWithinTree(const PropertyValue& value, StringArg keyPath) {
  if (keyPath.isNil()) return false;
  const detail::TreeEnd end = detail::endWithinTree(*parts_->root, link_, keyPath);
  if (end.parent == nullptr) return false;
  const Ref<QXPreferencesDictionary> parent(end.parent);
  // The containers on the way report being stored again, even if the value is refused.
  if (parent.get() != parts_->root.get()) isDirty_ = true;
  if (value.isNil() || detail::isContainer(value)) {
    parent->setValueForKey(value, detail::PartText(end.key));
  } else if (end.found == nullptr) {
    parent->setValueForKey(value, parts_->keys.key(end.key, end.hash));
  } else {
    const PropertyValue replaced = std::exchange(*end.found, value);  // ends when all is done
    setDirty(true);
    return true;
  }
  setDirty(true);
  return true;
}

void QXPreferences::writeStepByStep(const PropertyValue& value, StringArg keyPath) {
  const SyncScope scope(appliesImmediately_ ? this : nullptr);
  const bool isRemoval = value.isNil();
  const PropertyValue parent = detail::walkPath(parts_->root, keyPath, true).parent;
  const detail::WrittenNames names = detail::namesOfWrite(keyPath, parts_->path != nullptr);
  if (isRemoval) {
    detail::changeableDictionary(parent, kRemove).removeObjectForKey(names.leaf);
  } else {
    parent.setValue(value, names.leaf);
  }
  if (!usesFile_) {
    if (isRemoval && names.areOne) {
      UserDefaults::standardUserDefaults()->removeObjectForKey(names.top);
    } else {
      mirror(names.top);
    }
  }
  setDirty(true);
}

// Writes the root's entry to the user defaults, or removes it there; without a key there is nothing
// to do.
void QXPreferences::mirror(const Ref<String>& key) {
  if (key == nullptr) return;
  const Ref<UserDefaults> defaults = UserDefaults::standardUserDefaults();
  const PropertyValue entry = parts_->root->objectForKey(key);
  if (entry.isNil()) {
    defaults->removeObjectForKey(key);
  } else {
    defaults->setObject(entry, key);
  }
}

void QXPreferences::updateKey(StringArg keyPath, In<QXPreferences> fromPrefs) {
  setValue(fromPrefs->valueForKey(keyPath), keyPath);
}

// ---- defaults

PropertyValue QXPreferences::defaultObjectForKeyPath(StringArg keyPath) const {
  return parts_->defaults->objectForKey(keyPath);
}
void QXPreferences::setDefaultObject(const PropertyValue& value, StringArg forKeyPath) {
  parts_->defaults->setObject(value, forKeyPath);
}
void QXPreferences::removeDefaultObjectForKeyPath(StringArg keyPath) {
  parts_->defaults->removeObjectForKey(keyPath);
}
PropertyValue QXPreferences::defaultDataObjectForKeyPath(StringArg keyPath) const {
  return unarchived(defaultObjectForKeyPath(keyPath));
}
void QXPreferences::setDefaultDataObject(const PropertyValue& object, StringArg forKeyPath) {
  setDefaultObject(Archiver::archivedDataWithRootObject(object), forKeyPath);
}

// ---- observers

// The one object that stands for all paths without indexes of this text.
PropertyValue QXPreferences::canonicalKey(StringArg keyPath) {
  const Ref<String> key = detail::standardizedKeyPath(keyPath);
  const PropertyValue known = parts_->notificationKeys->objectForKey(key);
  if (known != nullptr) return known;
  parts_->notificationKeys->setObject(key, key);
  return key;
}

void QXPreferences::addObserver(In<Object> observer, SelectorFor<1> selector,
                                StringArg forKeyPath) {
  parts_->center->addObserver(observer, selector, changeNotification(), canonicalKey(forKeyPath));
}

void QXPreferences::removeObserver(In<Object> observer, StringArg forKeyPath) {
  const Ref<String> key = detail::standardizedKeyPath(forKeyPath);
  parts_->center->removeObserver(observer, changeNotification(), key);
}

Observation QXPreferences::observeNotifications(StringArg keyPath,
                                                detail::NotificationAction action) {
  return parts_->center->observe(changeNotification(), canonicalKey(keyPath), std::move(action));
}

Ref<String> QXPreferences::writtenPath(const Notification& notification) {
  return notification.userInfo()->objectForKey(keyPathKey()).as<String>();
}

// Everything that could hear of it is in the table of observed paths.
void QXPreferences::post(StringArg keyPath) {
  if (parts_->notificationKeys->count() == 0) return;
  const PropertyValue key =
      parts_->notificationKeys->objectForKey(detail::standardizedKeyPath(keyPath));
  if (key.isNil() || !parts_->center->hasObservers(changeNotification(), key)) return;
  parts_->center->postNotificationName(changeNotification(), key,
                                       dict({{keyPathKey(), keyPath.string()}}));
}

// ---- saving

void QXPreferences::updateQuickness() {
  onlyMarks_ = !appliesImmediately_ && (usesFile_ || !initialized_);
}

void QXPreferences::setAppliesImmediately(bool flag) {
  appliesImmediately_ = flag;
  updateQuickness();
}

void QXPreferences::setDirty(bool flag) {
  if (!appliesImmediately_) {
    isDirty_ = flag;
    return;
  }
  if (parts_->held > 0) {
    parts_->syncWasAsked = true;
  } else {
    (void)synchronize();
  }
  isDirty_ = false;
}

bool QXPreferences::synchronize() {
  isDirty_ = false;
  if (customInfo_) return true;
  Ref<Error> error;
  bool isSaved = false;
  if (usesFile_) {
    isSaved = parts_->file->write(*parts_->root, &error);
  } else {
    const Ref<UserDefaults> defaults = UserDefaults::standardUserDefaults();
    isSaved = defaults->synchronize();
    if (!isSaved) error = defaults->lastSaveError();
  }
  parts_->saveError = std::move(error);
  return isSaved;
}

Ref<Error> QXPreferences::lastSaveError() const { return parts_->saveError; }

void QXPreferences::updatedObject(const PropertyValue& container, StringArg forKey) {
  if (!initialized_ || usesFile_) return;
  Parts& parts = *parts_;
  if (container.object() == parts.root.get()) {
    const Ref<String> key = forKey.string();
    if (key == nullptr) return;
    parts.branches.forgetBranch(key);
    mirror(key);
    return;
  }
  if (!container.isArray() && !container.isDictionary()) return;
  parts.branches.forgetBranchesWith(*container.object());
  mirror(parts.branches.keyOfBranch(*parts.root, container, link_));
}

}  // namespace qx

#include "platform/file_user_defaults.h"

#include <cerrno>
#include <utility>

#include <QXFoundation/property_list.h>

#include "frame/dictionary_storage.h"
#include "frame/raise.h"
#include "platform/atomic_file.h"
#include "platform/file_lock.h"
#include "platform/immutable_copy.h"

namespace qx::detail {
namespace {

// A hidden file beside the property list; the list itself can not be locked, as it is replaced.
std::string lockPathOf(const std::string& path) {
  const std::string folder = folderOf(path);
  return folder + "/." + path.substr(path.rfind('/') + 1) + ".lock";
}

void put(MutableDictionary& d, const PropertyValue& value, const Ref<String>& key) {
  if (value.isNil()) {
    d.removeObjectForKey(key);
  } else {
    d.setObject(value, key);
  }
}

bool isWritable(const Ref<String>& key, const PropertyValue& value) {
  return value.isNil() ||
         PropertyListSerialization::propertyList(dict({{key, value}}), PropertyListFormat::xml);
}

}  // namespace

FileUserDefaults::FileUserDefaults(std::string path)
    : file_(std::move(path)),
      stored_(Dictionary::init()),
      changed_(MutableDictionary::init()),
      registered_(MutableDictionary::init()) {
  Ref<Dictionary> content;
  if (file_.read(content) == PropertyListFile::State::whole) stored_ = content;
  current_ = MutableDictionary::dictionaryWithDictionary(stored_);
}

PropertyValue FileUserDefaults::objectForKey(StringArg key) const {
  const std::scoped_lock lock(mutex_);
  const PropertyValue* value = current_->find(key);
  return value != nullptr ? *value : registered_->objectForKey(key);
}

void FileUserDefaults::change(const PropertyValue& value, StringArg key) {
  if (key.isNil()) raiseNilStored("-[NSUserDefaults setObject:forKey:]");
  const PropertyValue kept = immutableDeepCopy(value);
  const Ref<String> name = key.string();
  PropertyValue before;  // what is replaced ends without the lock: that may run the application's
  const std::scoped_lock lock(mutex_);
  before = current_->objectForKey(name);
  put(*current_, kept, name);
  changed_->setObject(++lastNumber_, name);
}

void FileUserDefaults::setObject(const PropertyValue& value, StringArg forKey) {
  change(value, forKey);
}
void FileUserDefaults::removeObjectForKey(StringArg key) { change(nullptr, key); }

void FileUserDefaults::registerDefaults(In<Dictionary> values) {
  if (!values) return;
  const auto kept = immutableDeepCopy(values.get()).as<Dictionary>();
  Ref<MutableDictionary> next;
  const std::scoped_lock lock(mutex_);
  next = MutableDictionary::dictionaryWithDictionary(registered_);
  next->addEntriesFromDictionary(kept);
  std::swap(registered_, next);
}

Ref<Dictionary> FileUserDefaults::dictionaryRepresentation() const {
  const std::scoped_lock lock(mutex_);
  if (registered_->count() == 0) return DictionaryStorage::immutableCopy(*current_);
  const auto all = MutableDictionary::dictionaryWithDictionary(registered_);
  all->addEntriesFromDictionary(current_);
  return DictionaryStorage::immutableCopy(*all);
}

FileUserDefaults::Changes FileUserDefaults::changes() const {
  const std::scoped_lock lock(mutex_);
  Changes all;
  all.reserve(changed_->count());
  for (const auto& [key, number] : *changed_) {
    all.push_back({const_cast<String*>(&key), current_->objectForKey(key), number.integerValue()});
  }
  return all;
}

bool FileUserDefaults::synchronize() {
  const std::scoped_lock lock(synchronizing_);
  const Changes changed = changes();
  Ref<Error> error;
  const bool isSaved = changed.empty() || save(changed, error);
  if (changed.empty()) readAgain();
  keepError(std::move(error));
  return isSaved;
}

Ref<Error> FileUserDefaults::lastSaveError() const {
  const std::scoped_lock lock(mutex_);
  return lastSaveError_;
}

void FileUserDefaults::keepError(Ref<Error> error) {
  const std::scoped_lock lock(mutex_);
  std::swap(lastSaveError_, error);
}

void FileUserDefaults::readAgain() {
  Ref<Dictionary> content;
  switch (file_.read(content)) {
    case PropertyListFile::State::whole:
      adopt(*content, {});
      break;
    case PropertyListFile::State::absent:
      adopt(*Dictionary::init(), {});
      break;
    default:
      break;  // what is known stays
  }
}

bool FileUserDefaults::save(const Changes& changed, Ref<Error>& error) {
  const auto failed = [&](int code) {
    error = Error::posixError(code);
    return false;
  };
  if (file_.path().empty()) return failed(ENOENT);
  if (const int code = makeFolders(folderOf(file_.path()), 0700)) return failed(code);
  const FileLock lock(lockPathOf(file_.path()), patience_);
  if (!lock.isHeld()) return failed(lock.error());
  Ref<Dictionary> content;
  switch (file_.read(content, &error)) {
    case PropertyListFile::State::whole:
      break;
    case PropertyListFile::State::absent:
      content = Dictionary::init();
      break;
    case PropertyListFile::State::damaged:
      content = stored_;  // the last that was known of it
      break;
    case PropertyListFile::State::unreadable:
      return false;
  }
  if (write(content, changed, &error)) return true;
  Changes writable;
  for (const Change& c : changed) {
    if (isWritable(c.key, c.value)) writable.push_back(c);
  }
  if (writable.size() < changed.size() && !writable.empty())
    (void)write(content, writable, nullptr);
  return false;
}

bool FileUserDefaults::write(const Ref<Dictionary>& content, const Changes& changed,
                             Ref<Error>* error) {
  const auto merged = MutableDictionary::dictionaryWithDictionary(content);
  for (const Change& c : changed) put(*merged, c.value, c.key);
  if (!file_.write(*merged, error)) return false;
  adopt(*merged, changed);
  return true;
}

void FileUserDefaults::adopt(const Dictionary& content, const Changes& saved) {
  stored_ = DictionaryStorage::immutableCopy(content);
  auto next = MutableDictionary::dictionaryWithDictionary(stored_);
  const std::scoped_lock lock(mutex_);
  for (const Change& c : saved) {
    if (changed_->objectForKey(c.key).integerValue() == c.number) {
      changed_->removeObjectForKey(c.key);
    }
  }
  for (const auto& [key, number] : *changed_) {
    put(*next, current_->objectForKey(key), const_cast<String*>(&key));
  }
  std::swap(current_, next);
}

// Nobody needs to tell it from what it stands for.
const Class& classObject(Type<FileUserDefaults>) { return classObject(Type<UserDefaults>{}); }

}  // namespace qx::detail

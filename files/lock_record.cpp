#include "files/lock_record.h"

#include <cerrno>

#include <QXFoundation/machine_identity.h>

#include "platform/atomic_file.h"
#include "platform/path_text.h"
#include "platform/processes.h"
#include "platform/property_list_io.h"
#include "platform/user_accounts.h"

namespace qx {
namespace detail {
namespace {

constexpr char kHostIdentifier[] = "hostIdentifier";
constexpr char kHostName[] = "hostName";
constexpr char kUserName[] = "userName";
constexpr char kProcessNumber[] = "processNumber";

constexpr std::size_t kLargestLockFile = std::size_t{1} << 20;

// Nil equals nothing, on either side.
bool entryIs(const Dictionary& record, const char* key, const Ref<String>& text) {
  const PropertyValue* entry = record.find(key);
  return entry != nullptr && entry->isString() && text != nullptr && *entry == PropertyValue(text);
}

std::int32_t processIn(const Dictionary& record) {
  const PropertyValue* number = record.find(kProcessNumber);
  return number != nullptr ? number->intValue() : 0;
}

// The name is asked for only where the identifier is another.
bool isOfThisMachine(const Dictionary& record) {
  return entryIs(record, kHostIdentifier, QXUniqueMachineIdentifier()) ||
         entryIs(record, kHostName, QXHostName());
}

Ref<String> userName() { return String::from(userAccounts().current().name); }

}  // namespace

std::string lockPathOf(StringArg path) { return standardizedPath(pathBytes(path)) + ".lock"; }

Ref<Dictionary> ownLockRecord() {
  const auto record = MutableDictionary::init();
  record->setValueForKey(QXUniqueMachineIdentifier(), kHostIdentifier);
  record->setValueForKey(QXHostName(), kHostName);
  record->setValueForKey(userName(), kUserName);
  record->setValueForKey(std::int32_t{processes().current()}, kProcessNumber);
  return PropertyValue(record->copy()).as<Dictionary>();
}

bool lockFileBytes(const Dictionary& record, std::string& bytes) {
  PlistOutput out;
  if (!writePropertyList(const_cast<Dictionary*>(&record), PropertyListFormat::xml, out, nullptr)) {
    return false;
  }
  bytes = out.view();
  return true;
}

Ref<Dictionary> lockRecordFrom(std::string_view bytes) {
  return readPropertyList(bytes, PropertyListMutability::immutable, nullptr, nullptr)
      .as<Dictionary>();
}

Ref<Dictionary> readLockFile(const std::string& path) {
  std::string bytes;
  if (readFile(path, bytes, kLargestLockFile) != 0) return nullptr;
  return lockRecordFrom(bytes);
}

bool isOwnLockRecord(const Dictionary& record) {
  return entryIs(record, kHostName, QXHostName()) && entryIs(record, kUserName, userName()) &&
         processIn(record) == processes().current();
}

}  // namespace detail

// A process that may not be signalled exists all the same.
LockHolder holderOfLockRecord(In<Dictionary> record) {
  if (!record || !detail::isOfThisMachine(*record)) return LockHolder::unknown;
  const std::int32_t process = detail::processIn(*record);
  if (process <= 0) return LockHolder::unknown;
  return detail::processes().probe(process) == ESRCH ? LockHolder::gone : LockHolder::alive;
}

}  // namespace qx

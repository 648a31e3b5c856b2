#include <QXFoundation/directories.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/lock_file.h>

#include "files/lock_record.h"
#include "frame/raise.h"
#include "platform/atomic_file.h"
#include "platform/path_text.h"

namespace qx {
namespace {

// Neither durable nor through symbolic links: what a crash of the system leaves of a lock is stale
// anyway, and the lock is the entry beside the file.
constexpr detail::AtomicWrite kLockFile{.durable = false, .following = false};

// Writes this process's record, making the folders above where they are missing. Nil on failure.
Ref<Dictionary> writeLock(In<FileManager> files, const std::string& lockPath, Ref<Error>* error) {
  auto record = detail::ownLockRecord();
  if (!createPathToFile(files, lockPath, nullptr)) return nullptr;
  std::string bytes;
  if (!detail::lockFileBytes(*record, bytes)) return nullptr;
  if (const int code = detail::replaceFile(lockPath, bytes, kLockFile)) {
    detail::fill(error, Error::posixError(code));
    return nullptr;
  }
  return record;
}

}  // namespace

Ref<String> lockFilePathForPath(In<FileManager> files, StringArg path) {
  if (!files) return nullptr;
  if (path.isNil()) detail::raiseNil("-[NSFileManager lockFilePathForPath:]");
  return String::from(detail::lockPathOf(path));
}

Ref<Dictionary> lockRecordForPath(In<FileManager> files, StringArg path) {
  if (!files) return nullptr;
  if (path.isNil()) detail::raiseNil("lockRecordForPath");
  const std::string lockPath = detail::lockPathOf(path);
  if (!files->fileExistsAtPath(lockPath)) return nullptr;
  auto record = detail::readLockFile(lockPath);
  return record != nullptr ? record : Dictionary::init();
}

Ref<Dictionary> lockFileAtPath(In<FileManager> files, StringArg path, bool overridingExistingLock,
                               bool& created, Ref<Error>* error) {
  detail::fill(error, nullptr);
  created = false;
  if (!files) return nullptr;
  if (path.isNil()) {
    detail::raiseNil("-[NSFileManager lockFileAtPath:overridingExistingLock:created:error:]");
  }
  const std::string lockPath = detail::lockPathOf(path);
  if (!overridingExistingLock && files->fileExistsAtPath(lockPath)) {
    auto record = detail::readLockFile(lockPath);
    if (record == nullptr) return Dictionary::init();
    if (holderOfLockRecord(record) != LockHolder::gone) return record;
  }
  auto record = writeLock(files, lockPath, error);
  created = record != nullptr;
  return record;
}

void unlockFileAtPath(In<FileManager> files, StringArg path) {
  if (!files) return;
  if (path.isNil()) detail::raiseNil("-[NSFileManager unlockFileAtPath:]");
  const std::string lockPath = detail::lockPathOf(path);
  const std::string failed = "Error unlocking file at " + detail::pathBytes(path);
  if (!files->fileExistsAtPath(lockPath)) {
    throw InternalInconsistencyException(failed + ": lock file " + lockPath + " does not exist");
  }
  const auto record = detail::readLockFile(lockPath);
  if (record == nullptr) {
    throw InternalInconsistencyException(failed + ": couldn't read lock file " + lockPath);
  }
  if (!detail::isOwnLockRecord(*record)) {
    throw InternalInconsistencyException(failed + ": lock file doesn't match current process");
  }
  if (!files->removeItemAtPath(lockPath)) {
    throw GenericException(failed + ": lock file couldn't be removed");
  }
}

}  // namespace qx

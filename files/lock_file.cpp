#include <cerrno>

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

// Puts the file where nothing is, without renaming one; EEXIST where something is. A record that
// may not be whole is taken away again.
int putNewLock(const std::string& lockPath, std::string_view bytes) {
  detail::OpenFile file;
  int code = detail::publishFile(lockPath, bytes, false, file);
  if (code != 0) return code;
  code = file.close();
  if (code != 0) detail::fileCalls().unlink(lockPath.c_str());
  return code;
}

// Of two who find nothing there the last one's record stays, too. Some file systems have no hard
// links, by which a new record gets its name; there, and wherever that failed, renaming decides.
int putLock(const std::string& lockPath, std::string_view bytes, bool replacing) {
  if (!replacing && putNewLock(lockPath, bytes) == 0) return 0;
  return detail::replaceFile(lockPath, bytes, kLockFile);
}

// Writes this process's record. The folders above are there as a rule, and are looked at only where
// the record could not be written. Nil on failure, without an error where there are no folders.
Ref<Dictionary> writeLock(In<FileManager> files, const std::string& lockPath, bool replacing,
                          Ref<Error>* error) {
  auto record = detail::ownLockRecord();
  std::string bytes;
  const bool isWritable = detail::lockFileBytes(*record, bytes);
  if (isWritable && putLock(lockPath, bytes, replacing) == 0) return record;
  if (!createPathToFile(files, lockPath, nullptr) || !isWritable) return nullptr;
  if (const int code = putLock(lockPath, bytes, replacing)) {
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
  bool isThere = overridingExistingLock;
  if (!overridingExistingLock && files->fileExistsAtPath(lockPath)) {
    isThere = true;
    auto record = detail::readLockFile(lockPath);
    if (record == nullptr) return Dictionary::init();
    if (holderOfLockRecord(record) != LockHolder::gone) return record;
  }
  auto record = writeLock(files, lockPath, isThere, error);
  created = record != nullptr;
  return record;
}

void unlockFileAtPath(In<FileManager> files, StringArg path) {
  if (!files) return;
  if (path.isNil()) detail::raiseNil("-[NSFileManager unlockFileAtPath:]");
  const std::string lockPath = detail::lockPathOf(path);
  const std::string failed = "Error unlocking file at " + detail::pathBytes(path);
  const auto record = detail::readLockFile(lockPath);
  // What could be read is there, as far as the shared manager goes; others may say otherwise.
  const bool isThere = record != nullptr && files.get() == FileManager::defaultManager().get();
  if (!isThere && !files->fileExistsAtPath(lockPath)) {
    throw InternalInconsistencyException(failed + ": lock file " + lockPath + " does not exist");
  }
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

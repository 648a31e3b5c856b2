#include <cerrno>
#include <utility>

#include <QXFoundation/file_lock.h>

#include "files/lock_record.h"
#include "files/lock_takeover.h"
#include "frame/raise.h"
#include "platform/processes.h"

namespace qx {

QXFileLock QXFileLock::lock(StringArg path, Ref<Error>* error) {
  if (path.isNil()) detail::raiseNil("QXFileLock::lock");
  QXFileLock lock;
  lock.path_ = detail::lockPathOf(path);
  detail::LockAttempt attempt = detail::attemptLock(lock.path_);
  if (attempt.error != 0) detail::fill(error, Error::posixError(attempt.error));
  lock.record_ = std::move(attempt.record);
  lock.file_ = attempt.file.release();
  lock.process_ = detail::processes().current();
  return lock;
}

QXFileLock::QXFileLock(QXFileLock&& other) noexcept { *this = std::move(other); }

QXFileLock& QXFileLock::operator=(QXFileLock&& other) noexcept {
  std::swap(path_, other.path_);
  std::swap(file_, other.file_);
  std::swap(process_, other.process_);
  std::swap(record_, other.record_);
  if (this != &other) other.unlock();
  return *this;
}

QXFileLock::~QXFileLock() { unlock(); }

bool QXFileLock::isHeld() const { return file_ >= 0 && process_ == detail::processes().current(); }

bool QXFileLock::unlock(Ref<Error>* error) {
  if (file_ < 0) return false;
  const bool isOwn = isHeld();
  const detail::OpenFile file = detail::OpenFile::adopt(std::exchange(file_, -1));
  record_ = nullptr;
  if (!isOwn) return false;
  const int code = detail::removeLock(path_, file);
  if (code != 0) detail::fill(error, Error::posixError(code));
  return code == 0;
}

}  // namespace qx

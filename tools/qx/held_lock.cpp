#include "tools/qx/held_lock.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include <QXFoundation/lock_file.h>

#include "tools/qx/failure.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

std::string reasonOf(int error) { return std::generic_category().message(error); }

// What keeps a file that is there from being read as a record.
std::string faultOf(const std::string& file, const struct stat& about) {
  if (S_ISLNK(about.st_mode)) return "it is a symbolic link";
  if (S_ISDIR(about.st_mode)) return reasonOf(EISDIR);
  if (!S_ISREG(about.st_mode)) return "it is no regular file";
  const int opened = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (opened < 0) return reasonOf(errno);
  ::close(opened);
  return "it is no record of a lock";
}

}  // namespace

// A lock is never a link: one is not followed to what it leads to.
std::optional<HeldLock> heldLockOf(const std::string& path) {
  const auto files = qx::FileManager::defaultManager();
  HeldLock lock{lockFilePathForPath(files, path)->utf8(), qx::Dictionary::init(), {}};
  struct stat about{};
  if (::lstat(lock.file.c_str(), &about) != 0) {
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    throw Failure("cannot look at " + lock.file + ": " + reasonOf(errno));
  }
  if (S_ISREG(about.st_mode)) {
    const auto record = lockRecordForPath(files, path);
    if (record == nullptr) return std::nullopt;  // given back meanwhile
    lock.record = record;
  }
  if (lock.record->count() == 0) lock.fault = faultOf(lock.file, about);
  return lock;
}

std::string entryOf(const qx::Dictionary& record, const char* key) {
  const qx::PropertyValue value = record.objectForKey(key);
  return value.isNil() ? "unknown" : printable(value.description());
}

}  // namespace qxtool

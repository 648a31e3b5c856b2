#include "files/lock_takeover.h"

#include <fcntl.h>
#include <sys/file.h>
#include <time.h>

#include <cerrno>

#include "files/lock_record.h"
#include "platform/atomic_file.h"

namespace qx::detail {
namespace {

constexpr std::size_t kLargestLockFile = std::size_t{1} << 20;
constexpr mode_t kNewFolder = 0777;
// Others make progress while this one tries again: so many turns mean that something keeps the old
// lock file locked.
constexpr int kMostTurns = 2000;

// The system's lock on an open file. Given back by name: a process that was forked meanwhile may
// still have the file open.
class InodeLock {
 public:
  InodeLock(int file, int operation) : file_(file) {
    do {
      error_ = fileCalls().flock(file, operation) == 0 ? 0 : errno;
    } while (error_ == EINTR);
  }
  InodeLock(const InodeLock&) = delete;
  InodeLock& operator=(const InodeLock&) = delete;
  ~InodeLock() {
    if (error_ == 0) fileCalls().flock(file_, LOCK_UN);
  }
  int error() const { return error_; }

 private:
  int file_;
  int error_;
};

// Whether the path names the open file.
bool stillNames(const std::string& path, int file) {
  struct stat there{};
  struct stat open{};
  return fileCalls().lstat(path.c_str(), &there) == 0 && fileCalls().fstat(file, &open) == 0 &&
         there.st_dev == open.st_dev && there.st_ino == open.st_ino;
}

bool existsAt(const std::string& path) {
  struct stat about{};
  return fileCalls().lstat(path.c_str(), &about) == 0;
}

int removeWhatIsOpen(const std::string& path, const OpenFile& file) {
  if (!stillNames(path, file.get())) return ESTALE;
  return fileCalls().unlink(path.c_str()) == 0 ? 0 : errno;
}

void pause() {
  const timespec time{0, 50'000};
  ::nanosleep(&time, nullptr);
}

enum class Turn : unsigned char { done, again, wait };

// One who asks for a lock. A turn is done when what came of it is in `attempt`.
class Asker {
 public:
  explicit Asker(const std::string& path) : path_(path), record_(ownLockRecord()) {}

  bool prepare() { return lockFileBytes(*record_, bytes_); }

  LockAttempt ask() {
    LockAttempt attempt;
    for (int turns = 0; turns < kMostTurns; ++turns) {
      const Turn came = turn(attempt);
      if (came == Turn::done) return attempt;
      if (came == Turn::wait) pause();
    }
    attempt.error = EAGAIN;
    return attempt;
  }

 private:
  Turn turn(LockAttempt& attempt) {
    return existsAt(path_) ? takeOver(attempt) : publish(attempt, false);
  }

  Turn publish(LockAttempt& attempt, bool replacing) {
    const int error = publishFile(path_, bytes_, replacing, attempt.file);
    if (error == EEXIST) return Turn::again;
    attempt.error = error;
    if (error == 0) attempt.record = record_;
    return Turn::done;
  }

  static Turn held(LockAttempt& attempt, Ref<Dictionary> record) {
    attempt.record = record != nullptr ? std::move(record) : Dictionary::init();
    return Turn::done;
  }

  // What is read from the open file does not change: records are never rewritten in place.
  Turn takeOver(LockAttempt& attempt) {
    const OpenFile old(path_.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (!old.isOpen()) return errno == ENOENT ? Turn::again : held(attempt, nullptr);
    std::string bytes;
    if (readOpenFile(old.get(), bytes, kLargestLockFile) != 0) return held(attempt, nullptr);
    auto record = lockRecordFrom(bytes);
    if (holderOfLockRecord(record) != LockHolder::gone) return held(attempt, std::move(record));
    const InodeLock only(old.get(), LOCK_EX | LOCK_NB);
    if (only.error() == EWOULDBLOCK) return Turn::wait;
    if (only.error() != 0) {
      attempt.error = only.error();
      return Turn::done;
    }
    return stillNames(path_, old.get()) ? publish(attempt, true) : Turn::again;
  }

  const std::string& path_;
  Ref<Dictionary> record_;
  std::string bytes_;
};

}  // namespace

// The folders above are there as a rule, and are made only where the lock finds none.
LockAttempt attemptLock(const std::string& lockPath) {
  LockAttempt failed;
  Asker asker(lockPath);
  if (!asker.prepare()) {
    failed.error = EINVAL;
    return failed;
  }
  LockAttempt attempt = asker.ask();
  if (attempt.error != ENOENT) return attempt;
  failed.error = makeFolders(folderOf(lockPath), kNewFolder);
  return failed.error != 0 ? std::move(failed) : asker.ask();
}

// Who takes a stale lock over has the old file locked for a moment. One who keeps a file locked
// that is not stale has no business there, and is not waited for without end.
int removeLock(const std::string& lockPath, const OpenFile& file) {
  for (int turns = 0; turns < kMostTurns; ++turns) {
    const InodeLock only(file.get(), LOCK_EX | LOCK_NB);
    if (only.error() == 0) return removeWhatIsOpen(lockPath, file);
    if (only.error() != EWOULDBLOCK) return only.error();
    pause();
  }
  return removeWhatIsOpen(lockPath, file);
}

}  // namespace qx::detail

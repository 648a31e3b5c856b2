// QXFileLock: a lock file that two processes never hold at once.
//
//     auto lock = qx::QXFileLock::lock("/data/report.txt", &error);
//     if (lock.isHeld()) {
//       work();                        // until `lock` goes, or lock.unlock()
//     } else if (lock.record()) {
//       show(lock.record()->objectForKey("userName"));      // who holds it
//     }
//
// It uses the lock file, and the record in it, of lockFileAtPath (lock_file.h), by stricter steps:
// a new lock appears whole where there is none, which the system lets one process alone do; a stale
// one is taken over by the one who holds the system's lock (flock) on the old file and finds it
// still in its place; and what is removed in the end is the very file that was put there.
//
// HOW THE TWO KINDS MEET. Each honours the locks of the other, and takes over stale ones of the
// other. But lockFileAtPath looks first and writes then: in between it may replace a lock that was
// taken meanwhile, of either kind, and with overridingExistingLock it replaces any. So two are sure
// never to hold one lock only where ALL who ask use QXFileLock. A QXFileLock that was replaced so
// does not remove the other's lock; unlock tells of it.
//
// WHAT NEITHER CAN PROMISE. Whether a process of another machine lives can not be known: its lock
// is held until somebody overrides it or removes the file. The number of a process that ended may
// have passed on to another process: the lock then counts as held until that one ends. Processes in
// containers with process numbers of their own, on one machine and one file system, may take each
// other for gone. On network file systems linking, renaming and flock may not be atomic between
// machines, and what one of them sees may be old. Whoever removes or replaces the lock file by
// other means breaks the lock.
//
// A file system without hard links has no QXFileLock: asking gives the system's error. There
// lockFileAtPath alone serves.
#pragma once

#include <QXFoundation/dictionary.h>
#include <QXFoundation/error.h>
#include <QXFoundation/string_arg.h>

namespace qx {

// A lock, or the answer that there is none to be had. Unlocks when it goes. Belongs to one thread
// at a time. In a forked child it holds nothing: the lock remains the parent's.
class QX_EXPORT QXFileLock {
 public:
  // Asks once for the lock of that file, without waiting for its holder; missing folders are made.
  // An error where the lock could not be written or looked at; a lock held by another (also one
  // that can not be read) is none. A nil path raises InvalidArgumentException.
  [[nodiscard]] static QXFileLock lock(StringArg path, Ref<Error>* error = nullptr);

  // Holds nothing.
  QXFileLock() = default;
  QXFileLock(QXFileLock&& other) noexcept;
  QXFileLock& operator=(QXFileLock&& other) noexcept;
  QXFileLock(const QXFileLock&) = delete;
  QXFileLock& operator=(const QXFileLock&) = delete;
  ~QXFileLock();

  // Whether this process holds the lock by this object.
  bool isHeld() const;
  // The record in force: this lock's own while it is held, else the holder's at the time of asking,
  // empty where it could not be read. Nil after a failure.
  const Ref<Dictionary>& record() const { return record_; }

  // Removes the lock. False where nothing was held, and with an error where the lock was replaced
  // meanwhile (ESTALE) or could not be removed; in any case nothing is held any more.
  bool unlock(Ref<Error>* error = nullptr);

 private:
  std::string path_;  // of the lock file
  int file_ = -1;     // kept open, so that no other file gets its number
  long process_ = 0;  // that locked
  Ref<Dictionary> record_;
};

}  // namespace qx

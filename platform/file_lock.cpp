#include "platform/file_lock.h"

#include <fcntl.h>
#include <time.h>

#include <cerrno>
#include <cstdint>

namespace qx::detail {
namespace {

// The file has two bytes' worth of locks: that of the next in line, and the lock itself. Who has
// got the lock leaves the line; so one that gives the lock back and wants it at once stands behind
// who waited meanwhile.
constexpr off_t kLine = 0;
constexpr off_t kLock = 1;

std::int64_t nowInMicroseconds() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

// The system can wait too, but not with an end to it: another process may be stopped for good.
int waitFor(int file, off_t byte, std::int64_t end) {
  for (long pause = 20'000;; pause = pause < 500'000 ? pause * 2 : pause) {
    if (fileCalls().lockByte(file, byte) == 0) return 0;
    if (errno != EAGAIN && errno != EACCES && errno != EINTR) return errno;
    if (nowInMicroseconds() >= end) return EAGAIN;
    const timespec wait{0, pause};
    ::nanosleep(&wait, nullptr);
  }
}

}  // namespace

FileLock::FileLock(const std::string& path, unsigned milliseconds)
    : file_(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW, 0600) {
  if (!file_.isOpen()) {
    error_ = errno;
    return;
  }
  const std::int64_t end = nowInMicroseconds() + std::int64_t{milliseconds} * 1000;
  error_ = waitFor(file_.get(), kLine, end);
  if (error_ != 0) return;
  error_ = waitFor(file_.get(), kLock, end);
  held_ = error_ == 0;
  fileCalls().unlockByte(file_.get(), kLine);
}

// Given back by name: a process forked meanwhile may still have the file open.
FileLock::~FileLock() {
  if (held_) fileCalls().unlockByte(file_.get(), kLock);
}

}  // namespace qx::detail

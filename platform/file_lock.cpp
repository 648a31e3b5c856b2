#include "platform/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <time.h>

#include <cerrno>
#include <cstdint>

namespace qx::detail {
namespace {

std::int64_t nowInMicroseconds() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

}  // namespace

// The system can wait too, but not with an end to it: another process may be stopped for good.
FileLock::FileLock(const std::string& path, unsigned milliseconds)
    : file_(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW, 0600) {
  if (!file_.isOpen()) return;
  const std::int64_t end = nowInMicroseconds() + std::int64_t{milliseconds} * 1000;
  for (long pause = 50'000; !held_; pause = pause < 2'000'000 ? pause * 2 : pause) {
    held_ = fileCalls().flock(file_.get(), LOCK_EX | LOCK_NB) == 0;
    if (held_ || (errno != EWOULDBLOCK && errno != EINTR) || nowInMicroseconds() >= end) return;
    const timespec wait{0, pause};
    ::nanosleep(&wait, nullptr);
  }
}

}  // namespace qx::detail

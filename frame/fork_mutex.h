#pragma once

// A mutex that is held around forks, so that the child finds it free.

#include <mutex>

namespace qx::detail {

// Between its holding and its release for a fork run the fork handlers of the program, which may
// make and release objects: the thread that forks holds all such mutexes then, and passes.
class ForkMutex {
 public:
  void lock() {
    if (!isForking) mutex_.lock();
  }
  void unlock() {
    if (!isForking) mutex_.unlock();
  }

  static inline constinit thread_local bool isForking = false;

 private:
  std::mutex mutex_;
};

}  // namespace qx::detail

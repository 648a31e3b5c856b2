#pragma once

#include <string>

#include "platform/file_calls.h"

namespace qx::detail {

// Keeps other processes, and other holders in this one, out while it lives: an advisory lock on a
// file of its own, which is made when missing and stays. The system gives it back when the process
// ends, however it ends. Who waits comes before one that held it a moment ago and wants it again.
class FileLock {
 public:
  // Waits until the lock is free, at most that long.
  FileLock(const std::string& path, unsigned milliseconds);
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  ~FileLock();
  bool isHeld() const { return held_; }
  // Why it is not held: an `errno` value, EAGAIN where the time was over; 0 where it is.
  int error() const { return error_; }

 private:
  OpenFile file_;
  bool held_ = false;
  int error_ = 0;
};

}  // namespace qx::detail

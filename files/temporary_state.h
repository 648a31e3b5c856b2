#pragma once

// What the process keeps for temporary names and its scratch folder.

#include <memory>
#include <mutex>
#include <string>

namespace qx::detail {

// The two locks are there once FileManager::didLoad has made them, and are always taken in one
// order: that of the scratch folder, then that of the names.
class TemporaryState {
 public:
  static TemporaryState& instance();

  using Lock = std::shared_ptr<std::mutex>;
  // Holds a lock, where there is one, while it lives; didLoad may replace the lock meanwhile.
  class Hold {
   public:
    explicit Hold(Lock lock) : lock_(std::move(lock)) {
      if (lock_ != nullptr) lock_->lock();
    }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    ~Hold() {
      if (lock_ != nullptr) lock_->unlock();
    }

   private:
    Lock lock_;
  };

  // Makes both locks anew and forgets the scratch folder.
  void load();
  Lock nameLock();
  Lock scratchLock();
  // Empty until there is one.
  std::string scratchPath();
  void setScratchPath(const std::string& path);

 private:
  std::mutex mutex_;  // guards the fields, never while anything else is done
  Lock nameLock_;
  Lock scratchLock_;
  std::string scratchPath_;
};

}  // namespace qx::detail

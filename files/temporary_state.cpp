#include "files/temporary_state.h"

#include <QXFoundation/file_manager.h>

namespace qx {
namespace detail {

TemporaryState& TemporaryState::instance() {
  static auto* state = new TemporaryState;  // for the life of the process
  return *state;
}

void TemporaryState::load() {
  const std::scoped_lock lock(mutex_);
  nameLock_ = std::make_shared<std::mutex>();
  scratchPath_.clear();
  scratchLock_ = std::make_shared<std::mutex>();
}

TemporaryState::Lock TemporaryState::nameLock() {
  const std::scoped_lock lock(mutex_);
  return nameLock_;
}

TemporaryState::Lock TemporaryState::scratchLock() {
  const std::scoped_lock lock(mutex_);
  return scratchLock_;
}

std::string TemporaryState::scratchPath() {
  const std::scoped_lock lock(mutex_);
  return scratchPath_;
}

void TemporaryState::setScratchPath(const std::string& path) {
  const std::scoped_lock lock(mutex_);
  scratchPath_ = path;
}

}  // namespace detail

void FileManager::didLoad() { detail::TemporaryState::instance().load(); }

}  // namespace qx

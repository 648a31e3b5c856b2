#include "platform/file_calls.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <string>
#include <utility>

namespace qx::detail {

int FileCalls::open(const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); }
ssize_t FileCalls::read(int file, void* bytes, std::size_t count) {
  return ::read(file, bytes, count);
}
ssize_t FileCalls::write(int file, const void* bytes, std::size_t count) {
  return ::write(file, bytes, count);
}
int FileCalls::fsync(int file) { return ::fsync(file); }
int FileCalls::close(int file) { return ::close(file); }
int FileCalls::fstat(int file, struct stat* about) { return ::fstat(file, about); }
int FileCalls::stat(const char* path, struct stat* about) { return ::stat(path, about); }
int FileCalls::lstat(const char* path, struct stat* about) { return ::lstat(path, about); }
int FileCalls::chmod(const char* path, mode_t mode) { return ::chmod(path, mode); }
int FileCalls::fchmod(int file, mode_t mode) { return ::fchmod(file, mode); }
int FileCalls::fchown(int file, uid_t owner, gid_t group) { return ::fchown(file, owner, group); }
int FileCalls::rename(const char* from, const char* to) { return ::rename(from, to); }
int FileCalls::unlink(const char* path) { return ::unlink(path); }
int FileCalls::link(const char* from, const char* to) { return ::link(from, to); }
// By way of /proc: linking a descriptor directly is reserved to privileged programs.
int FileCalls::linkDescriptor(int file, const char* path) {
  const std::string from = "/proc/self/fd/" + std::to_string(file);
  return ::linkat(AT_FDCWD, from.c_str(), AT_FDCWD, path, AT_SYMLINK_FOLLOW);
}
ssize_t FileCalls::readlink(const char* path, char* bytes, std::size_t count) {
  return ::readlink(path, bytes, count);
}
int FileCalls::mkdir(const char* path, mode_t mode) { return ::mkdir(path, mode); }

namespace {

// Locks of open files, not of processes: they stand between threads too, and closing another
// descriptor of the file does not end them.
int changeLock(int file, off_t byte, short type) {
  struct flock lock{};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  lock.l_start = byte;
  lock.l_len = 1;
  return ::fcntl(file, F_OFD_SETLK, &lock);
}

}  // namespace

int FileCalls::lockByte(int file, off_t byte) { return changeLock(file, byte, F_WRLCK); }
int FileCalls::unlockByte(int file, off_t byte) { return changeLock(file, byte, F_UNLCK); }
int FileCalls::flock(int file, int operation) { return ::flock(file, operation); }

namespace {

std::atomic<FileCalls*> replacement{nullptr};

}  // namespace

FileCalls& fileCalls() {
  static auto* system = new FileCalls;  // never destroyed: it serves during static destruction too
  FileCalls* calls = replacement.load(std::memory_order_acquire);
  return calls != nullptr ? *calls : *system;
}

ReplacedFileCalls::ReplacedFileCalls(FileCalls& calls)
    : before_(replacement.exchange(&calls, std::memory_order_acq_rel)) {}
ReplacedFileCalls::~ReplacedFileCalls() { replacement.store(before_, std::memory_order_release); }

OpenFile::OpenFile(const char* path, int flags, mode_t mode) {
  do {
    file_ = fileCalls().open(path, flags | O_CLOEXEC, mode);
  } while (file_ < 0 && errno == EINTR);
}

OpenFile::OpenFile(OpenFile&& other) noexcept : file_(std::exchange(other.file_, -1)) {}

OpenFile& OpenFile::operator=(OpenFile&& other) noexcept {
  std::swap(file_, other.file_);
  return *this;
}

OpenFile::~OpenFile() {
  if (isOpen()) close();
}

// An interrupted close has closed the descriptor on Linux.
int OpenFile::close() {
  return fileCalls().close(std::exchange(file_, -1)) == 0 || errno == EINTR ? 0 : errno;
}

}  // namespace qx::detail

#pragma once

// The system calls by which the library touches files, in one place that tests can replace.
//
// The functions are the calls of their names: -1 and `errno` on failure. A fake derives from
// FileCalls, overrides what it wants to fail, and stands in for the calls while a ReplacedFileCalls
// lives.

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <utility>

namespace qx::detail {

class FileCalls {
 public:
  FileCalls() = default;
  FileCalls(const FileCalls&) = delete;
  FileCalls& operator=(const FileCalls&) = delete;
  virtual ~FileCalls() = default;

  virtual int open(const char* path, int flags, mode_t mode);
  virtual ssize_t read(int file, void* bytes, std::size_t count);
  virtual ssize_t write(int file, const void* bytes, std::size_t count);
  virtual int fsync(int file);
  virtual int close(int file);
  virtual int fstat(int file, struct stat* about);
  virtual int stat(const char* path, struct stat* about);
  // Of a symbolic link itself.
  virtual int lstat(const char* path, struct stat* about);
  virtual int chmod(const char* path, mode_t mode);
  virtual int fchmod(int file, mode_t mode);
  virtual int fchown(int file, uid_t owner, gid_t group);
  virtual int rename(const char* from, const char* to);
  virtual int unlink(const char* path);
  virtual int link(const char* from, const char* to);
  // Gives the file behind an open descriptor, which has no name yet, a name.
  virtual int linkDescriptor(int file, const char* path);
  virtual ssize_t readlink(const char* path, char* bytes, std::size_t count);
  virtual int mkdir(const char* path, mode_t mode);
  // Takes an exclusive advisory lock on one byte of an open file, without waiting (EAGAIN or EACCES
  // where another open file has it); gives it back.
  virtual int lockByte(int file, off_t byte);
  virtual int unlockByte(int file, off_t byte);
  // An advisory lock of an open file as a whole, as in <sys/file.h>.
  virtual int flock(int file, int operation);
};

// The calls in use: the system's, or a test's. Thread-safe.
FileCalls& fileCalls();

// Puts `calls` in place of the system's while it lives; for tests.
class ReplacedFileCalls {
 public:
  explicit ReplacedFileCalls(FileCalls& calls);
  ReplacedFileCalls(const ReplacedFileCalls&) = delete;
  ReplacedFileCalls& operator=(const ReplacedFileCalls&) = delete;
  ~ReplacedFileCalls();

 private:
  FileCalls* before_;
};

// A descriptor that is closed with its holder.
class OpenFile {
 public:
  // Opens with O_CLOEXEC, again after an interruption; `errno` tells why it is not open.
  OpenFile(const char* path, int flags, mode_t mode = 0);
  OpenFile() = default;
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  OpenFile(OpenFile&& other) noexcept;
  OpenFile& operator=(OpenFile&& other) noexcept;
  ~OpenFile();

  // Takes over a descriptor that the caller owns, and gives it up again.
  static OpenFile adopt(int file) {
    OpenFile open;
    open.file_ = file;
    return open;
  }
  [[nodiscard]] int release() { return std::exchange(file_, -1); }

  bool isOpen() const { return file_ >= 0; }
  int get() const { return file_; }
  // 0, or the error that closing reported; the descriptor is gone in either case.
  int close();

 private:
  int file_ = -1;
};

}  // namespace qx::detail

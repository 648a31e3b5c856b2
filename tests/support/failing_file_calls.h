#pragma once

// File calls of which one fails at one of its turns, and that remember what was asked.

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

#include "platform/file_calls.h"

namespace test_support {

class FailingFileCalls : public qx::detail::FileCalls {
 public:
  // The call of that name fails with `error` at its turn (1 is the first), or at every turn where
  // that is 0; no call fails with the name "none".
  FailingFileCalls(std::string call, int turn, int error)
      : call_(std::move(call)), turn_(turn), error_(error) {}

  bool allowsUnnamedFiles = true;
  bool shortWrites = false;
  bool hasFailed = false;
  bool wasRenamed = false;
  std::string order;  // the calls that durability is about, each followed by a space

  int open(const char* path, int flags, mode_t mode) override {
    if ((flags & O_TMPFILE) == O_TMPFILE && !allowsUnnamedFiles) {
      errno = EOPNOTSUPP;
      return -1;
    }
    return fails("open") ? -1 : FileCalls::open(path, flags, mode);
  }
  ssize_t read(int file, void* bytes, std::size_t count) override {
    return fails("read") ? -1 : FileCalls::read(file, bytes, count);
  }
  ssize_t write(int file, const void* bytes, std::size_t count) override {
    order += "write ";
    if (fails("write")) return -1;
    return FileCalls::write(file, bytes, shortWrites ? std::min(count, std::size_t{7777}) : count);
  }
  int fsync(int file) override {
    order += "fsync ";
    return fails("fsync") ? -1 : FileCalls::fsync(file);
  }
  // A failing close has closed the file.
  int close(int file) override {
    const int result = FileCalls::close(file);
    return fails("close") ? -1 : result;
  }
  int fstat(int file, struct stat* about) override {
    return fails("fstat") ? -1 : FileCalls::fstat(file, about);
  }
  int fchmod(int file, mode_t mode) override {
    return fails("fchmod") ? -1 : FileCalls::fchmod(file, mode);
  }
  int fchown(int file, uid_t owner, gid_t group) override {
    return fails("fchown") ? -1 : FileCalls::fchown(file, owner, group);
  }
  int rename(const char* from, const char* to) override {
    order += "rename ";
    if (fails("rename")) return -1;
    const int result = FileCalls::rename(from, to);
    wasRenamed = wasRenamed || result == 0;
    return result;
  }
  int link(const char* from, const char* to) override {
    return fails("link") ? -1 : FileCalls::link(from, to);
  }
  int linkDescriptor(int file, const char* path) override {
    return fails("linkDescriptor") ? -1 : FileCalls::linkDescriptor(file, path);
  }
  int mkdir(const char* path, mode_t mode) override {
    return fails("mkdir") ? -1 : FileCalls::mkdir(path, mode);
  }
  int lockByte(int file, off_t byte) override {
    return fails("lockByte") ? -1 : FileCalls::lockByte(file, byte);
  }

 private:
  bool fails(const char* call) {
    if (call_ != call) return false;
    ++asked_;
    if (turn_ != 0 && asked_ != turn_) return false;
    hasFailed = true;
    errno = error_;
    return true;
  }

  std::string call_;
  int turn_;
  int error_;
  int asked_ = 0;
};

}  // namespace test_support

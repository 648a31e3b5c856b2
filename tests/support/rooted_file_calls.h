#pragma once

// File calls for which a folder is the root, and which can be told to refuse removing.

#include <cerrno>
#include <string>
#include <utility>

#include "platform/file_calls.h"

namespace test_support {

// Relative paths start in the folder too. Stands in for the system's calls while it lives.
class RootedFileCalls : public qx::detail::FileCalls {
 public:
  explicit RootedFileCalls(std::string root) : root_(std::move(root)) {}

  bool removes = true;

  int open(const char* path, int flags, mode_t mode) override {
    return FileCalls::open(in(path).c_str(), flags, mode);
  }
  int stat(const char* path, struct stat* about) override {
    return FileCalls::stat(in(path).c_str(), about);
  }
  int lstat(const char* path, struct stat* about) override {
    return FileCalls::lstat(in(path).c_str(), about);
  }
  int rename(const char* from, const char* to) override {
    return FileCalls::rename(in(from).c_str(), in(to).c_str());
  }
  int link(const char* from, const char* to) override {
    return FileCalls::link(in(from).c_str(), in(to).c_str());
  }
  int linkDescriptor(int file, const char* path) override {
    return FileCalls::linkDescriptor(file, in(path).c_str());
  }
  int mkdir(const char* path, mode_t mode) override {
    return FileCalls::mkdir(in(path).c_str(), mode);
  }
  int unlink(const char* path) override {
    if (removes) return FileCalls::unlink(in(path).c_str());
    errno = EPERM;
    return -1;
  }

 private:
  std::string in(const std::string& path) const { return root_ + "/" + path; }

  std::string root_;
  qx::detail::ReplacedFileCalls replaced_{*this};
};

}  // namespace test_support

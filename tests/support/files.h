#pragma once

// Files and folders of a test: the shared manager, and the rights of what it makes.

#include <sys/stat.h>

#include <string>

#include <QXFoundation/file_manager.h>

namespace test_support {

inline qx::Ref<qx::FileManager> files() { return qx::FileManager::defaultManager(); }

// The rights of what stands there, of a symbolic link its own; 0 where there is nothing.
inline mode_t modeOf(const std::string& path) {
  struct stat about{};
  return ::lstat(path.c_str(), &about) == 0 ? about.st_mode & 07777 : 0;
}

// What new files of this process are not given, for as long as this lives.
class WithUmask {
 public:
  explicit WithUmask(mode_t mask) : before_(::umask(mask)) {}
  WithUmask(const WithUmask&) = delete;
  WithUmask& operator=(const WithUmask&) = delete;
  ~WithUmask() { ::umask(before_); }

 private:
  mode_t before_;
};

}  // namespace test_support

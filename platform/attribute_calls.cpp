#include "platform/attribute_calls.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/xattr.h>

#include <cerrno>

#include "platform/file_calls.h"

namespace qx::detail {

ssize_t AttributeCalls::lgetxattr(const char* path, const char* name, void* bytes,
                                  std::size_t size) {
  return ::lgetxattr(path, name, bytes, size);
}
int AttributeCalls::lsetxattr(const char* path, const char* name, const void* bytes,
                              std::size_t size) {
  return ::lsetxattr(path, name, bytes, size, 0);
}
int AttributeCalls::lremovexattr(const char* path, const char* name) {
  return ::lremovexattr(path, name);
}
ssize_t AttributeCalls::llistxattr(const char* path, char* names, std::size_t size) {
  return ::llistxattr(path, names, size);
}

bool AttributeCalls::volumeHasRoom(const char* path, std::size_t size) {
  struct statvfs volume{};
  if (::statvfs(path, &volume) != 0 || volume.f_frsize == 0) return false;
  return volume.f_bavail > size / volume.f_frsize + 1;
}

// What is neither file nor folder is not opened: opening a device may do something.
int AttributeCalls::setNoDump(const char* path, bool noDump) {
  struct stat about{};
  if (::lstat(path, &about) != 0) return -1;
  if (!S_ISREG(about.st_mode) && !S_ISDIR(about.st_mode)) {
    errno = EINVAL;
    return -1;
  }
  const OpenFile file(path, O_RDONLY | O_NONBLOCK | O_NOFOLLOW);
  if (!file.isOpen()) return -1;
  int flags = 0;
  if (::ioctl(file.get(), FS_IOC_GETFLAGS, &flags) != 0) return -1;
  const int wanted = noDump ? flags | FS_NODUMP_FL : flags & ~FS_NODUMP_FL;
  return wanted == flags ? 0 : ::ioctl(file.get(), FS_IOC_SETFLAGS, &wanted);
}

}  // namespace qx::detail

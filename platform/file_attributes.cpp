#include "platform/file_attributes.h"

#include <sys/xattr.h>

#include <cerrno>
#include <string_view>

namespace qx::detail {
namespace {

// Calls `get(buffer, size)` with a buffer as large as it asks for; what it reads may grow between
// the two calls.
template <class Get>
int readGrowing(std::string& bytes, Get get) {
  for (;;) {
    const ssize_t size = get(nullptr, 0);
    if (size < 0) return errno;
    bytes.resize(static_cast<std::size_t>(size));
    if (size == 0) return 0;
    const ssize_t got = get(bytes.data(), bytes.size());
    if (got >= 0) {
      bytes.resize(static_cast<std::size_t>(got));
      return 0;
    }
    if (errno != ERANGE) return errno;
  }
}

bool mustBeKept(std::string_view name) {
  return name.starts_with("user.") || name.starts_with("system.posix_acl_");
}

int copyAttribute(const std::string& path, int file, const char* name) {
  std::string value;
  const int error = readGrowing(value, [&](void* buffer, std::size_t size) {
    return ::getxattr(path.c_str(), name, buffer, size);
  });
  if (error != 0) return error == ENODATA ? 0 : error;
  return ::fsetxattr(file, name, value.data(), value.size(), 0) == 0 ? 0 : errno;
}

}  // namespace

int copyExtendedAttributes(const std::string& path, int file) {
  std::string names;
  const int error = readGrowing(names, [&](char* buffer, std::size_t size) {
    return ::listxattr(path.c_str(), buffer, size);
  });
  if (error != 0) return error == ENOTSUP || error == EACCES ? 0 : error;
  for (std::size_t at = 0; at < names.size();
       at += std::string_view(names.data() + at).size() + 1) {
    const char* name = names.data() + at;
    const int failed = copyAttribute(path, file, name);
    if (failed != 0 && mustBeKept(name)) return failed;
  }
  return 0;
}

}  // namespace qx::detail

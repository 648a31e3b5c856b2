#pragma once

// Extended attributes as they stand on the disk, by the system's full names.

#include <sys/xattr.h>

#include <string>

namespace test_support {

inline bool storeAttribute(const std::string& path, const std::string& name,
                           const std::string& bytes) {
  return ::lsetxattr(path.c_str(), name.c_str(), bytes.data(), bytes.size(), 0) == 0;
}

// "absent" where there is none to be read.
inline std::string storedAttribute(const std::string& path, const std::string& name) {
  std::string bytes(1 << 16, '\0');  // no attribute is larger
  const ssize_t size = ::lgetxattr(path.c_str(), name.c_str(), bytes.data(), bytes.size());
  return size < 0 ? "absent" : bytes.substr(0, static_cast<std::size_t>(size));
}

}  // namespace test_support

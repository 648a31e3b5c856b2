#pragma once

// The system calls by which the library touches extended attributes and flags of files, in one
// place that tests can replace.

#include <sys/types.h>

#include <cstddef>

#include "platform/replaceable.h"

namespace qx::detail {

// The calls act on a symbolic link itself: -1 and `errno` on failure, as those of their names.
class AttributeCalls {
 public:
  AttributeCalls() = default;
  AttributeCalls(const AttributeCalls&) = delete;
  AttributeCalls& operator=(const AttributeCalls&) = delete;
  virtual ~AttributeCalls() = default;

  virtual ssize_t lgetxattr(const char* path, const char* name, void* bytes, std::size_t size);
  virtual int lsetxattr(const char* path, const char* name, const void* bytes, std::size_t size);
  virtual int lremovexattr(const char* path, const char* name);
  virtual ssize_t llistxattr(const char* path, char* names, std::size_t size);
  // Whether that many bytes, and a block more, are free on the volume of the path.
  virtual bool volumeHasRoom(const char* path, std::size_t size);
  // Sets or clears the flag that keeps a file or folder out of dumps. ENOTTY or EOPNOTSUPP where
  // the file system has none; EINVAL for what is neither file nor folder.
  virtual int setNoDump(const char* path, bool noDump);
};

inline AttributeCalls& attributeCalls() { return Replaceable<AttributeCalls>::inUse(); }
using ReplacedAttributeCalls = Replaceable<AttributeCalls>::Replacement;

}  // namespace qx::detail

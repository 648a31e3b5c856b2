#pragma once

// Extended attributes as they stand on the disk, and as another program writes and reads them.

#include <sys/xattr.h>

#include <string>

#include "tests/tools/run_program.h"

namespace qx_tests {

inline bool storeAttribute(const std::string& path, const std::string& name,
                           const std::string& bytes) {
  return ::setxattr(path.c_str(), name.c_str(), bytes.data(), bytes.size(), 0) == 0;
}

inline std::string storedAttribute(const std::string& path, const std::string& name) {
  char bytes[70000];
  const ssize_t size = ::getxattr(path.c_str(), name.c_str(), bytes, sizeof bytes);
  return size < 0 ? "absent" : std::string(bytes, static_cast<std::size_t>(size));
}

// The attribute as Python reads it: the `repr` of its property list.
inline std::string listOfAttribute(const std::string& path, const std::string& name) {
  const ProgramRun run = runProgram(
      {"/usr/bin/env", "python3", "-c",
       "import os, plistlib, sys\n"
       "print(plistlib.loads(os.getxattr(sys.argv[1], sys.argv[2]), fmt=plistlib.FMT_BINARY))",
       path, name});
  return run.exitCode == 0 ? run.out.substr(0, run.out.size() - 1) : run.err;
}

// Stores a list that Python makes of the expression.
inline bool storeList(const std::string& path, const std::string& name,
                      const std::string& expression) {
  return runProgram({"/usr/bin/env", "python3", "-c",
                     "import os, plistlib, sys\n"
                     "os.setxattr(sys.argv[1], sys.argv[2], plistlib.dumps(eval(sys.argv[3]), "
                     "fmt=plistlib.FMT_BINARY))",
                     path, name, expression})
             .exitCode == 0;
}

}  // namespace qx_tests

#pragma once

// Extended attributes as they stand on the disk, and as another program writes and reads them.

#include <string>

#include "tests/support/raw_attributes.h"
#include "tests/tools/run_program.h"

namespace qx_tests {

using test_support::storeAttribute;
using test_support::storedAttribute;

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

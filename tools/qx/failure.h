// What ends the program with an exit code other than 0.
#pragma once

#include <stdexcept>
#include <string>

#include "tools/qx/printable.h"

namespace qxtool {

// The reason is one line for the user, without the program's name. It may quote bytes from outside:
// they are made printable, also the NUL at which `what` would end.
class Failure : public std::runtime_error {
 public:
  static constexpr int kFailed = 2;
  // What was asked for is not there; nothing has gone wrong.
  static constexpr int kNotFound = 1;

  explicit Failure(const std::string& reason, int exitCode = kFailed)
      : std::runtime_error(printable(reason)), exitCode_(exitCode) {}
  int exitCode() const { return exitCode_; }

 private:
  int exitCode_;
};

// Ends the program with that exit code, with nothing said.
struct Exit {
  int code;
};

}  // namespace qxtool

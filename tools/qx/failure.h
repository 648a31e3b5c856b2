// Failure: what ends the program with exit code 2.
#pragma once

#include <stdexcept>

namespace qxtool {

// The reason is one line for the user, without the program's name. It may quote bytes from outside:
// they are made printable where the reason is shown.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace qxtool

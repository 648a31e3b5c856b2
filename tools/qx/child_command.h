// A command that is run as a process of its own, and waited for.
#pragma once

#include <string>
#include <vector>

namespace qxtool {

// From its making to its end, signals that would end this process wait for `run`. What arrives
// outside of `run` ends the process when this goes.
class HeldSignals {
 public:
  HeldSignals();
  ~HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  // Runs the command, hands signals on to it, and gives its exit status: that of the command, or
  // 128 and the number of the signal that ended it. A command that can not be run is a Failure, 127
  // where there is none of the name and else 126.
  int run(const std::vector<std::string>& command);
};

}  // namespace qxtool

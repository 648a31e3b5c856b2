#pragma once

// A program whose output, or whose messages, go to a terminal.

#include <string>
#include <vector>

namespace qx_tests {

struct TerminalRun {
  int exitCode = -1;
  // What the terminal got: standard output and standard error, those of them that are connected to
  // it.
  std::string shown;
};

struct Terminal {
  unsigned short columns = 80;
  bool output = false;
  bool messages = false;
};

// The pieces are given to the program's standard input one after the other, with a pause between
// two.
TerminalRun runOnTerminal(const std::vector<std::string>& argv, Terminal terminal,
                          const std::vector<std::string>& pieces, int pauseMilliseconds);

}  // namespace qx_tests

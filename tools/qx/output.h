// Output: standard output, written in blocks.
#pragma once

#include <string>
#include <string_view>

namespace qxtool {

// What cannot be written is a Failure. Nothing may be written before it is known that the command
// succeeds.
class Output {
 public:
  Output() = default;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  void write(std::string_view text);
  // Writes what is left, and closes: some file systems tell only then that there is no room.
  void finish();

 private:
  void flush();
  std::string pending_;
  bool written_ = false;
};

// Writes what is all of the output.
void show(std::string_view text);

// True when people are looking at it.
bool outputIsTerminal();
// True when that terminal may be given colours: not with NO_COLOR in the environment, whatever its
// value unless empty, nor where TERM is "dumb".
bool outputTakesColours();
// A Failure when they are: for bytes that would upset their terminal.
void requireNoTerminal();
// Columns of that terminal; 80 where it does not tell.
std::size_t terminalWidth();

}  // namespace qxtool

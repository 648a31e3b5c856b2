// Progress: a line on standard error for work that takes longer than a second.
#pragma once

#include <chrono>
#include <cstdint>

namespace qxtool {

// Shows nothing where standard error is no terminal. The line is removed at the end.
class Progress {
 public:
  Progress();
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Cheap; may be called for every block or some hundred records. A total of 0 is not known: `done`
  // is then shown itself, as bytes.
  void tick(const char* doing, std::uint64_t done, std::uint64_t total);
  // Removes the line, for the output to have the terminal for itself, or for work that has no share
  // to tell of, such as sorting. A later tick shows it again.
  void stop();

 private:
  using Clock = std::chrono::steady_clock;
  bool wanted_;
  Clock::time_point next_;
  bool shown_ = false;
};

}  // namespace qxtool

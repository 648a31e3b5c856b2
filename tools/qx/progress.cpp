#include "tools/qx/progress.h"

#include <unistd.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace qxtool {
namespace {

constexpr char kRemoveLine[] = "\r\033[K";
constexpr std::chrono::milliseconds kSilence{1000};
constexpr std::chrono::milliseconds kInterval{200};

// Progress that cannot be shown is no reason to stop.
void show(std::string_view text) {
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
}

}  // namespace

Progress::Progress() : wanted_(::isatty(STDERR_FILENO) == 1), next_(Clock::now() + kSilence) {}

Progress::~Progress() { stop(); }

void Progress::tick(const char* doing, std::uint64_t done, std::uint64_t total) {
  if (!wanted_) return;
  const Clock::time_point now = Clock::now();
  if (now < next_) return;
  next_ = now + kInterval;
  const std::string amount = total == 0
                                 ? std::to_string(done / 1000000) + " MB"
                                 : std::to_string(std::min(done, total) * 100 / total) + " %";
  show(std::string(kRemoveLine) + "qx: " + doing + ", " + amount);
  shown_ = true;
}

void Progress::stop() {
  if (shown_) show(kRemoveLine);
  shown_ = wanted_ = false;
}

}  // namespace qxtool

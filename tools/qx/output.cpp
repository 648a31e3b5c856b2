#include "tools/qx/output.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "tools/qx/failure.h"

namespace qxtool {
namespace {

constexpr std::size_t kBlockSize = 64 * 1024;

[[noreturn]] void failWriting() {
  throw Failure("cannot write the output: " + std::generic_category().message(errno));
}

}  // namespace

void Output::write(std::string_view text) {
  pending_ += text;
  if (pending_.size() >= kBlockSize) flush();
}

void Output::flush() {
  std::string_view rest = pending_;
  while (!rest.empty()) {
    const ssize_t count = ::write(STDOUT_FILENO, rest.data(), rest.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failWriting();
    rest.remove_prefix(static_cast<std::size_t>(count));
    written_ = true;
  }
  pending_.clear();
}

void Output::finish() {
  flush();
  if (written_ && ::close(STDOUT_FILENO) != 0 && errno != EINTR) failWriting();
}

void show(std::string_view text) {
  Output output;
  output.write(text);
  output.finish();
}

bool outputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

bool outputTakesColours() {
  const char* refused = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  const bool isDumb = terminal != nullptr && std::string_view(terminal) == "dumb";
  return outputIsTerminal() && (refused == nullptr || *refused == '\0') && !isDumb;
}

void requireNoTerminal() {
  if (outputIsTerminal()) throw Failure("binary property lists are not written to a terminal");
}

std::size_t terminalWidth() {
  winsize size{};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return 80;
}

}  // namespace qxtool

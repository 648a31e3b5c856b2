#include "tests/tools/terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace qx_tests {
namespace {

int openTerminal(const Terminal& terminal) {
  const int control = ::posix_openpt(O_RDWR | O_NOCTTY);
  if (control < 0 || ::grantpt(control) != 0 || ::unlockpt(control) != 0) {
    throw std::runtime_error("there is no terminal to be had");
  }
  winsize size{};
  size.ws_col = terminal.columns;
  size.ws_row = 24;
  ::ioctl(control, TIOCSWINSZ, &size);
  return control;
}

[[noreturn]] void execute(const std::vector<char*>& argv, const Terminal& terminal, int device,
                          int input) {
  const int nowhere = ::open("/dev/null", O_WRONLY);
  ::dup2(input, STDIN_FILENO);
  ::dup2(terminal.output ? device : nowhere, STDOUT_FILENO);
  ::dup2(terminal.messages ? device : nowhere, STDERR_FILENO);
  for (int descriptor = 3; descriptor < 64; ++descriptor) ::close(descriptor);
  ::execv(argv[0], argv.data());
  ::_exit(127);
}

// Collects what comes within the time; less when the terminal is closed.
void collect(int control, int milliseconds, std::string& shown) {
  pollfd wait{control, POLLIN, 0};
  char block[4096];
  while (::poll(&wait, 1, milliseconds) > 0) {
    const ssize_t count = ::read(control, block, sizeof block);
    if (count <= 0) return;
    shown.append(block, static_cast<std::size_t>(count));
  }
}

}  // namespace

TerminalRun runOnTerminal(const std::vector<std::string>& arguments, Terminal terminal,
                          const std::vector<std::string>& pieces, int pauseMilliseconds) {
  std::vector<char*> argv;
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  const int control = openTerminal(terminal);
  const int device = ::open(::ptsname(control), O_RDWR | O_NOCTTY);
  int input[2];
  if (::pipe(input) != 0) throw std::runtime_error("pipe failed");
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) execute(argv, terminal, device, input[0]);
  ::close(input[0]);
  ::close(device);
  ::signal(SIGPIPE, SIG_IGN);
  TerminalRun run;
  for (const std::string& piece : pieces) {
    if (::write(input[1], piece.data(), piece.size()) < 0) break;
    collect(control, pauseMilliseconds, run.shown);
  }
  ::close(input[1]);
  collect(control, 20000, run.shown);
  int status = 0;
  ::waitpid(child, &status, 0);
  if (WIFEXITED(status)) run.exitCode = WEXITSTATUS(status);
  ::close(control);
  return run;
}

}  // namespace qx_tests

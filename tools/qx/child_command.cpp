#include "tools/qx/child_command.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "tools/qx/failure.h"

namespace qxtool {
namespace {

constexpr int kNotRunnable = 126;
constexpr int kNotThere = 127;
constexpr int kEndedBySignal = 128;

// Those that are sent to a program to end it. SIGPIPE and faults are not: they come of what the
// program itself does.
constexpr int kEnding[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGUSR1, SIGUSR2, SIGXCPU};

sigset_t signalSet() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kEnding) sigaddset(&set, signal);
  sigaddset(&set, SIGCHLD);
  return set;
}

// The command gets no signals held back: it starts as it would have without this program.
pid_t start(const std::vector<std::string>& command) {
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  pid_t process = 0;
  const int error = ::posix_spawnp(&process, words[0], nullptr, &attributes, words.data(), environ);
  posix_spawnattr_destroy(&attributes);
  if (error != 0) {
    throw Failure("cannot run " + quotedIfEmpty(command[0]) + ": " + std::strerror(error),
                  error == ENOENT ? kNotThere : kNotRunnable);
  }
  return process;
}

}  // namespace

// Without the default action there would be no child to wait for.
HeldSignals::HeldSignals() {
  std::signal(SIGCHLD, SIG_DFL);
  const sigset_t set = signalSet();
  ::sigprocmask(SIG_BLOCK, &set, nullptr);
}

HeldSignals::~HeldSignals() {
  const sigset_t set = signalSet();
  ::sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

int HeldSignals::run(const std::vector<std::string>& command) {
  const pid_t process = start(command);
  const sigset_t set = signalSet();
  for (;;) {
    int status = 0;
    if (::waitpid(process, &status, WNOHANG) == process) {
      return WIFSIGNALED(status) ? kEndedBySignal + WTERMSIG(status) : WEXITSTATUS(status);
    }
    siginfo_t about{};
    const int signal = ::sigwaitinfo(&set, &about);
    // What the terminal sends, the command has got from it as well.
    if (signal > 0 && signal != SIGCHLD && about.si_code != SI_KERNEL) ::kill(process, signal);
  }
}

}  // namespace qxtool

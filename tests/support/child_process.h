#pragma once

// Processes of a test's own: forked, told what to do, waited for.

#include <grp.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <functional>
#include <stdexcept>

namespace test_support {

// Runs `work` in a forked process, which ends with what it gives. Killed, where it still runs, and
// waited for with the object.
class ChildProcess {
 public:
  explicit ChildProcess(const std::function<int()>& work) : process_(::fork()) {
    if (process_ < 0) throw std::runtime_error("fork failed");
    if (process_ > 0) return;
    int result = 255;
    try {
      result = work();
    } catch (const std::exception&) {
    }
    ::_exit(result);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() {
    if (process_ > 0) kill();
  }

  pid_t number() const { return process_; }
  // The result; -1 for one that a signal ended.
  int wait() {
    int status = 0;
    while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    process_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  void kill() {
    ::kill(process_, SIGKILL);
    wait();
  }

 private:
  pid_t process_;
};

// The number of a process that has ended.
inline pid_t endedProcess() {
  ChildProcess child([] { return 0; });
  const pid_t number = child.number();
  child.wait();
  return number;
}

// In a child of a privileged process: goes on as an unprivileged user. False where it may not.
inline bool becomeNobody() {
  constexpr uid_t kNobody = 65534;
  return ::setgroups(0, nullptr) == 0 && ::setresgid(kNobody, kNobody, kNobody) == 0 &&
         ::setresuid(kNobody, kNobody, kNobody) == 0;
}

}  // namespace test_support

#include "platform/processes.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>

namespace qx::detail {

pid_t Processes::current() { return ::getpid(); }

int Processes::probe(pid_t process) { return ::kill(process, 0) == 0 ? 0 : errno; }

}  // namespace qx::detail

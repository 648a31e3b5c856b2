#pragma once

// Processes, in one place that tests can replace.

#include <sys/types.h>

#include "platform/replaceable.h"

namespace qx::detail {

class Processes {
 public:
  Processes() = default;
  Processes(const Processes&) = delete;
  Processes& operator=(const Processes&) = delete;
  virtual ~Processes() = default;

  // The number of the calling process.
  virtual pid_t current();
  // 0 where a signal could be sent to the process, else the `errno` value: ESRCH where there is no
  // such process, EPERM where there is one that may not be signalled. Nothing is sent.
  virtual int probe(pid_t process);
};

inline Processes& processes() { return Replaceable<Processes>::inUse(); }
using ReplacedProcesses = Replaceable<Processes>::Replacement;

}  // namespace qx::detail

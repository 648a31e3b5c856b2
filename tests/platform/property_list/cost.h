#pragma once

// What some work costs, measured in a process of its own.

#include <malloc.h>
#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <stdexcept>

#include "tests/support/processor_time.h"

namespace qx::plist {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr bool kIsSanitized = true;
#else
inline constexpr bool kIsSanitized = false;
#endif
#else
inline constexpr bool kIsSanitized = false;
#endif

struct Cost {
  double seconds = 0;
  std::size_t memory = 0;  // the most at once, in bytes, beyond what was there before
};

// The most memory that work on so many bytes may take. What comes first is for pages and the
// allocator, and for the records that sanitizers keep of all that was freed.
inline std::size_t memoryFor(std::size_t bytes, std::size_t perByte) {
  return (kIsSanitized ? std::size_t{64} << 20 : std::size_t{4} << 20) +
         (kIsSanitized ? 4 : 1) * perByte * bytes;
}

// The most pages that this process ever had, in bytes; 0 where the system does not tell.
inline std::size_t mostMemory() {
  FILE* status = fopen("/proc/self/status", "r");
  if (status == nullptr) return 0;
  char line[256];
  unsigned long kilobytes = 0;
  while (fgets(line, sizeof line, status) != nullptr) {
    if (sscanf(line, "VmHWM: %lu kB", &kilobytes) == 1) break;
  }
  fclose(status);
  return kilobytes * 1024;
}

// Pages that are free in the allocator go back first, and the mark of the most is set to now: what
// the tests before have used and left hides nothing.
inline void forgetMostMemory() {
  if (!kIsSanitized) malloc_trim(0);
  FILE* marks = fopen("/proc/self/clear_refs", "w");
  if (marks == nullptr) return;
  fputs("5", marks);
  fclose(marks);
}

// The work may not throw.
template <class Work>
Cost costOf(Work&& work) {
  int results[2] = {};
  if (pipe(results) != 0) throw std::runtime_error("no pipe");
  const pid_t child = fork();
  if (child == 0) {
    forgetMostMemory();
    const std::size_t before = mostMemory();
    Cost cost;
    cost.seconds = processorTimeOf(work);
    cost.memory = mostMemory() - before;
    _exit(write(results[1], &cost, sizeof cost) == sizeof cost ? 0 : 1);
  }
  close(results[1]);
  Cost cost;
  const bool isTold = read(results[0], &cost, sizeof cost) == sizeof cost;
  close(results[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!isTold || status != 0) throw std::runtime_error("the work did not come to its end");
  return cost;
}

}  // namespace qx::plist

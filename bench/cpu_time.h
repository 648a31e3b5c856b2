#pragma once

#include <time.h>

namespace bench {

// What this thread has used of the processor. Other programs on a busy machine do not count, though
// they still take their share of the caches.
inline double cpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

}  // namespace bench

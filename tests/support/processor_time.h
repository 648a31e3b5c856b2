#pragma once

// The time that work takes, whatever else the machine does meanwhile.

#include <time.h>

#include <utility>

namespace qx {

// The processor time that this thread has used, in seconds. Other programs on a busy machine do not
// count, though they still take their share of the caches.
inline double processorTime() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

// How much of it the work takes.
template <class Work>
double processorTimeOf(Work&& work) {
  const double start = processorTime();
  std::forward<Work>(work)();
  return processorTime() - start;
}

}  // namespace qx

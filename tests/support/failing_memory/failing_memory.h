#pragma once

// Lets allocations fail on purpose: the operator new of a program that failing_memory.cpp is
// compiled into asks here. The thread sanitizer brings an operator new of its own, so that programs
// under it go without.

#include <new>

namespace test_support {

// The calling thread's allocation that comes after `count` others throws std::bad_alloc; negative:
// none does.
void failAllocationAfter(long count);

// Runs `work` again and again, each time with one allocation further failing, until it goes
// through. `check` runs after each failure, with memory enough. Gives the number of failures.
template <class Work, class Check>
long failEveryAllocation(Work work, Check check) {
  for (long count = 0;; ++count) {
    failAllocationAfter(count);
    try {
      work();
      failAllocationAfter(-1);
      return count;
    } catch (const std::bad_alloc&) {
      failAllocationAfter(-1);
      check();
    }
  }
}

}  // namespace test_support

#pragma once

// Counts what this test program allocates, and lets allocations fail on purpose.

// The thread sanitizer brings operators of its own, which can not be replaced: nothing is counted
// then, and tests of memory have nothing to look at.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define QX_TESTS_OWN_NO_MEMORY 1
#endif
#endif
#ifdef QX_TESTS_OWN_NO_MEMORY
#define SKIP_WITHOUT_OWN_MEMORY() GTEST_SKIP() << "memory is the sanitizer's"
#else
#define SKIP_WITHOUT_OWN_MEMORY() (void)0
#endif

namespace threads_test {

// Pieces of memory that operator new has given out since the program began, on all threads, and
// those of them that were not given back.
long allocations();
long livePieces();
// While this lives, the calling thread gets no memory.
struct NoMemory {
  NoMemory();
  ~NoMemory();
};

}  // namespace threads_test

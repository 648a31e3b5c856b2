#pragma once

// The system's random numbers, in one place that tests can replace.

namespace qx::detail {

class RandomNumbers {
 public:
  RandomNumbers() = default;
  RandomNumbers(const RandomNumbers&) = delete;
  RandomNumbers& operator=(const RandomNumbers&) = delete;
  virtual ~RandomNumbers() = default;

  // The next number of `random()`: from 0 to 2^31 - 1. The library never seeds the generator, which
  // belongs to the whole process; a program that wants other numbers in each run calls `srandom`.
  // Thread-safe.
  virtual long next();
};

// The numbers in use: the system's, or a test's. Thread-safe.
RandomNumbers& randomNumbers();

// Puts `numbers` in place of the system's while it lives; for tests.
class ReplacedRandomNumbers {
 public:
  explicit ReplacedRandomNumbers(RandomNumbers& numbers);
  ReplacedRandomNumbers(const ReplacedRandomNumbers&) = delete;
  ReplacedRandomNumbers& operator=(const ReplacedRandomNumbers&) = delete;
  ~ReplacedRandomNumbers();

 private:
  RandomNumbers* before_;
};

}  // namespace qx::detail

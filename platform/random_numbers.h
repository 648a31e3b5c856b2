#pragma once

// The system's random numbers, in one place that tests can replace.

#include "platform/replaceable.h"

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

inline RandomNumbers& randomNumbers() { return Replaceable<RandomNumbers>::inUse(); }
using ReplacedRandomNumbers = Replaceable<RandomNumbers>::Replacement;

}  // namespace qx::detail

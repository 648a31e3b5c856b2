#pragma once

// Random numbers that are known beforehand.

#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/random_numbers.h"

// Gives the listed numbers in order while it lives, in place of the system's.
class ScriptedRandom : public qx::detail::RandomNumbers {
 public:
  explicit ScriptedRandom(std::vector<long> numbers)
      : numbers_(std::move(numbers)), replaced_(*this) {}

  long next() override {
    if (calls_ == numbers_.size()) throw std::out_of_range("more random numbers than are listed");
    return numbers_[calls_++];
  }
  std::size_t calls() const { return calls_; }

 private:
  std::vector<long> numbers_;
  std::size_t calls_ = 0;
  qx::detail::ReplacedRandomNumbers replaced_;
};

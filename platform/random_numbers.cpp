#include "platform/random_numbers.h"

#include <stdlib.h>

#include <atomic>

namespace qx::detail {
namespace {

std::atomic<RandomNumbers*> replacement{nullptr};

}  // namespace

long RandomNumbers::next() { return ::random(); }

RandomNumbers& randomNumbers() {
  static auto* system = new RandomNumbers;  // never destroyed: it serves static destruction too
  RandomNumbers* numbers = replacement.load(std::memory_order_acquire);
  return numbers != nullptr ? *numbers : *system;
}

ReplacedRandomNumbers::ReplacedRandomNumbers(RandomNumbers& numbers)
    : before_(replacement.exchange(&numbers, std::memory_order_acq_rel)) {}
ReplacedRandomNumbers::~ReplacedRandomNumbers() {
  replacement.store(before_, std::memory_order_release);
}

}  // namespace qx::detail

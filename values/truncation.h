#pragma once

// Doubles to integers where the double may be anything.

#include <cstdint>
#include <limits>
#include <type_traits>

namespace qx::detail {

// Cut toward zero. What does not fit, and NaN, is the type's least number, as 64-bit processors
// have it.
template <class I>
  requires std::is_signed_v<I>
constexpr I truncated(double d) noexcept {
  constexpr I kLeast = std::numeric_limits<I>::min();
  constexpr double kBeyond = -static_cast<double>(kLeast);
  // One less than the least still cuts to it; for 64 bits there is no such double.
  return d < kBeyond && d > -kBeyond - 1.0 ? static_cast<I>(d) : kLeast;
}

}  // namespace qx::detail

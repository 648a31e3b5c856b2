#pragma once

namespace qx::detail {

// Order of two values of a built-in kind: exactly -1, 0 or 1. NaN is the same as everything.
template <class Value>
constexpr int threeWay(Value left, Value right) noexcept {
  return (left > right) - (left < right);
}

}  // namespace qx::detail

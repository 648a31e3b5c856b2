#pragma once

// Numbers of shapes, found by the shape's address.

#include <array>
#include <cstddef>
#include <cstdint>

#include "frame/shape.h"

namespace qx::detail {

// A table of a fixed size, a quarter full at most: shapes that meet at one place stand one after
// the other, so that mixed arrays need no search whatever the addresses are.
class ShapeNumbers {
 public:
  static constexpr std::size_t kMost = 64;
  static constexpr std::size_t kNone = ~std::size_t{0};

  std::size_t of(const Shape& shape) const {
    for (std::size_t at = placeOf(shape);; at = (at + 1) % kPlaces) {
      if (shapes_[at] == &shape) [[likely]]
        return numbers_[at];
      if (shapes_[at] == nullptr) return kNone;
    }
  }

  // A shape that is not there, and at most kMost at once.
  void add(const Shape& shape, std::size_t number) {
    std::size_t at = placeOf(shape);
    while (shapes_[at] != nullptr) at = (at + 1) % kPlaces;
    shapes_[at] = &shape;
    numbers_[at] = static_cast<std::uint8_t>(number);
  }

  // Does nothing when no shape has the number.
  void remove(std::size_t number) {
    const ShapeNumbers before = *this;
    shapes_.fill(nullptr);
    for (std::size_t at = 0; at < kPlaces; ++at) {
      const Shape* const shape = before.shapes_[at];
      if (shape != nullptr && before.numbers_[at] != number) add(*shape, before.numbers_[at]);
    }
  }

 private:
  static constexpr std::size_t kPlaces = 4 * kMost;

  static std::size_t placeOf(const Shape& shape) {
    const auto address = reinterpret_cast<std::uintptr_t>(&shape);
    return (address >> 4 ^ address >> 12) % kPlaces;
  }

  std::array<const Shape*, kPlaces> shapes_{};
  std::array<std::uint8_t, kPlaces> numbers_{};
};

}  // namespace qx::detail

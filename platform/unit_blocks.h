#pragma once

// Comparing sixteen bytes of text at a time, with the vectors that both compilers offer on every
// processor.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qx::detail {

// 16 Latin-1 bytes or 8 UTF-16 units.
template <class Unit>
struct UnitBlock {
  static constexpr std::size_t kUnits = 16 / sizeof(Unit);
  using Lanes __attribute__((vector_size(16))) = Unit;

  static Lanes load(const Unit* units) {
    Lanes lanes;
    std::memcpy(&lanes, units, sizeof lanes);
    return lanes;
  }
  static Lanes all(Unit unit) { return Lanes{} + unit; }
};

// The units of a block for which a comparison held, lowest first.
template <class Unit>
class UnitHits {
 public:
  // `comparison` is what comparing two vectors of units gives: all bits of a lane, or none.
  template <class Comparison>
  explicit UnitHits(const Comparison& comparison) {
    static_assert(sizeof(Comparison) == sizeof words_);
    std::memcpy(words_, &comparison, sizeof words_);
    if constexpr (std::endian::native == std::endian::big) {
      for (std::uint64_t& word : words_) word = byteReversed(word);
    }
  }
  bool any() const { return (words_[0] | words_[1]) != 0; }
  // The index of the lowest, which is taken away. Precondition: any().
  std::size_t take() {
    constexpr std::size_t kBits = sizeof(Unit) * 8;
    const std::size_t word = words_[0] != 0 ? 0 : 1;
    const auto lane = static_cast<std::size_t>(std::countr_zero(words_[word])) / kBits;
    words_[word] &= ~(((std::uint64_t{1} << kBits) - 1) << (lane * kBits));
    return word * (64 / kBits) + lane;
  }

 private:
  static std::uint64_t byteReversed(std::uint64_t word) { return __builtin_bswap64(word); }
  std::uint64_t words_[2];
};

}  // namespace qx::detail

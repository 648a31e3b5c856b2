#include "ordering/entry_sort.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace qx::detail {
namespace {

// Fewer entries than this are sorted faster by comparing.
constexpr std::size_t kFewEntries = 400;
constexpr unsigned kMaxDigitBits = 11;

bool isBefore(const SortEntry& a, const SortEntry& b) {
  return a.key != b.key ? a.key < b.key : a.element < b.element;
}

// The bits in which the keys differ.
std::uint64_t varyingBits(std::span<const SortEntry> entries) {
  std::uint64_t bits = 0;
  for (const SortEntry& e : entries) bits |= e.key ^ entries[0].key;
  return bits;
}

// A stable pass by one digit of the key.
void distribute(std::span<const SortEntry> from, SortEntry* to, unsigned shift, unsigned bits) {
  std::array<std::uint32_t, std::size_t{1} << kMaxDigitBits> places{};
  const std::uint64_t mask = (std::uint64_t{1} << bits) - 1;
  for (const SortEntry& e : from) ++places[(e.key >> shift) & mask];
  std::uint32_t sum = 0;
  for (std::size_t digit = 0; digit <= mask; ++digit) {
    sum += std::exchange(places[digit], sum);
  }
  for (const SortEntry& e : from) to[places[(e.key >> shift) & mask]++] = e;
}

}  // namespace

void sortEntries(std::span<SortEntry> entries, std::vector<SortEntry>& room) {
  if (entries.size() < kFewEntries) {
    std::sort(entries.begin(), entries.end(), isBefore);
    return;
  }
  const std::uint64_t varying = varyingBits(entries);
  if (varying == 0) return;
  const auto lowest = static_cast<unsigned>(std::countr_zero(varying));
  const unsigned width = 64 - static_cast<unsigned>(std::countl_zero(varying)) - lowest;
  const unsigned passes = (width + kMaxDigitBits - 1) / kMaxDigitBits;
  const unsigned bits = (width + passes - 1) / passes;
  if (room.size() < entries.size()) room.resize(entries.size());
  std::span<SortEntry> from = entries;
  std::span<SortEntry> to(room.data(), entries.size());
  for (unsigned pass = 0; pass < passes; ++pass) {
    distribute(from, to.data(), lowest + pass * bits, bits);
    std::swap(from, to);
  }
  if (from.data() != entries.data()) std::copy(from.begin(), from.end(), entries.begin());
}

}  // namespace qx::detail

#pragma once

// HashIndex: from hashes to positions in a sequence that the caller keeps. Open addressing with
// linear probing.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qx::detail {

// So that the next push_back needs no memory: what stands in several vectors grows in all or none.
template <class T>
void makeRoomForOne(std::vector<T>& v) {
  if (v.size() == v.capacity()) v.reserve(std::max<std::size_t>(v.size() * 2, 8));
}

// Positions are below 2^32 - 2. The hashes are the process's seeded ones, so that crafted keys do
// not pile up.
class HashIndex {
 public:
  static constexpr std::size_t kAbsent = ~std::size_t{0};

  // The first position with that hash for which `matches(position)` holds, or kAbsent.
  template <class Matches>
  std::size_t find(std::uint32_t hash, Matches&& matches) const {
    if (slots_.empty()) return kAbsent;
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t at = hash & mask; slots_[at].tag != kFree; at = (at + 1) & mask) {
      if (slots_[at].hash == hash && slots_[at].tag != kRemoved &&
          matches(slots_[at].tag - kFirst)) {
        return slots_[at].tag - kFirst;
      }
    }
    return kAbsent;
  }

  // The caller knows that no equal element is there. Where memory runs out, nothing has changed.
  void insert(std::uint32_t hash, std::size_t position) {
    if ((used_ + 1) * 4 > slots_.size() * 3) rehash();
    place(hash, static_cast<std::uint32_t>(position) + kFirst);
    ++live_;
  }

  void erase(std::uint32_t hash, std::size_t position) {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t at = hash & mask; slots_[at].tag != kFree; at = (at + 1) & mask) {
      if (slots_[at].tag == position + kFirst) {
        slots_[at].tag = kRemoved;
        --live_;
        return;
      }
    }
  }

  // Forgets all, and keeps the room: as many insertions as there were live ones need no memory.
  void clear() {
    std::fill(slots_.begin(), slots_.end(), Slot{});
    used_ = live_ = 0;
  }

 private:
  static constexpr std::uint32_t kFree = 0;
  static constexpr std::uint32_t kRemoved = 1;
  static constexpr std::uint32_t kFirst = 2;
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t tag = kFree;
  };

  void place(std::uint32_t hash, std::uint32_t tag) {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    while (slots_[at].tag != kFree) at = (at + 1) & mask;
    slots_[at] = {hash, tag};
    ++used_;
  }

  // Room for twice what lives; the removed marks go.
  void rehash() {
    std::size_t size = 16;
    while (size < (live_ + 1) * 2) size *= 2;
    std::vector<Slot> old(size);
    old.swap(slots_);
    used_ = 0;
    for (const Slot& s : old) {
      if (s.tag >= kFirst) place(s.hash, s.tag);
    }
  }

  std::vector<Slot> slots_;
  std::size_t used_ = 0;  // removed marks included
  std::size_t live_ = 0;
};

}  // namespace qx::detail

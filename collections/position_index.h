#pragma once

// Positions of a sequence by the hashes of its elements, several of one hash included.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "frame/hashing.h"

namespace qx::detail {

// Positions are added as 0, 1, 2 ... or in any other order, each once, and are below 2^32 - 1.
class PositionIndex {
 public:
  static constexpr std::size_t kAbsent = ~std::size_t{0};

  // Goes before all others of its hash.
  void addInFront(std::size_t hash, std::size_t position) {
    if (count_ >= heads_.size()) growTo(std::max<std::size_t>(16, heads_.size() * 2));
    if (position >= links_.size()) links_.resize(position + 1);
    links_[position].hash = folded(hash);
    link(static_cast<std::uint32_t>(position));
    ++count_;
  }

  // The first position of that hash, later added ones first, for which `matches(position)` holds.
  template <class Matches>
  std::size_t find(std::size_t hash, Matches&& matches) const {
    const std::uint32_t* at = seek(hash, matches);
    return at == nullptr ? kAbsent : *at;
  }

  // The same, and removes it.
  template <class Matches>
  std::size_t take(std::size_t hash, Matches&& matches) {
    auto* at = const_cast<std::uint32_t*>(seek(hash, matches));
    if (at == nullptr) return kAbsent;
    const std::uint32_t position = *at;
    *at = links_[position].next;
    --count_;
    return position;
  }

 private:
  static constexpr std::uint32_t kEnd = ~std::uint32_t{0};
  struct Link {
    std::uint32_t hash = 0;
    std::uint32_t next = kEnd;
  };

  // Hashes of the application may differ in a few bits only.
  static std::uint32_t folded(std::size_t hash) {
    const std::uint64_t mixed = hashWord(hash);
    return static_cast<std::uint32_t>(mixed ^ (mixed >> 32));
  }

  // The link that names the position; null when there is none.
  template <class Matches>
  const std::uint32_t* seek(std::size_t hash, Matches&& matches) const {
    if (heads_.empty()) return nullptr;
    const std::uint32_t wanted = folded(hash);
    const std::uint32_t* at = &heads_[wanted & (heads_.size() - 1)];
    for (; *at != kEnd; at = &links_[*at].next) {
      if (links_[*at].hash == wanted && matches(std::size_t{*at})) return at;
    }
    return nullptr;
  }

  void link(std::uint32_t position) {
    std::uint32_t& head = heads_[links_[position].hash & (heads_.size() - 1)];
    links_[position].next = head;
    head = position;
  }

  // Each chain is taken over from its end on, so that the order within one hash stays.
  void growTo(std::size_t size) {
    std::vector<std::uint32_t> old(size, kEnd);
    old.swap(heads_);
    std::vector<std::uint32_t> chain;
    for (std::uint32_t head : old) {
      chain.clear();
      for (; head != kEnd; head = links_[head].next) chain.push_back(head);
      for (auto position = chain.rbegin(); position != chain.rend(); ++position) link(*position);
    }
  }

  std::vector<std::uint32_t> heads_;
  std::vector<Link> links_;  // by position
  std::size_t count_ = 0;
};

}  // namespace qx::detail

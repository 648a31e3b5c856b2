#pragma once

// Finding a text in a text by code unit, prepared once for many finds. Time is linear in the text
// searched through, plus the length of what is sought, whatever they hold.
//
//   const TextFinder finder(text, part);
//   for (std::size_t at = finder.find(0); at != kNotFound; at = finder.find(at + part.size)) ...

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <QXFoundation/string.h>

#include "frame/text_span.h"

namespace qx::detail {

// For each length of a beginning of `part`: how long the longest shorter beginning is that is also
// its end. It leads a search on without looking back at the text.
class PrefixTable {
 public:
  template <class Unit>
  PrefixTable(const Unit* part, std::size_t size);

  // The place where `part` was met last, as the units of the text are given one after the other.
  template <class Unit>
  class Scan {
   public:
    Scan(const PrefixTable& table, const Unit* part, std::size_t size)
        : table_(table), part_(part), size_(size) {}
    // True when `part` ends with this unit. Occurrences may overlap.
    bool take(Unit unit) {
      if (matched_ == size_) matched_ = table_.border_[size_ - 1];
      while (matched_ > 0 && part_[matched_] != unit) matched_ = table_.border_[matched_ - 1];
      if (part_[matched_] == unit) ++matched_;
      return matched_ == size_;
    }

   private:
    const PrefixTable& table_;
    const Unit* part_;
    std::size_t size_;
    std::size_t matched_ = 0;
  };

 private:
  std::vector<std::uint32_t> border_;
};

template <class Unit>
PrefixTable::PrefixTable(const Unit* part, std::size_t size) : border_(size, 0) {
  std::uint32_t length = 0;
  for (std::size_t i = 1; i < size; ++i) {
    while (length > 0 && part[i] != part[length]) length = border_[length - 1];
    if (part[i] == part[length]) ++length;
    border_[i] = length;
  }
}

// Borrows both texts. One finder belongs to one thread.
class TextFinder {
 public:
  TextFinder(TextSpan text, TextSpan part);
  TextFinder(const TextFinder&) = delete;
  TextFinder& operator=(const TextFinder&) = delete;

  // The first place at or after `from` where `part` stands; kNotFound when there is none. An empty
  // part stands nowhere.
  std::size_t find(std::size_t from);

 private:
  template <class Unit>
  std::size_t findUnits(const Unit* text, const Unit* part, std::size_t from);
  template <class Unit>
  std::size_t scanWithTable(const Unit* text, const Unit* part, std::size_t from);

  TextSpan text_;
  TextSpan part_;  // in the form of the text
  bool impossible_ = false;
  std::string narrowPart_;
  std::u16string widePart_;
  // Candidates are compared unit by unit while that costs little for each unit passed. A text that
  // is made of near misses uses the credit up, and the table takes over.
  std::size_t credit_;
  std::optional<PrefixTable> table_;
};

// The first unit equal to `wanted` in [from, size); kNotFound when there is none.
std::size_t findUnit(const unsigned char* units, std::size_t size, unsigned char wanted,
                     std::size_t from);
std::size_t findUnit(const char16_t* units, std::size_t size, char16_t wanted, std::size_t from);

}  // namespace qx::detail

#pragma once

// The inside of character sets: their members as intervals, and quick tests of code units.

#include <cstddef>
#include <vector>

#include <QXFoundation/character_set.h>

#include "frame/text_span.h"

namespace qx::detail {

inline constexpr char32_t kLastCodePoint = 0x10FFFF;

// From `first` to `last`, both included.
struct CodePointInterval {
  char32_t first;
  char32_t last;
  friend bool operator==(const CodePointInterval&, const CodePointInterval&) = default;
};
using CodePointIntervals = std::vector<CodePointInterval>;

// In ascending order, those that touch or overlap made one.
CodePointIntervals tidied(CodePointIntervals intervals);
CodePointIntervals inverted(const CodePointIntervals& tidy);
// Of all code points for which the test holds.
CodePointIntervals intervalsWhere(bool (*test)(char32_t) noexcept);

struct CharacterSetAccess {
  static const CodePointIntervals& members(const CharacterSet& set) { return set.members_; }
  // By Latin-1 byte.
  static const bool (&narrow(const CharacterSet& set))[256] { return set.narrow_; }
  static bool contains(const CharacterSet& set, char32_t codePoint) {
    if (codePoint <= 0xFF) return set.narrow_[codePoint];
    if (codePoint > 0xFFFF || set.wide_.empty()) return set.isListed(codePoint);
    return (set.wide_[codePoint / 64] >> (codePoint % 64) & 1) != 0;
  }
};

}  // namespace qx::detail

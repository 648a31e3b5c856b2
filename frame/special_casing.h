#pragma once

// The case mappings to more than one character that hold in every language and context, which the
// one-to-one mappings of the character database lack (Unicode SpecialCasing, unconditional part).

namespace qx::detail {

// Mappings of one character, all within the basic plane, ended by 0 when shorter than three.
struct SpecialCasing {
  char16_t codePoint;
  char16_t upper[3];
  char16_t title[3];
};

// The entry for the code point, or null when its mappings are one-to-one. The only character whose
// lower case is longer (U+0130) is not in it; see kDottedCapitalI.
const SpecialCasing* findSpecialCasing(char32_t codePoint) noexcept;

// Its lower case is "i" and U+0307 (combining dot above).
inline constexpr char32_t kDottedCapitalI = 0x0130;

}  // namespace qx::detail

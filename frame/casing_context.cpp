#include "frame/casing_context.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace qx::detail {

namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// Other_Lowercase and Other_Uppercase: cased without a cased general category.
constexpr Range kOtherCased[] = {
    {0x00AA, 0x00AA},   {0x00BA, 0x00BA},   {0x02B0, 0x02B8},   {0x02C0, 0x02C1},
    {0x02E0, 0x02E4},   {0x0345, 0x0345},   {0x037A, 0x037A},   {0x1D2C, 0x1D6A},
    {0x1D78, 0x1D78},   {0x1D9B, 0x1DBF},   {0x2071, 0x2071},   {0x207F, 0x207F},
    {0x2090, 0x209C},   {0x2160, 0x217F},   {0x24B6, 0x24E9},   {0x2C7C, 0x2C7D},
    {0xA69C, 0xA69D},   {0xA770, 0xA770},   {0xA7F8, 0xA7F9},   {0xAB5C, 0xAB5F},
    {0x10780, 0x10780}, {0x10783, 0x10785}, {0x10787, 0x107B0}, {0x107B2, 0x107BA},
    {0x1E030, 0x1E06D}, {0x1F130, 0x1F149}, {0x1F150, 0x1F169}, {0x1F170, 0x1F189},
};

// Punctuation that may stand within a word (word break classes MidLetter, MidNumLet and
// Single_Quote), which is case-ignorable in addition to five general categories.
constexpr char32_t kWordPunctuation[] = {
    0x0027, 0x002E, 0x003A, 0x00B7, 0x0387, 0x055F, 0x05F4, 0x2018, 0x2019,
    0x2024, 0x2027, 0xFE13, 0xFE52, 0xFE55, 0xFF07, 0xFF0E, 0xFF1A,
};

utf8proc_category_t category(char32_t codePoint) noexcept {
  return utf8proc_category(static_cast<utf8proc_int32_t>(codePoint));
}

}  // namespace

bool isCased(char32_t codePoint) noexcept {
  switch (category(codePoint)) {
    case UTF8PROC_CATEGORY_LU:
    case UTF8PROC_CATEGORY_LL:
    case UTF8PROC_CATEGORY_LT:
      return true;
    default:
      break;
  }
  const auto* const range =
      std::lower_bound(std::begin(kOtherCased), std::end(kOtherCased), codePoint,
                       [](const Range& r, char32_t wanted) { return r.last < wanted; });
  return range != std::end(kOtherCased) && codePoint >= range->first;
}

bool isCaseIgnorable(char32_t codePoint) noexcept {
  switch (category(codePoint)) {
    case UTF8PROC_CATEGORY_MN:
    case UTF8PROC_CATEGORY_ME:
    case UTF8PROC_CATEGORY_CF:
    case UTF8PROC_CATEGORY_LM:
    case UTF8PROC_CATEGORY_SK:
      return true;
    default:
      return std::binary_search(std::begin(kWordPunctuation), std::end(kWordPunctuation),
                                codePoint);
  }
}

}  // namespace qx::detail

#pragma once

// Locale-free Unicode operations on text: normalisation, case mappings, comparison, character
// properties. Lone surrogates pass through every mapping unchanged. All functions are thread-safe
// and take time linear in the text (normalisation: n log n for runs of combining marks).

#include <string>

#include "frame/text_span.h"

namespace qx::detail {

enum class NormalForm { c, d, kc, kd };

// The text in the given Unicode normalisation form.
std::u16string normalize(TextSpan text, NormalForm form);

// Full (length-changing) default case folding, without normalisation: "Straße" gives "strasse".
std::u16string caseFold(TextSpan text);

// Full case mappings, with the unconditional entries of Unicode's SpecialCasing and the final form
// of sigma. No language-dependent rule applies.
std::u16string lowercase(TextSpan text);
std::u16string uppercase(TextSpan text);

// Words are runs without whitespace or newlines. The first letter or digit of each word is mapped
// to title case, everything after it to lower case: "(ƒOO bar-BAZ" gives "(Ƒoo Bar-baz".
std::u16string capitalized(TextSpan text);

// Full folding of one code point, 1 to 3 code points.
struct FoldedCodePoint {
  char32_t points[3];
  int count;
};
FoldedCodePoint foldCodePoint(char32_t codePoint) noexcept;

// Order by code unit: exactly -1, 0 or 1. A text is after each of its proper prefixes.
int compareUnits(TextSpan left, TextSpan right) noexcept;

// Same units in the same order, in either form.
bool equalUnits(TextSpan left, TextSpan right) noexcept;

// Order of the case-folded texts by code unit: exactly -1, 0 or 1. Allocates nothing.
int caseInsensitiveCompare(TextSpan left, TextSpan right) noexcept;

// Properties by code point; values above U+10FFFF and lone surrogates have none of them.
bool isWhitespace(char32_t codePoint) noexcept;    // category Zs and TAB; newlines are not in it
bool isNewline(char32_t codePoint) noexcept;       // U+000A..U+000D, U+0085, U+2028, U+2029
bool isLetter(char32_t codePoint) noexcept;        // categories L* and M*
bool isDecimalDigit(char32_t codePoint) noexcept;  // category Nd
bool isAlphanumeric(char32_t codePoint) noexcept;  // categories L*, M* and N*
bool isPunctuation(char32_t codePoint) noexcept;   // categories P*
bool isUppercase(char32_t codePoint) noexcept;     // categories Lu and Lt
bool isLowercase(char32_t codePoint) noexcept;     // category Ll

}  // namespace qx::detail

#pragma once

// The two character properties that decide where a sigma ends a word (Unicode, Final_Sigma).

namespace qx::detail {

// Property Cased: upper, lower or title case letters, and the letter-like signs that count so.
bool isCased(char32_t codePoint) noexcept;

// Property Case_Ignorable: marks, format characters, modifiers, and punctuation within words.
bool isCaseIgnorable(char32_t codePoint) noexcept;

}  // namespace qx::detail

#pragma once

// Conversion between UTF-8 and the two storage forms of strings (Latin-1 bytes, UTF-16 units).
//
//   const Utf8Shape shape = scanUtf8(bytes);
//   if (!shape.wide) {
//     auto* out = allocate(shape.units);
//     utf8ToLatin1(bytes, out);
//   }

#include <cstddef>
#include <string>
#include <string_view>

#include "frame/text_span.h"

namespace qx::detail {

inline constexpr char16_t kReplacementCharacter = 0xFFFD;

// What a UTF-8 text becomes as UTF-16.
struct Utf8Shape {
  std::size_t units = 0;  // exact number of UTF-16 code units, replacements included
  bool ascii = true;      // every byte is below 0x80
  bool wide = false;      // some unit is above 0xFF, so that Latin-1 does not hold the text
  bool valid = true;      // no ill-formed sequence (those make the text wide, through U+FFFD)
};

// Classifies without converting. Ill-formed sequences count as the U+FFFD that replaces them: one
// for each maximal subpart (Unicode, "Substitution of Maximal Subparts"). Encoded surrogates,
// overlong forms and values above U+10FFFF are ill-formed.
Utf8Shape scanUtf8(std::string_view text) noexcept;

// True when the text is well-formed UTF-8.
bool isValidUtf8(std::string_view text) noexcept;

// Length of the run of ASCII bytes at the start of the text.
std::size_t asciiPrefix(std::string_view text) noexcept;

// Convert into storage of exactly scanUtf8(text).units units. utf8ToLatin1 requires a text whose
// shape is not wide. The UTF-16 form takes any text and replaces ill-formed sequences as above.
void utf8ToLatin1(std::string_view text, unsigned char* out) noexcept;
void utf8ToUtf16(std::string_view text, char16_t* out) noexcept;

// The whole text as UTF-16, for callers that do not choose the form.
std::u16string utf16FromUtf8(std::string_view text);

// Exact number of bytes of the text in UTF-8; lone surrogates count as U+FFFD.
std::size_t utf8Size(TextSpan text) noexcept;

// Appends the text in UTF-8; lone surrogates become U+FFFD.
void appendUtf8(std::string& out, TextSpan text);
std::string toUtf8(TextSpan text);

}  // namespace qx::detail

// Text as it may be shown: data from outside must not move the cursor, change colours or reorder a
// line.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qxtool {

// A character of UTF-8 text. Of ill-formed text one byte, which is then the code.
struct Character {
  char32_t code;
  std::size_t size;
  bool wellFormed;
};
// The position lies within the text.
Character characterAt(std::string_view text, std::size_t position);

bool isValidUtf8(std::string_view text);

// Control characters, line and paragraph separators, and what changes the direction of writing.
bool isUnsafe(char32_t code);

// The text with unsafe characters as \n, \t, \r or \u001B, and ill-formed bytes as \xFF. A
// backslash stays one.
std::string printable(std::string_view text);

// A word of the command line, for a message; "" for the empty one.
inline std::string quotedIfEmpty(const std::string& text) { return text.empty() ? "\"\"" : text; }

// Columns that printable text takes on a terminal: two for wide characters, none for combining
// ones.
std::size_t displayWidth(std::string_view text);

// Printable text cut to a width of at least one, with an ellipsis at its end where something was
// cut.
std::string cutToWidth(std::string text, std::size_t width);

// Four hexadecimal digits of a code below 0x10000.
std::string hexDigits(char32_t code);

}  // namespace qxtool

#include "tools/qx/printable.h"

#include <utf8proc.h>

namespace qxtool {
namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";
constexpr std::string_view kEllipsis = "\u2026";

bool isPlainAscii(char c) { return c >= ' ' && c <= '~'; }

std::size_t widthOf(char32_t code) {
  const int width = utf8proc_charwidth(static_cast<utf8proc_int32_t>(code));
  return width > 0 ? static_cast<std::size_t>(width) : 0;
}

std::string escaped(char32_t code) {
  switch (code) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return "\\u" + hexDigits(code);
  }
}

}  // namespace

Character characterAt(std::string_view text, std::size_t position) {
  const auto byte = static_cast<unsigned char>(text[position]);
  if (byte < 0x80) return {byte, 1, true};
  utf8proc_int32_t code = 0;
  const utf8proc_ssize_t size =
      utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + position,
                       static_cast<utf8proc_ssize_t>(text.size() - position), &code);
  if (size <= 0) return {byte, 1, false};
  return {static_cast<char32_t>(code), static_cast<std::size_t>(size), true};
}

bool isValidUtf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const Character c = characterAt(text, i);
    if (!c.wellFormed) return false;
    i += c.size;
  }
  return true;
}

bool isUnsafe(char32_t code) {
  if (code < 0x80) return code < ' ' || code == 0x7F;
  const utf8proc_property_t* property = utf8proc_get_property(static_cast<utf8proc_int32_t>(code));
  switch (property->category) {
    case UTF8PROC_CATEGORY_CC:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return true;
    default:
      break;
  }
  switch (property->bidi_class) {
    case UTF8PROC_BIDI_CLASS_LRE:
    case UTF8PROC_BIDI_CLASS_LRO:
    case UTF8PROC_BIDI_CLASS_RLE:
    case UTF8PROC_BIDI_CLASS_RLO:
    case UTF8PROC_BIDI_CLASS_PDF:
    case UTF8PROC_BIDI_CLASS_LRI:
    case UTF8PROC_BIDI_CLASS_RLI:
    case UTF8PROC_BIDI_CLASS_FSI:
    case UTF8PROC_BIDI_CLASS_PDI:
      return true;
    default:
      return false;
  }
}

std::string printable(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    if (isPlainAscii(text[i])) {
      out += text[i++];
      continue;
    }
    const Character c = characterAt(text, i);
    if (!c.wellFormed) {
      out += "\\x" + hexDigits(c.code).substr(2);
    } else if (isUnsafe(c.code)) {
      out += escaped(c.code);
    } else {
      out += text.substr(i, c.size);
    }
    i += c.size;
  }
  return out;
}

std::size_t displayWidth(std::string_view text) {
  std::size_t width = 0;
  for (std::size_t i = 0; i < text.size();) {
    const Character c = characterAt(text, i);
    width += c.code < 0x80 ? 1 : widthOf(c.code);
    i += c.size;
  }
  return width;
}

std::string cutToWidth(std::string text, std::size_t width) {
  std::size_t used = 0;
  std::size_t cut = 0;  // where the text ends if it has to leave room for the ellipsis
  for (std::size_t i = 0; i < text.size();) {
    const Character c = characterAt(text, i);
    used += c.code < 0x80 ? 1 : widthOf(c.code);
    if (used > width) return text.substr(0, cut).append(kEllipsis);
    i += c.size;
    if (used < width) cut = i;
  }
  return text;
}

std::string hexDigits(char32_t code) {
  std::string digits;
  for (int shift = 12; shift >= 0; shift -= 4) digits += kHexDigits[code >> shift & 0xF];
  return digits;
}

}  // namespace qxtool

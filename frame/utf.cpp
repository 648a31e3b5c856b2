#include "frame/utf.h"

#include <cstdint>
#include <cstring>

namespace qx::detail {

namespace {

constexpr std::uint64_t kHighBits = 0x8080808080808080;
constexpr char32_t kIllFormed = 0xFFFFFFFF;

const unsigned char* bytesOf(std::string_view text) noexcept {
  return reinterpret_cast<const unsigned char*>(text.data());
}

std::uint64_t load64(const unsigned char* bytes) noexcept {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// End of the ASCII run that starts at `at`.
const unsigned char* skipAscii(const unsigned char* at, const unsigned char* end) noexcept {
  while (end - at >= 8 && (load64(at) & kHighBits) == 0) at += 8;
  while (at != end && *at < 0x80) ++at;
  return at;
}

// What may follow a lead byte. The range of the second byte is what rules out overlong forms,
// surrogates and values above U+10FFFF; the later ones are always 80..BF.
struct LeadByte {
  int trailing;  // 0: no lead byte
  unsigned char secondLow;
  unsigned char secondHigh;
};

LeadByte classifyLead(unsigned char lead) noexcept {
  if (lead < 0xC2 || lead > 0xF4) return {0, 0, 0};
  if (lead < 0xE0) return {1, 0x80, 0xBF};
  if (lead == 0xE0) return {2, 0xA0, 0xBF};
  if (lead == 0xED) return {2, 0x80, 0x9F};
  if (lead < 0xF0) return {2, 0x80, 0xBF};
  if (lead == 0xF0) return {3, 0x90, 0xBF};
  if (lead == 0xF4) return {3, 0x80, 0x8F};
  return {3, 0x80, 0xBF};
}

// Decodes the sequence at `at` (a byte >= 0x80) and moves behind it. An ill-formed one gives
// kIllFormed and moves behind its maximal subpart: the bytes that could still have become a
// character, at least one.
char32_t decodeMultibyte(const unsigned char*& at, const unsigned char* end) noexcept {
  const unsigned char lead = *at++;
  const LeadByte kind = classifyLead(lead);
  if (kind.trailing == 0) return kIllFormed;
  char32_t value = lead & (0x3Fu >> kind.trailing);
  unsigned char low = kind.secondLow;
  unsigned char high = kind.secondHigh;
  for (int i = 0; i < kind.trailing; ++i) {
    if (at == end || *at < low || *at > high) return kIllFormed;
    value = (value << 6) | (*at++ & 0x3Fu);
    low = 0x80;
    high = 0xBF;
  }
  return value;
}

// Bytes of one code point in UTF-8; surrogates count as the replacement character (also three).
std::size_t utf8Length(char32_t codePoint) noexcept {
  if (codePoint < 0x80) return 1;
  if (codePoint < 0x800) return 2;
  return codePoint < 0x10000 ? 3 : 4;
}

char* writeUtf8(char* out, char32_t codePoint) noexcept {
  const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
  if (codePoint < 0x80) {
    put(codePoint);
    return out;
  }
  if (codePoint < 0x800) {
    put(0xC0 | (codePoint >> 6));
  } else {
    if (codePoint < 0x10000) {
      put(0xE0 | (codePoint >> 12));
    } else {
      put(0xF0 | (codePoint >> 18));
      put(0x80 | ((codePoint >> 12) & 0x3F));
    }
    put(0x80 | ((codePoint >> 6) & 0x3F));
  }
  put(0x80 | (codePoint & 0x3F));
  return out;
}

}  // namespace

std::size_t asciiPrefix(std::string_view text) noexcept {
  const unsigned char* const start = bytesOf(text);
  return static_cast<std::size_t>(skipAscii(start, start + text.size()) - start);
}

Utf8Shape scanUtf8(std::string_view text) noexcept {
  Utf8Shape shape;
  const unsigned char* at = bytesOf(text);
  const unsigned char* const end = at + text.size();
  while (true) {
    const unsigned char* const run = at;
    at = skipAscii(at, end);
    shape.units += static_cast<std::size_t>(at - run);
    if (at == end) return shape;
    shape.ascii = false;
    const char32_t codePoint = decodeMultibyte(at, end);
    if (codePoint == kIllFormed) {
      shape.valid = false;
      shape.wide = true;
      ++shape.units;
      continue;
    }
    if (codePoint > 0xFF) shape.wide = true;
    shape.units += codePoint > 0xFFFF ? 2 : 1;
  }
}

bool isValidUtf8(std::string_view text) noexcept {
  const unsigned char* at = bytesOf(text);
  const unsigned char* const end = at + text.size();
  while ((at = skipAscii(at, end)) != end) {
    if (decodeMultibyte(at, end) == kIllFormed) return false;
  }
  return true;
}

void utf8ToLatin1(std::string_view text, unsigned char* out) noexcept {
  const unsigned char* at = bytesOf(text);
  const unsigned char* const end = at + text.size();
  while (at != end) {
    const unsigned char* const run = at;
    at = skipAscii(at, end);
    const auto length = static_cast<std::size_t>(at - run);
    if (length != 0) std::memcpy(out, run, length);
    out += length;
    if (at != end) *out++ = static_cast<unsigned char>(decodeMultibyte(at, end));
  }
}

void utf8ToUtf16(std::string_view text, char16_t* out) noexcept {
  const unsigned char* at = bytesOf(text);
  const unsigned char* const end = at + text.size();
  while (at != end) {
    if (*at < 0x80) {
      *out++ = *at++;
      continue;
    }
    const char32_t codePoint = decodeMultibyte(at, end);
    out = writeCodePoint(out, codePoint == kIllFormed ? kReplacementCharacter : codePoint);
  }
}

std::u16string utf16FromUtf8(std::string_view text) {
  std::u16string units(scanUtf8(text).units, u'\0');
  utf8ToUtf16(text, units.data());
  return units;
}

std::size_t utf8Size(TextSpan text) noexcept {
  return visitUnits(text, [](const auto* units, std::size_t size) {
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < size;) bytes += utf8Length(nextCodePoint(units, size, i));
    return bytes;
  });
}

void appendUtf8(std::string& out, TextSpan text) {
  const std::size_t start = out.size();
  const std::size_t size = utf8Size(text);
  if (size == 0) return;
  out.resize(start + size);
  char* at = out.data() + start;
  if (!text.wide && size == text.size) {
    std::memcpy(at, text.data, size);
    return;
  }
  visitUnits(text, [at](const auto* units, std::size_t count) mutable {
    for (std::size_t i = 0; i < count;) {
      const char32_t codePoint = nextCodePoint(units, count, i);
      at = writeUtf8(at, isSurrogate(codePoint) ? kReplacementCharacter : codePoint);
    }
  });
}

std::string toUtf8(TextSpan text) {
  std::string out;
  appendUtf8(out, text);
  return out;
}

}  // namespace qx::detail

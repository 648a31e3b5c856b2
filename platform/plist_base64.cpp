#include <array>

#include "platform/plist_text.h"

namespace qx::detail {
namespace {

constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr unsigned char kSpace = 64;
constexpr unsigned char kPad = 65;
constexpr unsigned char kForeign = 66;

constexpr std::array<unsigned char, 256> valuesOfCharacters() {
  std::array<unsigned char, 256> values{};
  values.fill(kForeign);
  for (unsigned char i = 0; i < 64; ++i) values[static_cast<unsigned char>(kDigits[i])] = i;
  for (unsigned c = 0; c < 256; ++c) {
    if (isXmlSpace(static_cast<unsigned char>(c))) values[c] = kSpace;
  }
  values['='] = kPad;
  return values;
}

constexpr std::array<unsigned char, 256> kValues = valuesOfCharacters();

// The last group, of `digits` characters that mean something; padded to four by the caller's count.
bool appendLastGroup(std::uint32_t group, int digits, int pads, std::string& out) {
  if (digits == 0) return pads == 0;
  if (digits + pads != 4 || digits == 1) return false;
  group <<= 6 * pads;
  out.push_back(static_cast<char>(group >> 16));
  if (digits == 3) out.push_back(static_cast<char>(group >> 8));
  return (group & (digits == 3 ? 0xFFU : 0xFFFFU)) == 0;
}

}  // namespace

bool decodeBase64(std::string_view text, std::string& out) {
  out.reserve(out.size() + text.size() / 4 * 3 + 3);
  std::uint32_t group = 0;
  int digits = 0;
  int pads = 0;
  for (const char c : text) {
    const unsigned char value = kValues[static_cast<unsigned char>(c)];
    if (value == kSpace) continue;
    if (value == kForeign || (value != kPad && pads != 0)) return false;
    if (value == kPad) {
      if (++pads > 2) return false;
      continue;
    }
    group = group << 6 | value;
    if (++digits < 4) continue;
    const char bytes[3] = {static_cast<char>(group >> 16), static_cast<char>(group >> 8),
                           static_cast<char>(group)};
    out.append(bytes, 3);
    group = 0;
    digits = 0;
  }
  return appendLastGroup(group, digits, pads, out);
}

char* encodeBase64(std::string_view bytes, char* out) {
  const auto byte = [&](std::size_t i) -> std::uint32_t {
    return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
  };
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::uint32_t group = byte(i) << 16 | byte(i + 1) << 8 | byte(i + 2);
    *out++ = kDigits[group >> 18];
    *out++ = kDigits[group >> 12 & 63];
    *out++ = i + 1 < bytes.size() ? kDigits[group >> 6 & 63] : '=';
    *out++ = i + 2 < bytes.size() ? kDigits[group & 63] : '=';
  }
  return out;
}

}  // namespace qx::detail

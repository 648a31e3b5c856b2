#pragma once

// Helpers for tests that run a case in both storage forms of text.

#include <algorithm>
#include <string>

namespace qx::detail {

inline bool fitsLatin1(const std::u16string& units) {
  return std::all_of(units.begin(), units.end(), [](char16_t unit) { return unit <= 0xFF; });
}

// Precondition: fitsLatin1(units).
inline std::string latin1Of(const std::u16string& units) {
  std::string bytes;
  for (const char16_t unit : units) bytes.push_back(static_cast<char>(unit));
  return bytes;
}

// The UTF-16 form of ASCII text.
inline std::u16string widened(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

}  // namespace qx::detail

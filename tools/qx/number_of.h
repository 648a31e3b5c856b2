// Numbers given as words of the command line.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace qxtool {

// The number that the text is, and nothing but it: no blanks, no plus. Empty also where it does not
// fit the type.
template <class N>
std::optional<N> numberOf(std::string_view text) {
  N number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace qxtool

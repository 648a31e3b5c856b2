#pragma once

// The grammar of RFC 3339, without rounding: the moment's whole second, and the digits of its
// fraction.

#include <cstdint>
#include <optional>
#include <string_view>

namespace qx::detail {

struct Rfc3339Text {
  std::int64_t second = 0;    // since 1970-01-01 00:00:00 UTC; at or before the moment
  std::string_view fraction;  // its digits, which may be none; borrowed from the text
  int offsetMinutes = 0;
  bool offsetIsKnown = true;
};

// Empty where the text does not follow the grammar to the letter.
std::optional<Rfc3339Text> readRfc3339(std::string_view text) noexcept;

}  // namespace qx::detail

#pragma once

// The lenient reader of ISO 8601 texts, without the calendar; what it accepts stands in iso_date.h.

#include <string_view>

#include "platform/calendar.h"

namespace qx::detail {

// What the text sets; false where it is refused, and `components` is of no use.
bool readIso8601(std::string_view text, DateComponents& components) noexcept;

}  // namespace qx::detail

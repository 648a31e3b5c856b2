#pragma once

// The process's local time zone: `TZ`, or the system's zone where that is not set.
//
// The C library tells the offset of one moment at a time, behind a lock; what it tells is kept here
// as the changes of offset of each year asked about, until `TZ` changes; so the two agree,
// but for years before 1, in which the C library errs. A change of the system's zone while the
// process runs is seen only by years that were not asked about before. Thread-safe, but as
// everywhere in POSIX no thread may change the environment while another uses it.

#include <cstdint>

namespace qx::detail {

// Seconds that local time is east of UTC at a moment, in seconds since 1970-01-01 00:00:00 UTC.
std::int32_t offsetOfMoment(std::int64_t moment);

// The same for a local time, in the seconds that its date and time would be in UTC. For a time that
// is skipped this is the offset before the gap, which moves it forward by the gap; for one that
// comes twice, the offset of the earlier.
std::int32_t offsetOfLocalTime(std::int64_t localTime);

}  // namespace qx::detail

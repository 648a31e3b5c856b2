#include "platform/calendar.h"

#include "platform/time_zone.h"

namespace qx::detail {

double secondsSince1970(const DateComponents& c) {
  const std::int64_t days =
      daysSince1970({c.year.value_or(1), c.month.value_or(1), c.day.value_or(1)});
  const std::int64_t civil = days * kSecondsPerDay + std::int64_t{c.hour.value_or(0)} * 3600 +
                             std::int64_t{c.minute.value_or(0)} * 60 + c.second.value_or(0);
  const std::int64_t whole = civil - (c.zone ? *c.zone : offsetOfLocalTime(civil));
  return static_cast<double>(whole) + c.nanosecond.value_or(0) / 1e9;
}

}  // namespace qx::detail

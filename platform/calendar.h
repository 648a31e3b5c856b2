#pragma once

// The proleptic Gregorian calendar over 64-bit counts of days and seconds: it reaches every year
// that a 32-bit number names, further than the calendars of <chrono>.

#include <cstdint>
#include <optional>

namespace qx::detail {

inline constexpr std::int64_t kSecondsPerDay = 86400;

// The quotient rounded down, and the remainder that goes with it (never negative); divisor > 0.
constexpr std::int64_t floorDivide(std::int64_t n, std::int64_t divisor) noexcept {
  return n / divisor - (n % divisor < 0 ? 1 : 0);
}
constexpr std::int64_t floorModulo(std::int64_t n, std::int64_t divisor) noexcept {
  const std::int64_t rest = n % divisor;
  return rest < 0 ? rest + divisor : rest;
}

// A day of the calendar. Year 0 is the year before year 1.
struct CivilDate {
  std::int64_t year = 1;
  std::int32_t month = 1;  // 1 to 12
  std::int32_t day = 1;    // 1 to 31
  friend bool operator==(const CivilDate&, const CivilDate&) = default;
};

// Days from 1970-01-01. A day beyond the month's end rolls over into the next month. |year| < 2^52.
constexpr std::int64_t daysSince1970(const CivilDate& date) noexcept {
  // Years are counted from March, so that a leap day is the last of its year.
  const std::int64_t year = date.year - (date.month <= 2 ? 1 : 0);
  const std::int64_t era = floorDivide(year, 400);
  const auto yearOfEra = static_cast<std::uint32_t>(year - era * 400);
  const auto monthFromMarch = static_cast<std::uint32_t>(date.month + (date.month <= 2 ? 9 : -3));
  const std::uint32_t dayOfYear = (153 * monthFromMarch + 2) / 5;
  const std::uint32_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + static_cast<std::int64_t>(dayOfEra) + date.day - 719469;
}

// The inverse. |days| < 2^52.
constexpr CivilDate civilDate(std::int64_t daysSince1970) noexcept {
  const std::int64_t days = daysSince1970 + 719468;
  const std::int64_t era = floorDivide(days, 146097);
  const auto dayOfEra = static_cast<std::uint32_t>(days - era * 146097);
  // Divisions by the mean lengths of centuries, years and months; the last two as multiplications
  // whose lower half is the remainder, which holds for every day of an era.
  const std::uint32_t quarterDays = 4 * dayOfEra + 3;
  const std::uint32_t century = quarterDays / 146097;
  const std::uint64_t yearAndDay = 2939745ULL * (quarterDays % 146097 | 3);
  const auto yearOfCentury = static_cast<std::uint32_t>(yearAndDay >> 32);
  const std::uint32_t dayOfYear = static_cast<std::uint32_t>(yearAndDay) / 2939745 / 4;
  const std::uint32_t monthAndDay = 2141 * dayOfYear + 197913;
  const bool isNextYear = dayOfYear >= 306;  // years are counted from March here too
  const auto month = static_cast<std::int32_t>(monthAndDay >> 16) - (isNextYear ? 12 : 0);
  const auto day = static_cast<std::int32_t>((monthAndDay & 0xFFFF) / 2141) + 1;
  return {era * 400 + century * 100 + yearOfCentury + (isNextYear ? 1 : 0), month, day};
}

// The number of days of the month, 28 to 31.
constexpr std::int32_t daysInMonth(std::int64_t year, std::int32_t month) noexcept {
  const CivilDate next = month == 12 ? CivilDate{year + 1, 1, 1} : CivilDate{year, month + 1, 1};
  return static_cast<std::int32_t>(daysSince1970(next) - daysSince1970({year, month, 1}));
}

// A date taken apart; what is not given is left out.
struct DateComponents {
  std::optional<std::int32_t> year;
  std::optional<std::int32_t> month;
  std::optional<std::int32_t> day;
  std::optional<std::int32_t> hour;
  std::optional<std::int32_t> minute;
  std::optional<std::int32_t> second;
  std::optional<std::int32_t> nanosecond;
  std::optional<std::int32_t> zone;  // seconds east of UTC
  friend bool operator==(const DateComponents&, const DateComponents&) = default;
};

// The moment in seconds since 1970-01-01 00:00:00 UTC. Year, month and day that are left out are 1,
// the parts of the time 0, and the zone is the process's local one: there a time that is skipped
// moves forward by what was skipped, and one that comes twice is the earlier. Month 1 to 12.
double secondsSince1970(const DateComponents& components);

}  // namespace qx::detail

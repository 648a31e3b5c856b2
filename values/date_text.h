#pragma once

// Pieces of the texts of dates.

#include <charconv>
#include <cstdint>

#include "platform/calendar.h"

namespace qx::detail {

// Room for any date and time to the second, with the longest year there is.
inline constexpr int kDateTextRoom = 48;

// Writes two digits, and gives the place behind them; n < 100.
inline char* writeTwoDigits(char* out, std::uint32_t n) noexcept {
  *out++ = static_cast<char>('0' + n / 10);
  *out++ = static_cast<char>('0' + n % 10);
  return out;
}

// "2021-03-04T05:06:07" of the seconds since 1970-01-01 00:00:00. The year has four digits at
// least, and a minus where it is below 0.
inline char* writeDateAndTime(char* out, std::int64_t seconds) noexcept {
  const std::int64_t days = floorDivide(seconds, kSecondsPerDay);
  // Not what is left of the days' seconds: the first day there is begins before the least number.
  const auto second = static_cast<std::uint32_t>(floorModulo(seconds, kSecondsPerDay));
  const CivilDate date = civilDate(days);
  std::int64_t year = date.year;
  if (year < 0) {
    *out++ = '-';
    year = -year;
  }
  if (year < 10000) {
    const auto shortYear = static_cast<std::uint32_t>(year);
    out = writeTwoDigits(writeTwoDigits(out, shortYear / 100), shortYear % 100);
  } else {
    out = std::to_chars(out, out + 20, year).ptr;
  }
  *out++ = '-';
  out = writeTwoDigits(out, static_cast<std::uint32_t>(date.month));
  *out++ = '-';
  out = writeTwoDigits(out, static_cast<std::uint32_t>(date.day));
  *out++ = 'T';
  out = writeTwoDigits(out, second / 3600);
  *out++ = ':';
  out = writeTwoDigits(out, second / 60 % 60);
  *out++ = ':';
  return writeTwoDigits(out, second % 60);
}

}  // namespace qx::detail

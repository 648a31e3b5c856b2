// Dates and ISO 8601 text, time value pairs, and whole days between dates.
//
//     auto d = qx::qxDateFromISO8601String("2021-03-04T05:06:07+02:00");
//     qxISO8601String(d)->utf8();   // "2021-03-04T03:06:07Z"
//
// The reader here is the lenient one of the library's file formats and settings. It takes a text
// without an offset, AND ONE THAT ENDS IN "Z", as local time; it needs a time after the date, and
// seconds, or the time is midnight. For text that others write or read (web services, feeds, logs)
// use rfc3339.h, which reads "Z" as UTC, refuses what is out of range instead of changing it, and
// gives back what it has written.
//
// Thread-safe, while no thread changes the environment (`TZ`).
#pragma once

#include <cstdint>

#include <QXFoundation/date.h>
#include <QXFoundation/string.h>

namespace qx {

// A moment as seconds since 1970-01-01 00:00:00 UTC and microseconds.
struct TimeValue {
  // The two parts; equal where both are.
  std::int64_t seconds = 0;
  std::int32_t microseconds = 0;
  friend bool operator==(const TimeValue&, const TimeValue&) = default;
};

namespace detail {
QX_EXPORT Ref<Date> dateFromISO8601Text(StringArg text);
}

// The date that the value stands for; nil where it stands for none. A number is seconds since
// 1970-01-01 00:00:00 UTC. Of other values only strings have a date:
//
//     DATE "T" TIME ZONE, "T" TIME ZONE or TIME ZONE
//     DATE: ["-"] year "-" month "-" day                 any number of digits each
//     TIME: hour ":" minute [":" second ["." fraction]]  an empty hour, minute or second is 0
//     ZONE: nothing, "Z", or ("+" or "-") hh ":" mm      to 23 and 59; an empty one is 0
//
// - Numbers above 2147483647 are refused; months, days, hours, minutes and seconds beyond their
//   range become the nearest in range (a 31st of a shorter month is a day of the next).
// - Without seconds the time is midnight. A fraction is cut to nanoseconds.
// - Without an offset, and with "Z", the time is local (proleptic Gregorian, `TZ` honoured): a time
//   that is skipped moves forward by the gap, one that comes twice is the earlier.
// - A text without date, and the date 0-0-0, stand for 0001-01-01. Year 0 comes before year 1.
[[nodiscard]] QX_EXPORT Ref<Date> qxDateFromISO8601String(const PropertyValue& value);
template <Utf8Text S>
[[nodiscard]] Ref<Date> qxDateFromISO8601String(const S& text) {
  return detail::dateFromISO8601Text(StringArg(text));
}

// "1970-01-01T00:00:00Z": the date in UTC, the fraction of its second cut off toward 1970. Years
// have four digits at least; one before year 0 has a minus before them. A date that is NaN, or
// whose seconds do not fit 64 bits, is written as the least number of seconds that does. Nil gives
// nil.
[[nodiscard]] QX_EXPORT Ref<String> qxISO8601String(In<Date> date);

// The date of the pair, its microseconds added to its seconds.
[[nodiscard]] QX_EXPORT Ref<Date> qxDateWithTimeVal(const TimeValue& value);

// Seconds cut toward zero, microseconds those after the second before: for a date before 1970 that
// is no whole second the two together name another moment (-1.5 gives -1 and 500000). Seconds that
// do not fit 32 bits (before 1901-12-13 or after 2038-01-19) are -2147483648. Nil gives zeros.
[[nodiscard]] QX_EXPORT TimeValue qxTimeval(In<Date> date);

// The whole days of 24 hours from the first date to the second, counted toward zero; negative when
// the second is earlier. 0 when either is nil, the least number when the days do not fit 64 bits or
// a date is NaN.
[[nodiscard]] QX_EXPORT std::int64_t daysBetweenDate(In<Date> date, In<Date> andDate);

}  // namespace qx

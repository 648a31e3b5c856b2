// Dates and RFC 3339 text: the strict reader and writer, for text that other programs write or
// read.
//
//     auto d = qx::qxDateFromRFC3339String("2021-03-04T05:06:07.25+02:00");
//     qxRFC3339String(d)->utf8();          // "2021-03-04T03:06:07.25Z"
//     qxRFC3339String(d, 120)->utf8();     // "2021-03-04T05:06:07.25+02:00"
//
// Every date that is written reads back as exactly the same date. The lenient reader of iso_date.h
// takes other texts, and "Z" as local time; use it only for what was made for it. Thread-safe,
// while no thread changes the environment (`TZ`).
#pragma once

#include <optional>

#include <QXFoundation/date.h>
#include <QXFoundation/string.h>

namespace qx {

// A date and the offset that its text named.
struct OffsetDate {
  // The moment.
  Ref<Date> date;
  int offsetMinutes = 0;      // local time minus UTC, -1439 to 1439
  bool offsetIsKnown = true;  // false for "-00:00": a time in UTC, from a place that is not told
};

// "YYYY-MM-DDTHH:MM:SS", then optionally "." and digits, then "Z" or "+HH:MM" or "-HH:MM"; "T" and
// "Z" in lower case too. Everything else gives nil, as does every number out of its range: a day
// that its month does not have, hour 24, an offset beyond 23:59. Second 60 is taken where a leap
// second can be, at the end of a month in UTC, and reads as the first second of the next. The
// fraction may have any number of digits; the date is the nearest that a double can hold.
[[nodiscard]] QX_EXPORT Ref<Date> qxDateFromRFC3339String(StringArg text);
[[nodiscard]] QX_EXPORT std::optional<OffsetDate> qxOffsetDateFromRFC3339String(StringArg text);

// The date with as many digits of its second's fraction as it takes to read back the same (none for
// a whole second). Nil for a nil date, for one outside the years 0 to 9999 in that offset (NaN
// too), and for an offset beyond 23:59.
[[nodiscard]] QX_EXPORT Ref<String> qxRFC3339String(In<Date> date);  // in UTC, "Z"
[[nodiscard]] QX_EXPORT Ref<String> qxRFC3339String(In<Date> date, int offsetMinutes);  // "Z" for 0
[[nodiscard]] QX_EXPORT Ref<String> qxRFC3339String(const OffsetDate& date);
// In the process's local zone. An offset that is no whole number of minutes, as some were long ago,
// is cut to minutes, and the time with it: it is the same moment.
[[nodiscard]] QX_EXPORT Ref<String> qxLocalRFC3339String(In<Date> date);

}  // namespace qx

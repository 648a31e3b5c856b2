// Arbitrary text for both readers of dates. What either accepts has to agree with the other, with
// the writers, and with the way of the lenient reader for texts that do not have the usual form.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <QXFoundation/iso_date.h>
#include <QXFoundation/rfc3339.h>

#include "values/iso_reader.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

// A zero before the first digit changes nothing but the way in which the text is read. (It may turn
// a time alone into something else: there the places of the first colons count.)
void checkLeadingZero(const std::string& text) {
  if (text.size() < 5 || text[4] != '-' || text[0] < '0' || text[0] > '9') return;
  if (text[1] == ':' || text[2] == ':') return;
  qx::detail::DateComponents usual;
  qx::detail::DateComponents other;
  const bool accepted = qx::detail::readIso8601(text, usual);
  require(qx::detail::readIso8601("0" + text, other) == accepted);
  require(!accepted || usual == other);
}

void checkLenient(const std::string& text) {
  const auto date = qx::qxDateFromISO8601String(text);
  if (date == nullptr) return;
  require(std::isfinite(date->timeIntervalSince1970()));
  for (const char c : text) require(c >= '+' && c <= 'Z');
  const auto written = qxISO8601String(date)->utf8();
  require(written.size() >= 20 && written.back() == 'Z');
  // The writer's "Z" is UTC, which the reader knows as an offset alone.
  const auto again = qx::qxDateFromISO8601String(written.substr(0, written.size() - 1) + "+00:00");
  const bool inRange = std::fabs(date->timeIntervalSince1970()) < 6e16;  // years of 32 bits
  require(!inRange || (again != nullptr && again->timeIntervalSince1970() ==
                                               std::trunc(date->timeIntervalSince1970())));
}

void checkStrict(const std::string& text) {
  const auto read = qx::qxOffsetDateFromRFC3339String(text);
  if (!read) return;
  const double seconds = read->date->timeIntervalSince1970();
  // At the very end of the range a fraction can round up out of it.
  const auto written = qxRFC3339String(*read);
  if (written != nullptr) {
    const auto again = qx::qxOffsetDateFromRFC3339String(written);
    require(again && again->date->timeIntervalSince1970() == seconds);
    require(again->offsetMinutes == read->offsetMinutes);
  }
  const bool usualFraction = text.size() <= 35;
  const bool leapSecond = text[17] == '6';
  if (text[10] != 'T' || text.back() == 'Z' || text.back() == 'z' || leapSecond || !usualFraction)
    return;
  const auto lenient = qx::qxDateFromISO8601String(text);
  require(lenient != nullptr && std::fabs(lenient->timeIntervalSince1970() - seconds) < 1e-4);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int zone = setenv("TZ", "EST5EDT,M3.2.0,M11.1.0", 1);
  require(zone == 0);
  const std::string text(reinterpret_cast<const char*>(data), size);
  checkLeadingZero(text);
  checkLenient(text);
  checkStrict(text);
  return 0;
}

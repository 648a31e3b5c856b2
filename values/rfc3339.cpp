#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>
#include <utility>

#include <QXFoundation/rfc3339.h>

#include "platform/time_zone.h"
#include "values/date_text.h"
#include "values/rfc3339_reader.h"

namespace qx {

namespace {

// The digits d1 d2 ... after a point, with 0.d1d2... + the result's 0.e1e2... = 1; not all are
// zero.
std::string complementOfFraction(std::string_view digits) {
  std::string out(digits);
  std::size_t last = out.find_last_not_of('0');
  for (std::size_t i = 0; i < last; ++i) out[i] = static_cast<char>('0' + '9' - out[i]);
  out[last] = static_cast<char>('0' + 10 - (out[last] - '0'));
  return out;
}

// A decimal number as its whole second, rounded down, and the digits of the fraction after it,
// which are none for a whole number.
struct DecimalSeconds {
  std::int64_t second = 0;
  std::string fraction;
};

// The shortest digits that read back as this double. |t| < 2^53.
DecimalSeconds decimalSeconds(double t) {
  char buffer[400];  // the least doubles have some 324 digits
  const char* end =
      std::to_chars(buffer, buffer + sizeof buffer, std::fabs(t), std::chars_format::fixed).ptr;
  const std::string_view text(buffer, static_cast<std::size_t>(end - buffer));
  const std::size_t point = text.find('.');
  DecimalSeconds out;
  std::from_chars(text.data(), text.data() + std::min(point, text.size()), out.second);
  const std::string_view digits =
      point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
  if (t >= 0) {
    out.fraction = digits;
  } else if (digits.empty()) {
    out.second = -out.second;
  } else {
    out.second = -out.second - 1;
    out.fraction = complementOfFraction(digits);
  }
  return out;
}

// The double nearest to the decimal number.
double nearestDouble(std::int64_t second, std::string_view fraction) {
  if (fraction.find_first_not_of('0') == std::string_view::npos) return static_cast<double>(second);
  const bool negative = second < 0;
  std::string text = negative ? std::to_string(-(second + 1)) : std::to_string(second);
  text += '.';
  text += negative ? complementOfFraction(fraction) : std::string(fraction);
  double magnitude = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), magnitude);
  if (read.ec == std::errc::result_out_of_range)
    magnitude = 0;  // closer to 0 than any other double
  return negative ? -magnitude : magnitude;
}

// The seconds of the years 0 to 9999.
constexpr std::int64_t kFirstSecond = detail::daysSince1970({0, 1, 1}) * detail::kSecondsPerDay;
constexpr std::int64_t kEndSecond = detail::daysSince1970({10000, 1, 1}) * detail::kSecondsPerDay;
constexpr int kMaxOffset = 23 * 60 + 59;

Ref<String> written(In<Date> date, int offsetMinutes, bool offsetIsKnown) {
  if (!date || std::abs(offsetMinutes) > kMaxOffset) return nullptr;
  const double t = date->timeIntervalSince1970();
  if (!(std::fabs(t) < static_cast<double>(kEndSecond) + 86400)) return nullptr;
  const DecimalSeconds moment = decimalSeconds(t);
  const std::int64_t local = moment.second + std::int64_t{offsetMinutes} * 60;
  if (local < kFirstSecond || local >= kEndSecond) return nullptr;
  char head[detail::kDateTextRoom];
  std::string text(head, detail::writeDateAndTime(head, local));
  if (!moment.fraction.empty()) text += '.' + moment.fraction;
  if (offsetIsKnown && offsetMinutes == 0) {
    text += 'Z';
  } else {
    const auto minutes = static_cast<std::uint32_t>(std::abs(offsetMinutes));
    char* end = head;
    *end++ = offsetMinutes < 0 || !offsetIsKnown ? '-' : '+';
    end = detail::writeTwoDigits(end, minutes / 60);
    *end++ = ':';
    end = detail::writeTwoDigits(end, minutes % 60);
    text.append(head, end);
  }
  return String::fromLatin1(text);
}

}  // namespace

std::optional<OffsetDate> qxOffsetDateFromRFC3339String(StringArg text) {
  const std::string utf8 = text.utf8();
  const auto read = detail::readRfc3339(utf8);
  if (!read) return std::nullopt;
  return OffsetDate{
      Date::dateWithTimeIntervalSince1970(nearestDouble(read->second, read->fraction)),
      read->offsetMinutes, read->offsetIsKnown};
}

Ref<Date> qxDateFromRFC3339String(StringArg text) {
  auto read = qxOffsetDateFromRFC3339String(text);
  return read ? std::move(read->date) : nullptr;
}

Ref<String> qxRFC3339String(In<Date> date) { return written(date, 0, true); }
Ref<String> qxRFC3339String(In<Date> date, int offsetMinutes) {
  return written(date, offsetMinutes, true);
}
Ref<String> qxRFC3339String(const OffsetDate& date) {
  return written(date.date, date.offsetMinutes, date.offsetIsKnown || date.offsetMinutes != 0);
}

Ref<String> qxLocalRFC3339String(In<Date> date) {
  if (!date) return nullptr;
  const double t = std::floor(date->timeIntervalSince1970());
  if (!(std::fabs(t) < 1e15)) return nullptr;
  return written(date, detail::offsetOfMoment(static_cast<std::int64_t>(t)) / 60, true);
}

}  // namespace qx

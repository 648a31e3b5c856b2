#include <cmath>

#include <QXFoundation/iso_date.h>

#include "frame/string_storage.h"
#include "values/date_text.h"
#include "values/iso_reader.h"
#include "values/truncation.h"

namespace qx {

namespace detail {
namespace {

Ref<Date> dateFromAsciiText(std::string_view text) {
  DateComponents components;
  if (!readIso8601(text, components)) return nullptr;
  return Date::dateWithTimeIntervalSince1970(secondsSince1970(components));
}

}  // namespace

// Only ASCII can be accepted, so that bytes of UTF-8 and of Latin-1 are refused alike.
Ref<Date> dateFromISO8601Text(StringArg text) {
  const String* string = text.object();
  if (string == nullptr) return dateFromAsciiText(text.bytes());
  const TextSpan span = StringStorage::span(*string);
  if (!span.wide) return dateFromAsciiText(span.latin1View());
  return StringStorage::fitsLatin1(span) ? dateFromAsciiText(StringStorage::narrowed(span))
                                         : nullptr;
}

}  // namespace detail

Ref<Date> qxDateFromISO8601String(const PropertyValue& value) {
  if (value.isString())
    return detail::dateFromISO8601Text(static_cast<const String&>(*value.object()));
  if (value.isNumber()) return Date::dateWithTimeIntervalSince1970(value.doubleValue());
  return nullptr;
}

Ref<String> qxISO8601String(In<Date> date) {
  if (!date) return nullptr;
  char text[detail::kDateTextRoom];
  char* end = detail::writeDateAndTime(
      text, detail::truncated<std::int64_t>(date->timeIntervalSince1970()));
  *end++ = 'Z';
  return String::fromLatin1({text, static_cast<std::size_t>(end - text)});
}

Ref<Date> qxDateWithTimeVal(const TimeValue& value) {
  return Date::dateWithTimeIntervalSince1970(value.microseconds / 1000000.0 +
                                             static_cast<double>(value.seconds));
}

TimeValue qxTimeval(In<Date> date) {
  if (!date) return {};
  const double t = date->timeIntervalSince1970();
  return {detail::truncated<std::int32_t>(t),
          detail::truncated<std::int32_t>((t - std::floor(t)) * 1000000)};
}

// What the difference of two doubles lost in rounding decides where it is a whole number of days.
std::int64_t daysBetweenDate(In<Date> date, In<Date> andDate) {
  if (!date || !andDate) return 0;
  const double from = date->timeIntervalSince1970();
  const double to = andDate->timeIntervalSince1970();
  constexpr auto kDay = static_cast<double>(detail::kSecondsPerDay);
  const double earlier = std::fmin(from, to);
  const double later = std::fmax(from, to);
  const double span = later - earlier;
  const double part = span - later;
  const double lost = (later - (span - part)) - (earlier + part);
  const double rest = std::fmod(span, kDay);
  double days = (span - rest) / kDay;
  if (rest == 0 && lost < 0) days -= 1;
  return detail::truncated<std::int64_t>(std::isnan(from) || std::isnan(to) ? NAN
                                         : to < from                        ? -days
                                                                            : days);
}

}  // namespace qx

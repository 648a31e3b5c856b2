#include <time.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>

#include <QXFoundation/date.h>

#include "frame/comparison_operations.h"
#include "frame/library_class.h"
#include "frame/numeric.h"

namespace qx {

Date::Date(detail::Passkey, double seconds)
    : Object(detail::ObjectKind::date, detail::kLeaf), seconds_(seconds) {}

Ref<Date> Date::dateWithTimeIntervalSince1970(double seconds) {
  return make<Date>(detail::Passkey{}, seconds);
}
Ref<Date> Date::dateWithTimeIntervalSinceReferenceDate(double seconds) {
  return dateWithTimeIntervalSince1970(seconds + kReferenceDate);
}
Ref<Date> Date::date() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return dateWithTimeIntervalSince1970(static_cast<double>(now.tv_sec) +
                                       static_cast<double>(now.tv_nsec) / 1e9);
}

// Never destroyed: limits are asked for during static destruction too.
Ref<Date> Date::distantFuture() {
  static auto* future = new Ref<Date>(dateWithTimeIntervalSince1970(64092211200.0));
  return *future;
}
Ref<Date> Date::distantPast() {
  static auto* past = new Ref<Date>(dateWithTimeIntervalSince1970(-62135596800.0));
  return *past;
}

double Date::timeIntervalSinceDate(In<Date> other) const {
  if (!other) detail::raiseNil("-[NSDate timeIntervalSinceDate:]");
  return seconds_ - other->seconds_;
}

ComparisonResult Date::compare(const PropertyValue& other) const {
  return static_cast<ComparisonResult>(
      detail::compareOperation(PropertyValue(const_cast<Date*>(this)), other));
}

bool Date::isEqual(const PropertyValue& other) const {
  if (!other.isDate()) return false;
  const double theirs = static_cast<const Date*>(other.object())->seconds_;
  return detail::compareNumbers(detail::NumericValue::real(seconds_),
                                detail::NumericValue::real(theirs)) == 0;
}
std::size_t Date::hash() const { return detail::hashNumber(detail::NumericValue::real(seconds_)); }

namespace {

void appendPadded(std::string& out, long long n, int width) {
  const std::string digits = std::to_string(n);
  out.append(static_cast<std::size_t>(std::max(0, width - static_cast<int>(digits.size()))), '0');
  out += digits;
}

}  // namespace

// The second's fraction is cut toward the past. Days of the calendar reach to the year 32767, what
// is shown as such somewhat less far.
std::string Date::description() const {
  constexpr double kRange = 9e11;
  if (!(std::fabs(seconds_) < kRange))
    return detail::numberText(detail::NumericValue::real(seconds_));
  const auto second = static_cast<long long>(std::floor(seconds_));
  const long long day = (second >= 0 ? second : second - 86399) / 86400;
  const std::chrono::year_month_day date{std::chrono::sys_days{std::chrono::days{day}}};
  const long long inDay = second - day * 86400;
  std::string text;
  const int year = static_cast<int>(date.year());
  if (year < 0) text += '-';
  appendPadded(text, std::abs(year), 4);
  text += '-';
  appendPadded(text, static_cast<unsigned>(date.month()), 2);
  text += '-';
  appendPadded(text, static_cast<unsigned>(date.day()), 2);
  text += ' ';
  appendPadded(text, inDay / 3600, 2);
  text += ':';
  appendPadded(text, inDay / 60 % 60, 2);
  text += ':';
  appendPadded(text, inDay % 60, 2);
  return text + " +0000";
}

Ref<Object> Date::copy() const { return const_cast<Date*>(this); }

void describe(ClassBuilder<Date>& c) {
  c.setCore();
  c.name("NSDate").inherits<Object>();
  c.property("timeIntervalSince1970", &Date::timeIntervalSince1970);
  c.property("timeIntervalSinceReferenceDate", &Date::timeIntervalSinceReferenceDate);
  c.operation("compare:", &detail::compareOperation);
}

const Class& classObject(detail::Type<Date>) { return detail::buildLibraryClass<Date>(); }

}  // namespace qx

// Date: an absolute time.
//
//     auto d = qx::Date::dateWithTimeIntervalSince1970(0);
//     d->description();   // "1970-01-01 00:00:00 +0000"
#pragma once

#include <string>

#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string.h>

namespace qx {

// Seconds are doubles, UTC, without leap seconds. The class is "NSDate". Immutable, thread-safe. A
// NaN date equals itself and orders below every other.
class QX_EXPORT Date : public Object {
 public:
  // The moment so many seconds after 1970-01-01 (2001-01-01) 00:00:00 UTC.
  static Ref<Date> dateWithTimeIntervalSince1970(double seconds);
  static Ref<Date> dateWithTimeIntervalSinceReferenceDate(double seconds);
  // The present moment.
  static Ref<Date> date();
  // Later, and earlier, than any moment a program waits for: the beginnings of the years 4001 and
  // 1. Always the same two objects.
  static Ref<Date> distantFuture();
  static Ref<Date> distantPast();

  // Seconds after 1970-01-01 00:00:00 UTC.
  double timeIntervalSince1970() const { return seconds_; }
  // The reference date is 2001-01-01 00:00:00 UTC.
  double timeIntervalSinceReferenceDate() const { return seconds_ - kReferenceDate; }
  // Nil raises InvalidArgumentException.
  double timeIntervalSinceDate(In<Date> other) const;
  // Raises InvalidArgumentException for what is no date.
  ComparisonResult compare(const PropertyValue& other) const;

  bool isEqual(const PropertyValue& other) const override;
  std::size_t hash() const override;
  // "2001-02-03 04:05:06 +0000", UTC, years before 1 as 0, -1 ...; a moment more than 9e11 seconds
  // from 1970 (some 28,500 years), an infinity and NaN as the number of seconds.
  std::string description() const override;
  Ref<Object> copy() const override;

  // Seconds from 1970-01-01 to the reference date.
  static constexpr double kReferenceDate = 978307200.0;

  // Inside the library.
  Date(detail::Passkey, double seconds);

 private:
  double seconds_;
};

QX_EXPORT const Class& classObject(detail::Type<Date>);

}  // namespace qx

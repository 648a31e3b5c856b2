#include "values/rfc3339_reader.h"

#include "frame/text_span.h"
#include "platform/calendar.h"

namespace qx::detail {
namespace {

class Rfc3339Reader {
 public:
  explicit Rfc3339Reader(std::string_view text) : text_(text) {}

  std::optional<Rfc3339Text> read() {
    Rfc3339Text out;
    CivilDate date;
    if (!fullDate(date) || !letter('T') || !partialTime() || !fraction(out.fraction) ||
        !offset(out) || !text_.empty()) {
      return std::nullopt;
    }
    const std::int64_t civil =
        daysSince1970(date) * kSecondsPerDay + hour_ * 3600 + minute_ * 60 + second_;
    out.second = civil - std::int64_t{out.offsetMinutes} * 60;
    if (second_ == 60 && !startsMonth(out.second)) return std::nullopt;
    return out;
  }

 private:
  bool take(char wanted) {
    if (text_.empty() || text_.front() != wanted) return false;
    text_.remove_prefix(1);
    return true;
  }
  // An upper-case letter or its lower case.
  bool letter(char upper) { return take(upper) || take(static_cast<char>(upper + 32)); }

  bool digits(std::size_t count, int& out) {
    if (text_.size() < count) return false;
    out = 0;
    for (const char c : text_.substr(0, count)) {
      if (!isAsciiDigit(static_cast<unsigned char>(c))) return false;
      out = out * 10 + (c - '0');
    }
    text_.remove_prefix(count);
    return true;
  }

  bool fullDate(CivilDate& date) {
    int year = 0;
    if (!digits(4, year) || !take('-') || !digits(2, date.month) || !take('-') ||
        !digits(2, date.day)) {
      return false;
    }
    date.year = year;
    return date.month >= 1 && date.month <= 12 && date.day >= 1 &&
           date.day <= daysInMonth(date.year, date.month);
  }

  bool partialTime() {
    return digits(2, hour_) && take(':') && digits(2, minute_) && take(':') && digits(2, second_) &&
           hour_ <= 23 && minute_ <= 59 && second_ <= 60;
  }

  bool fraction(std::string_view& out) {
    if (!take('.')) return true;
    std::size_t count = 0;
    while (count < text_.size() && isAsciiDigit(static_cast<unsigned char>(text_[count]))) ++count;
    out = text_.substr(0, count);
    text_.remove_prefix(count);
    return count > 0;
  }

  bool offset(Rfc3339Text& out) {
    if (letter('Z')) return true;
    const bool negative = take('-');
    int hours = 0;
    int minutes = 0;
    if ((!negative && !take('+')) || !digits(2, hours) || !take(':') || !digits(2, minutes) ||
        hours > 23 || minutes > 59) {
      return false;
    }
    const int total = hours * 60 + minutes;
    out.offsetMinutes = negative ? -total : total;
    out.offsetIsKnown = !negative || total != 0;
    return true;
  }

  static bool startsMonth(std::int64_t second) {
    return floorModulo(second, kSecondsPerDay) == 0 &&
           civilDate(floorDivide(second, kSecondsPerDay)).day == 1;
  }

  std::string_view text_;
  int hour_ = 0;
  int minute_ = 0;
  int second_ = 0;
};

}  // namespace

std::optional<Rfc3339Text> readRfc3339(std::string_view text) noexcept {
  return Rfc3339Reader(text).read();
}

}  // namespace qx::detail

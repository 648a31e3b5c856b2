#include "platform/plist_text.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>

#include "frame/number_text.h"
#include "frame/text_span.h"

namespace qx::detail {
namespace {

// Takes a sign off the front: true for a minus.
bool takeSign(std::string_view& text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  return negative;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lower) {
  if (text.size() != lower.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (asciiLower(static_cast<unsigned char>(text[i])) != static_cast<unsigned char>(lower[i])) {
      return false;
    }
  }
  return true;
}

// Two to four digits at a place; -1 unless all are digits.
int digitsAt(std::string_view text, std::size_t at, std::size_t count) {
  int n = 0;
  for (const char c : text.substr(at, count)) {
    if (!isAsciiDigit(static_cast<unsigned char>(c))) return -1;
    n = n * 10 + (c - '0');
  }
  return n;
}

void writeDigits(char* out, unsigned n, int count) {
  while (count-- > 0) {
    out[count] = static_cast<char>('0' + n % 10);
    n /= 10;
  }
}

constexpr std::int64_t kSecondsOfDay = 86400;

}  // namespace

std::string_view trimmedXmlSpace(std::string_view text) noexcept {
  const auto isSpace = [](char c) { return isXmlSpace(static_cast<unsigned char>(c)); };
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

PropertyValue plistInteger(std::string_view text) {
  constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  const bool negative = takeSign(text);
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) text.remove_prefix(2);
  std::uint64_t magnitude = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, magnitude, hexadecimal ? 16 : 10);
  if (error != std::errc() || stop != end) return {};
  if (!negative) {
    return magnitude <= kMost ? PropertyValue(static_cast<std::int64_t>(magnitude))
                              : PropertyValue(magnitude);
  }
  if (magnitude > kMost + 1) return {};
  return static_cast<std::int64_t>(~magnitude + 1);
}

std::optional<double> plistReal(std::string_view text) {
  double value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error == std::errc() && stop == end && std::isfinite(value)) return value;

  std::string_view unsignedText = text;
  const bool negative = takeSign(unsignedText);
  if (equalsIgnoringCase(unsignedText, "nan")) return std::numeric_limits<double>::quiet_NaN();
  if (equalsIgnoringCase(unsignedText, "inf") || equalsIgnoringCase(unsignedText, "infinity")) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    return negative ? -kInfinity : kInfinity;
  }
  const TextSpan span = TextSpan::latin1(text);
  const ScannedReal scanned = scanReal(span);
  if (!scanned.found() || scanned.end != text.size()) return std::nullopt;
  const double read = scanDouble(span);
  if (std::isinf(read)) return std::nullopt;
  return read;
}

std::optional<double> plistDate(std::string_view text) {
  using namespace std::chrono;
  if (text.size() != kPlistDateSize || text[4] != '-' || text[7] != '-' || text[10] != 'T' ||
      text[13] != ':' || text[16] != ':' || text[19] != 'Z') {
    return std::nullopt;
  }
  const int y = digitsAt(text, 0, 4);
  const int mo = digitsAt(text, 5, 2);
  const int d = digitsAt(text, 8, 2);
  const int h = digitsAt(text, 11, 2);
  const int mi = digitsAt(text, 14, 2);
  const int s = digitsAt(text, 17, 2);
  if (y < 1 || mo < 1 || d < 1 || h < 0 || h > 23 || mi < 0 || mi > 59 || s < 0 || s > 59) {
    return std::nullopt;
  }
  const year_month_day date{year(y), month(static_cast<unsigned>(mo)),
                            day(static_cast<unsigned>(d))};
  if (!date.ok()) return std::nullopt;
  const std::int64_t days = sys_days(date).time_since_epoch().count();
  return static_cast<double>(days * kSecondsOfDay + h * 3600 + mi * 60 + s);
}

bool isPlistDate(double seconds) {
  constexpr double kFirst = -62135596800.0;  // 0001-01-01
  constexpr double kEnd = 253402300800.0;    // 10000-01-01
  return seconds >= kFirst && seconds < kEnd;
}

void writePlistDate(double seconds, char* out) {
  using namespace std::chrono;
  const auto second = static_cast<std::int64_t>(std::floor(seconds));
  const std::int64_t ofDay = (second % kSecondsOfDay + kSecondsOfDay) % kSecondsOfDay;
  const year_month_day date{sys_days(days((second - ofDay) / kSecondsOfDay))};
  std::memcpy(out, "0000-00-00T00:00:00Z", kPlistDateSize);
  writeDigits(out, static_cast<unsigned>(static_cast<int>(date.year())), 4);
  writeDigits(out + 5, static_cast<unsigned>(date.month()), 2);
  writeDigits(out + 8, static_cast<unsigned>(date.day()), 2);
  writeDigits(out + 11, static_cast<unsigned>(ofDay / 3600), 2);
  writeDigits(out + 14, static_cast<unsigned>(ofDay / 60 % 60), 2);
  writeDigits(out + 17, static_cast<unsigned>(ofDay % 60), 2);
}

char* writePlistReal(double value, char* out) {
  std::string_view special;
  if (std::isnan(value)) special = "nan";
  if (std::isinf(value)) special = value < 0 ? "-infinity" : "+infinity";
  if (special.empty()) return std::to_chars(out, out + kPlistRealSize, value).ptr;
  std::memcpy(out, special.data(), special.size());
  return out + special.size();
}

}  // namespace qx::detail

#pragma once

// The texts of numbers, dates and data in XML property lists, both ways. Always by the rules of the
// C locale.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <QXFoundation/property_value.h>

namespace qx::detail {

// Space, tab, line feed and carriage return, which is what XML calls white space.
constexpr bool isXmlSpace(unsigned char c) noexcept {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
std::string_view trimmedXmlSpace(std::string_view text) noexcept;

// An optional sign and digits, or hexadecimal digits behind "0x". Nil unless the whole text is one
// and the number is in -2^63 to 2^64-1; unsigned only from 2^63 on.
PropertyValue plistInteger(std::string_view text);

// A decimal number, optionally with point and exponent, "nan", "inf" or "infinity" in any case,
// each with an optional sign. Empty unless the whole text is one, and where the number is too large
// for a double; what is too small gives 0.
std::optional<double> plistReal(std::string_view text);

// "2001-02-03T04:05:06Z" to seconds since 1970 and back; the years 1 to 9999, proleptic Gregorian,
// no leap seconds. Writing cuts off fractions of seconds, toward the past.
inline constexpr std::size_t kPlistDateSize = 20;
std::optional<double> plistDate(std::string_view text);
bool isPlistDate(double seconds);
// Writes kPlistDateSize characters. Precondition: isPlistDate(seconds).
void writePlistDate(double seconds, char* out);

// The shortest text that reads back as the same number: "1.5", "1e+22", "nan", "-infinity". Writes
// at most kPlistRealSize characters and gives the place behind them.
inline constexpr std::size_t kPlistRealSize = 32;
char* writePlistReal(double value, char* out);

// Appends the bytes; white space anywhere is skipped. False unless the text is whole groups of
// four, the last one padded where it must be, without bits that mean nothing.
bool decodeBase64(std::string_view text, std::string& out);
// Writes 4 characters for each 3 bytes begun and gives the place behind them.
char* encodeBase64(std::string_view bytes, char* out);

}  // namespace qx::detail

#include <charconv>

#include <QXFoundation/thousand_format.h>

namespace qx {

namespace {

// Writes the number before `end`, filled up with zeros to `width` characters (behind a minus), and
// gives where it begins.
char* writeBefore(char* end, std::int64_t n, int width) {
  char text[8];
  const std::int64_t size = n < 0 ? -n : n;
  const char* digitsEnd = std::to_chars(text, text + sizeof text, size).ptr;
  int written = n < 0 ? 1 : 0;
  for (const char* digit = digitsEnd; digit != text; ++written) *--end = *--digit;
  for (; written < width; ++written) *--end = '0';
  if (n < 0) *--end = '-';
  return end;
}

}  // namespace

Ref<String> thousandFormat(std::int64_t n) {
  constexpr std::int64_t kGroup = 1024;
  char text[64];  // seven groups of at most five characters, and commas
  char* const end = text + sizeof text;
  char* at = end;
  for (;;) {
    const std::int64_t rest = n / kGroup;
    at = writeBefore(at, n % kGroup, rest == 0 ? 0 : 3);
    if (rest == 0) break;
    *--at = ',';
    n = rest;
  }
  return String::fromLatin1({at, static_cast<std::size_t>(end - at)});
}

}  // namespace qx

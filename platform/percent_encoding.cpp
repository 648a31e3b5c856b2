#include "platform/percent_encoding.h"

#include <algorithm>

namespace qx::detail {
namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

int digitOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// Takes the next byte off the front. Precondition: there is one.
char takeDecoded(std::string_view& text) {
  const char c = text.front();
  const int high = c == '%' && text.size() > 2 ? digitOf(text[1]) : -1;
  const int low = high >= 0 ? digitOf(text[2]) : -1;
  text.remove_prefix(low >= 0 ? 3 : 1);
  return low >= 0 ? static_cast<char>(high * 16 + low) : c;
}

}  // namespace

char* writePercentEncoded(char* out, std::string_view bytes, const UnencodedBytes& unencoded) {
  for (const char c : bytes) {
    if (unencoded.holds(c)) {
      *out++ = c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    *out++ = '%';
    *out++ = kDigits[byte >> 4];
    *out++ = kDigits[byte & 15];
  }
  return out;
}

void appendPercentEncoded(std::string& out, std::string_view bytes,
                          const UnencodedBytes& unencoded) {
  const std::size_t before = out.size();
  out.resize(before + 3 * bytes.size());
  const char* end = writePercentEncoded(out.data() + before, bytes, unencoded);
  out.resize(static_cast<std::size_t>(end - out.data()));
}

std::string percentDecoded(std::string_view text) {
  const std::size_t plain = std::min(text.find('%'), text.size());
  std::string bytes;
  bytes.reserve(text.size());
  bytes.append(text.substr(0, plain));
  text.remove_prefix(plain);
  while (!text.empty()) bytes += takeDecoded(text);
  return bytes;
}

}  // namespace qx::detail

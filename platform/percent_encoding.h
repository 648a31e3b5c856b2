#pragma once

// Percent-encoding of bytes in URLs (RFC 3986).

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qx::detail {

// Bytes that stand for themselves.
class UnencodedBytes {
 public:
  // The unreserved characters and those listed.
  constexpr explicit UnencodedBytes(std::string_view listed) {
    for (char c = 'a'; c <= 'z'; ++c) add(c);
    for (char c = 'A'; c <= 'Z'; ++c) add(c);
    for (char c = '0'; c <= '9'; ++c) add(c);
    for (const char c : std::string_view("-._~")) add(c);
    for (const char c : listed) add(c);
  }
  constexpr bool holds(char c) const { return holds_[static_cast<unsigned char>(c)]; }

 private:
  constexpr void add(char c) { holds_[static_cast<unsigned char>(c)] = true; }
  bool holds_[256] = {};
};

// In the path of a file URL, and in names and values of query items: there what separates items is
// encoded, and "+", which some readers take for a space.
inline constexpr UnencodedBytes kPathBytes("!$&'()*+,;=:@/");
inline constexpr UnencodedBytes kQueryItemBytes("!$'()*,;:@/?");

// Writes the bytes, others than those as "%XX", and gives the place behind them. Precondition:
// there is room for three times as many.
char* writePercentEncoded(char* out, std::string_view bytes, const UnencodedBytes& unencoded);

// The same, at the end of a text.
void appendPercentEncoded(std::string& out, std::string_view bytes,
                          const UnencodedBytes& unencoded);

// The bytes that the text stands for; a percent sign without two digits stands for itself.
std::string percentDecoded(std::string_view text);

}  // namespace qx::detail

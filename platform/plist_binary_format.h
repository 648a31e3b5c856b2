#pragma once

// The binary form of property lists.
//
//   "bplist00"
//   objects, each a byte of kind (high half) and size (low half) and what follows
//   the table of offsets: for each object its place from the start
//   trailer of 32 bytes: 6 unused, width of offsets, width of references, then with 8 bytes each
//   the number of objects, the root's number and the place of the table
//
// All numbers are big-endian. Containers refer to what they hold by number.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace qx::detail {

inline constexpr std::string_view kPlistMagic = "bplist00";
inline constexpr std::size_t kPlistTrailerSize = 32;

// First bytes of objects that have no size.
enum PlistSingle : std::uint8_t {
  kPlistFalse = 0x08,
  kPlistTrue = 0x09,
  kPlistReal32 = 0x22,
  kPlistReal64 = 0x23,
  kPlistDate = 0x33,  // seconds since 2001 as a double
};

// The kind of an object with a size, in the high half of its first byte. A size of 15 and more
// stands behind that byte, as an integer object.
enum PlistKind : std::uint8_t {
  kPlistInteger = 0x1,  // 2^size bytes; of 1, 2 and 4 bytes unsigned, of 8 and 16 signed
  kPlistData = 0x4,
  kPlistAscii = 0x5,
  kPlistUtf16 = 0x6,  // size in units
  kPlistUid = 0x8,
  kPlistArray = 0xA,
  kPlistSet = 0xC,
  kPlistDictionary = 0xD,  // the references of all keys, then of all values
};
inline constexpr unsigned kPlistLongSize = 15;

// A number of 1 to 8 bytes. Reads eight bytes whatever the width: the trailer behind all else makes
// sure that they are there.
inline std::uint64_t bigEndian(const unsigned char* bytes, std::size_t width) {
  std::uint64_t n = 0;
  std::memcpy(&n, bytes, sizeof n);
  if constexpr (std::endian::native == std::endian::little) n = __builtin_bswap64(n);
  return n >> (64 - 8 * width);
}

inline char* putBigEndian(char* to, std::uint64_t n, std::size_t width) {
  for (std::size_t i = width; i-- > 0;) *to++ = static_cast<char>(n >> 8 * i);
  return to;
}

// The narrowest of 1, 2, 4 and 8 bytes that hold the number.
constexpr std::size_t widthOf(std::uint64_t n) {
  if (n <= 0xFF) return 1;
  if (n <= 0xFFFF) return 2;
  return n <= 0xFFFFFFFF ? 4 : 8;
}

}  // namespace qx::detail

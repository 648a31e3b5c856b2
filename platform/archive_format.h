#pragma once

// The form of an archive: a header, then values one after the other.
//
// A value is a tag byte and what follows it by the table below. Counts and lengths are unsigned
// LEB128 numbers, fixed-size numbers little-endian. Every value that is an object (a string too)
// takes the next number, from 0, before what it holds is written; a later meeting is a reference to
// that number. Names of classes are written once: a class is a number of its own sequence, followed
// by its name where it is the first use of that number.

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qx::detail::archive {

inline constexpr std::string_view kMagic = "QXArchive";
inline constexpr unsigned char kVersion = 1;

enum class Tag : unsigned char {
  nil = 0,
  null = 1,
  no = 2,
  yes = 3,
  signedInteger = 4,    // zigzag LEB128
  unsignedInteger = 5,  // LEB128
  single = 6,           // 4 bytes
  real = 7,             // 8 bytes
  reference = 8,        // number of an earlier object
  cls = 9,              // a class as an object: its number, its name if new
  narrowString = 10,    // length, Latin-1 bytes
  wideString = 11,      // length in units, 16-bit units
  data = 12,            // length, bytes
  date = 13,            // 8 bytes: seconds since 1970
  decimal = 14,         // length, decimal text
  array = 15,           // count, values
  dictionary = 16,      // count, keys (strings as values), values
  set = 17,             // count, values
  instance = 18,        // class number, its name if new; what the class encodes; `end`
  end = 19,
  // Added to the tags of strings, data, arrays, dictionaries and sets.
  mutableVariant = 0x40,
};

inline constexpr unsigned char kMutable = static_cast<unsigned char>(Tag::mutableVariant);

}  // namespace qx::detail::archive

// Searching in strings with options, and for characters of a set.
//
//     using enum qx::StringCompareOptions;
//     qx::Range r = rangeOfString(text, "cafe", caseInsensitive | diacriticInsensitive);
//     if (r.location != qx::kNotFound) use(text->substringWithRange(r));
//
// Positions and lengths count UTF-16 code units. Without options, code units are compared: texts
// that look alike but are composed differently are different. Receivers that are nil hold nothing.
// Thread-safe, as far as the strings are.
#pragma once

#include <cstdint>

#include <QXFoundation/character_set.h>
#include <QXFoundation/object.h>
#include <QXFoundation/string.h>
#include <QXFoundation/string_arg.h>

namespace qx {

// How strings are compared; the values can be combined by `|`.
enum class StringCompareOptions : std::uint32_t {
  none = 0,
  // Full Unicode case folding: "STRASSE" and "straße" are equal.
  caseInsensitive = 1,
  // Code unit by code unit, which is how searching compares anyway.
  literal = 2,
  // From the end: the last occurrence.
  backwards = 4,
  // At the start of the range alone; at its end with `backwards`.
  anchored = 8,
  // Digits by their numeric value: for ordering strings; searching takes no notice of it.
  numeric = 64,
  // Accents and other marks that do not take up room of their own do not count: "é" is "e".
  diacriticInsensitive = 128,
  // Full-width and half-width forms are the characters that they are forms of.
  widthInsensitive = 256,
  // For ordering strings; searching takes no notice of it.
  forcedOrdering = 512,
};

// Options together, and whether one is among them.
constexpr StringCompareOptions operator|(StringCompareOptions a, StringCompareOptions b) {
  return static_cast<StringCompareOptions>(static_cast<std::uint32_t>(a) |
                                           static_cast<std::uint32_t>(b));
}
constexpr bool hasOption(StringCompareOptions options, StringCompareOptions one) {
  return (static_cast<std::uint32_t>(options) & static_cast<std::uint32_t>(one)) != 0;
}

// Where `other` stands in the range, in the whole string where no range is given; location
// kNotFound when it does not, and for an empty `other`. An occurrence is made of whole characters
// where characters are compared by options: ignoring case, "ß" holds "ss" but no "s". It takes in
// the marks behind it that do not count. A nil `other` raises InvalidArgumentException, a range
// that leaves the string RangeException.
QX_EXPORT Range rangeOfString(In<String> string, StringArg other, StringCompareOptions options,
                              Range range);
QX_EXPORT Range rangeOfString(In<String> string, StringArg other, StringCompareOptions options);

// Where the first character of the set stands in the range, the last one with `backwards`: one code
// unit, two for a surrogate pair; location kNotFound when there is none. Of the other options
// `anchored` counts. A nil set and a range outside the string raise as above.
QX_EXPORT Range rangeOfCharacterFromSet(In<String> string, In<CharacterSet> set,
                                        StringCompareOptions options, Range range);

}  // namespace qx

#pragma once

// Wildcard patterns over text: `*` matches any run of characters (also none), `?` exactly one code
// point, a backslash takes the next character literally (at the end of the pattern it stands for
// itself). The whole text must match.
//
//   const WildcardPattern pattern(u"J*", /*ignoreCase=*/false);
//   pattern.matches(TextSpan::latin1("Jim"));  // true

#include <cstdint>
#include <string>
#include <string_view>

#include "frame/text_span.h"

namespace qx::detail {

// A pattern prepared once and matched many times. Immutable after construction, so that one pattern
// may be used by several threads. Matching takes at most text length * pattern length steps,
// whatever the pattern. With ignoreCase, pattern and text are compared after full case folding:
// "ß" is "ss". `?` takes a whole character of the text, also one that folds to several ("ß" is like
// "?", not like "??" or "s?"), so that what matches exactly matches ignoring case too.
class WildcardPattern {
 public:
  WildcardPattern(TextSpan pattern, bool ignoreCase);

  // Throws nothing but std::bad_alloc, and that only when ignoring case, for the folded text.
  bool matches(TextSpan text) const;

  // Whether the pattern is of a plain shape whose literals are ASCII: then Latin-1 and UTF-8 texts,
  // ill-formed ones included, match as their bytes do.
  bool decidesBytes() const noexcept { return decidesBytes_; }
  // Precondition: decidesBytes().
  bool matchesBytes(std::string_view bytes) const noexcept {
    // The first byte decides most, without a call.
    if (startsWithLiteral_ && (bytes.empty() || bytes.front() != firstByte_)) return false;
    return matchesAllBytes(bytes);
  }

 private:
  // Shapes that plain comparison and search decide; everything else is `general`.
  enum class Shape : std::uint8_t { literal, prefix, suffix, middle, prefixSuffix, all, general };

  void compile(TextSpan pattern);
  void chooseShape();
  bool matchesAllBytes(std::string_view bytes) const noexcept;
  bool matchesFolding(TextSpan text) const;
  bool matchesFoldedFully(TextSpan text) const;
  bool matchesExactly(TextSpan text) const noexcept;
  template <class View>
  bool matchesShape(View text, View head, View tail) const noexcept;

  Shape shape_ = Shape::general;
  bool ignoreCase_ = false;
  bool decidesBytes_ = false;
  bool startsWithLiteral_ = false;  // with the first byte
  char firstByte_ = 0;
  bool narrowLiterals_ = true;  // head_ and tail_ fit Latin-1 and are also in the narrow forms
  // Code points, or one of the two markers for `*` and `?`. Adjacent stars are one.
  std::u32string tokens_;
  // What must stand at the start (or be found, or be everything) and at the end, by shape.
  std::u16string head_;
  std::u16string tail_;
  std::string narrowHead_;
  std::string narrowTail_;
};

// One match, for patterns used once.
bool wildcardMatch(TextSpan text, TextSpan pattern, bool ignoreCase);

}  // namespace qx::detail

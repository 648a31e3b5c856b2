#include "frame/wildcard.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "frame/unicode.h"

namespace qx::detail {

namespace {

// Markers among the tokens, outside the range of code points.
constexpr char32_t kAnyRun = 0x110000;
constexpr char32_t kAnyOne = 0x110001;

// memmem stays linear for repetitive text, unlike the standard search.
bool contains(std::string_view text, std::string_view part) noexcept {
  if (part.size() == 1) return memchr(text.data(), part.front(), text.size()) != nullptr;
  return text.size() >= part.size() &&
         memmem(text.data(), text.size(), part.data(), part.size()) != nullptr;
}

bool contains(std::u16string_view text, std::u16string_view part) noexcept {
  return text.find(part) != std::u16string_view::npos;
}

// The first unit decides most comparisons, without a call.
template <class View>
bool startsWith(View text, View head) noexcept {
  return head.empty() || (!text.empty() && text.front() == head.front() && text.starts_with(head));
}

template <class View>
bool endsWith(View text, View tail) noexcept {
  return tail.empty() || (!text.empty() && text.back() == tail.back() && text.ends_with(tail));
}

// A folded text of which characters are known: code points behind the first of what one code point
// folded to have this bit.
constexpr char32_t kInside = 0x80000000;

// Beside the forms for texts as they are stored.
using detail::nextCodePoint;
char32_t nextCodePoint(const char32_t* units, std::size_t /*size*/,
                       std::size_t& position) noexcept {
  return units[position++] & ~kInside;
}

// Moves behind the character at `position`; false where none starts there.
template <class Unit>
bool skipCharacter(const Unit* units, std::size_t size, std::size_t& position) noexcept {
  if constexpr (sizeof(Unit) < sizeof(char32_t)) {
    nextCodePoint(units, size, position);
  } else {
    if ((units[position] & kInside) != 0) return false;
    do {
      ++position;
    } while (position < size && (units[position] & kInside) != 0);
  }
  return true;
}

// Moves behind what the token takes at `position`; false where it takes nothing.
template <class Unit>
bool takeOne(char32_t token, const Unit* units, std::size_t size, std::size_t& position) noexcept {
  if (token == kAnyOne) return skipCharacter(units, size, position);
  return nextCodePoint(units, size, position) == token;
}

// Matches token by token. After a failure only the last star needs to take one code point more: an
// earlier star cannot help, because what follows it has matched at its first possible place, which
// is also where it ends first.
template <class Unit>
bool matchTokens(const std::u32string& tokens, const Unit* units, std::size_t size) noexcept {
  constexpr std::size_t kNone = std::u32string::npos;
  std::size_t token = 0;
  std::size_t position = 0;
  std::size_t afterStar = kNone;
  std::size_t starPosition = 0;
  while (position < size) {
    if (token < tokens.size() && tokens[token] == kAnyRun) {
      afterStar = ++token;
      starPosition = position;
      if (afterStar == tokens.size()) return true;
      continue;
    }
    std::size_t next = position;
    if (token < tokens.size() && takeOne(tokens[token], units, size, next)) {
      ++token;
      position = next;
      continue;
    }
    if (afterStar == kNone) return false;
    nextCodePoint(units, size, starPosition);
    position = starPosition;
    token = afterStar;
  }
  return token == tokens.size() || (token + 1 == tokens.size() && tokens[token] == kAnyRun);
}

// The folded text with its characters marked.
std::u32string foldMarked(TextSpan text) {
  std::u32string folded;
  folded.reserve(text.size);
  for (const char32_t codePoint : text.codePoints()) {
    const FoldedCodePoint f = foldCodePoint(codePoint);
    for (int i = 0; i < f.count; ++i) folded.push_back(f.points[i] | (i == 0 ? 0 : kInside));
  }
  return folded;
}

// ß and µ fold to characters outside Latin-1. Every other byte folds to one byte.
constexpr unsigned char kSharpS = 0xDF;
constexpr unsigned char kMicro = 0xB5;

constexpr bool foldsToOneByte(unsigned char c) noexcept { return c != kSharpS && c != kMicro; }

constexpr std::array<char, 256> makeFolding() noexcept {
  constexpr int kTimes = 0xD7;
  std::array<char, 256> folding{};
  for (int c = 0; c < 256; ++c) {
    const bool upper = (c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDE && c != kTimes);
    folding[static_cast<std::size_t>(c)] = static_cast<char>(upper ? c + 32 : c);
  }
  return folding;
}

constexpr std::array<char, 256> kFolding = makeFolding();

// Folds the text into `out`; false when it does not fold byte by byte.
bool foldInto(char* out, std::string_view text) noexcept {
  bool simple = true;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    simple &= foldsToOneByte(byte);
    *out++ = kFolding[byte];
  }
  return simple;
}

enum class Prefix { matches, differs, unknown };

// Whether the folded text starts with the folded head, mostly known after the first byte.
Prefix comparePrefix(std::string_view text, std::string_view head) noexcept {
  for (std::size_t i = 0; i < head.size(); ++i) {
    if (i == text.size()) return Prefix::differs;
    const auto byte = static_cast<unsigned char>(text[i]);
    if (!foldsToOneByte(byte)) return Prefix::unknown;
    if (kFolding[byte] != head[i]) return Prefix::differs;
  }
  return Prefix::matches;
}

}  // namespace

WildcardPattern::WildcardPattern(TextSpan pattern, bool ignoreCase) : ignoreCase_(ignoreCase) {
  // The three special characters fold to themselves and nothing else folds to them.
  compile(ignoreCase ? TextSpan(std::u16string_view(caseFold(pattern))) : pattern);
  chooseShape();
}

void WildcardPattern::compile(TextSpan pattern) {
  tokens_.reserve(pattern.size);
  for (std::size_t i = 0; i < pattern.size;) {
    char32_t codePoint = pattern.next(i);
    if (codePoint == U'*') {
      if (tokens_.empty() || tokens_.back() != kAnyRun) tokens_.push_back(kAnyRun);
      continue;
    }
    if (codePoint == U'?') {
      tokens_.push_back(kAnyOne);
      continue;
    }
    if (codePoint == U'\\' && i < pattern.size) codePoint = pattern.next(i);
    tokens_.push_back(codePoint);
  }
}

void WildcardPattern::chooseShape() {
  // A lone surrogate would be found inside of a pair by a search for code units.
  const auto isHard = [](char32_t token) { return token == kAnyOne || isSurrogate(token); };
  if (std::any_of(tokens_.begin(), tokens_.end(), isHard)) return;
  const auto stars = std::count(tokens_.begin(), tokens_.end(), kAnyRun);
  const std::size_t star = std::min(tokens_.find(kAnyRun), tokens_.size());
  const bool starFirst = stars > 0 && star == 0;
  const bool starLast = !tokens_.empty() && tokens_.back() == kAnyRun;
  if (stars == 0) {
    shape_ = Shape::literal;
  } else if (tokens_.size() == 1) {
    shape_ = Shape::all;
  } else if (stars == 1) {
    shape_ = starFirst ? Shape::suffix : starLast ? Shape::prefix : Shape::prefixSuffix;
  } else if (stars == 2 && starFirst && starLast) {
    shape_ = Shape::middle;
  } else {
    return;
  }
  const bool headIsBehindStar = shape_ == Shape::middle;
  for (std::size_t i = 0; i < tokens_.size(); ++i) {
    if (tokens_[i] == kAnyRun) continue;
    appendCodePoint(i < star || headIsBehindStar ? head_ : tail_, tokens_[i]);
  }
  const auto fits = [](char16_t unit) { return unit <= 0xFF; };
  narrowLiterals_ = std::all_of(head_.begin(), head_.end(), fits) &&
                    std::all_of(tail_.begin(), tail_.end(), fits);
  if (!narrowLiterals_) return;
  for (const char16_t unit : head_) narrowHead_.push_back(static_cast<char>(unit));
  for (const char16_t unit : tail_) narrowTail_.push_back(static_cast<char>(unit));
  const auto isAsciiUnit = [](char16_t unit) { return isAscii(unit); };
  decidesBytes_ = !ignoreCase_ && std::all_of(head_.begin(), head_.end(), isAsciiUnit) &&
                  std::all_of(tail_.begin(), tail_.end(), isAsciiUnit);
  startsWithLiteral_ = !narrowHead_.empty() && !headIsBehindStar;
  if (startsWithLiteral_) firstByte_ = narrowHead_.front();
}

bool WildcardPattern::matches(TextSpan text) const {
  return ignoreCase_ ? matchesFolding(text) : matchesExactly(text);
}

bool WildcardPattern::matchesAllBytes(std::string_view bytes) const noexcept {
  return matchesShape<std::string_view>(bytes, narrowHead_, narrowTail_);
}

bool WildcardPattern::matchesFolding(TextSpan text) const {
  constexpr std::size_t kOnStack = 256;
  if (text.wide) return matchesFoldedFully(text);
  // Of these shapes the start of the text decides most, without folding all of it.
  const bool headDecides =
      shape_ == Shape::prefix || shape_ == Shape::literal || shape_ == Shape::prefixSuffix;
  if (headDecides && narrowLiterals_) {
    const Prefix prefix = comparePrefix(text.latin1View(), narrowHead_);
    if (prefix == Prefix::differs) return false;
    if (prefix == Prefix::matches && shape_ == Shape::prefix) return true;
  }
  if (text.size <= kOnStack) {
    char folded[kOnStack];
    if (!foldInto(folded, text.latin1View())) return matchesFoldedFully(text);
    return matchesExactly(TextSpan::latin1({folded, text.size}));
  }
  std::string folded(text.size, '\0');
  if (!foldInto(folded.data(), text.latin1View())) return matchesFoldedFully(text);
  return matchesExactly(TextSpan::latin1(folded));
}

// Of a text whose characters may fold to several: `?` takes all that one of them became.
bool WildcardPattern::matchesFoldedFully(TextSpan text) const {
  if (tokens_.find(kAnyOne) == std::u32string::npos) return matchesExactly(caseFold(text));
  const std::u32string folded = foldMarked(text);
  return matchTokens(tokens_, folded.data(), folded.size());
}

bool WildcardPattern::matchesExactly(TextSpan text) const noexcept {
  if (shape_ == Shape::general) {
    return visitUnits(text, [this](const auto* units, std::size_t size) {
      return matchTokens(tokens_, units, size);
    });
  }
  if (text.wide) return matchesShape<std::u16string_view>(text.utf16View(), head_, tail_);
  if (!narrowLiterals_) return false;
  return matchesShape<std::string_view>(text.latin1View(), narrowHead_, narrowTail_);
}

template <class View>
bool WildcardPattern::matchesShape(View text, View head, View tail) const noexcept {
  switch (shape_) {
    case Shape::literal:
      return text == head;
    case Shape::prefix:
      return startsWith(text, head);
    case Shape::suffix:
      return endsWith(text, tail);
    case Shape::middle:
      return contains(text, head);
    case Shape::prefixSuffix:
      return text.size() >= head.size() + tail.size() && startsWith(text, head) &&
             endsWith(text, tail);
    case Shape::all:
      return true;
    case Shape::general:
      break;
  }
  return false;
}

bool wildcardMatch(TextSpan text, TextSpan pattern, bool ignoreCase) {
  return WildcardPattern(pattern, ignoreCase).matches(text);
}

}  // namespace qx::detail

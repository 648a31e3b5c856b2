#include "frame/unicode.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "frame/casing_context.h"
#include "frame/special_casing.h"

namespace qx::detail {

namespace {

using Scalar = utf8proc_int32_t;

constexpr char32_t kCapitalSigma = 0x03A3;
constexpr char16_t kFinalSigma = 0x03C2;
constexpr char32_t kCombiningDotAbove = 0x0307;
// Below this every character is its own composed form.
constexpr char16_t kFirstCombining = 0x0300;

Scalar scalar(char32_t codePoint) noexcept { return static_cast<Scalar>(codePoint); }

bool allBelow(TextSpan text, char16_t limit) noexcept {
  return visitUnits(text, [limit](const auto* units, std::size_t size) {
    return std::all_of(units, units + size, [limit](auto unit) { return unit < limit; });
  });
}

int combiningClass(Scalar codePoint) noexcept {
  return utf8proc_get_property(codePoint)->combining_class;
}

void decompose(TextSpan text, bool compatibility, std::vector<Scalar>& out) {
  constexpr int kLongest = 32;  // the longest decomposition has 18 code points
  const int options = UTF8PROC_DECOMPOSE | (compatibility ? UTF8PROC_COMPAT : 0);
  out.reserve(text.size + text.size / 4);
  for (std::size_t i = 0; i < text.size;) {
    const char32_t codePoint = text.next(i);
    if (isAscii(codePoint)) {
      out.push_back(scalar(codePoint));
      continue;
    }
    Scalar parts[kLongest];
    int boundary = 0;
    const auto count = utf8proc_decompose_char(scalar(codePoint), parts, kLongest,
                                               static_cast<utf8proc_option_t>(options), &boundary);
    if (count >= 1 && count <= kLongest) out.insert(out.end(), parts, parts + count);
  }
}

// Sorts one run of marks by class, stably, in n log n: a crafted text may hold a run of any length.
// Each key is the class, the index within the run and the mark, from the highest bit down.
void sortMarks(Scalar* marks, std::size_t count) {
  std::vector<std::uint64_t> keys(count);
  for (std::size_t i = 0; i < count; ++i) {
    keys[i] = static_cast<std::uint64_t>(combiningClass(marks[i])) << 56 |
              static_cast<std::uint64_t>(i) << 21 | static_cast<std::uint64_t>(marks[i]);
  }
  std::sort(keys.begin(), keys.end());
  for (std::size_t i = 0; i < count; ++i) marks[i] = static_cast<Scalar>(keys[i] & 0x1FFFFF);
}

// Brings every run of combining marks into canonical order.
void orderMarks(std::vector<Scalar>& points) {
  const auto isStarter = [](Scalar point) { return combiningClass(point) == 0; };
  const auto byClass = [](Scalar left, Scalar right) {
    return combiningClass(left) < combiningClass(right);
  };
  auto at = points.begin();
  while ((at = std::find_if_not(at, points.end(), isStarter)) != points.end()) {
    const auto end = std::find_if(at, points.end(), isStarter);
    if (!std::is_sorted(at, end, byClass)) sortMarks(&*at, static_cast<std::size_t>(end - at));
    at = end;
  }
}

template <class Units, std::size_t kSize>
void appendMapping(std::u16string& out, const Units (&units)[kSize]) {
  for (std::size_t i = 0; i < kSize && units[i] != 0; ++i) out.push_back(units[i]);
}

void appendUpper(std::u16string& out, char32_t codePoint) {
  if (const SpecialCasing* special = findSpecialCasing(codePoint)) {
    appendMapping(out, special->upper);
  } else {
    appendCodePoint(out, static_cast<char32_t>(utf8proc_toupper(scalar(codePoint))));
  }
}

void appendTitle(std::u16string& out, char32_t codePoint) {
  if (const SpecialCasing* special = findSpecialCasing(codePoint)) {
    appendMapping(out, special->title);
  } else {
    appendCodePoint(out, static_cast<char32_t>(utf8proc_totitle(scalar(codePoint))));
  }
}

// True when the sigma in the units [start, end) ends a word: a cased letter before it and none
// after it, case-ignorable characters between them not counting. Each run of ignorable characters
// is walked at most twice in a text, from the sigmas on its two sides.
bool isFinalSigma(TextSpan text, std::size_t start, std::size_t end) noexcept {
  bool casedBefore = false;
  while (start > 0 && !casedBefore) {
    const char32_t codePoint = text.previous(start);
    casedBefore = isCased(codePoint);
    if (!casedBefore && !isCaseIgnorable(codePoint)) return false;
  }
  if (!casedBefore) return false;
  while (end < text.size) {
    const char32_t codePoint = text.next(end);
    if (isCased(codePoint)) return false;
    if (!isCaseIgnorable(codePoint)) return true;
  }
  return true;
}

// `start` and `end` bound the code point within the text.
void appendLower(std::u16string& out, TextSpan text, char32_t codePoint, std::size_t start,
                 std::size_t end) {
  if (isAscii(codePoint)) {
    out.push_back(static_cast<char16_t>(asciiLower(codePoint)));
  } else if (codePoint == kCapitalSigma && isFinalSigma(text, start, end)) {
    out.push_back(kFinalSigma);
  } else if (codePoint == kDottedCapitalI) {
    out.push_back(u'i');
    appendCodePoint(out, kCombiningDotAbove);
  } else {
    appendCodePoint(out, static_cast<char32_t>(utf8proc_tolower(scalar(codePoint))));
  }
}

bool isCategoryBetween(char32_t codePoint, utf8proc_category_t first,
                       utf8proc_category_t last) noexcept {
  const utf8proc_category_t category = utf8proc_category(scalar(codePoint));
  return category >= first && category <= last;
}

}  // namespace

std::u16string normalize(TextSpan text, NormalForm form) {
  const bool composing = form == NormalForm::c || form == NormalForm::kc;
  if (allBelow(text, form == NormalForm::c ? kFirstCombining : 0x80)) return text.toUtf16();
  std::vector<Scalar> points;
  decompose(text, form == NormalForm::kc || form == NormalForm::kd, points);
  orderMarks(points);
  if (composing && !points.empty()) {
    const auto count = utf8proc_normalize_utf32(
        points.data(), static_cast<utf8proc_ssize_t>(points.size()),
        static_cast<utf8proc_option_t>(UTF8PROC_COMPOSE | UTF8PROC_STABLE));
    if (count >= 0) points.resize(static_cast<std::size_t>(count));
  }
  std::u16string out;
  out.reserve(points.size());
  for (const Scalar point : points) appendCodePoint(out, static_cast<char32_t>(point));
  return out;
}

FoldedCodePoint foldCodePoint(char32_t codePoint) noexcept {
  if (isAscii(codePoint)) return {{asciiLower(codePoint), 0, 0}, 1};
  Scalar parts[3];
  int boundary = 0;
  const auto count =
      utf8proc_decompose_char(scalar(codePoint), parts, 3, UTF8PROC_CASEFOLD, &boundary);
  if (count < 1 || count > 3) return {{codePoint, 0, 0}, 1};
  FoldedCodePoint folded{{0, 0, 0}, static_cast<int>(count)};
  for (std::ptrdiff_t i = 0; i < count; ++i) folded.points[i] = static_cast<char32_t>(parts[i]);
  return folded;
}

std::u16string caseFold(TextSpan text) {
  std::u16string out;
  out.reserve(text.size);
  for (std::size_t i = 0; i < text.size;) {
    const FoldedCodePoint folded = foldCodePoint(text.next(i));
    for (int j = 0; j < folded.count; ++j) appendCodePoint(out, folded.points[j]);
  }
  return out;
}

std::u16string lowercase(TextSpan text) {
  std::u16string out;
  out.reserve(text.size);
  for (std::size_t i = 0; i < text.size;) {
    const std::size_t start = i;
    const char32_t codePoint = text.next(i);
    appendLower(out, text, codePoint, start, i);
  }
  return out;
}

std::u16string uppercase(TextSpan text) {
  std::u16string out;
  out.reserve(text.size);
  for (std::size_t i = 0; i < text.size;) {
    const char32_t codePoint = text.next(i);
    if (isAscii(codePoint)) {
      out.push_back(static_cast<char16_t>(asciiUpper(codePoint)));
    } else {
      appendUpper(out, codePoint);
    }
  }
  return out;
}

std::u16string capitalized(TextSpan text) {
  std::u16string out;
  out.reserve(text.size);
  bool atWordStart = true;
  for (std::size_t i = 0; i < text.size;) {
    const std::size_t start = i;
    const char32_t codePoint = text.next(i);
    if (isWhitespace(codePoint) || isNewline(codePoint)) {
      atWordStart = true;
      appendCodePoint(out, codePoint);
    } else if (atWordStart && (isAlphanumeric(codePoint) || isCased(codePoint))) {
      atWordStart = false;
      appendTitle(out, codePoint);
    } else {
      appendLower(out, text, codePoint, start, i);
    }
  }
  return out;
}

bool isWhitespace(char32_t codePoint) noexcept {
  return codePoint == U'\t' ||
         isCategoryBetween(codePoint, UTF8PROC_CATEGORY_ZS, UTF8PROC_CATEGORY_ZS);
}

bool isNewline(char32_t codePoint) noexcept {
  return (codePoint >= 0x0A && codePoint <= 0x0D) || codePoint == 0x85 || codePoint == 0x2028 ||
         codePoint == 0x2029;
}

bool isLetter(char32_t codePoint) noexcept {
  return isCategoryBetween(codePoint, UTF8PROC_CATEGORY_LU, UTF8PROC_CATEGORY_ME);
}

bool isDecimalDigit(char32_t codePoint) noexcept {
  return isCategoryBetween(codePoint, UTF8PROC_CATEGORY_ND, UTF8PROC_CATEGORY_ND);
}

bool isAlphanumeric(char32_t codePoint) noexcept {
  return isCategoryBetween(codePoint, UTF8PROC_CATEGORY_LU, UTF8PROC_CATEGORY_NO);
}

bool isPunctuation(char32_t codePoint) noexcept {
  return isCategoryBetween(codePoint, UTF8PROC_CATEGORY_PC, UTF8PROC_CATEGORY_PO);
}

bool isUppercase(char32_t codePoint) noexcept {
  return isCategoryBetween(codePoint, UTF8PROC_CATEGORY_LU, UTF8PROC_CATEGORY_LU) ||
         isCategoryBetween(codePoint, UTF8PROC_CATEGORY_LT, UTF8PROC_CATEGORY_LT);
}

bool isLowercase(char32_t codePoint) noexcept {
  return isCategoryBetween(codePoint, UTF8PROC_CATEGORY_LL, UTF8PROC_CATEGORY_LL);
}

}  // namespace qx::detail

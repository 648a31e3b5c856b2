#include <algorithm>
#include <cstring>

#include "frame/three_way.h"
#include "frame/unicode.h"

namespace qx::detail {

namespace {

template <class Left, class Right>
int compareRuns(const Left* left, const Right* right, std::size_t size) noexcept {
  for (std::size_t i = 0; i < size; ++i) {
    if (left[i] != right[i]) return left[i] < right[i] ? -1 : 1;
  }
  return 0;
}

// memcmp promises only a sign.
int compareRuns(const unsigned char* left, const unsigned char* right, std::size_t size) noexcept {
  return size == 0 ? 0 : threeWay(std::memcmp(left, right, size), 0);
}

// Gives the units of the folded text one at a time.
class FoldingReader {
 public:
  FoldingReader(TextSpan text, std::size_t position) noexcept : text_(text), position_(position) {}
  FoldingReader(const FoldingReader&) = delete;  // holds pointers into itself
  FoldingReader& operator=(const FoldingReader&) = delete;

  // The next unit, or -1 at the end.
  std::int32_t next() noexcept {
    if (at_ != end_) return *at_++;
    if (position_ == text_.size) return -1;
    const char32_t codePoint = text_.next(position_);
    if (isAscii(codePoint)) return static_cast<std::int32_t>(asciiLower(codePoint));
    const FoldedCodePoint folded = foldCodePoint(codePoint);
    at_ = end_ = units_;
    for (int i = 0; i < folded.count; ++i) end_ = writeCodePoint(end_, folded.points[i]);
    return *at_++;
  }

 private:
  TextSpan text_;
  std::size_t position_;
  char16_t units_[6] = {};
  const char16_t* at_ = units_;
  char16_t* end_ = units_;
};

int compareFolding(TextSpan leftText, TextSpan rightText, std::size_t start) noexcept {
  FoldingReader left(leftText, start);
  FoldingReader right(rightText, start);
  while (true) {
    const std::int32_t leftUnit = left.next();
    const std::int32_t rightUnit = right.next();
    if (leftUnit != rightUnit) return threeWay(leftUnit, rightUnit);
    if (leftUnit < 0) return 0;
  }
}

// Folds ASCII on the fly and leaves the rest, from the first other unit on, to the readers.
template <class Left, class Right>
int compareAscii(const Left* left, TextSpan leftText, const Right* right,
                 TextSpan rightText) noexcept {
  const std::size_t common = std::min(leftText.size, rightText.size);
  for (std::size_t i = 0; i < common; ++i) {
    const char32_t leftUnit = left[i];
    const char32_t rightUnit = right[i];
    if (!isAscii(leftUnit | rightUnit)) {
      return compareFolding(leftText, rightText, i);
    }
    if (leftUnit == rightUnit) continue;
    const char32_t leftFolded = asciiLower(leftUnit);
    const char32_t rightFolded = asciiLower(rightUnit);
    if (leftFolded != rightFolded) return leftFolded < rightFolded ? -1 : 1;
  }
  return threeWay(leftText.size, rightText.size);
}

}  // namespace

int compareUnits(TextSpan left, TextSpan right) noexcept {
  const std::size_t common = std::min(left.size, right.size);
  const int order = visitUnits(left, [&](const auto* leftUnits, std::size_t) {
    return visitUnits(right, [&](const auto* rightUnits, std::size_t) {
      return compareRuns(leftUnits, rightUnits, common);
    });
  });
  return order != 0 ? order : threeWay(left.size, right.size);
}

bool equalUnits(TextSpan left, TextSpan right) noexcept {
  if (left.size != right.size) return false;
  if (left.size == 0) return true;
  if (left.wide != right.wide) return compareUnits(left, right) == 0;
  return std::memcmp(left.data, right.data, left.wide ? 2 * left.size : left.size) == 0;
}

int caseInsensitiveCompare(TextSpan left, TextSpan right) noexcept {
  return visitUnits(left, [&](const auto* leftUnits, std::size_t) {
    return visitUnits(right, [&](const auto* rightUnits, std::size_t) {
      return compareAscii(leftUnits, left, rightUnits, right);
    });
  });
}

}  // namespace qx::detail

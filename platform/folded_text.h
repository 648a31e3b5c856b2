#pragma once

// Texts made comparable under the options of a search, with the way back to the places they came
// from.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <QXFoundation/string_search.h>

#include "frame/text_span.h"

namespace qx::detail {

// Whether the options change which characters are equal.
bool changesEquality(StringCompareOptions options);

class FoldedText {
 public:
  FoldedText(TextSpan text, StringCompareOptions options);

  const std::u16string& units() const { return units_; }
  // Whether a character of the text begins, or the text ends, at this index into `units`.
  bool isBoundary(std::size_t index) const {
    return index == 0 || index == units_.size() || origins_[index] != origins_[index - 1];
  }
  // Where in the text the unit at the index came from; the end of the text for the end.
  std::size_t origin(std::size_t index) const {
    return index == origins_.size() ? length_ : origins_[index];
  }

 private:
  void append(std::u16string_view folded, std::size_t start, bool isUnchanged);
  std::u16string units_;
  std::vector<std::uint32_t> origins_;
  std::size_t length_;
};

}  // namespace qx::detail

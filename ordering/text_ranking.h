#pragma once

// Sorting texts by code unit, a few units at a time.

#include <cstdint>
#include <vector>

#include "frame/text_span.h"
#include "ordering/entry_sort.h"

namespace qx::detail {

// How texts are cut into keys.
struct TextForm {
  bool wide = false;   // some text is wide
  bool lower = false;  // ASCII letters count as their lower case
};

// The first units of a text as a key in its form; keys order as the texts they begin do.
std::uint64_t leadingKey(TextSpan text, TextForm form);

// Sorts entries whose keys are the leading keys of their elements' texts, and sets `tied` for each
// entry whose text equals that of the one before. Linear in the length of the texts as far as they
// are alike, but for a logarithm.
void sortTexts(std::vector<SortEntry>& entries, const std::vector<TextSpan>& texts, TextForm form,
               std::vector<unsigned char>& tied);

}  // namespace qx::detail

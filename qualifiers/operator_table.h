#pragma once

// The vocabulary of the textual format: operator texts and the comparisons they stand for.

#include <string_view>

#include <QXFoundation/selector.h>

#include "frame/comparison.h"

namespace qx::detail {

struct OperatorText {
  std::string_view text;
  std::string_view alias;  // also read, never written; empty where there is none
  Comparison comparison;
};

// In the order in which they are listed; the first kRelationalOperators of them order or equate.
inline constexpr OperatorText kOperators[] = {
    {"=", "==", Comparison::isEqualTo},
    {"!=", "<>", Comparison::isNotEqualTo},
    {"<=", "", Comparison::isLessThanOrEqualTo},
    {"<", "", Comparison::isLessThan},
    {">=", "", Comparison::isGreaterThanOrEqualTo},
    {">", "", Comparison::isGreaterThan},
    {"contains", "", Comparison::doesContain},
    {"like", "", Comparison::isLike},
    {"caseInsensitiveLike", "", Comparison::isCaseInsensitiveLike},
};
inline constexpr std::size_t kRelationalOperators = 6;

// Empty for a selector that is none of the nine.
std::string_view operatorText(Selector selector);
// The null selector for text that is no operator.
Selector operatorSelector(std::string_view text);

}  // namespace qx::detail

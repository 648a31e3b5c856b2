#include "qualifiers/operator_table.h"

namespace qx::detail {

std::string_view operatorText(Selector selector) {
  const Comparison comparison = comparisonOf(selector);
  for (const OperatorText& o : kOperators) {
    if (o.comparison == comparison) return o.text;
  }
  return {};
}

Selector operatorSelector(std::string_view text) {
  if (text.empty()) return {};
  for (const OperatorText& o : kOperators) {
    if (text == o.text || text == o.alias) return selectorOf(o.comparison);
  }
  return {};
}

}  // namespace qx::detail

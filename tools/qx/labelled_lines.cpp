#include "tools/qx/labelled_lines.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>

#include "tools/qx/output.h"

namespace qxtool {

void showLines(const std::vector<LabelledLine>& lines) {
  constexpr std::size_t kGap = 2;
  std::size_t width = 0;
  for (const LabelledLine& line : lines) width = std::max(width, line.label.size());
  Output output;
  for (const auto& [label, text] : lines) {
    output.write(label);
    output.write(std::string(width - label.size() + kGap, ' '));
    output.write(text);
    output.write("\n");
  }
  output.finish();
}

std::string decimalText(double number) {
  char text[400];  // the greatest double has 309 digits, the least some 324 behind its point
  char* end = std::to_chars(text, text + sizeof text, number, std::chars_format::fixed).ptr;
  return {text, end};
}

}  // namespace qxtool

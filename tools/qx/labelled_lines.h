// What is to be told of one value: a line for each of its aspects.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qxtool {

struct LabelledLine {
  std::string_view label;
  std::string text;
};

// Writes the lines to standard output, with their texts in one column.
void showLines(const std::vector<LabelledLine>& lines);

// The shortest decimal number that is this double, without an exponent.
std::string decimalText(double number);

}  // namespace qxtool

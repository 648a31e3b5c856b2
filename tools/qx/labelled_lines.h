// What is to be told of one value: a line for each of its aspects.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace qxtool {

struct LabelledLine {
  std::string_view label;
  std::string text;
};

// Writes the lines to standard output, with their texts in one column.
void showLines(std::initializer_list<LabelledLine> lines);

// The shortest decimal number that is this double, without an exponent.
std::string decimalText(double number);

}  // namespace qxtool

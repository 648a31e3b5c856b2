// qx fraction: the fraction that a pair of integers or a decimal number makes.

#include <CLI/App.hpp>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <QXFoundation/fraction_number.h>

#include "tools/qx/command.h"
#include "tools/qx/failure.h"
#include "tools/qx/labelled_lines.h"
#include "tools/qx/number_of.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

qx::Ref<qx::QXFractionNumber> fractionOf(std::string_view text) {
  const std::size_t bar = text.find('/');
  if (bar != std::string_view::npos) {
    const auto numerator = numberOf<std::int64_t>(text.substr(0, bar));
    const auto denominator = numberOf<std::int64_t>(text.substr(bar + 1));
    if (!numerator || !denominator) {
      throw Failure("N/D is two integers of 64 bits, not " + std::string(text));
    }
    return qx::QXFractionNumber::qxFractionNumberWithNumerator(*numerator, *denominator);
  }
  if (const auto whole = numberOf<std::int64_t>(text)) {
    return qx::QXFractionNumber::qxFractionNumberWithNumerator(*whole, 1);
  }
  const auto number = numberOf<double>(text);
  if (!number || !std::isfinite(*number)) {
    throw Failure("a fraction is made from N/D or a decimal number, not " +
                  quotedIfEmpty(std::string(text)));
  }
  return qx::QXFractionNumber::qxFractionNumberWithDouble(*number);
}

void runFraction(const std::string& text) {
  const auto fraction = fractionOf(text);
  showLines({{"fraction", std::to_string(fraction->numerator()) + '/' +
                              std::to_string(fraction->denominator())},
             {"text", fraction->description()},
             {"value", decimalText(fraction->doubleValue())},
             {"integer", std::to_string(fraction->truncate())}});
}

std::function<void()> declareFraction(CLI::App& app) {
  const auto text = std::make_shared<std::string>();
  app.add_option("FRACTION", *text, "Numerator/denominator, or a decimal number")
      ->type_name("")
      ->required();
  return [text] { runFraction(*text); };
}

}  // namespace

const Command kFractionCommand{
    "fraction", "Show the fraction that N/D or a decimal number makes",
    "N/D is reduced. A decimal number goes through a short expansion, which is exact for whole\n"
    "numbers and for many 1/N, comes close for most numbers above 1, and is far off for others:\n"
    "compare \"value\" with what was given. \"text\" is what people are shown.\n"
    "\n"
    "Examples:\n"
    "  qx fraction 6/-4\n"
    "  qx fraction 3.14159   # 355/113\n"
    "  qx fraction 2.5       # 4/1: the expansion's last two quotients are added",
    &declareFraction};

}  // namespace qxtool

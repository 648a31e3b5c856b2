// A qualifier format with its arguments, parsed.
#pragma once

#include <string>
#include <vector>

#include <QXFoundation/qualifier_explanation.h>

#include "tools/qx/arguments.h"

namespace qxtool {

struct ParsedFormat {
  // The tree is nil for an empty format.
  qx::FormatExplanation explanation;
  // As many arguments as the format has conversions.
  std::size_t usedArguments = 0;
};

// A Failure for a format or arguments that the parser refuses.
ParsedFormat parsedFormat(const std::string& format,
                          const std::vector<ArgumentOptions::Given>& given);

// Tells on standard error what may not be meant, one line each.
void showRemarks(const std::vector<qx::FormatRemark>& remarks);

}  // namespace qxtool

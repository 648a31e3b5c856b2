#include "tools/qx/format.h"

#include <QXFoundation/exception.h>

#include "tools/qx/failure.h"
#include "tools/qx/message.h"
#include "tools/qx/printable.h"

namespace qxtool {

ParsedFormat parsedFormat(const std::string& format,
                          const std::vector<ArgumentOptions::Given>& given) {
  if (!isValidUtf8(format)) throw Failure("the format is not UTF-8");
  const FormatArguments arguments = argumentsFor(format, given);
  try {
    return {qx::detail::explainFormat(format, arguments.values.data(), arguments.values.size()),
            arguments.used};
  } catch (const qx::InvalidArgumentException& refusal) {
    throw Failure(refusal.reason());
  }
}

void showRemarks(const std::vector<qx::FormatRemark>& remarks) {
  for (const qx::FormatRemark& remark : remarks) {
    tell("column " + std::to_string(remark.column) + ": " + remark.text);
  }
}

}  // namespace qxtool

#include "tools/qx/format.h"

#include <QXFoundation/exception.h>

#include "tools/qx/failure.h"
#include "tools/qx/message.h"
#include "tools/qx/printable.h"

namespace qxtool {

namespace {

// The parser names itself in front of its reason, which nobody here has asked for.
std::string plainReason(const std::string& reason) {
  const std::size_t name = reason.find("QXQualifier");
  const std::size_t colon = name == std::string::npos ? name : reason.find(": ", name);
  const std::string plain = colon == std::string::npos ? reason : reason.substr(colon + 2);
  return plain.starts_with("unrecognized character ()")
             ? "the format ends within a conversion; %% stands for a percent sign"
             : plain;
}

}  // namespace

ParsedFormat parsedFormat(const std::string& format,
                          const std::vector<ArgumentOptions::Given>& given) {
  if (!isValidUtf8(format)) throw Failure("the format is not UTF-8");
  const FormatArguments arguments = argumentsFor(format, given);
  try {
    return {qx::detail::explainFormat(format, arguments.values.data(), arguments.values.size()),
            arguments.used};
  } catch (const qx::InvalidArgumentException& refusal) {
    throw Failure(plainReason(refusal.reason()));
  }
}

void showRemarks(const std::vector<qx::FormatRemark>& remarks) {
  for (const qx::FormatRemark& remark : remarks) {
    tell("column " + std::to_string(remark.column) + ": " + remark.text);
  }
}

}  // namespace qxtool

// qx size: a number of bytes as people read it.

#include <CLI/App.hpp>
#include <cstdint>
#include <memory>
#include <string>

#include <QXFoundation/size_formatter.h>

#include "tools/qx/command.h"
#include "tools/qx/failure.h"
#include "tools/qx/number_of.h"
#include "tools/qx/output.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

void runSize(const std::string& text) {
  const auto count = numberOf<std::int64_t>(text);
  if (!count) throw Failure("N is an integer of 64 bits, not " + quotedIfEmpty(text));
  Output output;
  output.write(qx::QXSizeFormatter::stringForByteCount(*count)->utf8());
  output.write("\n");
  output.finish();
}

std::function<void()> declareSize(CLI::App& app) {
  const auto text = std::make_shared<std::string>();
  app.add_option("N", *text, "A number of bytes")->type_name("")->required();
  return [text] { runSize(*text); };
}

}  // namespace

const Command kSizeCommand{
    "size", "Show a number of bytes as a size text",
    "A KB is 1000 bytes. What stands behind the point is cut, and has no leading zeros: for MB "
    "and\n"
    "GB it is the number of hundredths, for KB the number of bytes left over.\n"
    "\n"
    "Examples:\n"
    "  qx size 1500          # 1.500 KB\n"
    "  qx size 1050000       # 1.5 MB, which is one MB and 5 hundredths",
    &declareSize};

}  // namespace qxtool

// qx explain: what a qualifier format is taken to mean.

#include <CLI/App.hpp>
#include <memory>
#include <string>

#include "tools/qx/arguments.h"
#include "tools/qx/command.h"
#include "tools/qx/format.h"
#include "tools/qx/output.h"
#include "tools/qx/qualifier_forms.h"

namespace qxtool {
namespace {

struct ExplainOptions {
  std::string format;
  ArgumentOptions arguments;
  bool json = false;
  bool dot = false;
};

void runExplain(const ExplainOptions& options) {
  const qx::FormatExplanation explanation =
      parsedFormat(options.format, options.arguments.given()).explanation;
  const auto form = options.json ? &jsonText : options.dot ? &dotText : &indentedText;
  Output output;
  output.write(form(explanation.qualifier));
  output.finish();
  showRemarks(explanation.remarks);
}

std::function<void()> declareExplain(CLI::App& app) {
  const auto options = std::make_shared<ExplainOptions>();
  app.add_option("FORMAT", options->format,
                 "A qualifier format, as for select --where; behind -- if it begins with -")
      ->type_name("")
      ->required();
  options->arguments.declare(app);
  CLI::Option* json = app.add_flag("--json", options->json, "Show the tree as JSON");
  app.add_flag("--dot", options->dot, "Show the tree as a graph for Graphviz")->excludes(json);
  return [options] { runExplain(*options); };
}

}  // namespace

const Command kExplainCommand{
    "explain", "Show what a qualifier format is taken to mean",
    "What may not be meant is told on standard error.\n"
    "\n"
    "Examples:\n"
    "  qx explain 'not name like %@ or age > %d' --arg 'J*' --arg 30\n"
    "  qx explain 'age > 21'\n"
    "  qx explain 'a = %d and b = %d' --arg 1 --arg 2 --dot | dot -Tsvg >tree.svg",
    &declareExplain};

}  // namespace qxtool

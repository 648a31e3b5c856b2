// The arguments of a qualifier format, as they are given on the command line.
#pragma once

#include <CLI/App.hpp>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <QXFoundation/property_value.h>

namespace qxtool {

// The options --arg and --arg-json of a command.
class ArgumentOptions {
 public:
  struct Given {
    std::string text;
    bool isJson;
  };

  // Once, while the command is declared; the command outlives this.
  void declare(CLI::App& command);
  // In the order of the command line; once it has been parsed.
  std::vector<Given> given() const;

 private:
  CLI::App* command_ = nullptr;
  CLI::Option* texts_ = nullptr;
  CLI::Option* jsons_ = nullptr;
};

struct FormatArguments {
  // All that are given, each as its conversion wants it; those without one as for %@.
  std::vector<qx::PropertyValue> values;
  // As many as the format has conversions.
  std::size_t used = 0;
};

// A Failure names the argument that is missing, or not of the kind that its conversion takes. What
// else is wrong with the format is left to its parser.
FormatArguments argumentsFor(std::string_view format,
                             const std::vector<ArgumentOptions::Given>& given);

}  // namespace qxtool

#include "tools/qx/arguments.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

#include <QXFoundation/qualifier_format.h>

#include "tools/qx/failure.h"
#include "tools/qx/json_reader.h"
#include "tools/qx/number_of.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

using Given = ArgumentOptions::Given;

// The letters of a format's conversions, in order, by the scan that its parser makes.
struct ConversionSink : qx::detail::format::IgnoringSink {
  bool argument(char letter, bool, std::size_t) {
    letters += letter;
    return true;
  }
  std::string letters;
};

std::string conversionsOf(std::string_view format) {
  ConversionSink sink;
  qx::detail::format::Scanner<ConversionSink>(format, sink).run();
  return sink.letters;
}

qx::PropertyValue integerFor(const Given& given, const qx::PropertyValue& value) {
  const auto number = given.isJson ? value.to<std::int32_t>() : numberOf<std::int32_t>(given.text);
  if (!number) throw Failure("%d takes an integer of 32 bits");
  return *number;
}

// The format narrows it to single precision, where a larger number would become infinite.
qx::PropertyValue realFor(const Given& given, const qx::PropertyValue& value) {
  const auto number = given.isJson ? value.to<double>() : numberOf<double>(given.text);
  constexpr double kMax = std::numeric_limits<float>::max();
  if (!number || !(*number >= -kMax && *number <= kMax)) {
    throw Failure("%f takes a real number within single precision");
  }
  return *number;
}

qx::PropertyValue valueFor(char letter, const Given& given) {
  if (!isValidUtf8(given.text)) throw Failure("it is not UTF-8");
  const qx::PropertyValue value =
      given.isJson ? valueFromJson(given.text, JsonRules::lenient) : qx::PropertyValue(given.text);
  switch (letter) {
    case 'd':
      return integerFor(given, value);
    case 'f':
      return realFor(given, value);
    case 's':
      if (!value.isString()) throw Failure("%s takes a string");
      return value;
    default:
      return value;
  }
}

}  // namespace

void ArgumentOptions::declare(CLI::App& command) {
  command_ = &command;
  texts_ =
      command
          .add_option(
              "--arg",
              "The next argument of FORMAT, as text: an integer for %d, a real for %f, the text "
              "itself for %s and %@")
          ->type_name("TEXT");
  jsons_ =
      command.add_option("--arg-json", "The next argument of FORMAT, as JSON: any value for %@")
          ->type_name("JSON");
  // One text a time, as it stands: brackets and commas are the argument's own.
  for (CLI::Option* option : {texts_, jsons_}) {
    option->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false);
  }
}

std::vector<Given> ArgumentOptions::given() const {
  std::vector<Given> all;
  std::size_t texts = 0;
  std::size_t jsons = 0;
  for (const CLI::Option* option : command_->parse_order()) {
    if (option == texts_) all.push_back({texts_->results()[texts++], false});
    if (option == jsons_) all.push_back({jsons_->results()[jsons++], true});
  }
  return all;
}

FormatArguments argumentsFor(std::string_view format, const std::vector<Given>& given) {
  const std::string letters = conversionsOf(format);
  if (letters.size() > given.size()) {
    throw Failure("missing arguments: " + std::to_string(given.size()) +
                  " given, the format takes " + std::to_string(letters.size()));
  }
  FormatArguments result;
  result.used = letters.size();
  for (std::size_t i = 0; i < given.size(); ++i) {
    try {
      result.values.push_back(valueFor(i < letters.size() ? letters[i] : '@', given[i]));
    } catch (const std::runtime_error& failure) {  // a Failure or a JsonFault
      throw Failure("argument " + std::to_string(i + 1) + " (" +
                    cutToWidth(printable(given[i].text), 40) + "): " + failure.what());
    }
  }
  return result;
}

}  // namespace qxtool

// qx plist: property lists from one form to another, and what is wrong with them.

#include <CLI/App.hpp>
#include <memory>
#include <optional>
#include <string>

#include <QXFoundation/array.h>
#include <QXFoundation/dictionary.h>

#include "tools/qx/command.h"
#include "tools/qx/failure.h"
#include "tools/qx/input.h"
#include "tools/qx/json_writer.h"
#include "tools/qx/output.h"
#include "tools/qx/output_file.h"
#include "tools/qx/plist_reader.h"
#include "tools/qx/plist_writer.h"
#include "tools/qx/progress.h"

namespace qxtool {
namespace {

struct PlistOptions {
  std::string file;
  std::string to = "xml";
  std::optional<std::string> out;
  bool check = false;
};

// What the root holds stands in lines of its own.
std::string jsonOf(const qx::PropertyValue& root) {
  if (const auto gap = jsonGapOf(root)) failFor(*gap, "");
  std::string text;
  const char* separator = "\n";
  const auto begin = [&](char bracket) {
    if (text.empty()) text += bracket;
    text += separator;
    separator = ",\n";
  };
  if (const auto* array = root.peek<qx::Array>(); array != nullptr && array->count() > 0) {
    for (const qx::PropertyValue& element : *array) {
      begin('[');
      appendJson(text, element);
    }
    return text + "\n]\n";
  }
  if (const auto* d = root.peek<qx::Dictionary>(); d != nullptr && d->count() > 0) {
    for (const auto& [key, value] : *d) {
      begin('{');
      appendJsonString(text, key.utf8());
      text += ": ";
      appendJson(text, value);
    }
    return text + "\n}\n";
  }
  appendJson(text, root);
  return text + "\n";
}

struct Form {
  const char* name;
  std::string (*textOf)(const qx::PropertyValue& root);
};
constexpr Form kForms[] = {
    {"xml",
     [](const qx::PropertyValue& root) {
       return std::string(propertyListOf(root, qx::PropertyListFormat::xml)->view());
     }},
    {"binary",
     [](const qx::PropertyValue& root) {
       return std::string(propertyListOf(root, qx::PropertyListFormat::binary)->view());
     }},
    {"json", &jsonOf},
};

const Form& formNamed(const std::string& name) {
  for (const Form& form : kForms) {
    if (form.name == name) return form;
  }
  throw Failure("--to takes xml, binary or json, not " + name);
}

void show(std::string_view text) {
  Output output;
  output.write(text);
  output.finish();
}

void runPlist(const PlistOptions& options) {
  const Form& form = formNamed(options.to);
  const bool toFile = options.out && *options.out != "-";
  if (!toFile && !options.check && options.to == "binary") requireNoTerminal();
  Progress progress;
  Input input(options.file, progress);
  qx::PropertyListFormat format{};
  const qx::PropertyValue list = readPropertyList(input, &format);
  if (options.check) {
    const bool isXml = format == qx::PropertyListFormat::xml;
    return show(input.name() + ": " + (isXml ? "an XML" : "a binary") + " property list\n");
  }
  const std::string text = form.textOf(list);
  progress.stop();
  if (toFile) {
    writeFile(*options.out, text);
  } else {
    show(text);
  }
}

std::function<void()> declarePlist(CLI::App& app) {
  const auto options = std::make_shared<PlistOptions>();
  app.add_option("FILE", options->file, "A property list, XML or binary; - is standard input")
      ->type_name("")
      ->required();
  CLI::Option* to =
      app.add_option("--to", options->to, "xml (the default), binary or json")->type_name("FORM");
  CLI::Option* out =
      app.add_option("--out", options->out, "Write to a file, which may be FILE itself")
          ->type_name("FILE");
  app.add_flag("--check", options->check, "Only tell whether FILE is right, or where it is wrong")
      ->excludes(to)
      ->excludes(out);
  return [options] { runPlist(*options); };
}

}  // namespace

const Command kPlistCommand{
    "plist", "Convert a property list, or check it",
    "Data, dates and numbers that are not finite have no form in JSON: a list that\n"
    "holds one is not converted, and the first is named.\n"
    "\n"
    "Examples:\n"
    "  qx plist settings.plist\n"
    "  qx plist settings.plist --to binary --out settings.plist\n"
    "  qx plist people.plist --to json | qx select - --limit 10\n"
    "  qx plist --check settings.plist",
    &declarePlist};

}  // namespace qxtool

// qx attributes: the extended attributes of a file.

#include <CLI/App.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/extended_attributes.h>
#include <QXFoundation/property_list.h>

#include "tools/qx/actions.h"
#include "tools/qx/command.h"
#include "tools/qx/failure.h"
#include "tools/qx/file_argument.h"
#include "tools/qx/output.h"
#include "tools/qx/printable.h"
#include "tools/qx/typed_values.h"

namespace qxtool {
namespace {

struct AttributeOptions {
  std::string file;
  std::string action = "list";
  std::optional<std::string> name;
  std::optional<std::string> value;
  std::optional<std::string> type;
  bool raw = false;
  bool json = false;
};

struct Work {
  const AttributeOptions& options;
  qx::Ref<qx::URL> url;

  // "cannot DO the attribute NAME of FILE: REASON"
  Failure failure(const char* verb, const qx::Ref<qx::Error>& error) const {
    return attributeFailure(std::string(verb) + " the attribute " + *options.name, options.file,
                            error);
  }
};

qx::Ref<qx::Data> bytesOf(const Work& work) {
  qx::Ref<qx::Error> error;
  const auto bytes = dataForExtendedAttribute(work.url, *work.options.name, &error);
  if (bytes != nullptr) return bytes;
  if (!tellsOfNoAttribute(error)) throw work.failure("read", error);
  throw Failure(work.options.file + " has no attribute " + *work.options.name, Failure::kNotFound);
}

// Nil, with an error, where the bytes are no property list.
qx::PropertyValue listFrom(const qx::Ref<qx::Data>& bytes, qx::Ref<qx::Error>* error) {
  return qx::PropertyListSerialization::propertyListWithData(
      bytes, qx::PropertyListMutability::immutable, nullptr, error);
}

// Bytes go out as they are, but for those who look at them.
void showBytes(const qx::Data& bytes) {
  show(outputIsTerminal() ? printable(bytes.view()) + "\n" : std::string(bytes.view()));
}

void get(const Work& work) {
  const auto bytes = bytesOf(work);
  if (work.options.raw && work.options.json) return show(valueJson(bytes) + "\n");
  if (work.options.raw) return showBytes(*bytes);
  qx::Ref<qx::Error> error;
  const qx::PropertyValue value = listFrom(bytes, &error);
  if (value.isNil()) {
    throw Failure(work.failure("read", error).what() + std::string(" --raw shows its bytes."));
  }
  if (work.options.json) return show(valueJson(value) + "\n");
  const std::string text = valueText(value);
  show((outputIsTerminal() ? printable(text) : text) + "\n");
}

bool setBytes(const Work& work, qx::Ref<qx::Error>* error) {
  const AttributeOptions& options = work.options;
  const auto bytes = options.type == "data"
                         ? valueFromText(*options.type, *options.value).as<qx::Data>()
                         : qx::Data::from(*options.value);
  return setExtendedAttributeData(work.url, bytes, *options.name, error);
}

bool setValue(const Work& work, qx::Ref<qx::Error>* error) {
  const AttributeOptions& options = work.options;
  if (!isValidUtf8(*options.value)) throw Failure(*options.value + " is not UTF-8");
  const qx::PropertyValue value = valueFromText(options.type.value_or("string"), *options.value);
  requireStorable(value, qx::PropertyListFormat::binary);
  return setExtendedAttributeValue(work.url, value, *options.name, error);
}

void set(const Work& work) {
  qx::Ref<qx::Error> error;
  const bool isSet = work.options.raw ? setBytes(work, &error) : setValue(work, &error);
  if (!isSet) throw work.failure("set", error);
}

void remove(const Work& work) {
  (void)bytesOf(work);
  qx::Ref<qx::Error> error;
  if (!removeExtendedAttributeWithName(work.url, *work.options.name, &error)) {
    throw work.failure("remove", error);
  }
}

// An attribute of a list: its value, or why there is none to show.
struct Shown {
  std::string name;
  qx::PropertyValue value;
  std::string fault;
};

// A name that is not UTF-8 is listed with a mark in place of each wrong byte, by which the
// attribute is not found.
std::string faultOf(const std::string& name, const qx::Ref<qx::Error>& error) {
  const bool isMarked = name.find("\uFFFD") != std::string::npos;
  return isMarked && tellsOfNoAttribute(error) ? "its name is not UTF-8"
                                               : error->localizedDescription();
}

Shown shownOf(const Work& work, const std::string& name) {
  qx::Ref<qx::Error> error;
  const auto bytes = dataForExtendedAttribute(work.url, name, &error);
  if (bytes == nullptr) return {name, {}, faultOf(name, error)};
  if (work.options.raw) return {name, bytes, {}};
  const qx::PropertyValue value = listFrom(bytes, nullptr);
  if (!value.isNil()) return {name, value, {}};
  return {name, {}, "no property list, " + std::to_string(bytes->length()) + " bytes"};
}

std::string lineOf(const Work& work, const Shown& shown) {
  const std::string name = printable(shown.name);
  if (shown.value.isNil()) return name + ": " + shown.fault;
  if (work.options.raw) return name + " = " + valueText(shown.value);
  return name + " (" + typeOf(shown.value) + ") = " + printable(valueText(shown.value));
}

std::string recordOf(const Shown& shown) {
  if (shown.value.isNil()) {
    return valueJson(qx::dict({{"name", shown.name}, {"fault", shown.fault}}));
  }
  return valueJson(
      qx::dict({{"name", shown.name}, {"type", typeOf(shown.value)}, {"value", shown.value}}));
}

std::vector<std::string> namesOf(const Work& work) {
  qx::Ref<qx::Error> error;
  const auto found = extendedAttributeNames(work.url, &error);
  if (found == nullptr) throw attributeFailure("list the attributes", work.options.file, error);
  std::vector<std::string> names;
  for (const qx::PropertyValue& name : *found) names.push_back(name.as<qx::String>()->utf8());
  std::sort(names.begin(), names.end());
  return names;
}

void list(const Work& work) {
  const bool json = work.options.json;
  std::string text = json ? "[" : "";
  const char* separator = json ? "\n" : "";
  for (const std::string& name : namesOf(work)) {
    const Shown shown = shownOf(work, name);
    text += separator + (json ? recordOf(shown) : lineOf(work, shown) + '\n');
    if (json) separator = ",\n";
  }
  if (json) text += *separator == ',' ? "\n]\n" : "]\n";
  show(text);
}

struct Action {
  std::string_view name;
  bool needsKey;
  bool takesValue;
  bool takesRaw;
  bool shows;
  void (*run)(const Work& work);
};

constexpr Action kActions[] = {{"get", true, false, true, true, &get},
                               {"set", true, true, true, false, &set},
                               {"remove", true, false, false, false, &remove},
                               {"list", false, false, true, true, &list}};

void requireWords(const Action& action, const AttributeOptions& options) {
  const std::string name(action.name);
  requireWordsOf(action, "NAME", options.name.has_value(), options.value.has_value(), options);
  if (action.needsKey && options.name->empty()) throw Failure("NAME is empty");
  if (!action.needsKey && options.name) throw Failure(name + " takes no NAME");
  if (!action.shows && options.json) throw Failure(name + " shows nothing, and takes no --json");
  if (!action.takesRaw && options.raw) throw Failure(name + " takes no --raw");
  if (options.raw && options.type && options.type != "string" && options.type != "data") {
    throw Failure("with --raw, VALUE is of the type string or data");
  }
}

void runAttributes(const AttributeOptions& options) {
  const Action& action = actionNamed(options.action, kActions);
  requireWords(action, options);
  action.run({options, urlOfFile(options.file)});
}

std::function<void()> declareAttributes(CLI::App& app) {
  const auto options = std::make_shared<AttributeOptions>();
  app.add_option("FILE", options->file, "A file or folder")->type_name("")->required();
  app.add_option("ACTION", options->action, "get, set, remove, or, as if none is given, list")
      ->type_name("");
  for (CLI::Option* word :
       {app.add_option("NAME", options->name, "Of the attribute"),
        app.add_option("VALUE", options->value, "What to set; behind -- if it begins with -")}) {
    word->type_name("")->allow_extra_args(false);
  }
  app.add_option("--type", options->type,
                 std::string("What VALUE is: ") + kValueTypes + "; string if not given")
      ->type_name("TYPE");
  app.add_flag("--raw", options->raw, "The attribute's own bytes, without a property list");
  app.add_flag("--json", options->json, "Show values as JSON");
  return [options] { runAttributes(*options); };
}

}  // namespace

const Command kAttributesCommand{
    "attributes", "Show or change the extended attributes of a file",
    "Values are property lists, as the library stores them. Where there is no attribute NAME, the\n"
    "exit code is 1. A NAME of no namespace is one of \"user.\". Dates are RFC 3339 text, data is\n"
    "hexadecimal digits.\n"
    "\n"
    "Examples:\n"
    "  qx attributes report.txt set org.example.page 12 --type int\n"
    "  qx attributes report.txt set org.example.authors '[\"Ann\", \"Bob\"]' --type json\n"
    "  qx attributes report.txt set xdg.comment 'as it stands' --raw\n"
    "  qx attributes report.txt\n"
    "  qx attributes report.txt list --json\n"
    "  qx attributes report.txt get org.example.page\n"
    "  qx attributes report.txt get xdg.comment --raw\n"
    "  qx attributes report.txt remove org.example.page",
    &declareAttributes};

}  // namespace qxtool

// qx prefs: the settings of a file, or of an application.

#include <CLI/App.hpp>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/preferences.h>
#include <QXFoundation/property_list.h>

#include "tools/qx/actions.h"
#include "tools/qx/command.h"
#include "tools/qx/failure.h"
#include "tools/qx/json_writer.h"
#include "tools/qx/output.h"
#include "tools/qx/prefs_store.h"
#include "tools/qx/printable.h"
#include "tools/qx/typed_values.h"

namespace qxtool {
namespace {

// The words of the command line in their order; with --application, FILE is none of them.
struct PrefsOptions {
  std::optional<std::string> words[4];
  std::optional<std::string> application;
  std::optional<std::string> type;
  bool json = false;
};

struct Request {
  std::optional<std::string> file;  // none: an application's
  std::string action;
  std::optional<std::string> keyPath;
  std::optional<std::string> value;
};

Request requestOf(const PrefsOptions& options) {
  const std::optional<std::string>* word = options.words;
  Request request;
  if (!options.application) request.file = *word++;
  if (!options.application && !request.file) throw Failure("FILE or --application is missing");
  if (!*word) throw Failure("an action is missing: get, set, remove or list");
  request.action = *word[0];
  request.keyPath = word[1];
  request.value = word[2];
  if (options.application && options.words[3]) {
    throw Failure("with --application there is no FILE: get, set, remove or list comes first");
  }
  return request;
}

constexpr char kBracketRule[] = "brackets hold a number, at the end of a key";

struct Work {
  const SettingsPlace& place;
  const Request& request;
  const PrefsOptions& options;
};

// Safe for a terminal; every byte as it is for everything else.
std::string shown(const std::string& text) { return outputIsTerminal() ? printable(text) : text; }

// A path through a value that holds no others leads nowhere, as one that is merely not there.
qx::PropertyValue valueAt(const qx::QXPreferences& store, const std::string& keyPath) {
  try {
    return store.objectForKeyPath(keyPath);
  } catch (const qx::InvalidArgumentException&) {
    return nullptr;
  } catch (const qx::RangeException&) {
    throw Failure(keyPath + " is no key path: " + kBracketRule);
  }
}

qx::PropertyValue required(const Work& work, const qx::QXPreferences& store) {
  qx::PropertyValue value = valueAt(store, *work.request.keyPath);
  if (value.isNil()) {
    throw Failure(work.place.path() + ": nothing stands at " + quotedIfEmpty(*work.request.keyPath),
                  Failure::kNotFound);
  }
  return value;
}

void save(const Work& work, qx::QXPreferences& store) {
  if (store.synchronize()) return;
  const auto error = store.lastSaveError();
  throw Failure(work.place.path() + " could not be written, and is as it was" +
                (error != nullptr ? ": " + error->localizedDescription() : std::string()));
}

void get(const Work& work) {
  const auto store = work.place.open(true);
  const qx::PropertyValue value = required(work, *store);
  show((work.options.json ? valueJson(value) : shown(valueText(value))) + "\n");
}

// A store takes what stands behind a bracket for nothing: "size[large]" would be "size".
void requirePlainIndexes(const std::string& keyPath) {
  std::size_t at = 0;
  while ((at = keyPath.find_first_of("[]", at)) != std::string::npos) {
    const std::size_t end = keyPath.find_first_not_of("0123456789", at + 1);
    const bool isIndex = keyPath[at] == '[' && end != std::string::npos && end > at + 1 &&
                         keyPath[end] == ']' &&
                         (end + 1 == keyPath.size() || keyPath[end + 1] == '.');
    if (!isIndex) {
      throw Failure("no value can be set at " + keyPath + ": " + kBracketRule);
    }
    at = end + 1;
  }
}

// Paths whose value would not be found there again, such as one beyond the end of an array, are
// dropped by a store without a word. Here they change nothing.
void setWhereItStands(qx::QXPreferences& store, const qx::PropertyValue& value,
                      const std::string& keyPath) {
  const std::string refused = "no value can be set at " + keyPath + ": ";
  if (keyPath.ends_with('.')) throw Failure(refused + "a key path ends with a key");
  try {
    store.setObject(value, keyPath);
  } catch (const qx::InvalidArgumentException&) {
    throw Failure(refused + "it leads through what is no dictionary");
  }
  if (valueAt(store, keyPath) != value) throw Failure(refused + "its index stands for no place");
}

void set(const Work& work) {
  const std::string& keyPath = *work.request.keyPath;
  requirePlainIndexes(keyPath);
  const qx::PropertyValue value =
      valueFromText(work.options.type.value_or("string"), *work.request.value);
  requireStorable(value, qx::PropertyListFormat::xml);
  const auto store = work.place.open(false);
  setWhereItStands(*store, value, keyPath);
  save(work, *store);
}

void remove(const Work& work) {
  const auto store = work.place.open(true);
  (void)required(work, *store);
  try {
    store->removeObjectForKeyPath(*work.request.keyPath);
  } catch (const qx::InvalidArgumentException&) {
    throw Failure("nothing can be removed at " + *work.request.keyPath +
                  ": it is an element of an array, or its key is empty");
  }
  save(work, *store);
}

// Whether a key path can hold the key, and people can see it there.
bool isPathKey(std::string_view key) {
  return !key.empty() && key.find_first_of(".[]") == std::string_view::npos;
}

// A line for each value that is no dictionary with entries. A key that no path can hold stands as a
// JSON string, with its value whole.
void appendLines(std::string& out, const std::string& path, const qx::PropertyValue& value,
                 bool isReachable) {
  const auto* dictionary = value.peek<qx::Dictionary>();
  if (dictionary == nullptr || dictionary->count() == 0 || !isReachable) {
    out += path + " = " + printable(valueText(value)) + "\n";
    return;
  }
  for (const auto& [key, element] : *dictionary) {
    const std::string text = key.utf8();
    std::string name = path.empty() ? std::string() : path + ".";
    if (isPathKey(text)) {
      name += printable(text);
    } else {
      appendJsonString(name, text);
    }
    appendLines(out, name, element, isPathKey(text));
  }
}

void list(const Work& work) {
  const auto store = work.place.open(true);
  const auto& keyPath = work.request.keyPath;
  const qx::PropertyValue value = keyPath ? required(work, *store) : store->userValues();
  if (work.options.json) return show(valueJson(value) + "\n");
  std::string lines;
  if (!keyPath && store->userValues()->count() == 0) return;
  appendLines(lines, keyPath ? printable(*keyPath) : std::string(), value, true);
  show(lines);
}

struct Action {
  std::string_view name;
  bool needsKey;
  bool takesValue;
  bool shows;
  void (*run)(const Work& work);
};

constexpr Action kActions[] = {{"get", true, false, true, &get},
                               {"set", true, true, false, &set},
                               {"remove", true, false, false, &remove},
                               {"list", false, false, true, &list}};

void requireWords(const Action& action, const Request& request, const PrefsOptions& options) {
  const std::string name(action.name);
  requireWordsOf(action, "KEYPATH", request.keyPath.has_value(), request.value.has_value(),
                 options);
  if (!action.shows && options.json) throw Failure(name + " shows nothing, and takes no --json");
  for (const auto& text : {request.keyPath, request.value}) {
    if (text && !isValidUtf8(*text)) throw Failure(*text + " is not UTF-8");
  }
}

void runPrefs(const PrefsOptions& options) {
  const Request request = requestOf(options);
  const Action& action = actionNamed(request.action, kActions);
  requireWords(action, request, options);
  const SettingsPlace place = options.application
                                  ? SettingsPlace::ofApplication(*options.application)
                                  : SettingsPlace::ofFile(*request.file);
  action.run({place, request, options});
}

std::function<void()> declarePrefs(CLI::App& app) {
  const auto options = std::make_shared<PrefsOptions>();
  auto& words = options->words;
  for (CLI::Option* word :
       {app.add_option("FILE", words[0], "A property list; left out with --application"),
        app.add_option("ACTION", words[1], "get, set, remove or list"),
        app.add_option("KEYPATH", words[2], "Keys with points between, such as ui.font.size"),
        app.add_option("VALUE", words[3], "What to set; behind -- if it begins with -")}) {
    word->type_name("")->allow_extra_args(false);
  }
  app.add_option("--application", options->application, "The user defaults of this application")
      ->type_name("NAME");
  app.add_option("--type", options->type,
                 std::string("What VALUE is: ") + kValueTypes + "; string if not given")
      ->type_name("TYPE");
  app.add_flag("--json", options->json, "Show values as JSON");
  return [options] { runPrefs(*options); };
}

}  // namespace

const Command kPrefsCommand{
    "prefs", "Show or change the settings of a file or of an application",
    "Where nothing stands at KEYPATH, the exit code is 1. A file that is no property list is left\n"
    "as it is. Dates are RFC 3339 text, data is hexadecimal digits.\n"
    "\n"
    "Examples:\n"
    "  qx prefs settings.plist set ui.font.size 11 --type int\n"
    "  qx prefs settings.plist set recent '[\"a.txt\", \"b.txt\"]' --type json\n"
    "  qx prefs settings.plist get ui.font.size\n"
    "  qx prefs settings.plist list\n"
    "  qx prefs settings.plist list ui --json\n"
    "  qx prefs settings.plist remove recent\n"
    "  qx prefs --application myeditor list",
    &declarePrefs};

}  // namespace qxtool

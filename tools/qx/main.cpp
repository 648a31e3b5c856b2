// qx: qualifiers on files, property lists, settings, locks, tags, and single values, from the
// command line.

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <exception>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include <QXFoundation/exception.h>

#include "tools/qx/command.h"
#include "tools/qx/failure.h"
#include "tools/qx/message.h"
#include "tools/qx/output.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

const Command* const kCommands[] = {&kSelectCommand,   &kExplainCommand,   &kPlistCommand,
                                    &kPrefsCommand,    &kDateCommand,      &kSizeCommand,
                                    &kFractionCommand, &kLockCommand,      &kIdentityCommand,
                                    &kTagsCommand,     &kAttributesCommand};

int fail(const std::string& reason, int exitCode = Failure::kFailed) {
  tell(reason);
  return exitCode;
}

// What is wrong with a word where a command should stand.
std::string unknownWord(const std::string& word) {
  if (word.starts_with('-'))
    return "there is no option " + word + " before a command; see qx --help";
  std::string names;
  for (const Command* command : kCommands) {
    if (!names.empty()) names += ", ";
    names += command->name;
  }
  return "there is no command " + quotedIfEmpty(word) + "; there are " + names;
}

// Parses the command line and does what it says.
void run(int argc, char** argv) {
  CLI::App app(
      "Selects records from files by qualifiers, converts property lists, keeps settings, locks "
      "and "
      "tags files, and shows what single values stand for.",
      "qx");
  app.get_formatter()->column_width(24);
  app.set_version_flag("--version", "qx " QX_VERSION);
  app.require_subcommand(0, 1);
  app.footer("qx COMMAND --help tells more, with examples.");
  std::function<void()> chosen;
  for (const Command* command : kCommands) {
    CLI::App* sub = app.add_subcommand(command->name, command->purpose);
    sub->footer(command->examples);
    sub->callback([&chosen, action = command->declare(*sub)] { chosen = action; });
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ExtrasError& error) {
    const std::vector<std::string> words = app.remaining();
    if (words.empty()) throw Failure(error.what());  // they stand behind the command
    throw Failure(unknownWord(words.front()));
  } catch (const CLI::CallForHelp&) {
    return show(app.help());
  } catch (const CLI::CallForVersion& version) {
    return show(std::string(version.what()) + '\n');
  }
  if (!chosen) throw Failure("no command is given; qx --help lists them");
  chosen();
}

}  // namespace
}  // namespace qxtool

int main(int argc, char** argv) {
  using qxtool::fail;
  try {
    qxtool::run(argc, argv);
    return 0;
  } catch (const qxtool::Failure& failure) {
    return fail(failure.what(), failure.exitCode());
  } catch (const qxtool::Exit& end) {
    return end.code;
  } catch (const qx::Exception& error) {
    return fail(error.reason());
  } catch (const std::bad_alloc&) {
    return fail("there is not enough memory");
  } catch (const std::exception& error) {
    return fail(error.what());
  }
}

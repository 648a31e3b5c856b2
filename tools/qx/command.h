// Commands of the tool. Each is declared in a file of its own and stands in the table of main.cpp.
#pragma once

#include <CLI/App.hpp>
#include <functional>

namespace qxtool {

struct Command {
  const char* name;
  // One line, for the list of commands.
  const char* purpose;
  // Shown at the end of its help.
  const char* examples;
  // Adds options to `app`. What it gives runs the command once they are parsed, and raises a
  // Failure if it fails; nothing of its output is written then, unless writing itself is what
  // failed.
  std::function<void()> (*declare)(CLI::App& app);
};

extern const Command kSelectCommand;
extern const Command kExplainCommand;
extern const Command kPlistCommand;
extern const Command kDateCommand;
extern const Command kSizeCommand;
extern const Command kFractionCommand;
extern const Command kPrefsCommand;
extern const Command kLockCommand;
extern const Command kIdentityCommand;
extern const Command kTagsCommand;
extern const Command kAttributesCommand;

}  // namespace qxtool

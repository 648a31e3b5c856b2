// Commands of which a word says what is done with the values of a file.
#pragma once

#include <cstddef>
#include <string>

#include "tools/qx/failure.h"

namespace qxtool {

// For messages and help.
inline constexpr char kActionNames[] = "get, set, remove or list";

// The one of that name in a table of such actions.
template <class Action, std::size_t count>
const Action& actionNamed(const std::string& name, const Action (&actions)[count]) {
  for (const Action& action : actions) {
    if (action.name == name) return action;
  }
  throw Failure(std::string("the action is ") + kActionNames + ", not " + name);
}

// What is wrong with the words behind the action; `key` is what the command calls the first of
// them.
template <class Action, class Options>
void requireWordsOf(const Action& action, const char* key, bool hasKey, bool hasValue,
                    const Options& options) {
  const std::string name(action.name);
  if (action.needsKey && !hasKey) throw Failure(name + " needs a " + key);
  if (action.takesValue && !hasValue) throw Failure(name + " needs a VALUE");
  if (!action.takesValue && hasValue) throw Failure(name + " takes no VALUE");
  if (!action.takesValue && options.type) throw Failure(name + " takes no --type");
}

}  // namespace qxtool

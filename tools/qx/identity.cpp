// qx identity: which machine this is to lock files.

#include <CLI/App.hpp>
#include <memory>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/machine_identity.h>

#include "tools/qx/command.h"
#include "tools/qx/labelled_lines.h"
#include "tools/qx/output.h"
#include "tools/qx/printable.h"
#include "tools/qx/typed_values.h"

namespace qxtool {
namespace {

void runIdentity(bool json) {
  const auto name = qx::QXHostName();
  if (json) {
    const qx::PropertyValue host = name != nullptr ? name : qx::PropertyValue(qx::null);
    return show(
        valueJson(qx::dict({{"identifier", qx::QXUniqueMachineIdentifier()}, {"host", host}})) +
        "\n");
  }
  showLines({{"identifier", qx::QXUniqueMachineIdentifier()->utf8()},
             {"host", name != nullptr ? printable(name->utf8()) : "not ASCII"}});
}

std::function<void()> declareIdentity(CLI::App& app) {
  const auto json = std::make_shared<bool>(false);
  app.add_flag("--json", *json, "Show both as JSON");
  return [json] { runIdentity(*json); };
}

}  // namespace

const Command kIdentityCommand{
    "identity", "Show which machine this is",
    "The identifier is the hardware address of a network interface. Lock files name their\n"
    "machine by it, and by the host's name.\n"
    "\n"
    "Examples:\n"
    "  qx identity\n"
    "  qx identity --json",
    &declareIdentity};

}  // namespace qxtool

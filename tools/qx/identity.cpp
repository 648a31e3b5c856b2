// qx identity: which machine this is to lock files.

#include <CLI/App.hpp>

#include <QXFoundation/machine_identity.h>

#include "tools/qx/command.h"
#include "tools/qx/labelled_lines.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

void runIdentity() {
  const auto name = qx::QXHostName();
  showLines({{"identifier", qx::QXUniqueMachineIdentifier()->utf8()},
             {"host", name != nullptr ? printable(name->utf8()) : "not ASCII"}});
}

std::function<void()> declareIdentity(CLI::App&) { return &runIdentity; }

}  // namespace

const Command kIdentityCommand{
    "identity", "Show which machine this is",
    "The identifier is the hardware address of a network interface. Lock files name their\n"
    "machine by it, and by the host's name.\n"
    "\n"
    "Examples:\n"
    "  qx identity",
    &declareIdentity};

}  // namespace qxtool

#include "platform/ready_ports.h"

namespace qx::detail {

void ReadyPorts::clear() {
  modeChanged();
  while (PortState* port = waiting_.first()) unlist(*port);
}

void ReadyPorts::list(PortState& port) {
  if (port.ReadyLink::isLinked() || port.modes.empty() || !port.hasLetters()) return;
  port.port.retain();
  waiting_.append(port);
}

void ReadyPorts::unlist(PortState& port) {
  if (!port.ReadyLink::isLinked()) return;
  port.ReadyLink::unlink();
  port.port.release();
}

void ReadyPorts::collect(const LoopMode& mode) {
  for (PortState* p = waiting_.first(); p != nullptr; p = waiting_.after(*p)) {
    if (p->isScheduledIn(mode)) p->collect();
  }
}

PortState* ReadyPorts::first(const LoopMode& mode) {
  while (PortState* port = waiting_.first()) {
    if (!port->hasLetters() || port->modes.empty()) {
      unlist(*port);
    } else if (port->isScheduledIn(mode)) {
      return port;
    } else {
      port->ReadyLink::unlink();
      aside_.append(*port);
    }
  }
  return nullptr;
}

// It may have been unlisted, and let go of, during its turn.
void ReadyPorts::endTurn(PortState& port) {
  if (!port.ReadyLink::isLinked()) return;
  if (!port.hasLetters()) return unlist(port);
  port.ReadyLink::unlink();
  waiting_.append(port);
}

bool ReadyPorts::isAnyIn(const LoopMode& mode) const {
  for (PortState* p = waiting_.first(); p != nullptr; p = waiting_.after(*p)) {
    if (p->hasLetters() && p->isScheduledIn(mode)) return true;
  }
  return false;
}

}  // namespace qx::detail

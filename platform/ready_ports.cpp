#include "platform/ready_ports.h"

namespace qx::detail {

void ReadyPorts::clear() {
  modeChanged();
  waiting_.prependAll(later_);
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
  waiting_.prependAll(later_);
  for (PortState* p = waiting_.first(); p != nullptr; p = waiting_.after(*p)) {
    if (p->isScheduledIn(mode)) p->collect();
  }
}

PortState* ReadyPorts::first(const LoopMode& mode) {
  while (PortState* port = waiting_.first()) {
    if (!port->hasLetters() || port->modes.empty()) {
      unlist(*port);
    } else if (!port->isScheduledIn(mode)) {
      port->ReadyLink::unlink();
      aside_.append(*port);
    } else if (port->taken == nullptr) {
      putOff(*port);
    } else {
      return port;
    }
  }
  return nullptr;
}

void ReadyPorts::putOff(PortState& port) {
  port.ReadyLink::unlink();
  later_.append(port);
}

// It may have been unlisted, and let go of, during its turn.
void ReadyPorts::endTurn(PortState& port) {
  if (!port.ReadyLink::isLinked()) return;
  port.restIfEmpty();
  if (!port.hasLetters()) return unlist(port);
  if (port.taken == nullptr) return putOff(port);
  port.ReadyLink::unlink();
  waiting_.append(port);
}

// What was raised in a port's turn may have left it as the last letter did.
bool ReadyPorts::isAnyIn(const LoopMode& mode) {
  waiting_.prependAll(later_);
  for (PortState* p = waiting_.first(); p != nullptr; p = waiting_.after(*p)) {
    if (!p->isScheduledIn(mode)) continue;
    p->restIfEmpty();
    if (p->hasLetters()) return true;
  }
  return false;
}

}  // namespace qx::detail

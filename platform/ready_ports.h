#pragma once

// The ports of a run loop that have letters.

#include "platform/port_state.h"

namespace qx::detail {

// They take their turns; those that the running mode leaves out are put aside, in their order,
// until the mode changes. Ports are held while they are listed; one that is in no mode is not
// listed, and keeps its letters. Belongs to the loop's thread.
class ReadyPorts {
 public:
  ReadyPorts() = default;
  ReadyPorts(const ReadyPorts&) = delete;
  ReadyPorts& operator=(const ReadyPorts&) = delete;
  ~ReadyPorts() { clear(); }

  // Lists the port, if it has letters and is in a mode, behind those that are.
  void list(PortState& port);
  void unlist(PortState& port);
  // Empties the inboxes of the ports in the mode.
  void collect(const LoopMode& mode);
  // The port whose turn it is in the mode; null when there is none with collected letters.
  PortState* first(const LoopMode& mode);
  // Ends the port's turn: others come before its next.
  void endTurn(PortState& port);
  // Another mode runs: those that were put aside may have their turn.
  void modeChanged() { waiting_.prependAll(aside_); }
  void clear();
  // Whether any port of the mode has letters; those that have none any more are left out.
  bool isAnyIn(const LoopMode& mode);

 private:
  using List = LinkList<PortState, ReadyLink>;
  void putOff(PortState& port);

  List waiting_;
  List aside_;
  List later_;  // what they have was not collected yet
};

}  // namespace qx::detail

#pragma once

// Handing a port's messages to its delegate.

#include <cstddef>

#include "platform/port_state.h"

namespace qx::detail {

// The delivery of a port's next messages, one after the other. It holds the port and its delegate
// meanwhile; the delegate no longer than anybody else does. Deliveries of one port may nest.
// Belongs to the loop's thread.
class Delivery {
 public:
  explicit Delivery(PortState& port);
  Delivery(const Delivery&) = delete;
  Delivery& operator=(const Delivery&) = delete;
  ~Delivery();

  // Delivers the oldest message, or drops it where there is no delegate. False when none waits.
  // What the delegate raises comes out; the message counts as delivered.
  bool next();
  // A place for what the delegate wants to hold from one message to the next, which is let go of
  // with the delivery.
  PropertyValue& held() { return held_; }

 private:
  // The message for a letter; a MessageLetter is freed.
  const PortMessage& open(Letter& letter);
  const PortMessage& carry(MemoryLetter& letter);
  void tell(const PortMessage& message);
  void holdDelegate();

  Ref<Port> port_;
  PortState& state_;
  Ref<Object> delegate_;
  PortDelegate* interface_ = nullptr;
  unsigned delegateChanges_ = 0;
  Carrier carrier_;
  Ref<PortMessage> opened_;
  PropertyValue held_;
  Delivery* outer_;
};

// The place of the port's innermost delivery; null when none is under way.
inline PropertyValue* heldThroughTurn(const PortState& port) {
  return port.delivery == nullptr ? nullptr : &port.delivery->held();
}

}  // namespace qx::detail

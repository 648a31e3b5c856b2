#pragma once

// What tests of thread messages start from.

#include <gtest/gtest.h>

#include <QXFoundation/thread_message.h>

#include "platform/port_state.h"
#include "tests/threads/recorder.h"

namespace threads_test {

// Whether anything waits in the object's port.
inline bool isIdle(const qx::QXThreadMessage& message) {
  const qx::detail::PortState& port = message.port()->state();
  return port.inbox.empty() && port.taken == nullptr;
}

// A target, and a message object of this thread.
struct ThreadMessage : testing::Test {
  ~ThreadMessage() override { giveUp(*target, references(*target) - 1L); }
  qx::Ref<Recorder> target = qx::make<Recorder>();
  qx::Ref<qx::QXThreadMessage> message = qx::QXThreadMessage::init();
};

}  // namespace threads_test

// The end of the object, and of the thread.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/raises.h"
#include "tests/threads/recorder.h"

namespace qx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using threads_test::giveUp;
using threads_test::onAnotherThread;
using threads_test::Recorder;
using threads_test::references;
using threads_test::turn;

TEST(ThreadMessageEnd, TakesThePortOutOfTheLoop) {
  const auto target = make<Recorder>();
  auto message = QXThreadMessage::init();
  const WeakRef<Port> port = message->port();
  EXPECT_TRUE(turn());
  message->sendMessageTo(target, "ping");
  message = nullptr;
  EXPECT_EQ(port.lock(), nullptr);
  EXPECT_FALSE(turn());  // nothing is scheduled
  EXPECT_THAT(target->calls(), IsEmpty());
  EXPECT_EQ(references(*target), 2U);  // the call was never performed: its record stays
  giveUp(*target, 1);
}

TEST(ThreadMessageEnd, LeavesThePortWhereItIsOnAnotherThread) {
  const auto target = make<Recorder>();
  auto message = QXThreadMessage::init();
  const Ref<Port> port = message->port();
  message->sendMessageTo(target, "ping");
  onAnotherThread([&] {
    (void)RunLoop::currentRunLoop();  // which does not have the port
    message = nullptr;
  });
  EXPECT_EQ(port->delegate(), nullptr);
  EXPECT_TRUE(turn());  // still scheduled; the message is dropped
  EXPECT_TRUE(PortMessage::initWithSendPort(port, nullptr, array(1))->sendBeforeDate(nullptr));
  EXPECT_TRUE(turn());
  EXPECT_THAT(target->calls(), IsEmpty());
  EXPECT_EQ(references(*target), 2U);
  giveUp(*target, 1);
  RunLoop::currentRunLoop()->removePort(port, NSDefaultRunLoopMode);
  EXPECT_FALSE(turn());
}

// A call that lets go of the last reference to the message object that brought it.
class Holder : public Object {
 public:
  void letGo() { held = nullptr; }
  PropertyValue held;
};
void describe(ClassBuilder<Holder>& c) {
  c.name("ThreadsTestHolder").operation("letGo", &Holder::letGo);
}

TEST(ThreadMessageEnd, EndsTheCallsBehindTheOneThatLetsGo) {
  const auto target = make<Recorder>();
  const auto holder = make<Holder>();
  auto message = QXThreadMessage::init();
  holder->held = message;
  message->sendMessageTo(target, "ping");
  message->sendMessageTo(holder, "letGo");
  message->sendMessageTo(target, "ping");
  message = nullptr;
  EXPECT_TRUE(turn());
  EXPECT_THAT(target->calls(), ElementsAre("ping"));
  EXPECT_FALSE(turn());
  giveUp(*target, 2);
  giveUp(*holder, 1);
}

TEST(ThreadMessageEnd, OfTheThreadEndsItsCalls) {
  const auto target = make<Recorder>();
  Ref<QXThreadMessage> message;
  onAnotherThread([&] {
    message = QXThreadMessage::init();
    message->sendMessageTo(target, "one:", 1);
    turn();
    message->sendMessageTo(target, "one:", 2);  // waits when the thread ends
  });
  message->sendMessageTo(target, "one:", 3);
  EXPECT_FALSE(
      PortMessage::initWithSendPort(message->port(), nullptr, array(1))->sendBeforeDate(nullptr));
  EXPECT_THAT(target->calls(), ElementsAre("one 1"));
  giveUp(*target, 3);
}

TEST(ThreadMessageEnd, MayComeWhileTheThreadEnds) {
  struct Late {
    Ref<QXThreadMessage> message;
    ~Late() {
      message = nullptr;  // there is no run loop any more
      try {
        RunLoop::currentRunLoop();
      } catch (const InternalInconsistencyException& e) {
        reason = e.reason();
      }
    }
    std::string& reason;
  };
  std::string reason;
  onAnotherThread([&] {
    thread_local Late late{nullptr, reason};
    late.message = QXThreadMessage::init();  // the loop is made later, and so ends earlier
  });
  EXPECT_EQ(reason,
            "+[NSRunLoop currentRunLoop]: the thread is ending and has no run loop any more");
}

}  // namespace
}  // namespace qx

// Turns, and the loop in the loop of another.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

#include "platform/loop_signal.h"
#include "platform/port_state.h"
#include "tests/platform/run_loop_fixture.h"

namespace qx {
namespace {

using platform_test::isReadable;
using platform_test::Listener;
using platform_test::send;
using testing::ElementsAre;
using testing::IsEmpty;

struct RunLoopTurnThread : platform_test::LoopTest {};

TEST_F(RunLoopTurnThread, GivesEveryPortItsTurn) {
  const auto flood = portFor("mode");
  const auto calm = portFor("mode");
  for (int i = 0; i < 1000; ++i) send(flood, "flood");
  send(calm, "calm");
  turn("mode");
  auto order = heard();
  EXPECT_EQ(order.size(), 256U);
  EXPECT_EQ(std::find(order.begin(), order.end(), "calm") - order.begin(), 64);
  for (int turns = 0; turns < 4; ++turns) turn("mode");
  EXPECT_EQ(heard().size(), 1001U - 256U);
}

TEST_F(RunLoopTurnThread, LetsTimersFireInAFlood) {
  const auto port = portFor(NSDefaultRunLoopMode);
  int fired = 0;
  const auto timer = Timer::timerWithTimeInterval(0.001, true, [&](Timer& t) {
    if (++fired < 5) return;
    t.invalidate();
    loop->stop();
  });
  loop->addTimer(timer, NSDefaultRunLoopMode);
  listener->then = [&](const std::string&) {  // never ends by itself
    send(port, "again");
    send(port, "again");
    listener->heard.clear();
    if (listener->heard.capacity() > 100) listener->heard.shrink_to_fit();
  };
  send(port, "first");
  loop->run();
  EXPECT_EQ(fired, 5);
}

// ---- hosted by another loop

TEST_F(RunLoopTurnThread, IsReadableWhileThereIsSomethingToDo) {
  const auto port = portFor(NSDefaultRunLoopMode);
  loop->runPending();
  EXPECT_FALSE(isReadable(*loop));
  std::thread([&] { send(port, "1"); }).join();
  EXPECT_TRUE(isReadable(*loop));
  EXPECT_TRUE(isReadable(*loop));
  EXPECT_FALSE(loop->runPending());
  EXPECT_FALSE(isReadable(*loop));
  EXPECT_THAT(heard(), ElementsAre("1"));
  send(port, "2");
  EXPECT_TRUE(isReadable(*loop));
  turn();
  loop->runPending();
  EXPECT_FALSE(isReadable(*loop));
}

TEST_F(RunLoopTurnThread, RunsATurnForItsHost) {
  const auto port = portFor(NSDefaultRunLoopMode);
  const auto other = portFor("other");
  send(other, "other");
  for (int i = 0; i < 600; ++i) send(port, "x");
  EXPECT_TRUE(loop->runPending());
  EXPECT_EQ(heard().size(), 256U);
  EXPECT_TRUE(isReadable(*loop));
  EXPECT_TRUE(loop->runPending());
  EXPECT_FALSE(loop->runPending());
  EXPECT_EQ(heard().size(), 344U);
  EXPECT_FALSE(isReadable(*loop));  // what waits for another mode does not keep the host busy
  send(other, "other");
  loop->runPending();
  EXPECT_FALSE(isReadable(*loop));
  turn("other");
  EXPECT_THAT(heard(), ElementsAre("other", "other"));
}

// A dialog: the host's own loop runs again in an operation, and looks at the same descriptor.
TEST_F(RunLoopTurnThread, ServesAHostThatNests) {
  const auto port = portFor(NSDefaultRunLoopMode);
  std::vector<std::string> order;
  listener->then = [&](const std::string& text) {
    order.push_back(text);
    if (text != "dialog") return;
    EXPECT_TRUE(isReadable(*loop));
    loop->runPending();
    EXPECT_FALSE(isReadable(*loop));
    std::thread([&] { send(port, "inside"); }).join();
    EXPECT_TRUE(isReadable(*loop));
    loop->runPending();
    order.push_back("dialog ends");
  };
  send(port, "dialog");
  send(port, "behind");
  loop->runPending();
  EXPECT_THAT(order, ElementsAre("dialog", "behind", "inside", "dialog ends"));
  EXPECT_FALSE(isReadable(*loop));
  std::thread([&] { send(port, "later"); }).join();
  EXPECT_TRUE(isReadable(*loop));
  turn();
}

// Nothing else waits when the dialog opens, and the port is still announced.
TEST_F(RunLoopTurnThread, ServesAHostThatNestsInTheLastMessage) {
  const auto port = portFor(NSDefaultRunLoopMode);
  listener->then = [&](const std::string& text) {
    if (text != "dialog") return;
    for (int i = 0; i < 2; ++i) {
      if (isReadable(*loop)) loop->runPending();
      std::thread([&] { send(port, "inside"); }).join();
      ASSERT_TRUE(isReadable(*loop));
      loop->runPending();
    }
  };
  send(port, "dialog");
  loop->runPending();
  EXPECT_THAT(heard(), ElementsAre("dialog", "inside", "inside"));
  EXPECT_FALSE(isReadable(*loop));
}

TEST_F(RunLoopTurnThread, TellsItsHostWhatAnOperationRaises) {
  const auto port = portFor(NSDefaultRunLoopMode);
  listener->then = [&](const std::string& text) {
    if (text == "raise") throw GenericException("raised");
  };
  send(port, "raise");
  send(port, "behind");
  EXPECT_THROW(loop->runPending(), GenericException);
  EXPECT_TRUE(isReadable(*loop));
  loop->runPending();
  EXPECT_THAT(heard(), ElementsAre("raise", "behind"));
}

TEST_F(RunLoopTurnThread, TakesAStopFromItsHost) {
  const auto port = portFor(NSDefaultRunLoopMode);
  loop->stop();
  send(port, "waits");
  EXPECT_TRUE(loop->runPending());
  EXPECT_THAT(heard(), IsEmpty());
  EXPECT_FALSE(loop->runPending());
  EXPECT_THAT(heard(), ElementsAre("waits"));
}

// The counter of the event tells how often it was written.
TEST(RunLoopWakeUp, ComesOnceForManyMessagesThread) {
  std::thread([] {
    const auto loop = RunLoop::currentRunLoop();
    const auto listener = make<Listener>();
    const auto port = Port::port();
    port->setDelegate(listener);
    loop->addPort(port, NSDefaultRunLoopMode);
    std::uint64_t writes = 0;
    const int event = port->state().loopHeld->descriptor();
    (void)!::read(event, &writes, sizeof writes);
    for (int i = 0; i < 200; ++i) send(port, "x");
    ASSERT_EQ(::read(event, &writes, sizeof writes), 8);
    EXPECT_EQ(writes, 1U);
    listener->then = [&](const std::string&) {
      if (listener->heard.size() < 1000) send(port, "x");
    };
    while (listener->heard.size() < 1000) loop->runPending();
    ASSERT_EQ(::read(event, &writes, sizeof writes), 8);
    EXPECT_LE(writes, 5U);  // one for each call that left something to do
  }).join();
}

}  // namespace
}  // namespace qx

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <functional>
#include <thread>
#include <utility>

#include "tests/frame/raises.h"
#include "tests/platform/run_loop_fixture.h"

namespace qx {
namespace {

using platform_test::send;
using testing::ElementsAre;
using testing::IsEmpty;

struct RunLoopThread : platform_test::LoopTest {};

TEST_F(RunLoopThread, IsOneForEachThread) {
  EXPECT_EQ(loop.get(), RunLoop::currentRunLoop().get());
  RunLoop* other = nullptr;
  std::thread([&] { other = RunLoop::currentRunLoop().get(); }).join();
  EXPECT_NE(other, loop.get());
  EXPECT_EQ(&loop->cls(), classNamed("NSRunLoop"));
}

TEST_F(RunLoopThread, BelongsToItsThread) {
  const auto port = Port::port();
  const auto timer = Timer::timerWithTimeInterval(1, false, [](Timer&) {});
  std::vector<std::string> reasons;
  const auto noteReason = [&](auto f) {
    reasons.push_back(reasonOf<InternalInconsistencyException>(f));
  };
  std::thread([&] {
    noteReason([&] { loop->addPort(port, "mode"); });
    noteReason([&] { loop->removePort(port, "mode"); });
    noteReason([&] { loop->addTimer(timer, "mode"); });
    noteReason([&] { loop->runMode("mode", nullptr); });
    noteReason([&] { loop->runUntilDate(nullptr); });
    noteReason([&] { loop->run(); });
    noteReason([&] { loop->currentMode(); });
    noteReason([&] { loop->runPending(); });
  }).join();
  std::vector<std::string> wanted;
  for (const char* operation :
       {"addPort:forMode:", "removePort:forMode:", "addTimer:forMode:", "runMode:beforeDate:",
        "runUntilDate:", "run", "currentMode", "runPending"}) {
    wanted.push_back(std::string("-[NSRunLoop ") + operation +
                     "]: the run loop belongs to another thread");
  }
  EXPECT_EQ(reasons, wanted);
}

TEST_F(RunLoopThread, SaysWhyItCanNotBeMade) {
  std::string reason;
  std::thread([&] {
    // Sanitizers look at a class for the first time by means of descriptors.
    reasonOf<InternalInconsistencyException>([] { throw InternalInconsistencyException("any"); });
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none{0, limit.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
    reason = reasonOf<InternalInconsistencyException>([] { RunLoop::currentRunLoop(); });
    ::setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_NE(RunLoop::currentRunLoop(), nullptr);
  }).join();
  EXPECT_EQ(reason, "A run loop can not be made: eventfd: Too many open files");
}

// ---- modes

TEST_F(RunLoopThread, RunsNoModeInWhichNothingIsScheduled) {
  EXPECT_FALSE(loop->runMode("nothing", Date::distantFuture()));
  EXPECT_FALSE(loop->runMode(NSDefaultRunLoopMode, Date::distantFuture()));
  loop->runUntilDate(Date::distantFuture());
  loop->run();
  const auto port = portFor("mode");
  EXPECT_TRUE(turn("mode"));
  loop->removePort(port, "mode");
  EXPECT_FALSE(loop->runMode("mode", Date::distantFuture()));
}

TEST_F(RunLoopThread, HandlesTheMessagesOfItsMode) {
  const auto a = portFor("a");
  const auto b = portFor("b");
  const auto both = portFor("a");
  add(both, "b");
  for (const char* text : {"1", "2"}) {
    send(a, std::string("a") + text);
    send(b, std::string("b") + text);
    send(both, std::string("both") + text);
  }
  turn("a");
  EXPECT_THAT(heard(), ElementsAre("a1", "a2", "both1", "both2"));
  send(both, "both3");
  turn("b");
  EXPECT_THAT(heard(), ElementsAre("b1", "b2", "both3"));
  turn("a");
  EXPECT_THAT(heard(), IsEmpty());
}

TEST_F(RunLoopThread, TellsTheModeThatRuns) {
  const auto port = portFor("outer");
  const auto inner = portFor("inner");
  std::vector<std::string> modes;
  listener->then = [&](const std::string& text) {
    modes.push_back(text + ": " + loop->currentMode()->utf8());
    if (text == "nest") turn("inner");
    if (text == "nest") modes.push_back("again: " + loop->currentMode()->utf8());
  };
  EXPECT_EQ(loop->currentMode(), nullptr);
  send(port, "nest");
  send(inner, "nested");
  send(port, "last");
  turn("outer");
  EXPECT_THAT(modes, ElementsAre("nest: outer", "nested: inner", "again: outer", "last: outer"));
  EXPECT_EQ(loop->currentMode(), nullptr);
}

TEST_F(RunLoopThread, KeepsWhatWaitsInAPortThatIsTakenOut) {
  const auto port = portFor("mode");
  const auto other = portFor("mode");
  send(port, "1");
  turn("mode");
  send(port, "2");
  loop->removePort(port, "mode");
  send(port, "3");
  turn("mode");
  EXPECT_THAT(heard(), ElementsAre("1"));
  add(port, "mode");
  turn("mode");
  EXPECT_THAT(heard(), ElementsAre("2", "3"));
}

TEST_F(RunLoopThread, TakesWhatWasSentBeforeThePortWasScheduled) {
  const auto port = Port::port();
  port->setDelegate(listener);
  std::thread([&] { send(port, "early"); }).join();
  add(port, "mode");
  turn("mode");
  EXPECT_THAT(heard(), ElementsAre("early"));
}

TEST_F(RunLoopThread, TakesNoPortOfAnotherLoop) {
  const auto port = Port::port();
  std::thread([&] { RunLoop::currentRunLoop()->addPort(port, "mode"); }).join();
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { loop->addPort(port, "mode"); }),
            "-[NSRunLoop addPort:forMode:]: the port belongs to the run loop of another thread");
  EXPECT_FALSE(PortMessage::initWithSendPort(port, nullptr, array(1))->sendBeforeDate(nullptr));
}

TEST_F(RunLoopThread, HoldsScheduledPorts) {
  auto port = Port::port();
  const WeakRef<Port> weak = port;
  loop->addPort(port, "a");
  loop->addPort(port, "a");
  loop->addPort(port, "b");
  port = nullptr;
  ASSERT_NE(weak.lock(), nullptr);
  loop->removePort(weak.lock(), "a");
  loop->removePort(weak.lock(), "a");
  loop->removePort(weak.lock(), "unknown");
  ASSERT_NE(weak.lock(), nullptr);
  loop->removePort(weak.lock(), "b");
  EXPECT_EQ(weak.lock(), nullptr);
}

}  // namespace
}  // namespace qx

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <thread>
#include <utility>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/run_loop.h>

#include "platform/loop_signal.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Writes down the texts that arrive, and does what a test wants with them.
class Listener : public Object, public PortDelegate {
 public:
  void handlePortMessage(const PortMessage& m) override {
    heard.push_back(m.components()->firstObject().description());
    const std::string text = heard.back();  // nested messages may move the list
    if (then) then(text);
  }
  std::vector<std::string> heard;
  std::function<void(const std::string&)> then;
};
void describe(ClassBuilder<Listener>& c) {
  c.name("PlatformTestListener").conforms<PortDelegate>();
}

void send(const Ref<Port>& port, StringArg text) {
  ASSERT_TRUE(PortMessage::initWithSendPort(port, nullptr, array(text))
                  ->sendBeforeDate(Date::distantFuture()));
}

// Whether another loop would look at this one now.
bool isReadable(const RunLoop& loop, int milliseconds = 0) {
  pollfd watched{loop.fileDescriptor(), POLLIN, 0};
  return ::poll(&watched, 1, milliseconds) == 1;
}

Ref<Date> inSeconds(double seconds) {
  return Date::dateWithTimeIntervalSince1970(Date::date()->timeIntervalSince1970() + seconds);
}

class Clock {
 public:
  double seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// Ports of this thread's loop, which are taken out of it at the end.
struct RunLoopThread : testing::Test {
  ~RunLoopThread() override {
    for (const auto& [port, mode] : added) loop->removePort(port, mode);
  }
  Ref<Port> portFor(StringArg mode) {
    auto port = Port::port();
    port->setDelegate(listener);
    add(port, mode);
    return port;
  }
  void add(const Ref<Port>& port, StringArg mode) {
    loop->addPort(port, mode);
    added.emplace_back(port, mode.utf8());
  }
  bool turn(StringArg mode = NSDefaultRunLoopMode) { return loop->runMode(mode, nullptr); }
  std::vector<std::string> heard() { return std::exchange(listener->heard, {}); }

  Ref<RunLoop> loop = RunLoop::currentRunLoop();
  Ref<Listener> listener = make<Listener>();
  std::vector<std::pair<Ref<Port>, std::string>> added;
};

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

// ---- waiting, limits, stopping

TEST_F(RunLoopThread, WaitsForAMessage) {
  const auto port = portFor("mode");
  std::thread sender([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    send(port, "late");
  });
  EXPECT_TRUE(loop->runMode("mode", Date::distantFuture()));
  sender.join();
  EXPECT_THAT(heard(), ElementsAre("late"));
}

TEST_F(RunLoopThread, EndsAtItsLimit) {
  const auto port = portFor(NSDefaultRunLoopMode);
  for (const double seconds : {0.0, 0.0015, 0.05}) {
    const Clock clock;
    EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, inSeconds(seconds)));
    EXPECT_GE(clock.seconds(), seconds);
    loop->runUntilDate(inSeconds(seconds));
    EXPECT_GE(clock.seconds(), 2 * seconds);
    EXPECT_LT(clock.seconds(), 2 * seconds + 5);
  }
  loop->runUntilDate(Date::distantPast());
  loop->runUntilDate(nullptr);
  loop->runUntilDate(Date::dateWithTimeIntervalSince1970(std::nan("")));
}

TEST_F(RunLoopThread, HandlesWhatComesUntilItsLimit) {
  const auto port = portFor(NSDefaultRunLoopMode);
  listener->then = [&](const std::string& text) {
    if (text.size() < 5) send(port, text + "x");
  };
  send(port, "x");
  loop->runUntilDate(inSeconds(0.02));
  EXPECT_THAT(heard(), ElementsAre("x", "xx", "xxx", "xxxx", "xxxxx"));
}

TEST_F(RunLoopThread, StopsFromAnotherThread) {
  const auto port = portFor(NSDefaultRunLoopMode);
  std::thread stopper([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    loop->stop();
  });
  loop->run();
  stopper.join();
}

TEST_F(RunLoopThread, EndsTheNextRunWhenStoppedBefore) {
  const auto port = portFor(NSDefaultRunLoopMode);
  send(port, "waits");
  loop->stop();
  loop->stop();
  EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, Date::distantFuture()));
  EXPECT_THAT(heard(), IsEmpty());
  turn();
  EXPECT_THAT(heard(), ElementsAre("waits"));
}

TEST_F(RunLoopThread, StopsTheInnermostRunBehindTheOperationUnderWay) {
  const auto port = portFor(NSDefaultRunLoopMode);
  std::vector<std::string> order;
  listener->then = [&](const std::string& text) {
    order.push_back(text);
    if (text == "nest") {
      loop->run();
      order.push_back("nested run ended");
    }
    if (text.starts_with("stop")) loop->stop();
  };
  for (const char* text : {"nest", "one", "stop inner", "two", "stop outer", "three"})
    send(port, text);
  loop->run();
  EXPECT_THAT(order,
              ElementsAre("nest", "one", "stop inner", "nested run ended", "two", "stop outer"));
  turn();
  EXPECT_EQ(order.back(), "three");
}

TEST_F(RunLoopThread, GoesOnBehindWhatRaises) {
  const auto port = portFor(NSDefaultRunLoopMode);
  const auto other = portFor("other");
  listener->then = [&](const std::string& text) {
    if (text == "raise") throw GenericException("raised");
  };
  for (const char* text : {"raise", "1", "raise", "2"}) send(port, text);
  EXPECT_THROW(loop->run(), GenericException);
  EXPECT_THAT(heard(), ElementsAre("raise"));
  EXPECT_EQ(loop->currentMode(), nullptr);
  EXPECT_TRUE(isReadable(*loop));
  turn("other");
  EXPECT_THROW(loop->run(), GenericException);
  turn();
  EXPECT_THAT(heard(), ElementsAre("1", "raise", "2"));
}

// ---- turns

TEST_F(RunLoopThread, GivesEveryPortItsTurn) {
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

TEST_F(RunLoopThread, LetsTimersFireInAFlood) {
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

TEST_F(RunLoopThread, IsReadableWhileThereIsSomethingToDo) {
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

TEST_F(RunLoopThread, RunsATurnForItsHost) {
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
TEST_F(RunLoopThread, ServesAHostThatNests) {
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

TEST_F(RunLoopThread, TellsItsHostWhatAnOperationRaises) {
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

TEST_F(RunLoopThread, TakesAStopFromItsHost) {
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

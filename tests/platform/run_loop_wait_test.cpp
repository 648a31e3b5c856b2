// Waiting, limits, stopping.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <thread>

#include "tests/platform/run_loop_fixture.h"

namespace qx {
namespace {

using platform_test::isReadable;
using platform_test::send;
using testing::ElementsAre;
using testing::IsEmpty;

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

struct RunLoopWaitThread : platform_test::LoopTest {};

TEST_F(RunLoopWaitThread, WaitsForAMessage) {
  const auto port = portFor("mode");
  std::thread sender([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    send(port, "late");
  });
  EXPECT_TRUE(loop->runMode("mode", Date::distantFuture()));
  sender.join();
  EXPECT_THAT(heard(), ElementsAre("late"));
}

// What a run sleeps through when nobody wakes it comes with its limit.
constexpr double kLimit = 20;

// A port that has just given its last message, to whoever runs the loop now.
TEST_F(RunLoopWaitThread, WaitsInANestedRun) {
  const auto port = portFor(NSDefaultRunLoopMode);
  std::thread sender;
  bool wasHeard = false;
  listener->then = [&](const std::string& text) {
    if (text != "nest") return;
    sender = std::thread([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      send(port, "late");
    });
    loop->runMode(NSDefaultRunLoopMode, inSeconds(kLimit));
    wasHeard = listener->heard.back() == "late";
  };
  send(port, "nest");
  const Clock clock;
  turn();
  sender.join();
  EXPECT_TRUE(wasHeard);
  EXPECT_LT(clock.seconds(), kLimit / 2);
}

TEST_F(RunLoopWaitThread, WaitsBehindWhatRaisedInAnotherMode) {
  const auto port = portFor("modal");
  listener->then = [&](const std::string& text) {
    if (text == "raise") throw GenericException("raised");
  };
  send(port, "raise");
  EXPECT_THROW(turn("modal"), GenericException);
  std::thread sender([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    send(port, "late");
  });
  const Clock clock;
  EXPECT_TRUE(loop->runMode("modal", inSeconds(kLimit)));
  sender.join();
  EXPECT_THAT(heard(), ElementsAre("raise", "late"));
  EXPECT_LT(clock.seconds(), kLimit / 2);
}

TEST_F(RunLoopWaitThread, EndsAtItsLimit) {
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

TEST_F(RunLoopWaitThread, HandlesWhatComesUntilItsLimit) {
  const auto port = portFor(NSDefaultRunLoopMode);
  listener->then = [&](const std::string& text) {
    if (text.size() < 5) send(port, text + "x");
  };
  send(port, "x");
  loop->runUntilDate(inSeconds(0.02));
  EXPECT_THAT(heard(), ElementsAre("x", "xx", "xxx", "xxxx", "xxxxx"));
}

TEST_F(RunLoopWaitThread, StopsFromAnotherThread) {
  const auto port = portFor(NSDefaultRunLoopMode);
  std::thread stopper([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    loop->stop();
  });
  loop->run();
  stopper.join();
}

TEST_F(RunLoopWaitThread, EndsTheNextRunWhenStoppedBefore) {
  const auto port = portFor(NSDefaultRunLoopMode);
  send(port, "waits");
  loop->stop();
  loop->stop();
  EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, Date::distantFuture()));
  EXPECT_THAT(heard(), IsEmpty());
  turn();
  EXPECT_THAT(heard(), ElementsAre("waits"));
}

TEST_F(RunLoopWaitThread, StopsTheInnermostRunBehindTheOperationUnderWay) {
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

TEST_F(RunLoopWaitThread, GoesOnBehindWhatRaises) {
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

}  // namespace
}  // namespace qx

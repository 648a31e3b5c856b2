#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <chrono>
#include <cmath>
#include <memory>
#include <thread>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/timer.h>

#include "tests/frame/raises.h"

namespace qx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void pause(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

struct TimerThread : testing::Test {
  ~TimerThread() override {
    for (const auto& t : timers) t->invalidate();
  }
  Ref<Timer> add(double seconds, bool repeats, std::function<void(Timer&)> block,
                 StringArg mode = NSDefaultRunLoopMode) {
    timers.push_back(Timer::timerWithTimeInterval(seconds, repeats, std::move(block)));
    loop->addTimer(timers.back(), mode);
    return timers.back();
  }
  std::function<void(Timer&)> note(std::string text) {
    return [this, text = std::move(text)](Timer&) { fired.push_back(text); };
  }
  Ref<RunLoop> loop = RunLoop::currentRunLoop();
  std::vector<Ref<Timer>> timers;
  std::vector<std::string> fired;
};

TEST_F(TimerThread, FireInTheOrderOfTheirTimes) {
  add(0.003, false, note("third"));
  add(0.001, false, note("first"));
  add(0.002, false, note("second"));
  loop->run();  // until nothing is scheduled any more
  EXPECT_THAT(fired, ElementsAre("first", "second", "third"));
  for (const auto& t : timers) EXPECT_FALSE(t->isValid());
}

TEST_F(TimerThread, NeverFireEarly) {
  const auto start = std::chrono::steady_clock::now();
  add(0.02, false, note("fired"));
  loop->run();
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
}

TEST_F(TimerThread, RepeatUntilTheyAreEnded) {
  int count = 0;
  const auto timer = add(0.001, true, [&](Timer& t) {
    if (++count == 3) t.invalidate();
  });
  loop->run();
  EXPECT_EQ(count, 3);
  EXPECT_FALSE(timer->isValid());
}

TEST_F(TimerThread, LeaveOutStepsThatWereMissed) {
  add(0.001, true, note("fired"));
  pause(20);
  loop->runMode(NSDefaultRunLoopMode, nullptr);
  EXPECT_THAT(fired, testing::SizeIs(testing::AllOf(testing::Ge(1U), testing::Le(2U))));
}

TEST_F(TimerThread, WaitWhileOtherModesRun) {
  add(0.001, false, note("default"));
  const auto both = add(0.001, false, note("both"), "modal");
  loop->addTimer(both, NSDefaultRunLoopMode);
  pause(2);
  loop->runMode("modal", nullptr);
  EXPECT_THAT(fired, ElementsAre("both"));
  EXPECT_FALSE(loop->runMode("modal", Date::distantFuture()));
  loop->run();
  EXPECT_THAT(fired, ElementsAre("both", "default"));
}

TEST_F(TimerThread, DoNotEndTheWaitForAMessage) {
  add(0.001, true, note("fired"));
  const auto limit =
      Date::dateWithTimeIntervalSince1970(Date::date()->timeIntervalSince1970() + 0.01);
  EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, limit));
  EXPECT_GE(fired.size(), 2U);
  EXPECT_GE(Date::date()->timeIntervalSince1970(), limit->timeIntervalSince1970());
}

TEST_F(TimerThread, GoOnWhenTheyRaise) {
  int count = 0;
  add(0.001, true, [&](Timer&) {
    if (++count == 1) throw GenericException("raised by a timer");
    loop->stop();
  });
  EXPECT_THROW(loop->run(), GenericException);
  loop->run();
  EXPECT_EQ(count, 2);
}

TEST_F(TimerThread, AreNotCalledInTheirOwnCall) {
  int depth = 0;
  int deepest = 0;
  int calls = 0;
  add(0.001, true, [&](Timer& t) {
    deepest = std::max(deepest, ++depth);
    pause(2);
    loop->runMode(NSDefaultRunLoopMode, nullptr);
    --depth;
    if (++calls == 3) t.invalidate();
  });
  add(0.05, false, note("other"));
  loop->run();
  EXPECT_EQ(deepest, 1);
  EXPECT_THAT(fired, ElementsAre("other"));
}

TEST_F(TimerThread, MayBeAddedAgainInTheirCall) {
  int count = 0;
  add(0.001, true, [&](Timer& t) {
    loop->addTimer(&t, "modal");
    if (++count == 2) t.invalidate();
  });
  loop->runMode(NSDefaultRunLoopMode,
                Date::dateWithTimeIntervalSince1970(Date::date()->timeIntervalSince1970() + 0.005));
  if (count < 2) loop->runMode("modal", Date::distantFuture());
  loop->run();
  EXPECT_EQ(count, 2);
}

TEST_F(TimerThread, LetGoOfTheirBlockWhenEnded) {
  auto witness = std::make_shared<int>();
  const auto timer = add(10, true, [witness](Timer&) {});
  EXPECT_EQ(witness.use_count(), 2);
  timer->invalidate();
  EXPECT_EQ(witness.use_count(), 1);
  EXPECT_FALSE(loop->runMode(NSDefaultRunLoopMode, Date::distantFuture()));
}

TEST_F(TimerThread, WakeTheHostOfTheDescriptor) {
  loop->runPending();
  add(0.02, false, note("fired"));
  pollfd watched{loop->fileDescriptor(), POLLIN, 0};
  EXPECT_EQ(::poll(&watched, 1, 0), 0);
  ASSERT_EQ(::poll(&watched, 1, 60000), 1);
  loop->runPending();
  EXPECT_THAT(fired, ElementsAre("fired"));
  EXPECT_EQ(::poll(&watched, 1, 0), 0);
}

TEST_F(TimerThread, TakeOddTimesForShortOnes) {
  for (const double seconds : {0.0, -1.0, std::nan(""), -HUGE_VAL}) {
    EXPECT_EQ(Timer::timerWithTimeInterval(seconds, false, [](Timer&) {})->timeInterval(), 1e-4);
  }
  EXPECT_EQ(Timer::timerWithTimeInterval(HUGE_VAL, false, [](Timer&) {})->timeInterval(), 1e9);
  EXPECT_EQ(Timer::timerWithTimeInterval(0.5, false, [](Timer&) {})->timeInterval(), 0.5);
}

TEST_F(TimerThread, NeedABlock) {
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { Timer::timerWithTimeInterval(1, false, {}); }),
            "+[NSTimer timerWithTimeInterval:repeats:block:]: the block is missing");
}

}  // namespace
}  // namespace qx

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/threads/thread_message_fixture.h"

namespace qx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using threads_test::giveUp;
using threads_test::isIdle;
using threads_test::onAnotherThread;
using threads_test::references;
using threads_test::turn;

struct ThreadMessage : threads_test::ThreadMessage {};

TEST_F(ThreadMessage, HasAPortWhoseDelegateItIs) {
  ASSERT_TRUE(message->port());
  EXPECT_EQ(message->port()->delegate().get(), message.get());
  EXPECT_EQ(std::string(message->cls().name()), "QXThreadMessage");
  EXPECT_EQ(&message->cls(), classNamed("QXThreadMessage"));
}

TEST_F(ThreadMessage, PerformsCallsWithUpToTwoArguments) {
  message->sendMessageTo(target, "ping");
  const PropertyValue first = "first";
  const PropertyValue list = array(2);
  message->sendMessageTo(target, "one:", first);
  message->sendMessageTo(target, "two:with:", 1, list);
  turn();
  EXPECT_THAT(target->calls(), ElementsAre("ping", "one first", "two 1 (2)"));
  giveUp(*first.object(), 1);
  giveUp(*list.object(), 1);
}

TEST_F(ThreadMessage, PerformsOnTheThreadThatMadeIt) {
  onAnotherThread([&] { message->sendMessageTo(target, "ping"); });
  turn();
  EXPECT_THAT(target->calls(), ElementsAre("ping"));
  EXPECT_EQ(target->thread, std::this_thread::get_id());
}

TEST_F(ThreadMessage, SendsNothingToANilTarget) {
  message->sendMessageTo(nullptr, "ping");
  message->sendMessageTo(nullptr, "one:", 1);
  message->sendMessageTo(nullptr, "two:with:", 1, 2);
  EXPECT_TRUE(isIdle(*message));
  EXPECT_EQ(references(*target), 1U);
}

TEST_F(ThreadMessage, PassesNilAsAnArgument) {
  message->sendMessageTo(target, "one:", nullptr);
  message->sendMessageTo(target, "two:with:", nullptr, nullptr);
  const PropertyValue second = "second";
  message->sendMessageTo(target, "two:with:", nullptr, second);
  turn();
  EXPECT_THAT(target->calls(), ElementsAre("one nil", "two nil nil", "two nil second"));
  giveUp(*second.object(), 1);
}

TEST_F(ThreadMessage, TakesValuesOfEveryKindAsTargets) {
  const auto list = MutableArray::init();
  message->sendMessageTo(list, "addObject:", 7);
  turn();
  EXPECT_EQ(list->count(), 1U);
  giveUp(*list, 1);
  message->sendMessageTo(12, Selector::named("description"));
  EXPECT_NO_THROW(turn());
}

TEST_F(ThreadMessage, WaitsWhileTheLoopDoesNotRun) {
  message->sendMessageTo(target, "ping");
  EXPECT_THAT(target->calls(), IsEmpty());
  turn();
  EXPECT_THAT(target->calls(), ElementsAre("ping"));
}

TEST_F(ThreadMessage, WaitsWhileOtherModesRun) {
  const auto other = Port::port();
  RunLoop::currentRunLoop()->addPort(other, "modal");
  message->sendMessageTo(target, "one:", 1);
  message->sendMessageTo(target, "one:", 2);
  EXPECT_TRUE(turn("modal"));
  message->sendMessageTo(target, "one:", 3);
  EXPECT_TRUE(turn("modal"));
  EXPECT_THAT(target->calls(), IsEmpty());
  turn();
  EXPECT_THAT(target->calls(), ElementsAre("one 1", "one 2", "one 3"));
  RunLoop::currentRunLoop()->removePort(other, "modal");
}

TEST_F(ThreadMessage, PerformsWhatACallSendsInALaterTurn) {
  const PropertyValue ping = "ping";
  message->sendMessageTo(message, "sendMessageTo:inSelector:", target, ping);
  turn();
  EXPECT_THAT(target->calls(), IsEmpty());
  turn();
  EXPECT_THAT(target->calls(), ElementsAre("ping"));
  giveUp(*message, 1);
  giveUp(*ping.object(), 1);
}

TEST_F(ThreadMessage, GoesOnInNestedRuns) {
  for (int i = 1; i <= 2; ++i) message->sendMessageTo(target, "one:", i);
  message->sendMessageTo(target, "nest");
  for (int i = 3; i <= 4; ++i) message->sendMessageTo(target, "one:", i);
  turn();
  EXPECT_THAT(target->calls(), ElementsAre("one 1", "one 2", "nest", "one 3", "one 4", "nested"));
}

TEST_F(ThreadMessage, NestsRunsInRuns) {
  for (int i = 0; i < 3; ++i) message->sendMessageTo(target, "nest");
  message->sendMessageTo(target, "ping");
  turn();
  EXPECT_THAT(target->calls(),
              ElementsAre("nest", "nest", "nest", "ping", "nested", "nested", "nested"));
}

}  // namespace
}  // namespace qx

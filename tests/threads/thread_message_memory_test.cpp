#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/raises.h"
#include "tests/threads/counted_memory.h"
#include "tests/threads/thread_message_fixture.h"
#include "threads/thread_message_record.h"

namespace qx {
namespace {

using testing::ElementsAre;
using threads_test::allocations;
using threads_test::giveUp;
using threads_test::isIdle;
using threads_test::livePieces;
using threads_test::onAnotherThread;
using threads_test::references;
using threads_test::Thing;
using threads_test::turn;

// What a call leaves behind, beside what is made once.
struct ThreadMessageMemory : threads_test::ThreadMessage {
  ThreadMessageMemory() {
    const auto first = make<Thing>();
    const auto send = [&] { message->sendMessageTo(first, "isEqual:", 1); };
    for (int i = 0; i < 100; ++i) send();
    onAnotherThread(send);
    while (!isIdle(*message)) turn();
    giveUp(*first, 101);
  }
};

TEST_F(ThreadMessageMemory, LeavesTargetAndArgumentsHeld) {
  const auto first = make<Thing>();
  const auto second = make<Thing>();
  message->sendMessageTo(target, "ping");
  message->sendMessageTo(target, "one:", first);
  message->sendMessageTo(target, "two:with:", first, second);
  const auto held = [&] {
    return std::vector<std::uint32_t>{references(*target), references(*first), references(*second)};
  };
  EXPECT_THAT(held(), ElementsAre(4, 3, 2));
  turn();
  EXPECT_THAT(target->calls(), testing::SizeIs(3));
  EXPECT_THAT(held(), ElementsAre(4, 3, 2));
  giveUp(*first, 2);
  giveUp(*second, 1);
}

// More records than are kept for later ones.
TEST_F(ThreadMessageMemory, FreesTheRecordsOfPerformedCalls) {
  SKIP_WITHOUT_OWN_MEMORY();
  const auto quiet = make<Thing>();
  constexpr long kCalls = 100000;
  constexpr long kKept = 270;
  const long before = livePieces();
  for (long i = 0; i < kCalls; ++i) message->sendMessageTo(quiet, "isEqual:", 1);
  EXPECT_GT(livePieces() - before, 5 * kKept);
  while (!isIdle(*message)) turn();
  EXPECT_LT(livePieces() - before, kKept);
  giveUp(*quiet, kCalls);
}

TEST_F(ThreadMessageMemory, AllocatesNothingInASteadyFlow) {
  SKIP_WITHOUT_OWN_MEMORY();
  const auto quiet = make<Thing>();
  const auto exchange = [&](int calls) {
    for (int i = 0; i < calls; ++i) message->sendMessageTo(quiet, "isEqual:", 1);
    while (!isIdle(*message)) turn();
  };
  // How many sheets are in use at once depends on where in a sheet a round begins.
  exchange(2000);
  const long before = allocations();
  for (int i = 0; i < 10; ++i) exchange(1000);
  EXPECT_EQ(allocations() - before, 0);
  giveUp(*quiet, 12000);
}

// Those of sending threads, which come from their threads' own sheets.
TEST_F(ThreadMessageMemory, AllocatesNothingForRecordsOfManyThreads) {
  SKIP_WITHOUT_OWN_MEMORY();
  const auto quiet = make<Thing>();
  const long before = livePieces();
  for (int round = 0; round < 400; ++round) {
    onAnotherThread([&] { message->sendMessageTo(quiet, "isEqual:", 1); });
    turn();
  }
  EXPECT_LT(livePieces() - before, 20);
  giveUp(*quiet, 400);
}

// The last of them when the thread has given up its own sheet already.
TEST_F(ThreadMessageMemory, FreesRecordsOfThreadsThatEndMeanwhile) {
  SKIP_WITHOUT_OWN_MEMORY();
  const auto quiet = make<Thing>();
  constexpr int kRounds = 300;
  constexpr int kCalls = 100;  // more than a sheet holds
  struct Late {
    ~Late() { message->sendMessageTo(receiver, "isEqual:", 1); }
    Ref<QXThreadMessage> message;
    Ref<Thing> receiver;
  };
  const auto round = [&] {
    onAnotherThread([&] {
      thread_local Late late;  // ends behind what the first call makes
      late.message = message;
      late.receiver = quiet;
      for (int i = 1; i < kCalls; ++i) message->sendMessageTo(quiet, "isEqual:", 1);
    });
    EXPECT_EQ(references(*quiet), 1U + kCalls);
    while (!isIdle(*message)) turn();
    giveUp(*quiet, kCalls);
  };
  round();
  const long before = livePieces();
  for (int i = 0; i < kRounds; ++i) round();
  EXPECT_LT(livePieces() - before, 20);
}

TEST_F(ThreadMessageMemory, FreesTheRecordOfACallThatRaises) {
  SKIP_WITHOUT_OWN_MEMORY();
  const auto raises = [&](int calls) {
    for (int i = 0; i < calls; ++i) {
      message->sendMessageTo(target, "raise");
      EXPECT_THROW(turn(), std::runtime_error);
      target->calls();
    }
  };
  raises(200);
  const long before = livePieces();
  raises(1000);
  EXPECT_LE(livePieces() - before, 1);
}

TEST_F(ThreadMessageMemory, GoesOnBehindACallThatRaises) {
  message->sendMessageTo(target, "one:", 1);
  message->sendMessageTo(target, "raise");
  message->sendMessageTo(target, "noSuchOperation");
  message->sendMessageTo(target, "one:", 2);
  EXPECT_THROW(turn(), std::runtime_error);
  EXPECT_THAT(target->calls(), ElementsAre("one 1", "raise"));
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { turn(); }),
            "-[ThreadsTestRecorder noSuchOperation]: the receiver has no such operation");
  turn();
  EXPECT_THAT(target->calls(), ElementsAre("one 2"));
}

TEST_F(ThreadMessageMemory, SendsNothingWithoutMemory) {
  SKIP_WITHOUT_OWN_MEMORY();
  std::vector<detail::ThreadMessageMemory*> records;
  records.reserve(100000);
  {
    const threads_test::NoMemory none;
    while (auto* record = detail::allocateThreadMessage()) records.push_back(record);
    message->sendMessageTo(target, "one:", 1);
  }
  EXPECT_TRUE(isIdle(*message));
  EXPECT_EQ(references(*target), 1U);
  for (auto* record : records) detail::freeThreadMessage(&record->record);
  message->sendMessageTo(target, "one:", 2);
  turn();
  EXPECT_THAT(target->calls(), ElementsAre("one 2"));
}

TEST_F(ThreadMessageMemory, DoesNotRaiseACountThatIsNearlyFull) {
  auto& refs = detail::ObjectAccess::refs(*target);
  const std::uint32_t usual = refs.load();
  const std::uint32_t nearlyFull = (std::uint32_t{1} << 30) + 2 * detail::ObjectAccess::kOne;
  refs = nearlyFull;
  message->sendMessageTo(target, "two:with:", target, target);
  EXPECT_EQ(refs.load(), nearlyFull);
  turn();
  EXPECT_EQ(refs.load(), nearlyFull);
  EXPECT_THAT(target->calls(), testing::SizeIs(1));
  refs = usual;
}

// An operation that gives up the reference of its own call, and goes on.
class Releaser : public Object {
 public:
  explicit Releaser(std::vector<std::string>& log) : log_(log) {}
  void letGo() {
    release();
    log_.push_back("still here");
  }

 protected:
  ~Releaser() override { log_.push_back("gone"); }

 private:
  std::vector<std::string>& log_;
};
void describe(ClassBuilder<Releaser>& c) {
  c.name("ThreadsTestReleaser").operation("letGo", &Releaser::letGo);
}

TEST_F(ThreadMessageMemory, HoldsTheTargetWhileItPerforms) {
  std::vector<std::string> log;
  for (int i = 0; i < 2; ++i) message->sendMessageTo(make<Releaser>(log), "letGo");
  turn();
  EXPECT_THAT(log, ElementsAre("still here", "gone", "still here", "gone"));
}

}  // namespace
}  // namespace qx

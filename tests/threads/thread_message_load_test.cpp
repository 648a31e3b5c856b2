// Many senders at once. Counts stand for calls that are written down: the references that calls
// leave behind are given up at the end.

#include <gtest/gtest.h>
#include <poll.h>

#include <atomic>
#include <thread>

#include <QXFoundation/QXFoundation.h>

#include "tests/threads/recorder.h"

namespace qx {
namespace {

using threads_test::giveUp;
using threads_test::references;

// Checks that each sender's numbers arrive in their order.
class Sequence : public Object {
 public:
  explicit Sequence(int senders) : last(static_cast<std::size_t>(senders), 0) {}
  void number(int sender, long n) {
    ++count;
    inOrder = inOrder && n == ++last[static_cast<std::size_t>(sender)];
    if (count == until) RunLoop::currentRunLoop()->stop();
  }
  std::vector<long> last;
  long count = 0;
  long until = -1;
  bool inOrder = true;
};
void describe(ClassBuilder<Sequence>& c) {
  c.name("ThreadsTestSequence").operation("number:of:", &Sequence::number);
}

struct Senders {
  Senders(const QXThreadMessage& message, const Ref<Sequence>& target, int senders, long each) {
    for (int s = 0; s < senders; ++s) {
      threads.emplace_back([&message, target, s, each] {
        for (long n = 1; n <= each; ++n) message.sendMessageTo(target, "number:of:", s, n);
      });
    }
  }
  ~Senders() {
    for (std::thread& t : threads) t.join();
  }
  std::vector<std::thread> threads;
};

TEST(ThreadMessageLoad, OfEightSendersArrivesInOrder) {
  constexpr int kSenders = 8;
  constexpr long kEach = 125000;
  const auto message = QXThreadMessage::init();
  const auto target = make<Sequence>(kSenders);
  target->until = kSenders * kEach;
  {
    const Senders senders(*message, target, kSenders, kEach);
    RunLoop::currentRunLoop()->run();
  }
  EXPECT_EQ(target->count, kSenders * kEach);
  EXPECT_TRUE(target->inOrder);
  giveUp(*target, kSenders * kEach);
}

TEST(ThreadMessageLoad, IsDeliveredByAHostOfTheDescriptor) {
  constexpr int kSenders = 4;
  constexpr long kEach = 10000;
  const auto message = QXThreadMessage::init();
  const auto target = make<Sequence>(kSenders);
  const auto loop = RunLoop::currentRunLoop();
  {
    const Senders senders(*message, target, kSenders, kEach);
    while (target->count < kSenders * kEach) {
      pollfd watched{loop->fileDescriptor(), POLLIN, 0};
      ASSERT_EQ(::poll(&watched, 1, 60000), 1);
      loop->runPending();
    }
  }
  EXPECT_TRUE(target->inOrder);
  giveUp(*target, kSenders * kEach);
}

// The receiving thread ends while others send: what is not performed is not, and nothing else
// happens.
TEST(ThreadMessageLoad, MayOutliveTheReceivingThread) {
  for (int round = 0; round < 30; ++round) {
    const auto target = make<Sequence>(2);
    std::atomic<const QXThreadMessage*> made = nullptr;
    Ref<QXThreadMessage> message;
    std::thread receiver([&] {
      message = QXThreadMessage::init();
      target->until = 100 + round * 10;
      made = message.get();
      RunLoop::currentRunLoop()->run();
    });
    while (made == nullptr) std::this_thread::yield();
    {
      const Senders senders(*made, target, 2, 500);
    }
    receiver.join();
    EXPECT_TRUE(target->inOrder);
    EXPECT_GE(target->count, target->until);
    giveUp(*target, references(*target) - 1L);
  }
}

// Message objects are let go of by the thread that comes last, whichever that is. The ports of
// those that another thread ended stay until the receiving thread ends.
TEST(ThreadMessageLoad, EndsWithTheLastWhoHoldsTheObject) {
  const auto target = make<Sequence>(1);
  threads_test::onAnotherThread([&] {
    for (int round = 0; round < 200; ++round) {
      auto message = QXThreadMessage::init();
      std::thread sender([&target, message]() mutable {
        for (int n = 0; n < 20; ++n) message->sendMessageTo(target, "number:of:", 0, n);
        message = nullptr;
      });
      threads_test::turn();
      message = nullptr;
      threads_test::turn();
      sender.join();
    }
  });
  giveUp(*target, references(*target) - 1L);
}

TEST(ThreadMessageLoad, StopsFromOtherThreads) {
  const auto message = QXThreadMessage::init();
  const auto loop = RunLoop::currentRunLoop();
  for (int round = 0; round < 200; ++round) {
    std::thread stopper([&] { loop->stop(); });
    loop->run();
    stopper.join();
  }
}

}  // namespace
}  // namespace qx

// Bursts: another thread sends so many messages while the receiver sleeps, which then performs them
// all. Both are measured by the processor time of their threads.

#include <semaphore>
#include <thread>

#include "bench/growth/growth.h"

namespace bench {
namespace {

class BurstCounter : public qx::Object {
 public:
  void expect(long messages) { missing_ = messages; }
  void number(long n) {
    require(n == missing_, "messages lost or out of order");
    if (--missing_ == 0) qx::RunLoop::currentRunLoop()->stop();
  }

 private:
  long missing_ = 0;
};
void describe(qx::ClassBuilder<BurstCounter>& c) {
  c.name("BenchBurstCounter").operation("number:", &BurstCounter::number);
}

// A thread that sends a burst whenever it is asked to.
class Sender {
 public:
  explicit Sender(long messages) : messages_(messages) {}
  Sender(const Sender&) = delete;
  Sender& operator=(const Sender&) = delete;
  ~Sender() {
    isEnding_ = true;
    wanted_.release();
    thread_.join();
  }

  // The seconds that the sending took; the messages wait when it returns.
  double sendBurst() {
    wanted_.release();
    sent_.acquire();
    return seconds_;
  }
  // Performs them, and gives the seconds that this took.
  double performBurst() {
    target_->expect(messages_);
    const double start = qx::processorTime();
    qx::RunLoop::currentRunLoop()->run();
    const double took = qx::processorTime() - start;
    for (long i = 0; i < messages_; ++i) target_->release();  // every call leaves its target held
    return took;
  }

 private:
  void work() {
    for (;;) {
      wanted_.acquire();
      if (isEnding_) return;
      const double start = qx::processorTime();
      for (long n = messages_; n > 0; --n) message_->sendMessageTo(target_, "number:", n);
      seconds_ = qx::processorTime() - start;
      sent_.release();
    }
  }

  long messages_;
  double seconds_ = 0;
  bool isEnding_ = false;
  std::binary_semaphore wanted_{0};
  std::binary_semaphore sent_{0};
  qx::Ref<BurstCounter> target_ = qx::make<BurstCounter>();
  qx::Ref<qx::QXThreadMessage> message_ = qx::QXThreadMessage::init();
  std::thread thread_{[this] { work(); }};
};

void burst(benchmark::State& state, bool isSending) {
  Sender sender(static_cast<long>(state.range(0)));
  double total = 0;
  for (auto _ : state) {
    const double sending = sender.sendBurst();
    const double performing = sender.performBurst();
    const double took = isSending ? sending : performing;
    state.SetIterationTime(took);
    total += took;
  }
  reportGrowth(state, total);
}

void send(benchmark::State& state) { burst(state, true); }
void perform(benchmark::State& state) { burst(state, false); }

BENCHMARK(send)->Name("messages/send")->Apply(everySize);
BENCHMARK(perform)->Name("messages/perform")->Apply(everySize);

}  // namespace
}  // namespace bench

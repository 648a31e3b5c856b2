// Messages between threads: two senders, and a receiver whose run loop has a timer beside.

#include <thread>

#include <QXFoundation/QXFoundation.h>

#include "tests/soak/soak.h"

namespace soak {
namespace {

// Lives as long as the program, as a call keeps its target. Used by the receiving thread alone.
class Receiver : public qx::Object {
 public:
  void takeFromFirst(int number) { take(0, number); }
  void takeFromSecond(int number) { take(1, number); }
  void stop() { qx::RunLoop::currentRunLoop()->stop(); }
  std::atomic<int> received[2] = {0, 0};
  bool isInOrder = true;

 private:
  void take(int sender, int number) {
    isInOrder = isInOrder && number == received[sender];
    ++received[sender];
  }
};
void describe(qx::ClassBuilder<Receiver>& c) {
  c.name("SoakReceiver")
      .operation("takeFromFirst:", &Receiver::takeFromFirst)
      .operation("takeFromSecond:", &Receiver::takeFromSecond)
      .operation("stop", &Receiver::stop);
}

// Sends in bursts, never more than one ahead of what was received, so that what waits does not
// grow.
int send(const Ground& ground, const qx::QXThreadMessage& to, const qx::Ref<Receiver>& receiver,
         int sender) {
  int sent = 0;
  while (!ground.isOver) {
    for (int i = 0; i < 1000; ++i, ++sent) {
      if (sender == 0) {
        to.sendMessageTo(receiver, "takeFromFirst:", sent);
      } else {
        to.sendMessageTo(receiver, "takeFromSecond:", sent);
      }
    }
    while (receiver->received[sender] < sent && !ground.isOver) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  return sent;
}

}  // namespace

void exchangeMessages(Ground& ground) {
  static const auto* receiver = new qx::Ref<Receiver>(qx::make<Receiver>());
  int ticks = 0;
  const auto messages = qx::QXThreadMessage::init();
  const auto timer = qx::Timer::timerWithTimeInterval(0.005, true, [&](qx::Timer&) { ++ticks; });
  qx::RunLoop::currentRunLoop()->addTimer(timer, qx::NSDefaultRunLoopMode);

  int sent[2] = {0, 0};
  std::thread senders([&] {
    std::thread second([&] { sent[1] = send(ground, *messages, *receiver, 1); });
    sent[0] = send(ground, *messages, *receiver, 0);
    second.join();
    messages->sendMessageTo(*receiver, "stop");
  });
  qx::RunLoop::currentRunLoop()->run();
  senders.join();
  timer->invalidate();
  expect((*receiver)->isInOrder, "messages came in another order");
  expect((*receiver)->received[0] == sent[0] && (*receiver)->received[1] == sent[1],
         "messages were lost");
  expect(sent[0] > 0 && ticks > 0, "nothing was sent");
}

}  // namespace soak

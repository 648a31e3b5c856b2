#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/port.h>

#include "platform/send_list.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

using testing::ElementsAre;

// A delegate by operation; it keeps what it gets.
class Keeper : public Object {
 public:
  void handlePortMessage(const Ref<PortMessage>& m) {
    kept.push_back(m);
    if (successor != nullptr) m->sendPort()->setDelegate(successor);
  }
  std::vector<Ref<PortMessage>> kept;
  Ref<Object> successor;
};
void describe(ClassBuilder<Keeper>& c) {
  c.name("PlatformTestKeeper").operation("handlePortMessage:", &Keeper::handlePortMessage);
}

// A delegate by protocol.
class Counter : public Object, public PortDelegate {
 public:
  void handlePortMessage(const PortMessage&) override { ++count; }
  int count = 0;
};
void describe(ClassBuilder<Counter>& c) { c.name("PlatformTestCounter").conforms<PortDelegate>(); }

struct PortThread : testing::Test {
  PortThread() { loop->addPort(port, "mode"); }
  ~PortThread() override { loop->removePort(port, "mode"); }
  void turn() { loop->runMode("mode", nullptr); }
  Ref<RunLoop> loop = RunLoop::currentRunLoop();
  Ref<Port> port = Port::port();
};

TEST_F(PortThread, DeliversWhatWasSent) {
  const auto keeper = make<Keeper>();
  port->setDelegate(keeper);
  const auto answers = Port::port();
  const auto data = Data::from("bytes");
  const auto message = PortMessage::initWithSendPort(port, answers, array(data, 2));
  EXPECT_TRUE(message->sendBeforeDate(Date::distantFuture()));
  EXPECT_TRUE(message->sendBeforeDate(Date::distantPast()));  // again: handing over never waits
  turn();
  ASSERT_EQ(keeper->kept.size(), 2U);
  for (const auto& m : keeper->kept) {
    EXPECT_EQ(m->sendPort().get(), port.get());
    EXPECT_EQ(m->receivePort().get(), answers.get());
    EXPECT_TRUE(isSame(m->components()->firstObject(), data));
    EXPECT_EQ(m->components()->count(), 2U);
  }
}

TEST_F(PortThread, SendsTheListAsItIsThen) {
  const auto keeper = make<Keeper>();
  port->setDelegate(keeper);
  const auto list = MutableArray::init();
  const auto message = PortMessage::initWithSendPort(port, nullptr, list);
  for (int i = 0; i < 3; ++i) {
    list->addObject(i);
    message->sendBeforeDate(nullptr);
  }
  list->removeAllObjects();
  PortMessage::initWithSendPort(port, nullptr, nullptr)->sendBeforeDate(nullptr);
  turn();
  ASSERT_EQ(keeper->kept.size(), 4U);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(keeper->kept[i]->components()->count(), i + 1);
  EXPECT_EQ(keeper->kept[3]->components(), nullptr);
}

TEST_F(PortThread, TellsDelegatesOfBothKinds) {
  const auto counter = make<Counter>();
  const auto keeper = make<Keeper>();
  const auto message = PortMessage::initWithSendPort(port, nullptr, array(1));
  port->setDelegate(counter);
  EXPECT_EQ(port->delegate().get(), counter.get());
  message->sendBeforeDate(nullptr);
  turn();
  port->setDelegate(keeper);
  message->sendBeforeDate(nullptr);
  turn();
  EXPECT_EQ(counter->count, 1);
  EXPECT_EQ(keeper->kept.size(), 1U);
}

TEST_F(PortThread, TellsTheDelegateThatIsSetMeanwhile) {
  const auto keeper = make<Keeper>();
  const auto counter = make<Counter>();
  keeper->successor = counter;
  port->setDelegate(keeper);
  for (int i = 0; i < 3; ++i)
    PortMessage::initWithSendPort(port, nullptr, array(i))->sendBeforeDate(nullptr);
  turn();
  EXPECT_EQ(keeper->kept.size(), 1U);
  EXPECT_EQ(counter->count, 2);
}

TEST_F(PortThread, DropsWhatNobodyWants) {
  const auto message = PortMessage::initWithSendPort(port, nullptr, array(1));
  EXPECT_EQ(port->delegate(), nullptr);
  EXPECT_TRUE(message->sendBeforeDate(nullptr));
  turn();
  auto counter = make<Counter>();
  port->setDelegate(counter);
  message->sendBeforeDate(nullptr);
  counter = nullptr;
  turn();
  counter = make<Counter>();
  port->setDelegate(counter);
  turn();
  EXPECT_EQ(counter->count, 0);
  port->setDelegate(nullptr);
  EXPECT_EQ(port->delegate(), nullptr);
}

TEST_F(PortThread, RefusesWhatCanNotBeADelegate) {
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { port->setDelegate(array()); }),
            "-[NSArray handlePortMessage:]: the receiver has no such operation");
}

TEST_F(PortThread, RefusesMessagesToNil) {
  EXPECT_THROW(PortMessage::initWithSendPort(nullptr, nullptr, nullptr), InvalidArgumentException);
}

TEST(PortMemoryThread, GoesWithThePort) {
  auto inside = MutableArray::init();
  auto port = Port::port();
  PortMessage::initWithSendPort(port, nullptr, array(inside))->sendBeforeDate(nullptr);
  RunLoop::currentRunLoop()->addPort(port, "mode");
  RunLoop::currentRunLoop()->removePort(port, "mode");
  const WeakRef<MutableArray> weak = inside;
  inside = nullptr;
  EXPECT_NE(weak.lock(), nullptr);  // the message that waits holds it
  port = nullptr;
  EXPECT_EQ(weak.lock(), nullptr);
}

// A message that waits in a port for an answer to that port holds it.
TEST(PortMemoryThread, IsHeldByAMessageThatWaitsForAnAnswerToThePort) {
  auto port = Port::port();
  PortMessage::initWithSendPort(port, port, nullptr)->sendBeforeDate(nullptr);
  const WeakRef<Port> weak = port;
  port = nullptr;
  port = weak.lock();
  ASSERT_NE(port, nullptr);
  const auto loop = RunLoop::currentRunLoop();
  loop->addPort(port, "mode");
  EXPECT_TRUE(loop->runMode("mode", nullptr));  // the message is handled
  loop->removePort(port, "mode");
  port = nullptr;
  EXPECT_EQ(weak.lock(), nullptr);
}

TEST(PortMemoryThread, OfALongChainGoesWithoutRecursion) {
  Ref<Port> first = Port::port();
  for (int i = 0; i < 100000; ++i) {
    auto next = Port::port();
    PortMessage::initWithSendPort(next, first, nullptr)->sendBeforeDate(nullptr);
    first = next;
  }
  first = nullptr;
}

TEST(PortSelectorThread, PerformsItsOperations) {
  const auto keeper = make<Keeper>();
  const auto loop = RunLoop::currentRunLoop();
  const auto port = Port::port();
  performSelector(port, "setDelegate:", keeper);
  EXPECT_TRUE(isSame(performSelector(port, "delegate"), keeper));
  performSelector(loop, "addPort:forMode:", port, "mode");
  const auto message = PortMessage::initWithSendPort(port, nullptr, array(7));
  EXPECT_EQ(performSelector(message, "sendBeforeDate:", Date::distantFuture()), true);
  EXPECT_EQ(performSelector(loop, "runMode:beforeDate:", "mode", nullptr), true);
  ASSERT_EQ(keeper->kept.size(), 1U);
  EXPECT_EQ(performSelector(keeper->kept[0], "components"), array(7));
  EXPECT_TRUE(isSame(performSelector(keeper->kept[0], "sendPort"), port));
  EXPECT_EQ(performSelector(keeper->kept[0], "receivePort"), nullptr);
  performSelector(loop, "removePort:forMode:", port, "mode");
  EXPECT_EQ(performSelector(loop, "runMode:beforeDate:", "mode", nullptr), false);
  EXPECT_EQ(performSelector(loop, "currentMode"), nullptr);
  EXPECT_EQ(performSelector(loop, "fileDescriptor"), loop->fileDescriptor());
}

// ---- the queue

struct Node {
  Node* next = nullptr;
  int sender = 0;
  int number = 0;
};

std::vector<int> numbers(const Node* first) {
  std::vector<int> all;
  for (; first != nullptr; first = first->next) all.push_back(first->number);
  return all;
}

TEST(SendList, GivesNodesInTheOrderOfAdding) {
  detail::SendList<Node> list;
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.takeAll(), nullptr);
  Node nodes[] = {{nullptr, 0, 1}, {nullptr, 0, 2}, {nullptr, 0, 3}};
  for (Node& n : nodes) EXPECT_TRUE(list.add(&n));
  EXPECT_FALSE(list.empty());
  Node* last = nullptr;
  EXPECT_THAT(numbers(list.takeAll(last)), ElementsAre(1, 2, 3));
  EXPECT_EQ(last, &nodes[2]);
  EXPECT_TRUE(list.empty());
}

TEST(SendList, RefusesNodesOnceClosed) {
  detail::SendList<Node> list;
  Node nodes[2];
  list.add(&nodes[0]);
  EXPECT_EQ(list.close(), &nodes[0]);
  EXPECT_FALSE(list.add(&nodes[1]));
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.close(), nullptr);
}

TEST(SendList, LosesNothingBetweenThreads) {
  constexpr int kSenders = 4;
  constexpr int kEach = 20000;
  detail::SendList<Node> list;
  std::vector<std::vector<Node>> nodes(kSenders, std::vector<Node>(kEach));
  std::vector<std::thread> threads;
  for (int s = 0; s < kSenders; ++s) {
    threads.emplace_back([&, s] {
      for (int i = 0; i < kEach; ++i) {
        Node& n = nodes[static_cast<std::size_t>(s)][static_cast<std::size_t>(i)];
        n.sender = s;
        n.number = i;
        list.add(&n);
      }
    });
  }
  std::vector<int> expected(kSenders, 0);
  for (int count = 0; count < kSenders * kEach;) {
    for (Node* n = list.takeAll(); n != nullptr; n = n->next) {
      ASSERT_EQ(n->number, expected[static_cast<std::size_t>(n->sender)]++);
      ++count;
    }
  }
  for (std::thread& t : threads) t.join();
}

}  // namespace
}  // namespace qx

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/raises.h"
#include "tests/threads/thread_message_fixture.h"
#include "threads/thread_message_record.h"

namespace qx {
namespace {

using testing::ElementsAre;
using threads_test::turn;

// The message that a port delivers.
struct ThreadMessageArrival : threads_test::ThreadMessage {};

// A delegate that looks at what a thread message's port delivers, and then has it performed.
class Looker : public Object {
 public:
  void handlePortMessage(const Ref<PortMessage>& m) {
    messages.push_back(m);
    sendPort = m->sendPort();
    receivePort = m->receivePort();
    count = m->components()->count();
    const auto data = m->components()->objectAtIndex(0).as<Data>();
    length = data->length();
    std::memcpy(&record, data->bytes(), sizeof record);
    selector = record->selector;
    argumentCount = record->argumentCount;
    isTarget = isSame(record->target, target);
    performer->handlePortMessage(*m);
  }
  Ref<QXThreadMessage> performer;
  PropertyValue target;
  std::vector<Ref<PortMessage>> messages;
  Ref<Port> sendPort, receivePort;
  std::size_t count = 0, length = 0;
  detail::ThreadMessageRecord* record = nullptr;
  Selector selector;
  int argumentCount = -1;
  bool isTarget = false;
};
void describe(ClassBuilder<Looker>& c) {
  c.name("ThreadsTestLooker").operation("handlePortMessage:", &Looker::handlePortMessage);
}

TEST_F(ThreadMessageArrival, ArrivesAsOneDataOfEightBytes) {
  const auto looker = make<Looker>();
  looker->performer = message;
  looker->target = target;
  message->port()->setDelegate(looker);
  message->sendMessageTo(target, "two:with:", 1, 2);
  turn();
  EXPECT_EQ(looker->sendPort.get(), message->port().get());
  EXPECT_EQ(looker->receivePort, nullptr);
  EXPECT_EQ(looker->count, 1U);
  EXPECT_EQ(looker->length, 8U);
  EXPECT_TRUE(looker->isTarget);
  EXPECT_TRUE(looker->selector == Selector("two:with:"));
  EXPECT_EQ(looker->argumentCount, 2);
  EXPECT_THAT(target->calls(), ElementsAre("two 1 2"));
  message->sendMessageTo(target, "ping");  // a message that is kept is not used again
  turn();
  ASSERT_EQ(looker->messages.size(), 2U);
  EXPECT_NE(looker->messages[0].get(), looker->messages[1].get());
  EXPECT_FALSE(isSame(looker->messages[0]->components()->objectAtIndex(0),
                      looker->messages[1]->components()->objectAtIndex(0)));
}

// Not that any sender counts so: the record decides, not who wrote it.
TEST_F(ThreadMessageArrival, TakesOtherCountsForTwoArguments) {
  for (const std::int32_t count : {2, 3, 7, -1, std::numeric_limits<std::int32_t>::min()}) {
    detail::ThreadMessageMemory* memory = detail::allocateThreadMessage();
    memory->record.selector = Selector("two:with:");
    memory->record.target = target;
    memory->record.arguments[0] = 1;
    memory->record.arguments[1] = 2;
    memory->record.argumentCount = count;
    ASSERT_TRUE(detail::sendLetter(*message->port(), memory->letter));
    turn();
    EXPECT_THAT(target->calls(), ElementsAre("two 1 2")) << count;
  }
}

TEST_F(ThreadMessageArrival, RefusesMessagesWithoutAnAddress) {
  const Ref<Array> wrong[] = {nullptr, Array::init(), array("text"), array(Data::from("1234567"))};
  for (const auto& components : wrong) {
    PortMessage::initWithSendPort(message->port(), nullptr, components)->sendBeforeDate(nullptr);
    EXPECT_EQ(reasonOf<InvalidArgumentException>([] { turn(); }),
              "-[QXThreadMessage handlePortMessage:]: the message holds no address of a call");
  }
}

// A target whose operation takes integers alone.
class Gauge : public Object {
 public:
  void show(int) {}
};
void describe(ClassBuilder<Gauge>& c) {
  c.name("ThreadsTestGauge").operation("show:", &Gauge::show);
}

TEST_F(ThreadMessageArrival, TellsWhichOperationRefusedItsArgument) {
  const auto gauge = make<Gauge>();
  for (int i = 0; i < 2; ++i) {
    message->sendMessageTo(gauge, "show:", "text");
    EXPECT_EQ(reasonOf<InvalidArgumentException>([] { turn(); }),
              "-[ThreadsTestGauge show:]: a value of class NSString (text) can not stand for an "
              "integer that fits");
  }
  threads_test::giveUp(*gauge, 2);
  const auto center = NotificationCenter::init();
  center->addObserver(gauge, "show:", "Changed", nullptr);
  EXPECT_EQ(reasonOf<InvalidArgumentException>(
                [&] { center->postNotificationName("Changed", nullptr, nullptr); }),
            "-[ThreadsTestGauge show:]: a value of class NSNotification can not stand for an "
            "integer that fits");
}

TEST_F(ThreadMessageArrival, PerformsItselfBySelector) {
  EXPECT_TRUE(isSame(performSelector(message, "port"), message->port()));
  performSelector(message, "sendMessageTo:inSelector:", target, "ping");
  turn();
  EXPECT_THAT(target->calls(), ElementsAre("ping"));
}

}  // namespace
}  // namespace qx

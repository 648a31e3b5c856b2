#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/thread_message.h>

#include "platform/port_state.h"
#include "tests/frame/raises.h"
#include "tests/threads/counted_memory.h"
#include "tests/threads/recorder.h"
#include "threads/thread_message_record.h"

namespace qx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using threads_test::giveUp;
using threads_test::onAnotherThread;
using threads_test::Recorder;
using threads_test::references;
using threads_test::Thing;
using threads_test::turn;

// Whether anything waits in the object's port.
bool isIdle(const QXThreadMessage& message) {
  const detail::PortState& port = message.port()->state();
  return port.inbox.empty() && port.taken == nullptr;
}

// A target, and a message object of this thread.
struct ThreadMessage : testing::Test {
  ~ThreadMessage() override { giveUp(*target, references(*target) - 1L); }
  Ref<Recorder> target = make<Recorder>();
  Ref<QXThreadMessage> message = QXThreadMessage::init();
};

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

// ---- what a call leaves behind

TEST_F(ThreadMessage, LeavesTargetAndArgumentsHeld) {
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

TEST_F(ThreadMessage, FreesTheRecordsOfPerformedCalls) {
  SKIP_WITHOUT_OWN_MEMORY();
  message->sendMessageTo(target, "ping");
  turn();
  target->calls();
  const long before = threads_test::livePieces();
  for (int i = 0; i < 1000; ++i) message->sendMessageTo(target, "ping");
  EXPECT_EQ(threads_test::livePieces() - before, 1000);
  while (!isIdle(*message)) turn();
  target->calls();
  EXPECT_EQ(threads_test::livePieces() - before, 0);
}

TEST_F(ThreadMessage, AllocatesNothingButTheRecord) {
  SKIP_WITHOUT_OWN_MEMORY();
  const auto quiet = make<Thing>();
  const auto rounds = [&] {
    for (int i = 0; i < 1000; ++i) message->sendMessageTo(quiet, "isEqual:", 1);
    while (!isIdle(*message)) turn();
  };
  rounds();
  const long before = threads_test::allocations();
  rounds();
  EXPECT_EQ(threads_test::allocations() - before, 1000);
  giveUp(*quiet, 2000);
}

TEST_F(ThreadMessage, FreesTheRecordOfACallThatRaises) {
  SKIP_WITHOUT_OWN_MEMORY();
  message->sendMessageTo(target, "ping");
  turn();
  target->calls();
  const long before = threads_test::livePieces();
  message->sendMessageTo(target, "raise");
  EXPECT_THROW(turn(), std::runtime_error);
  target->calls();
  EXPECT_EQ(threads_test::livePieces() - before, 0);
}

TEST_F(ThreadMessage, GoesOnBehindACallThatRaises) {
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

TEST_F(ThreadMessage, SendsNothingWithoutMemory) {
  SKIP_WITHOUT_OWN_MEMORY();
  {
    const threads_test::NoMemory none;
    message->sendMessageTo(target, "one:", 1);
  }
  EXPECT_TRUE(isIdle(*message));
  EXPECT_EQ(references(*target), 1U);
}

TEST_F(ThreadMessage, DoesNotRaiseACountThatIsNearlyFull) {
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

// ---- the message that arrives

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

TEST_F(ThreadMessage, ArrivesAsOneDataOfEightBytes) {
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
TEST_F(ThreadMessage, TakesOtherCountsForTwoArguments) {
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

TEST_F(ThreadMessage, RefusesMessagesWithoutAnAddress) {
  const Ref<Array> wrong[] = {nullptr, Array::init(), array("text"), array(Data::from("1234567"))};
  for (const auto& components : wrong) {
    PortMessage::initWithSendPort(message->port(), nullptr, components)->sendBeforeDate(nullptr);
    EXPECT_EQ(reasonOf<InvalidArgumentException>([] { turn(); }),
              "-[QXThreadMessage handlePortMessage:]: the message holds no address of a call");
  }
}

TEST_F(ThreadMessage, PerformsItselfBySelector) {
  EXPECT_TRUE(isSame(performSelector(message, "port"), message->port()));
  performSelector(message, "sendMessageTo:inSelector:", target, "ping");
  turn();
  EXPECT_THAT(target->calls(), ElementsAre("ping"));
}

// ---- the end of the object, and of the thread

TEST(ThreadMessageEnd, TakesThePortOutOfTheLoop) {
  const auto target = make<Recorder>();
  auto message = QXThreadMessage::init();
  const WeakRef<Port> port = message->port();
  EXPECT_TRUE(turn());
  message->sendMessageTo(target, "ping");
  message = nullptr;
  EXPECT_EQ(port.lock(), nullptr);
  EXPECT_FALSE(turn());  // nothing is scheduled
  EXPECT_THAT(target->calls(), IsEmpty());
  EXPECT_EQ(references(*target), 2U);  // the call was never performed: its record stays
  giveUp(*target, 1);
}

TEST(ThreadMessageEnd, LeavesThePortWhereItIsOnAnotherThread) {
  const auto target = make<Recorder>();
  auto message = QXThreadMessage::init();
  const Ref<Port> port = message->port();
  message->sendMessageTo(target, "ping");
  onAnotherThread([&] {
    (void)RunLoop::currentRunLoop();  // which does not have the port
    message = nullptr;
  });
  EXPECT_EQ(port->delegate(), nullptr);
  EXPECT_TRUE(turn());  // still scheduled; the message is dropped
  EXPECT_TRUE(PortMessage::initWithSendPort(port, nullptr, array(1))->sendBeforeDate(nullptr));
  EXPECT_TRUE(turn());
  EXPECT_THAT(target->calls(), IsEmpty());
  EXPECT_EQ(references(*target), 2U);
  giveUp(*target, 1);
  RunLoop::currentRunLoop()->removePort(port, NSDefaultRunLoopMode);
  EXPECT_FALSE(turn());
}

// A call that lets go of the last reference to the message object that brought it.
class Holder : public Object {
 public:
  void letGo() { held = nullptr; }
  PropertyValue held;
};
void describe(ClassBuilder<Holder>& c) {
  c.name("ThreadsTestHolder").operation("letGo", &Holder::letGo);
}

TEST(ThreadMessageEnd, EndsTheCallsBehindTheOneThatLetsGo) {
  const auto target = make<Recorder>();
  const auto holder = make<Holder>();
  auto message = QXThreadMessage::init();
  holder->held = message;
  message->sendMessageTo(target, "ping");
  message->sendMessageTo(holder, "letGo");
  message->sendMessageTo(target, "ping");
  message = nullptr;
  EXPECT_TRUE(turn());
  EXPECT_THAT(target->calls(), ElementsAre("ping"));
  EXPECT_FALSE(turn());
  giveUp(*target, 2);
  giveUp(*holder, 1);
}

TEST(ThreadMessageEnd, OfTheThreadEndsItsCalls) {
  const auto target = make<Recorder>();
  Ref<QXThreadMessage> message;
  onAnotherThread([&] {
    message = QXThreadMessage::init();
    message->sendMessageTo(target, "one:", 1);
    turn();
    message->sendMessageTo(target, "one:", 2);  // waits when the thread ends
  });
  message->sendMessageTo(target, "one:", 3);
  EXPECT_FALSE(
      PortMessage::initWithSendPort(message->port(), nullptr, array(1))->sendBeforeDate(nullptr));
  EXPECT_THAT(target->calls(), ElementsAre("one 1"));
  giveUp(*target, 3);
}

TEST(ThreadMessageEnd, MayComeWhileTheThreadEnds) {
  struct Late {
    Ref<QXThreadMessage> message;
    ~Late() {
      message = nullptr;  // there is no run loop any more
      try {
        RunLoop::currentRunLoop();
      } catch (const InternalInconsistencyException& e) {
        reason = e.reason();
      }
    }
    std::string& reason;
  };
  std::string reason;
  onAnotherThread([&] {
    thread_local Late late{nullptr, reason};
    late.message = QXThreadMessage::init();  // the loop is made later, and so ends earlier
  });
  EXPECT_EQ(reason,
            "+[NSRunLoop currentRunLoop]: the thread is ending and has no run loop any more");
}

}  // namespace
}  // namespace qx

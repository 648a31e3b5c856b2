#include <cstring>
#include <memory>
#include <new>

#include <QXFoundation/data.h>
#include <QXFoundation/run_loop.h>
#include <QXFoundation/thread_message.h>

#include "frame/class_record.h"
#include "frame/library_class.h"
#include "frame/operation_call.h"
#include "frame/raise.h"
#include "platform/delivery.h"
#include "threads/thread_message_record.h"

namespace qx {

using detail::ThreadMessageMemory;
using detail::ThreadMessageRecord;

namespace {

// A count that calls without end have raised very far is not raised any further: what they left
// behind keeps the object as it is, and a count that ran over would end it.
void countReference(const PropertyValue& value) {
  constexpr std::uint32_t kEnough = std::uint32_t{1} << 30;
  const Object* object = value.object();
  if (object != nullptr &&
      detail::ObjectAccess::refs(*object).load(std::memory_order_relaxed) > kEnough) {
    object->release();
  }
}

void keep(PropertyValue& place, PropertyValue& value) {
  countReference(value);
  place = std::move(value);
}

std::uint16_t classIndexOf(const PropertyValue& value) {
  const Object* object = value.object();
  return object == nullptr ? std::uint16_t{0} : detail::ObjectAccess::classIndex(*object);
}

// Takes the values over, whose references are the record's from then on. What the port does not
// take, because its thread has ended, is left as it is, like everything else that is never
// performed.
void send(detail::PortState& port, PropertyValue& target, Selector selector,
          PropertyValue* arguments, std::int32_t count) {
  if (target.isNil()) return;
  ThreadMessageMemory* memory = detail::allocateThreadMessage();
  if (memory == nullptr) return;
  ThreadMessageRecord& record = memory->record;
  record.selector = selector;
  record.classIndex = classIndexOf(target);
  keep(record.target, target);
  for (std::int32_t i = 0; i < count; ++i) keep(record.arguments[i], arguments[i]);
  record.argumentCount = count;
  (void)port.send(memory->letter);
}

ThreadMessageRecord* recordIn(const PortMessage& message) {
  const Ref<Array>& components = message.components();
  if (components != nullptr && components->count() != 0 && components->begin()->isData()) {
    const auto& data = static_cast<const Data&>(*components->begin()->object());
    ThreadMessageRecord* record = nullptr;
    if (data.length() >= sizeof record) {
      std::memcpy(&record, data.bytes(), sizeof record);
      return record;
    }
  }
  detail::raiseInvalidArgument(
      "-[QXThreadMessage handlePortMessage:]: the message holds no address of a call");
}

}  // namespace

QXThreadMessage::QXThreadMessage(detail::Passkey, Ref<Port> port)
    : port_(std::move(port)), portState_(port_->state()) {}

Ref<QXThreadMessage> QXThreadMessage::init() {
  auto message = make<QXThreadMessage>(detail::Passkey{}, Port::port());
  message->port_->setDelegate(message);
  RunLoop::currentRunLoop()->addPort(message->port_, NSDefaultRunLoopMode);
  return message;
}

QXThreadMessage::~QXThreadMessage() {
  RunLoop* loop = RunLoop::existing(detail::Passkey{});
  if (loop != nullptr) loop->removePort(port_, NSDefaultRunLoopMode);
}

void QXThreadMessage::sendMessageTo(PropertyValue target, SelectorFor<0> inSelector) const {
  send(portState_, target, inSelector, nullptr, 0);
}

void QXThreadMessage::sendMessageTo(PropertyValue target, SelectorFor<1> inSelector,
                                    PropertyValue withObject) const {
  send(portState_, target, inSelector, &withObject, 1);
}

void QXThreadMessage::sendMessageTo(PropertyValue target, SelectorFor<2> inSelector,
                                    PropertyValue withObject, PropertyValue withObject2) const {
  PropertyValue arguments[] = {std::move(withObject), std::move(withObject2)};
  send(portState_, target, inSelector, arguments, 2);
}

namespace {

// Holds the target while it performs: the operation may give up the record's reference. From one
// call to the next the hold waits in its place, if there is one, as most calls are for the same.
class TargetHold {
 public:
  TargetHold(PropertyValue* place, const PropertyValue& target) : place_(place) {
    if (place_ != nullptr) value_ = std::move(*place_);
    if (!isSame(value_, target)) value_ = target;
  }
  TargetHold(const TargetHold&) = delete;
  TargetHold& operator=(const TargetHold&) = delete;
  ~TargetHold() {
    if (place_ != nullptr) *place_ = std::move(value_);
  }

 private:
  PropertyValue* place_;
  PropertyValue value_;
};

}  // namespace

// Null where it is not that simple: the receiver of a class operation, a property, no operation at
// all.
const detail::Operation* QXThreadMessage::operationOf(const ThreadMessageRecord& record,
                                                      std::size_t count) {
  if (record.classIndex < detail::kFirstDescribedClass) return nullptr;
  if (record.classIndex != lastClass_ || record.selector != lastSelector_) {
    lastOperation_ =
        detail::classAtIndex(record.classIndex).record().findOperation(record.selector);
    lastClass_ = record.classIndex;
    lastSelector_ = record.selector;
  }
  return lastOperation_ != nullptr && lastOperation_->argumentCount == count ? lastOperation_
                                                                             : nullptr;
}

// The record is freed when the call has returned or raised.
void QXThreadMessage::handlePortMessage(const PortMessage& message) {
  struct Free {
    void operator()(ThreadMessageRecord* r) const noexcept { detail::freeThreadMessage(r); }
  };
  const std::unique_ptr<ThreadMessageRecord, Free> record(recordIn(message));
  const auto asked = static_cast<std::size_t>(record->argumentCount);
  const std::size_t count = asked <= 1 ? asked : 2;
  const TargetHold hold(detail::heldThroughTurn(portState_), record->target);
  if (const detail::Operation* operation = operationOf(*record, count)) {
    detail::callOperation(*operation, record->target, record->selector, record->arguments);
  } else {
    detail::performSelectorImpl(record->target, record->selector, record->arguments, count);
  }
}

void describe(ClassBuilder<QXThreadMessage>& c) {
  c.name("QXThreadMessage").inherits<Object>().conforms<PortDelegate>();
  c.operation("port", &QXThreadMessage::port);
  c.operation(
      "handlePortMessage:", +[](const PropertyValue& r, const Ref<PortMessage>& message) {
        r.as<QXThreadMessage>()->handlePortMessage(*message);
      });
  c.operation(
      "sendMessageTo:inSelector:",
      +[](const PropertyValue& r, const PropertyValue& target, const Ref<String>& selector) {
        r.as<QXThreadMessage>()->sendMessageTo(target, Selector::named(selector));
      });
}

const Class& classObject(detail::Type<QXThreadMessage>) {
  return detail::buildLibraryClass<QXThreadMessage>();
}

}  // namespace qx

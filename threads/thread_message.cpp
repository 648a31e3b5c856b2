#include <cstring>
#include <memory>
#include <new>

#include <QXFoundation/data.h>
#include <QXFoundation/run_loop.h>
#include <QXFoundation/thread_message.h>

#include "frame/library_class.h"
#include "frame/raise.h"
#include "threads/thread_message_record.h"

namespace qx {

using detail::ThreadMessageMemory;
using detail::ThreadMessageRecord;

ThreadMessageMemory* detail::allocateThreadMessage() noexcept {
  return new (std::nothrow) ThreadMessageMemory;
}

void detail::freeThreadMessage(ThreadMessageRecord* record) noexcept {
  ::operator delete(reinterpret_cast<unsigned char*>(record) - sizeof(MemoryLetter));
}

namespace {

// The reference that a record holds. A count that calls without end have raised very far is not
// raised any further: what they left behind keeps the object as it is, and a count that ran over
// would end it.
PropertyValue heldByRecord(const PropertyValue& value) {
  constexpr std::uint32_t kEnough = std::uint32_t{1} << 30;
  const Object* object = value.object();
  PropertyValue copy = value;
  if (object != nullptr &&
      detail::ObjectAccess::refs(*object).load(std::memory_order_relaxed) > kEnough) {
    object->release();
  }
  return copy;
}

// What the port does not take, because its thread has ended, is left as it is, like everything else
// that is never performed.
void send(const Port& port, const PropertyValue& target, Selector selector,
          const PropertyValue* arguments, std::int32_t count) {
  if (target.isNil()) return;
  ThreadMessageMemory* memory = detail::allocateThreadMessage();
  if (memory == nullptr) return;
  ThreadMessageRecord& record = memory->record;
  record.selector = selector;
  record.target = heldByRecord(target);
  for (std::int32_t i = 0; i < count; ++i) record.arguments[i] = heldByRecord(arguments[i]);
  record.argumentCount = count;
  (void)detail::sendLetter(port, memory->letter);
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

QXThreadMessage::QXThreadMessage(detail::Passkey, Ref<Port> port) : port_(std::move(port)) {}

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

void QXThreadMessage::sendMessageTo(const PropertyValue& target, SelectorFor<0> inSelector) const {
  send(*port_, target, inSelector, nullptr, 0);
}

void QXThreadMessage::sendMessageTo(const PropertyValue& target, SelectorFor<1> inSelector,
                                    const PropertyValue& withObject) const {
  send(*port_, target, inSelector, &withObject, 1);
}

void QXThreadMessage::sendMessageTo(const PropertyValue& target, SelectorFor<2> inSelector,
                                    const PropertyValue& withObject,
                                    const PropertyValue& withObject2) const {
  const PropertyValue arguments[] = {withObject, withObject2};
  send(*port_, target, inSelector, arguments, 2);
}

// The record is freed when the call has returned or raised.
void QXThreadMessage::handlePortMessage(const PortMessage& message) {
  struct Free {
    void operator()(ThreadMessageRecord* r) const noexcept { detail::freeThreadMessage(r); }
  };
  const std::unique_ptr<ThreadMessageRecord, Free> record(recordIn(message));
  const auto count = static_cast<std::size_t>(record->argumentCount);
  detail::performSelectorImpl(record->target, record->selector, record->arguments,
                              count <= 1 ? count : 2);
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

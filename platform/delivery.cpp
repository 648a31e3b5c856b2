#include "platform/delivery.h"

#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "frame/raise.h"

namespace qx::detail {

namespace {

// Whether the caller's reference is the only one.
bool isOnlyOurs(const Object& object) {
  const std::uint32_t refs = ObjectAccess::refs(object).load(std::memory_order_acquire);
  return (refs & ~ObjectAccess::kWatched) == ObjectAccess::kOne;
}

constexpr std::size_t kAddressSize = sizeof(void*);

// Whether the message and all in it are as they were made, and nobody has kept any of them.
bool isUnused(const Carrier& c) {
  return isOnlyOurs(*c.message) &&
         ObjectAccess::refs(*c.list).load(std::memory_order_acquire) == 2 * ObjectAccess::kOne &&
         ObjectAccess::refs(*c.data).load(std::memory_order_acquire) == 2 * ObjectAccess::kOne &&
         c.data->length() == kAddressSize && c.list->count() == 1 &&
         c.list->begin()->object() == c.data.get();
}

Carrier newCarrier(const Ref<Port>& port) {
  Carrier c;
  c.data = MutableData::from(std::string(kAddressSize, char{0}));
  c.list = MutableArray::arrayWithCapacity(1);
  c.list->addObject(c.data);
  c.message = PortMessage::initWithSendPort(port, nullptr, c.list);
  return c;
}

}  // namespace

// The port's carrier is ours while we deliver: a nested delivery makes one of its own. Only then
// does it refer to the port, which would keep itself alive otherwise.
Delivery::Delivery(PortState& port) : port_(&port.port), state_(port), outer_(port.delivery) {
  port.delivery = this;
  holdDelegate();
  carrier_ = std::exchange(state_.carrier, {});
  if (carrier_.message != nullptr) carrier_.message->setSendPort(Passkey{}, port_);
}

Delivery::~Delivery() {
  state_.delivery = outer_;
  if (carrier_.message == nullptr || !isUnused(carrier_)) return;
  carrier_.message->setSendPort(Passkey{}, nullptr);
  state_.carrier = std::move(carrier_);
}

void Delivery::holdDelegate() {
  delegate_ = state_.delegate.lock();
  interface_ = state_.interface;
  delegateChanges_ = state_.delegateChanges;
}

bool Delivery::next() {
  Letter* letter = state_.takeLetter();
  if (letter == nullptr) return false;
  if (delegateChanges_ != state_.delegateChanges) holdDelegate();
  if (delegate_ == nullptr) {
    letter->next = nullptr;
    PortState::dropLetters(letter);
    return true;
  }
  tell(open(*letter));
  opened_ = nullptr;
  if (isOnlyOurs(*delegate_)) delegate_ = nullptr;  // everybody else has let go of it
  return true;
}

const PortMessage& Delivery::open(Letter& letter) {
  if (letter.kind == Letter::Kind::memory) return carry(static_cast<MemoryLetter&>(letter));
  const std::unique_ptr<MessageLetter> content(static_cast<MessageLetter*>(&letter));
  opened_ = make<PortMessage>(Passkey{}, port_, std::move(content->receivePort),
                              std::move(content->components));
  return *opened_;
}

const PortMessage& Delivery::carry(MemoryLetter& letter) {
  if (carrier_.message == nullptr || !isUnused(carrier_)) carrier_ = newCarrier(port_);
  const void* address = letter.contents();
  std::memcpy(const_cast<unsigned char*>(carrier_.data->bytes()), &address, kAddressSize);
  return *carrier_.message;
}

void Delivery::tell(const PortMessage& message) {
  if (interface_ != nullptr) {
    interface_->handlePortMessage(message);
  } else {
    performSelector(delegate_,
                    "handlePortMessage:", Ref<PortMessage>(const_cast<PortMessage*>(&message)));
  }
}

}  // namespace qx::detail

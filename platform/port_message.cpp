#include <memory>

#include <QXFoundation/port.h>
#include <QXFoundation/port_message.h>

#include "frame/array_storage.h"
#include "frame/library_class.h"
#include "platform/letter.h"

namespace qx {

PortMessage::PortMessage(detail::Passkey, Ref<Port> sendPort, Ref<Port> receivePort,
                         Ref<Array> components)
    : sendPort_(std::move(sendPort)),
      receivePort_(std::move(receivePort)),
      components_(std::move(components)) {}
PortMessage::~PortMessage() = default;

void PortMessage::setSendPort(detail::Passkey, Ref<Port> port) { sendPort_ = std::move(port); }

Ref<PortMessage> PortMessage::initWithSendPort(In<Port> sendPort, In<Port> receivePort,
                                               In<Array> components) {
  return make<PortMessage>(detail::Passkey{}, &*sendPort, receivePort.get(), components.get());
}

bool PortMessage::sendBeforeDate(In<Date>) const {
  Ref<Array> steady = components_ ? detail::ArrayStorage::steady(*components_) : nullptr;
  auto letter = std::make_unique<detail::MessageLetter>(std::move(steady), receivePort_);
  if (!detail::sendLetter(*sendPort_, *letter)) return false;
  (void)letter.release();  // it is the port's
  return true;
}

void describe(ClassBuilder<PortMessage>& c) {
  c.name("NSPortMessage").inherits<Object>();
  c.operation("sendPort", &PortMessage::sendPort);
  c.operation("receivePort", &PortMessage::receivePort);
  c.operation("components", &PortMessage::components);
  c.operation(
      "sendBeforeDate:", +[](const PropertyValue& r, const Ref<Date>& limit) {
        return r.as<PortMessage>()->sendBeforeDate(limit);
      });
}

const Class& classObject(detail::Type<PortMessage>) {
  return detail::buildLibraryClass<PortMessage>();
}

}  // namespace qx

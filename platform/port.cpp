#include <QXFoundation/port.h>

#include "frame/library_class.h"
#include "frame/raise.h"
#include "platform/port_state.h"

namespace qx {

const Protocol& PortDelegate::protocol() {
  static constexpr Protocol kProtocol("NSPortDelegate");
  return kProtocol;
}

Port::Port(detail::Passkey) : state_(std::make_unique<detail::PortState>(*this)) {}
Port::~Port() = default;

Ref<Port> Port::port() { return make<Port>(detail::Passkey{}); }

void Port::setDelegate(In<Object> delegate) {
  PortDelegate* interface = nullptr;
  if (delegate) {
    const PropertyValue value(delegate.get());
    interface = asProtocol<PortDelegate>(value);
    if (interface == nullptr && !value.respondsToSelector("handlePortMessage:"))
      detail::raiseUnsupported(value, "handlePortMessage:");
  }
  state_->delegate = WeakRef<Object>(delegate.get());
  state_->interface = interface;
  ++state_->delegateChanges;
}

Ref<Object> Port::delegate() const { return state_->delegate.lock(); }

void describe(ClassBuilder<Port>& c) {
  c.name("NSPort").inherits<Object>();
  c.operation("delegate", &Port::delegate);
  c.operation(
      "setDelegate:", +[](const PropertyValue& r, const Ref<Object>& delegate) {
        r.as<Port>()->setDelegate(delegate);
      });
}

const Class& classObject(detail::Type<Port>) { return detail::buildLibraryClass<Port>(); }

}  // namespace qx

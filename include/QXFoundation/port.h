// Port: a place that any thread can send messages to, and one thread's run loop takes them from.
//
//     class Worker : public qx::Object, public qx::PortDelegate {
//       void handlePortMessage(const qx::PortMessage& message) override { ... }
//     };
//     auto port = qx::Port::port();
//     port->setDelegate(worker);
//     qx::RunLoop::currentRunLoop()->addPort(port, qx::NSDefaultRunLoopMode);
//     ...
//     qx::RunLoop::currentRunLoop()->run();      // the worker is told here
#pragma once

#include <memory>

#include <QXFoundation/class.h>
#include <QXFoundation/object.h>
#include <QXFoundation/port_message.h>

namespace qx {

// What a port's delegate implements; its class declares so with `builder.conforms<PortDelegate>()`.
struct QX_EXPORT PortDelegate {
  // The protocol as a value.
  static const Protocol& protocol();
  // On the thread whose run loop the port is scheduled in. The message may be the port's own, which
  // the next one overwrites: what is to be kept beyond the call is retained (a retained message is
  // left alone) or copied.
  virtual void handlePortMessage(const PortMessage& message) = 0;

 protected:
  ~PortDelegate() = default;
};

namespace detail {
struct PortState;
}

// The class is "NSPort". Any thread may send to it, without a lock and without waiting; messages of
// all senders arrive in one order, and each sender's in the order of its sending. Nothing bounds
// how many wait. Everything else belongs to the thread of the run loop that it is scheduled in.
class QX_EXPORT Port : public Object {
 public:
  // A new port, scheduled nowhere.
  static Ref<Port> port();

  // Who is told of messages, referred to weakly: an object that conforms to PortDelegate, or one
  // with the operation "handlePortMessage:"; anything else raises InvalidArgumentException.
  // Messages that arrive while there is none, or when it is gone, are dropped.
  void setDelegate(In<Object> delegate);
  Ref<Object> delegate() const;

  // Inside the library.
  explicit Port(detail::Passkey);
  detail::PortState& state() const { return *state_; }

 protected:
  ~Port() override;

 private:
  std::unique_ptr<detail::PortState> state_;
};

QX_EXPORT const Class& classObject(detail::Type<Port>);

}  // namespace qx

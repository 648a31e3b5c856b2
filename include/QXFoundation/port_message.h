// PortMessage: what is sent to a port.
//
//     auto message = qx::PortMessage::initWithSendPort(port, nullptr, qx::array(data));
//     message->sendBeforeDate(qx::Date::distantFuture());
#pragma once

#include <QXFoundation/array.h>
#include <QXFoundation/date.h>
#include <QXFoundation/object.h>
#include <QXFoundation/string.h>

namespace qx {

class Port;

// The port it goes to, one for answers (may be nil), and a list of what is told: data as a rule,
// but any value may stand in it, as messages never leave the process. The class is "NSPortMessage".
// As thread-safe as what it holds.
class QX_EXPORT PortMessage : public Object {
 public:
  // The list is held, not copied. Raises InvalidArgumentException for a nil send port.
  static Ref<PortMessage> initWithSendPort(In<Port> sendPort, In<Port> receivePort,
                                           In<Array> components);

  // The port it is sent to, and the one that an answer may go to, which may be nil.
  const Ref<Port>& sendPort() const { return sendPort_; }
  const Ref<Port>& receivePort() const { return receivePort_; }
  // Nil where the message was made with nil.
  const Ref<Array>& components() const { return components_; }

  // Hands the message to its send port: what stands in the list now, which may change afterwards.
  // The hand-over takes no lock and never has to wait, so that the limit (may be nil) is never
  // reached. True when the port took the message; it is delivered when the port's run loop next
  // runs in one of the port's modes, and is let go of if that never happens. False when the thread
  // of the port's run loop has ended. A message may be sent again.
  bool sendBeforeDate(In<Date> limitDate) const;

  // Inside the library.
  PortMessage(detail::Passkey, Ref<Port> sendPort, Ref<Port> receivePort, Ref<Array> components);
  void setSendPort(detail::Passkey, Ref<Port> port);

 protected:
  ~PortMessage() override;

 private:
  Ref<Port> sendPort_;
  Ref<Port> receivePort_;
  Ref<Array> components_;
};

QX_EXPORT const Class& classObject(detail::Type<PortMessage>);

}  // namespace qx

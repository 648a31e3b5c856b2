// QXThreadMessage: has an operation performed on the thread that made the message object, by that
// thread's run loop.
//
//     auto toMain = qx::QXThreadMessage::init();                     // on the main thread
//     ...
//     toMain->sendMessageTo(window, "showProgress:", 0.5);           // on any thread
//     ...
//     qx::RunLoop::currentRunLoop()->run();                          // performs it, on that thread
#pragma once

#include <QXFoundation/class.h>
#include <QXFoundation/object.h>
#include <QXFoundation/port.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>

namespace qx {

namespace detail {
struct ThreadMessageRecord;
}

// The class is "QXThreadMessage". Any thread may send; everything else belongs to the thread that
// made the object.
//
// Calls are performed one at a time, in the order in which they were sent, by runs in the default
// mode alone: at once never, not even when the sender is the thread itself. What a call raises ends
// the run and reaches its caller.
//
// Every call that is performed keeps its target and arguments for ever: their references are
// counted when it is sent and never given up. Send what lives as long as the program, or release
// what the operation was given (`object->release()`) once for each call. Of a call that is never
// performed, because the thread has ended or the message object is gone, the record stays in memory
// too: 64 bytes, and with them the page of records that it was allocated with.
//
// A target that gives up the references of its calls lives until the call under way has returned,
// and at most until the loop performs a call of another target or turns to something else.
class QX_EXPORT QXThreadMessage : public Object, public PortDelegate {
 public:
  // Makes a port of its own, and schedules it in this thread's run loop for the default mode.
  static Ref<QXThreadMessage> init();

  // The port that calls go through.
  const Ref<Port>& port() const { return port_; }

  // Asks for the call, and returns as soon as the port has the message, which never takes longer
  // than handing it over. A nil target is asked for nothing; nil arguments are arguments. Nothing
  // happens when there is no memory.
  void sendMessageTo(PropertyValue target, SelectorFor<0> inSelector) const;
  void sendMessageTo(PropertyValue target, SelectorFor<1> inSelector,
                     PropertyValue withObject) const;
  void sendMessageTo(PropertyValue target, SelectorFor<2> inSelector, PropertyValue withObject,
                     PropertyValue withObject2) const;

  // Performs the call. The port's run loop calls this; by hand, with a message that this object's
  // own port did not deliver, it is not to be called: the message's first component is taken for
  // the address of a call's record. Raises InvalidArgumentException where that is no data of 8
  // bytes.
  void handlePortMessage(const PortMessage& message) override;

  // Inside the library.
  QXThreadMessage(detail::Passkey, Ref<Port> port);

 protected:
  // Takes the port out of the run loop of the thread that this happens on. When that is not the
  // thread that made the object, the port stays scheduled in its run loop until that thread ends,
  // and messages that arrive there are dropped.
  ~QXThreadMessage() override;

 private:
  const detail::Operation* operationOf(const detail::ThreadMessageRecord& record,
                                       std::size_t count);

  // Apart from the object's count, which the receiving thread changes, as every sender reads these.
  [[maybe_unused]] char apart_[64];
  Ref<Port> port_;
  detail::PortState& portState_;
  // The operation that was performed last, of its class and selector.
  const detail::Operation* lastOperation_ = nullptr;
  Selector lastSelector_;
  std::uint16_t lastClass_ = 0;
};

QX_EXPORT const Class& classObject(detail::Type<QXThreadMessage>);

}  // namespace qx

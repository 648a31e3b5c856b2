// RunLoop: waits for messages to ports and for timers, on one thread, and has them handled there.
//
//     auto loop = qx::RunLoop::currentRunLoop();
//     loop->addPort(port, qx::NSDefaultRunLoopMode);
//     loop->run();                               // until loop->stop(), from any thread
//
// An application that has a loop of its own (GLib, Qt, libuv ...) watches `fileDescriptor()` for
// reading, and calls `runPending()` when there is something to read:
//
//     g_unix_fd_add(loop->fileDescriptor(), G_IO_IN, +[](int, GIOCondition, void*) -> gboolean {
//       qx::RunLoop::currentRunLoop()->runPending();
//       return G_SOURCE_CONTINUE;
//     }, nullptr);
#pragma once

#include <memory>

#include <QXFoundation/constants.h>
#include <QXFoundation/date.h>
#include <QXFoundation/object.h>
#include <QXFoundation/port.h>
#include <QXFoundation/string.h>
#include <QXFoundation/string_arg.h>
#include <QXFoundation/timer.h>

namespace qx {

namespace detail {
class RunLoopState;
}

// The class is "NSRunLoop". Each thread has one at most, made when it is first asked for. It
// belongs to its thread: all but `stop` and `fileDescriptor` raise InternalInconsistencyException
// on another.
//
// Ports and timers are scheduled for modes, which are named by texts; a run is in one mode, and
// what is scheduled for others alone waits meanwhile, in its order. A run goes by turns: the timers
// that are due, then the messages that are there: 256 at most, and 64 of one port before it is
// another's turn. What is sent during a turn waits for a later one. Operations that are performed
// may run the loop again (a nested run), which goes on with the messages behind theirs.
//
// What an operation raises ends the run and reaches its caller; nothing else is lost, and the next
// run goes on behind it. When the thread ends, the run loop lets go of ports and timers, and
// messages that still wait are never handled.
class QX_EXPORT RunLoop : public Object {
 public:
  // This thread's. Raises InternalInconsistencyException when the system has no file descriptors
  // left, and while the thread is ending.
  static Ref<RunLoop> currentRunLoop();

  // Schedules a port; the loop holds it. Nothing happens if it is scheduled so. A port belongs for
  // ever to the run loop that it is first scheduled in: another one raises
  // InvalidArgumentException.
  void addPort(In<Port> port, StringArg forMode);
  // Nothing happens if it is not scheduled so in this loop. What waits in the port stays there.
  void removePort(In<Port> port, StringArg forMode);
  // The loop holds the timer until it is over. A timer goes into one loop, for any number of modes.
  void addTimer(In<Timer> timer, StringArg forMode);

  // One turn: waits until the limit at most (nil: not at all) for something to happen in the mode.
  // True once at least one message was handled, the limit was reached, or the run was stopped;
  // false, at once, when nothing is scheduled for the mode. Timers that fire do not end the wait.
  bool runMode(StringArg mode, In<Date> beforeDate);
  // Turns in the default mode, until that moment (never earlier, some milliseconds later at most,
  // and the turn under way is brought to its end), until it is stopped, or until nothing is
  // scheduled any more.
  void runUntilDate(In<Date> limitDate);
  void run();

  // Ends the innermost run, as soon as the operation that it performs has returned; when the loop
  // is not running, the next run ends as soon as it begins. One stop ends one run, however often it
  // was asked for before. Any thread.
  void stop();

  // The mode of the innermost run; nil outside of runs.
  Ref<String> currentMode() const;

  // For another loop to watch: readable when there may be something to run in the default mode. The
  // same for the life of the thread, and the loop's own: not to be read or closed. While a call of
  // `runMode` or its like performs an operation, it tells nothing. Any thread.
  int fileDescriptor() const;
  // One turn in the default mode, without waiting. True when there is more to do: then the file
  // descriptor is readable still, and the loop that watches it can serve others first. May be
  // called again by an operation that it performs. What an operation raises comes out of this call:
  // catch it before it meets the foreign loop's own code.
  bool runPending();

  // Inside the library.
  explicit RunLoop(detail::Passkey);
  // This thread's if it has one; null while the thread is ending.
  static RunLoop* existing(detail::Passkey);
  void close(detail::Passkey) noexcept;

 protected:
  ~RunLoop() override;

 private:
  detail::RunLoopState& own(const char* operation) const;
  std::unique_ptr<detail::RunLoopState> state_;
};

QX_EXPORT const Class& classObject(detail::Type<RunLoop>);

}  // namespace qx

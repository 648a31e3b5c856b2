#pragma once

// What a run loop is made of.

#include <cstdint>
#include <memory>
#include <vector>

#include <QXFoundation/run_loop.h>

#include "platform/loop_descriptors.h"
#include "platform/loop_signal.h"
#include "platform/ready_ports.h"
#include "platform/timer_queue.h"

namespace qx::detail {

struct LoopMode {
  Ref<String> name;
  std::size_t ports = 0;  // scheduled for it
};

// When a run ends by itself: after the first turn with messages, or at its limit alone.
enum class Until : std::uint8_t { handled, limit };

// How a run ended.
enum class Ended : std::uint8_t {
  handled,   // after a turn with messages
  limit,     // the limit passed
  stopped,   // somebody stopped it
  deserted,  // nothing is scheduled for the mode
};

// Belongs to the loop's thread, but for `signal` and `descriptor`.
class RunLoopState {
 public:
  RunLoopState();
  RunLoopState(const RunLoopState&) = delete;
  RunLoopState& operator=(const RunLoopState&) = delete;

  const std::shared_ptr<LoopSignal>& signal() const { return signal_; }
  int descriptor() const { return descriptors_.descriptor(); }

  // The mode of that name; null when nothing was ever scheduled for it.
  LoopMode* findMode(StringArg name);
  LoopMode& mode(StringArg name);
  const LoopMode* running() const { return running_; }

  // False when the port belongs to another loop.
  bool addPort(Port& port, LoopMode& mode);
  void removePort(Port& port, LoopMode& mode);
  void addTimer(const Ref<Timer>& timer, LoopMode& mode);

  // Turns until the limit (of the steady clock; 0: without waiting) at the latest.
  Ended run(LoopMode& mode, std::int64_t limit, Until until);
  // One turn in the default mode without waiting; true when there is more to do.
  bool runPending();
  // The end of the thread: lets go of everything.
  void close() noexcept;

 private:
  // Holds while a mode runs, nested in another run or not.
  class Run;

  bool isDeserted(LoopMode& mode) { return mode.ports == 0 && timers_.nextDue(mode) == kNever; }
  void readAnnouncements();
  // The due timers, then messages up to the bounds. Whether there was any message.
  bool turn(LoopMode& mode);
  std::size_t deliver(PortState& port, std::size_t most);
  void sleep(LoopMode& mode, std::int64_t limit);
  // Has the descriptor report what there is to do in the default mode, now or later.
  void leave() noexcept;

  std::shared_ptr<LoopSignal> signal_;
  LoopDescriptors descriptors_;
  std::vector<std::unique_ptr<LoopMode>> modes_;
  LoopMode& default_;
  LoopMode* running_ = nullptr;
  bool hasMore_ = false;  // whether there was more to do when a run ended last
  ReadyPorts ready_;
  LinkList<PortState, ScheduledLink> scheduled_;  // each of them held
  TimerQueue timers_;
};

}  // namespace qx::detail

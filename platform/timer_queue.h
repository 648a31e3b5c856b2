#pragma once

// The timers of a run loop.

#include <cstdint>
#include <map>
#include <vector>

#include <QXFoundation/timer.h>

#include "platform/loop_descriptors.h"

namespace qx::detail {

struct LoopMode;

// Timers in the order of their times. Those that are over are left out wherever they are met.
// Belongs to the loop's thread.
class TimerQueue {
 public:
  bool empty() const { return timers_.empty(); }
  void add(const Ref<Timer>& timer, const LoopMode& mode) { enter(timer, {&mode}); }
  // When the next timer of the mode is due; kNever when there is none.
  std::int64_t nextDue(const LoopMode& mode);
  // Calls the timers of the mode that are due now, each once, in their order.
  void fireDue(const LoopMode& mode);
  void clear() { timers_.clear(); }

 private:
  struct Entry {
    Ref<Timer> timer;
    std::vector<const LoopMode*> modes;
  };
  using Timers = std::multimap<std::int64_t, Entry>;

  void enter(const Ref<Timer>& timer, const std::vector<const LoopMode*>& modes);
  // The first from `from` on that is in the mode; drops those that are over on its way.
  Timers::iterator firstIn(const LoopMode& mode, Timers::iterator from);
  void fire(Timers::iterator at, std::int64_t now);

  Timers timers_;
};

}  // namespace qx::detail

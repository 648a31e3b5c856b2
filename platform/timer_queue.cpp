#include "platform/timer_queue.h"

#include <algorithm>
#include <utility>

namespace qx::detail {

void TimerQueue::enter(const Ref<Timer>& timer, const std::vector<const LoopMode*>& modes) {
  if (!timer->isValid()) return;
  const auto known = std::find_if(timers_.begin(), timers_.end(), [&](const auto& t) {
    return t.second.timer.get() == timer.get();
  });
  auto at = known != timers_.end() ? known : timers_.emplace(timer->due(), Entry{timer, {}});
  auto& all = at->second.modes;
  for (const LoopMode* mode : modes) {
    if (std::find(all.begin(), all.end(), mode) == all.end()) all.push_back(mode);
  }
}

TimerQueue::Timers::iterator TimerQueue::firstIn(const LoopMode& mode, Timers::iterator from) {
  while (from != timers_.end()) {
    const auto& modes = from->second.modes;
    if (!from->second.timer->isValid()) {
      from = timers_.erase(from);
    } else if (std::find(modes.begin(), modes.end(), &mode) != modes.end()) {
      break;
    } else {
      ++from;
    }
  }
  return from;
}

std::int64_t TimerQueue::nextDue(const LoopMode& mode) {
  const auto next = firstIn(mode, timers_.begin());
  return next == timers_.end() ? kNever : next->first;
}

// The queue may change in every call. What is due after `now` was added or fired meanwhile, or is
// later.
void TimerQueue::fireDue(const LoopMode& mode) {
  if (timers_.empty()) return;
  const std::int64_t now = steadyNow();
  for (;;) {
    const auto next = firstIn(mode, timers_.begin());
    if (next == timers_.end() || next->first > now) return;
    fire(next, now);
  }
}

// The timer is out of the queue while it is called, so that a nested run does not call it again. It
// comes back whatever it raises, unless it has come back by its own doing.
void TimerQueue::fire(Timers::iterator at, std::int64_t now) {
  const Entry entry = std::move(at->second);
  timers_.erase(at);
  struct Return {
    TimerQueue& queue;
    const Entry& entry;
    ~Return() { queue.enter(entry.timer, entry.modes); }
  } const comesBack{*this, entry};
  entry.timer->fire(now);
}

}  // namespace qx::detail

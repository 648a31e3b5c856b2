#include "platform/run_loop_state.h"

#include <algorithm>

#include "platform/delivery.h"

namespace qx::detail {

namespace {

// Messages in one turn, and those of one port among them: what else waits is looked at in between.
constexpr std::size_t kTurn = 256;
constexpr std::size_t kShare = 64;

}  // namespace

class RunLoopState::Run {
 public:
  Run(RunLoopState& loop, LoopMode& mode)
      : loop_(loop), before_(std::exchange(loop.running_, &mode)) {
    loop_.ready_.modeChanged();
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;
  ~Run() {
    loop_.running_ = before_;
    loop_.ready_.modeChanged();
    loop_.leave();
  }

 private:
  RunLoopState& loop_;
  LoopMode* before_;
};

RunLoopState::RunLoopState()
    : signal_(std::make_shared<LoopSignal>()),
      descriptors_(signal_->descriptor()),
      default_(mode(NSDefaultRunLoopMode)) {}

LoopMode* RunLoopState::findMode(StringArg name) {
  for (const auto& m : modes_) {
    if (m->name->isEqualToString(name)) return m.get();
  }
  return nullptr;
}

LoopMode& RunLoopState::mode(StringArg name) {
  if (LoopMode* known = findMode(name)) return *known;
  modes_.push_back(std::make_unique<LoopMode>(LoopMode{String::from(name)}));
  return *modes_.back();
}

bool RunLoopState::addPort(Port& port, LoopMode& mode) {
  PortState& state = port.state();
  if (state.isScheduledIn(mode)) return true;
  state.modes.reserve(state.modes.size() + 1);
  if (!state.bind(signal_)) return false;
  state.modes.push_back(&mode);
  ++mode.ports;
  if (state.modes.size() == 1) {
    port.retain();
    scheduled_.append(state);
  }
  ready_.modeChanged();  // it may be among those put aside
  ready_.list(state);
  if (running_ == nullptr) leave();
  return true;
}

void RunLoopState::removePort(Port& port, LoopMode& mode) {
  PortState& state = port.state();
  const auto place = std::find(state.modes.begin(), state.modes.end(), &mode);
  if (place == state.modes.end()) return;
  state.modes.erase(place);
  --mode.ports;
  if (!state.modes.empty()) return;
  const Ref<Port> held(&port);
  readAnnouncements();  // one of them may hold it
  ready_.unlist(state);
  state.ScheduledLink::unlink();
  port.release();
}

void RunLoopState::addTimer(const Ref<Timer>& timer, LoopMode& mode) {
  descriptors_.makeTimer();
  timers_.add(timer, mode);
  if (running_ == nullptr) leave();
}

void RunLoopState::readAnnouncements() {
  if (!signal_->hasAnnouncements()) return;
  for (PortState* port = signal_->takeAnnounced(); port != nullptr;) {
    PortState* next = port->next;
    port->hearAnnouncement();
    ready_.list(*port);
    port->port.release();
    port = next;
  }
}

std::size_t RunLoopState::deliver(PortState& port, std::size_t most) {
  const Ref<Port> held(&port.port);
  std::size_t count = 0;
  Delivery delivery(port);
  while (count < most && port.isScheduledIn(*running_) && delivery.next()) {
    ++count;
    if (signal_->isStopRequested()) break;
  }
  ready_.endTurn(port);
  return count;
}

// Messages that are sent meanwhile, by what is performed or by other threads, wait for a later
// turn.
bool RunLoopState::turn(LoopMode& mode) {
  signal_->disarm();
  timers_.fireDue(mode);
  readAnnouncements();
  ready_.collect(mode);
  std::size_t count = 0;
  while (count < kTurn && !signal_->isStopRequested()) {
    PortState* port = ready_.first(mode);
    if (port == nullptr) break;
    count += deliver(*port, std::min(kShare, kTurn - count));
  }
  return count != 0;
}

// Ports may be announced still though they are empty: one whose last letter is being performed, by
// an operation that runs the loop again, or was left behind by what was raised. Nobody would wake
// the loop for their next letters, so that the mark is taken away before.
void RunLoopState::sleep(LoopMode& mode, std::int64_t limit) {
  if (!timers_.empty()) descriptors_.setTimer(timers_.nextDue(mode));
  signal_->arm();
  if (!ready_.isAnyIn(mode) && !signal_->hasAnnouncements() && !signal_->isStopRequested())
    descriptors_.wait(limit);
  signal_->disarm();
}

// The limit is looked at before sleeping, and one turn follows it: who wakes the loop may be late.
Ended RunLoopState::run(LoopMode& mode, std::int64_t limit, Until until) {
  const Run run(*this, mode);
  for (bool last = false;; last = limit != kNever && steadyNow() >= limit) {
    if (signal_->takeStop()) return Ended::stopped;
    if (isDeserted(mode)) return Ended::deserted;
    const bool handled = turn(mode);
    if (signal_->takeStop()) return Ended::stopped;
    if (handled && until == Until::handled) return Ended::handled;
    if (last) return Ended::limit;
    if (!handled && !isDeserted(mode)) sleep(mode, limit);
  }
}

bool RunLoopState::runPending() {
  {
    const Run run(*this, default_);
    if (!signal_->takeStop()) {
      turn(default_);
      signal_->takeStop();
    }
    descriptors_.wait(0);
  }
  return hasMore_;
}

void RunLoopState::leave() noexcept {
  if (!timers_.empty()) descriptors_.setTimer(timers_.nextDue(default_));
  signal_->arm();
  hasMore_ = signal_->hasAnnouncements() || ready_.isAnyIn(default_);
  if (hasMore_) signal_->wake();
}

// Letting go may run code of the application, which finds nothing scheduled any more.
void RunLoopState::close() noexcept {
  for (PortState* port = signal_->close(); port != nullptr;) {
    PortState* next = port->next;
    port->port.release();
    port = next;
  }
  ready_.clear();
  while (PortState* port = scheduled_.first()) {
    port->ScheduledLink::unlink();
    port->modes.clear();
    port->port.release();
  }
  timers_.clear();
}

}  // namespace qx::detail

#include <QXFoundation/run_loop.h>

#include "frame/library_class.h"
#include "frame/raise.h"
#include "platform/run_loop_state.h"

namespace qx {

using detail::Ended;
using detail::kNever;
using detail::LoopMode;
using detail::RunLoopState;
using detail::Until;

namespace {

// Plain variables, which can still be read while other variables of the thread are destroyed.
thread_local RunLoop* current = nullptr;
thread_local bool ended = false;

// Ends the loop with its thread.
struct Owner {
  Ref<RunLoop> loop;
  ~Owner() {
    current = nullptr;
    ended = true;
    if (loop != nullptr) loop->close(detail::Passkey{});
  }
};

// The limit as a time of the steady clock; nil and NaN do not wait.
std::int64_t limitOf(const Date* date) {
  if (date == nullptr) return 0;
  const double rest = date->timeIntervalSinceDate(Date::date());
  constexpr double kLongest = 9e9;  // seconds: some 285 years
  if (!(rest > 0)) return 0;
  return rest > kLongest ? kNever : detail::steadyNow() + static_cast<std::int64_t>(rest * 1e9) + 1;
}

}  // namespace

RunLoop::RunLoop(detail::Passkey) : state_(std::make_unique<RunLoopState>()) {}
RunLoop::~RunLoop() = default;

Ref<RunLoop> RunLoop::currentRunLoop() {
  if (current != nullptr) return current;
  if (ended) {
    throw InternalInconsistencyException(
        "+[NSRunLoop currentRunLoop]: the thread is ending and has no run loop any more");
  }
  static thread_local Owner owner;
  owner.loop = make<RunLoop>(detail::Passkey{});
  current = owner.loop.get();
  return owner.loop;
}

RunLoop* RunLoop::existing(detail::Passkey) { return current; }

void RunLoop::close(detail::Passkey) noexcept { state_->close(); }

RunLoopState& RunLoop::own(const char* operation) const {
  if (current != this) {
    throw InternalInconsistencyException(std::string("-[NSRunLoop ") + operation +
                                         "]: the run loop belongs to another thread");
  }
  return *state_;
}

void RunLoop::addPort(In<Port> port, StringArg forMode) {
  constexpr char kOperation[] = "addPort:forMode:";
  RunLoopState& state = own(kOperation);
  if (!state.addPort(*port, state.mode(forMode))) {
    detail::raiseInvalidArgument(
        "-[NSRunLoop addPort:forMode:]: the port belongs to the run loop of another thread");
  }
}

void RunLoop::removePort(In<Port> port, StringArg forMode) {
  RunLoopState& state = own("removePort:forMode:");
  if (LoopMode* mode = state.findMode(forMode)) state.removePort(*port, *mode);
}

void RunLoop::addTimer(In<Timer> timer, StringArg forMode) {
  RunLoopState& state = own("addTimer:forMode:");
  state.addTimer(&*timer, state.mode(forMode));
}

bool RunLoop::runMode(StringArg mode, In<Date> beforeDate) {
  RunLoopState& state = own("runMode:beforeDate:");
  LoopMode* known = state.findMode(mode);
  if (known == nullptr) return false;
  return state.run(*known, limitOf(beforeDate.get()), Until::handled) != Ended::deserted;
}

void RunLoop::runUntilDate(In<Date> limitDate) {
  RunLoopState& state = own("runUntilDate:");
  state.run(state.mode(NSDefaultRunLoopMode), limitOf(limitDate.get()), Until::limit);
}

void RunLoop::run() {
  RunLoopState& state = own("run");
  state.run(state.mode(NSDefaultRunLoopMode), kNever, Until::limit);
}

void RunLoop::stop() { state_->signal()->requestStop(); }

Ref<String> RunLoop::currentMode() const {
  const LoopMode* running = own("currentMode").running();
  return running == nullptr ? nullptr : running->name;
}

int RunLoop::fileDescriptor() const { return state_->descriptor(); }

bool RunLoop::runPending() { return own("runPending").runPending(); }

void describe(ClassBuilder<RunLoop>& c) {
  c.name("NSRunLoop").inherits<Object>();
  c.operation("run", &RunLoop::run).operation("stop", &RunLoop::stop);
  c.operation("currentMode", &RunLoop::currentMode).operation("runPending", &RunLoop::runPending);
  c.operation("fileDescriptor", &RunLoop::fileDescriptor);
  c.operation(
      "runUntilDate:", +[](const PropertyValue& r, const Ref<Date>& limit) {
        r.as<RunLoop>()->runUntilDate(limit);
      });
  c.operation(
      "runMode:beforeDate:",
      +[](const PropertyValue& r, const Ref<String>& mode, const Ref<Date>& limit) {
        return r.as<RunLoop>()->runMode(mode, limit);
      });
  c.operation(
      "addPort:forMode:", +[](const PropertyValue& r, const Ref<Port>& port,
                              const Ref<String>& mode) { r.as<RunLoop>()->addPort(port, mode); });
  c.operation(
      "removePort:forMode:",
      +[](const PropertyValue& r, const Ref<Port>& port, const Ref<String>& mode) {
        r.as<RunLoop>()->removePort(port, mode);
      });
  c.operation(
      "addTimer:forMode:",
      +[](const PropertyValue& r, const Ref<Timer>& timer, const Ref<String>& mode) {
        r.as<RunLoop>()->addTimer(timer, mode);
      });
}

const Class& classObject(detail::Type<RunLoop>) { return detail::buildLibraryClass<RunLoop>(); }

}  // namespace qx

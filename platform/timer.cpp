#include <QXFoundation/timer.h>

#include "frame/library_class.h"
#include "frame/raise.h"
#include "platform/loop_descriptors.h"

namespace qx {

namespace {

constexpr double kShortest = 1e-4;
constexpr double kLongest = 1e9;  // seconds: some thirty years

std::int64_t nanoseconds(double seconds) {
  if (!(seconds > kShortest)) seconds = kShortest;
  if (seconds > kLongest) seconds = kLongest;
  return static_cast<std::int64_t>(seconds * 1e9);
}

}  // namespace

Timer::Timer(detail::Passkey, std::int64_t interval, bool repeats,
             std::function<void(Timer&)> block)
    : block_(std::move(block)),
      interval_(interval),
      due_(detail::steadyNow() + interval),
      repeats_(repeats) {}

Timer::~Timer() = default;

Ref<Timer> Timer::timerWithTimeInterval(double seconds, bool repeats,
                                        std::function<void(Timer&)> block) {
  if (!block) {
    detail::raiseInvalidArgument(
        "+[NSTimer timerWithTimeInterval:repeats:block:]: the block is missing");
  }
  return make<Timer>(detail::Passkey{}, nanoseconds(seconds), repeats, std::move(block));
}

void Timer::invalidate() {
  valid_ = false;
  block_ = nullptr;
}

double Timer::timeInterval() const { return static_cast<double>(interval_) / 1e9; }

// The block stands outside of the timer while it runs: it may end the timer.
void Timer::fire(std::int64_t now) {
  if (!valid_) return;
  const Ref<Timer> self(this);
  if (repeats_) {
    due_ += (now - due_) / interval_ * interval_ + interval_;
  } else {
    valid_ = false;
  }
  struct Running {
    Timer& timer;
    std::function<void(Timer&)> block;
    ~Running() {
      if (timer.valid_) timer.block_ = std::move(block);
    }
  } running{*this, std::exchange(block_, nullptr)};
  running.block(*this);
}

void describe(ClassBuilder<Timer>& c) {
  c.name("NSTimer").inherits<Object>();
  c.operation("invalidate", &Timer::invalidate).operation("isValid", &Timer::isValid);
  c.operation("timeInterval", &Timer::timeInterval);
}

const Class& classObject(detail::Type<Timer>) { return detail::buildLibraryClass<Timer>(); }

}  // namespace qx

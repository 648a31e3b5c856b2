// Timer: a call at a time, or again and again, by a run loop.
//
//     auto timer = qx::Timer::timerWithTimeInterval(0.5, true, [](qx::Timer&) { blink(); });
//     qx::RunLoop::currentRunLoop()->addTimer(timer, qx::NSDefaultRunLoopMode);
//     ...
//     timer->invalidate();
#pragma once

#include <cstdint>
#include <functional>

#include <QXFoundation/object.h>
#include <QXFoundation/string.h>

namespace qx {

// The class is "NSTimer". A timer belongs to the thread of the run loop that it was added to; the
// loop holds it until it is over.
class QX_EXPORT Timer : public Object {
 public:
  // Calls `block` for the first time `seconds` after it was made, and again in steps of that length
  // if it repeats; steps that were missed are left out, not made up for. Times shorter than a tenth
  // of a millisecond, negative ones and NaN count as that; the clock is one that nobody sets.
  // Raises InvalidArgumentException for an empty block.
  static Ref<Timer> timerWithTimeInterval(double seconds, bool repeats,
                                          std::function<void(Timer&)> block);

  // Ends it; the block is let go of, after its call if it is running.
  void invalidate();
  // False once it was ended, or has been called and does not repeat.
  bool isValid() const { return valid_; }
  double timeInterval() const;

  // Inside the library. Times are nanoseconds of the steady clock.
  Timer(detail::Passkey, std::int64_t interval, bool repeats, std::function<void(Timer&)> block);
  std::int64_t due() const { return due_; }
  void fire(std::int64_t now);

 protected:
  ~Timer() override;

 private:
  std::function<void(Timer&)> block_;
  std::int64_t interval_;
  std::int64_t due_;
  bool repeats_;
  bool valid_ = true;
};

QX_EXPORT const Class& classObject(detail::Type<Timer>);

}  // namespace qx

#pragma once

// What a run loop waits with.

#include <cstdint>
#include <limits>

namespace qx::detail {

// The descriptor; raises InternalInconsistencyException with the system's reason where `call` gave
// none.
int checkedDescriptor(int descriptor, const char* call);

// Nanoseconds of the steady clock; this one is never reached.
inline constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();
std::int64_t steadyNow() noexcept;

// A set of two descriptors: the event that senders write, and a timer, made when it is first
// needed. Both report each event once, so that waiting is all it takes to forget it. Belongs to the
// loop's thread.
class LoopDescriptors {
 public:
  explicit LoopDescriptors(int event);
  LoopDescriptors(const LoopDescriptors&) = delete;
  LoopDescriptors& operator=(const LoopDescriptors&) = delete;
  ~LoopDescriptors();

  // Readable while an event was not waited for.
  int descriptor() const { return set_; }
  // Has to come before setTimer; raises as checkedDescriptor does.
  void makeTimer();
  // The moment at which the timer is to report.
  void setTimer(std::int64_t due) noexcept;
  // Waits for an event until the limit at most, and forgets it; may return earlier without one.
  // Limits in the past do not wait.
  void wait(std::int64_t limit) noexcept;

 private:
  void watch(int descriptor);

  int set_;
  int timer_ = -1;
  std::int64_t due_ = kNever;
};

}  // namespace qx::detail

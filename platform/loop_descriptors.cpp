#include "platform/loop_descriptors.h"

#include <errno.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include <QXFoundation/exception.h>

namespace qx::detail {

namespace {

constexpr std::int64_t kSecond = 1000000000;
constexpr std::int64_t kMillisecond = 1000000;

}  // namespace

int checkedDescriptor(int descriptor, const char* call) {
  if (descriptor >= 0) return descriptor;
  char buffer[128];
  const char* reason = ::strerror_r(errno, buffer, sizeof buffer);
  throw InternalInconsistencyException(std::string("A run loop can not be made: ") + call + ": " +
                                       reason);
}

std::int64_t steadyNow() noexcept {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * kSecond + now.tv_nsec;
}

LoopDescriptors::LoopDescriptors(int event)
    : set_(checkedDescriptor(::epoll_create1(EPOLL_CLOEXEC), "epoll_create1")) {
  try {
    watch(event);
  } catch (...) {
    ::close(set_);
    throw;
  }
}

LoopDescriptors::~LoopDescriptors() {
  if (timer_ >= 0) ::close(timer_);
  ::close(set_);
}

void LoopDescriptors::watch(int descriptor) {
  epoll_event event{};
  event.events = EPOLLIN | EPOLLET;
  checkedDescriptor(::epoll_ctl(set_, EPOLL_CTL_ADD, descriptor, &event), "epoll_ctl");
}

void LoopDescriptors::makeTimer() {
  if (timer_ >= 0) return;
  const int timer = checkedDescriptor(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK),
                                      "timerfd_create");
  try {
    watch(timer);
  } catch (...) {
    ::close(timer);
    throw;
  }
  timer_ = timer;
}

// A moment in the past makes the timer report at once: zero alone would switch it off.
void LoopDescriptors::setTimer(std::int64_t due) noexcept {
  if (due == due_) return;
  itimerspec when{};
  if (due != kNever) {
    due = std::max<std::int64_t>(due, 1);
    when.it_value.tv_sec = due / kSecond;
    when.it_value.tv_nsec = due % kSecond;
  }
  ::timerfd_settime(timer_, TFD_TIMER_ABSTIME, &when, nullptr);
  due_ = due;
}

void LoopDescriptors::wait(std::int64_t limit) noexcept {
  int milliseconds = -1;
  if (limit != kNever) {
    const std::int64_t rest = std::max<std::int64_t>(limit - (limit <= 0 ? limit : steadyNow()), 0);
    milliseconds = static_cast<int>(
        std::min<std::int64_t>(rest / kMillisecond + (rest % kMillisecond != 0), 1000000000));
  }
  epoll_event events[2];
  (void)::epoll_wait(set_, events, 2, milliseconds);
}

}  // namespace qx::detail

#include "platform/loop_signal.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include "platform/loop_descriptors.h"

namespace qx::detail {

LoopSignal::LoopSignal()
    : descriptor_(checkedDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd")) {}

LoopSignal::~LoopSignal() { ::close(descriptor_); }

void LoopSignal::announce(PortState& port) noexcept {
  port.port.retain();
  if (!announced_.add(&port)) return port.port.release();
  wakeIfArmed();
}

void LoopSignal::requestStop() noexcept {
  stop_.store(true, std::memory_order_seq_cst);
  wakeIfArmed();
}

void LoopSignal::wakeIfArmed() noexcept {
  if (armed_.load(std::memory_order_seq_cst) && armed_.exchange(false, std::memory_order_seq_cst))
    wake();
}

// Each write is an event of its own: nobody ever reads the counter, which takes 2^64 of them to
// overflow.
void LoopSignal::wake() const noexcept {
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = ::write(descriptor_, &one, sizeof one);
}

PortState* LoopSignal::close() noexcept {
  closed_.store(true, std::memory_order_release);
  return announced_.close();
}

}  // namespace qx::detail

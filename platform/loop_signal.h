#pragma once

// What a run loop shares with the threads that send to it.

#include <atomic>

#include "platform/port_state.h"

namespace qx::detail {

// Which ports have got messages, whether the loop is to stop, and how it is woken. Ports keep it
// beyond the loop's own end.
//
// The loop is woken by an event descriptor, and only when it asked for that: it is *armed* before
// it sleeps (or leaves the waiting to another loop), and the first sender that finds it so disarms
// it and writes. Whoever arms looks at the news once more before sleeping.
class LoopSignal {
 public:
  // Raises InternalInconsistencyException when the system has no descriptor left.
  LoopSignal();
  LoopSignal(const LoopSignal&) = delete;
  LoopSignal& operator=(const LoopSignal&) = delete;
  ~LoopSignal();

  // ---- any thread
  // Tells the loop that the port has messages, for which it holds the port until it has looked.
  void announce(PortState& port) noexcept;
  void requestStop() noexcept;
  // The loop's thread has ended.
  bool isClosed() const noexcept { return closed_.load(std::memory_order_acquire); }
  // Makes the descriptor readable.
  void wake() const noexcept;

  // ---- the loop's thread
  int descriptor() const { return descriptor_; }
  void arm() noexcept { armed_.store(true, std::memory_order_seq_cst); }
  void disarm() noexcept { armed_.store(false, std::memory_order_relaxed); }
  bool isStopRequested() const noexcept { return stop_.load(std::memory_order_seq_cst); }
  // Whether a stop was requested since this was asked last.
  bool takeStop() noexcept {
    return isStopRequested() && stop_.exchange(false, std::memory_order_seq_cst);
  }
  bool hasAnnouncements() const noexcept { return !announced_.empty(); }
  // Ports in the order of their announcements, linked by `next`, each with a count for the caller.
  PortState* takeAnnounced() noexcept { return announced_.takeAll(); }
  // Nothing is announced any more; gives what was.
  PortState* close() noexcept;

 private:
  void wakeIfArmed() noexcept;

  SendList<PortState> announced_;
  std::atomic<bool> armed_{true};
  std::atomic<bool> stop_{false};
  [[maybe_unused]] char apart_[kCacheLine];
  std::atomic<bool> closed_{false};  // read for every message, written once
  int descriptor_;
};

}  // namespace qx::detail

#include "platform/port_state.h"

#include "platform/loop_signal.h"

namespace qx::detail {

// Nobody sends any more: whoever sends holds the port.
PortState::~PortState() {
  dropLetters(taken);
  dropLetters(inbox.takeAll());
}

// A sender that found no loop has put its letter into the inbox before: it is found here.
bool PortState::bind(const std::shared_ptr<LoopSignal>& signal) {
  LoopSignal* before = nullptr;
  if (!loop.compare_exchange_strong(before, signal.get(), std::memory_order_seq_cst))
    return before == signal.get();
  loopHeld = signal;
  mail = true;
  return true;
}

bool PortState::send(Letter& letter) noexcept {
  LoopSignal* signal = loop.load(std::memory_order_acquire);
  if (signal != nullptr && signal->isClosed()) return false;
  inbox.add(&letter);
  if (announced.load(std::memory_order_seq_cst)) return true;
  signal = loop.load(std::memory_order_seq_cst);
  if (signal == nullptr || announced.exchange(true, std::memory_order_seq_cst)) return true;
  signal->announce(*this);
  return true;
}

// Who comes later than the announcement that is still on its way does not announce the port again.
void PortState::collect() noexcept {
  if (!mail) return;
  mail = told;
  if (inbox.empty()) return;
  Letter* before = taken == nullptr ? nullptr : takenLast;
  Letter* more = inbox.takeAll(takenLast);
  if (before == nullptr) {
    taken = more;
  } else {
    before->next = more;
  }
}

// Who sends after the mark is gone announces the port again. A letter that came before, and so was
// not announced, is found afterwards.
void PortState::restIfEmpty() noexcept {
  if (taken != nullptr || !told || !inbox.empty()) return;
  announced.store(false, std::memory_order_seq_cst);
  mail = told = false;
  if (inbox.empty()) return;
  mail = true;
  told = !announced.exchange(true, std::memory_order_seq_cst);
}

Letter* PortState::takeLetter() noexcept {
  Letter* letter = taken;
  if (letter == nullptr) return nullptr;
  taken = letter->next;
  if (taken != nullptr) __builtin_prefetch(taken);  // a line that a sender has written
  return letter;
}

void PortState::dropLetters(Letter* letter) noexcept {
  while (letter != nullptr) {
    Letter* next = letter->next;
    if (letter->kind == Letter::Kind::message) delete static_cast<MessageLetter*>(letter);
    letter = next;
  }
}

bool sendLetter(const Port& port, Letter& letter) noexcept { return port.state().send(letter); }

}  // namespace qx::detail

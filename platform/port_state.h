#pragma once

// What a port is made of.

#include <atomic>
#include <memory>
#include <vector>

#include <QXFoundation/data.h>
#include <QXFoundation/port.h>
#include <QXFoundation/weak_ref.h>

#include "platform/letter.h"
#include "platform/link_list.h"
#include "platform/send_list.h"

namespace qx::detail {

class LoopSignal;
struct LoopMode;

// The message, list and data that letters of senders' own memory are delivered in. Made at the
// first such letter, and used again for the next while nobody else has kept them.
struct Carrier {
  Ref<PortMessage> message;
  Ref<MutableArray> list;
  Ref<MutableData> data;
};

struct ReadyLink : Link {};      // in one of the lists of ports that have letters
struct ScheduledLink : Link {};  // in the list of a loop's scheduled ports

struct PortState : ReadyLink, ScheduledLink {
  explicit PortState(Port& p) : port(p) {}
  PortState(const PortState&) = delete;
  PortState& operator=(const PortState&) = delete;
  ~PortState();

  // ---- any thread
  // Binds the port to a loop, for ever. False when it is bound to another.
  bool bind(const std::shared_ptr<LoopSignal>& loop);
  bool send(Letter& letter) noexcept;

  // ---- the loop's thread
  bool isScheduledIn(const LoopMode& mode) const;
  // Letters may wait: in `taken`, or, as far as the loop knows, in the inbox.
  bool hasLetters() const { return taken != nullptr || mail; }
  // Empties the inbox, if there may be letters in it.
  void collect() noexcept;
  // The oldest letter; null when there is none.
  Letter* takeLetter() noexcept;
  // Frees the port's own letters from `letter` on; those of senders' memory stay in memory.
  static void dropLetters(Letter* letter) noexcept;

  // Written by senders.
  SendList<Letter> inbox;
  std::atomic<bool> announced{
      false};  // the loop knows of letters in the inbox, or is about to be told
  std::atomic<LoopSignal*> loop{nullptr};
  PortState* next = nullptr;  // of the ports that are announced

  char apart[kCacheLine];  // from what only the loop's thread writes
  Port& port;
  Letter* taken = nullptr;  // out of the inbox, in order
  Letter* takenLast = nullptr;
  bool mail = false;  // there may be letters in the inbox
  bool told =
      false;  // the announcement of them has arrived, and `announced` is set for nothing else
  std::vector<LoopMode*> modes;
  std::shared_ptr<LoopSignal> loopHeld;  // what `loop` points to
  WeakRef<Object> delegate;
  PortDelegate* interface = nullptr;  // of the delegate; null: by selector
  unsigned delegateChanges = 0;
  Carrier carrier;
};

}  // namespace qx::detail

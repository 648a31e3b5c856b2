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

class Delivery;
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

// A port is *announced* from the first letter that its loop does not know of until the loop has
// found the inbox empty: meanwhile senders have nothing to tell.
struct PortState : ReadyLink, ScheduledLink {
  explicit PortState(Port& p) : port(p) {}
  PortState(const PortState&) = delete;
  PortState& operator=(const PortState&) = delete;
  ~PortState();

  // ---- any thread
  // Binds the port to a loop, for ever. False when it is bound to another.
  bool bind(const std::shared_ptr<LoopSignal>& signal);
  bool send(Letter& letter) noexcept;

  // ---- the loop's thread
  bool isScheduledIn(const LoopMode& mode) const {
    for (const LoopMode* m : modes) {
      if (m == &mode) return true;
    }
    return false;
  }
  // Letters may wait: in `taken`, or, as far as the loop knows, in the inbox.
  bool hasLetters() const { return taken != nullptr || mail; }
  // The announcement of letters has arrived.
  void hearAnnouncement() { mail = told = true; }
  // Empties the inbox, if there may be letters in it.
  void collect() noexcept;
  // Has the next letter announced, if there is none now.
  void restIfEmpty() noexcept;
  // The oldest of the letters that were collected; null when there is none.
  Letter* takeLetter() noexcept;
  // Frees the port's own letters from `letter` on; those of senders' memory stay in memory.
  static void dropLetters(Letter* letter) noexcept;

  Port& port;
  Letter* taken = nullptr;  // out of the inbox, in order
  Letter* takenLast = nullptr;
  bool mail = false;  // there may be letters in the inbox
  bool told = false;  // `announced` is set, and no announcement is on its way
  std::vector<LoopMode*> modes;
  std::shared_ptr<LoopSignal> loopHeld;  // what `loop` points to
  WeakRef<Object> delegate;
  PortDelegate* interface = nullptr;  // of the delegate; null: by selector
  unsigned delegateChanges = 0;
  Carrier carrier;
  Delivery* delivery = nullptr;  // the innermost that is under way

  // What senders write for every letter, and what they read, in lines of the cache of their own.
  [[maybe_unused]] char apart[kCacheLine];
  SendList<Letter> inbox;
  [[maybe_unused]] char apartFromInbox[kCacheLine];
  std::atomic<bool> announced{false};
  std::atomic<LoopSignal*> loop{nullptr};
  PortState* next = nullptr;  // of the ports that are announced
  [[maybe_unused]] char apartFromOthers[kCacheLine];
};

}  // namespace qx::detail

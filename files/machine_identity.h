#pragma once

// What identifies the machine, learnt once.

#include <atomic>
#include <string_view>

#include <QXFoundation/dictionary.h>

#include "platform/replaceable.h"

namespace qx::detail {

// Each part is learnt when it is first asked for and then stays. Of two threads that learn it at
// the same time one's result is kept. Replaced as a whole by tests that want to learn anew.
class MachineIdentity {
 public:
  MachineIdentity() = default;
  MachineIdentity(const MachineIdentity&) = delete;
  MachineIdentity& operator=(const MachineIdentity&) = delete;
  virtual ~MachineIdentity() = default;

  virtual Ref<String> identifier();
  virtual Ref<String> hostName();
  // From the name of an interface to the text of its hardware address; of two entries of one name
  // the later counts.
  Ref<Dictionary> interfaceAddresses();

 private:
  // A value that is set once.
  template <class T>
  class Once {
   public:
    ~Once() {
      if (T* value = value_.load()) value->release();
    }
    T* get() const { return value_.load(std::memory_order_acquire); }
    // Gives what is kept: the value, or the one that another thread was quicker with.
    Ref<T> keep(Ref<T> value) {
      T* none = nullptr;
      if (value_.compare_exchange_strong(none, value.get(), std::memory_order_acq_rel)) {
        return value.leak();
      }
      return none;
    }

   private:
    std::atomic<T*> value_{nullptr};
  };

  Once<Dictionary> addresses_;
  Once<String> identifier_;
  Once<String> hostName_;
};

inline MachineIdentity& machineIdentity() { return Replaceable<MachineIdentity>::inUse(); }
using ReplacedMachineIdentity = Replaceable<MachineIdentity>::Replacement;

// The identifier that a table of addresses gives.
Ref<String> identifierAmong(const Dictionary& addresses);

}  // namespace qx::detail

#pragma once

// Services of the process that tests can replace.

#include <atomic>

namespace qx::detail {

// `Service` is a class of virtual functions, whose own forms ask the system. Thread-safe.
template <class Service>
class Replaceable {
 public:
  // The one in use: the system's, or a test's.
  static Service& inUse() {
    static auto* system = new Service;  // never destroyed: it serves during static destruction too
    Service* other = replacement_.load(std::memory_order_acquire);
    return other != nullptr ? *other : *system;
  }

  // Puts `service` in place of the one in use while it lives; for tests.
  class Replacement {
   public:
    explicit Replacement(Service& service)
        : before_(replacement_.exchange(&service, std::memory_order_acq_rel)) {}
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;
    ~Replacement() { replacement_.store(before_, std::memory_order_release); }

   private:
    Service* before_;
  };

 private:
  static inline std::atomic<Service*> replacement_{nullptr};
};

}  // namespace qx::detail

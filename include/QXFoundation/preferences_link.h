// How the containers of a preferences tree reach their store. Inside the library.
#pragma once

#include <atomic>
#include <cstddef>
#include <utility>

#include <QXFoundation/export.h>

namespace qx {

class QXPreferences;

namespace detail {

// One for each store, shared with the containers that report to it.
struct PreferencesCell {
  QXPreferences* store;  // null once the store is gone
  std::atomic<std::size_t> count{1};
};

// A reference to a store that does not keep it alive, and is absent once it is gone. Cheaper than a
// WeakRef, as a store and its containers belong to one thread at a time.
class PreferencesLink {
 public:
  PreferencesLink() = default;
  explicit PreferencesLink(QXPreferences* store) : cell_(new PreferencesCell{store}) {}
  PreferencesLink(const PreferencesLink& other) noexcept : cell_(other.cell_) {
    if (cell_ != nullptr) cell_->count.fetch_add(1, std::memory_order_relaxed);
  }
  PreferencesLink& operator=(PreferencesLink other) noexcept {
    std::swap(cell_, other.cell_);
    return *this;
  }
  ~PreferencesLink() {
    if (cell_ != nullptr && cell_->count.fetch_sub(1, std::memory_order_acq_rel) == 1) delete cell_;
  }

  QXPreferences* store() const { return cell_ == nullptr ? nullptr : cell_->store; }
  // The store is going: for every copy of this link.
  void cut() { cell_->store = nullptr; }
  friend bool operator==(const PreferencesLink& a, const PreferencesLink& b) {
    return a.cell_ == b.cell_;
  }

 private:
  PreferencesCell* cell_ = nullptr;
};

struct PreferencesAccess;

}  // namespace detail
}  // namespace qx

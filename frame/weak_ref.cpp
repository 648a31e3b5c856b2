#include <memory>
#include <mutex>
#include <unordered_map>

#include <QXFoundation/weak_ref.h>

#include "frame/weak_table.h"

namespace qx::detail {

// One for each watched object, shared by its weak references.
struct WeakCell {
  WeakCell(std::mutex* m, const Object* o) : mutex(m), object(o) {}
  std::mutex* const mutex;  // of the stripe that the object's address falls into
  const Object* object;     // null once it is gone; under the mutex
  std::atomic<std::size_t> handles{1};
};

namespace {

struct Stripe {
  std::mutex mutex;
  std::unordered_map<const Object*, WeakCell*> cells;
};
constexpr std::size_t kStripes = 16;

Stripe& stripeOf(const Object* object) {
  static auto* stripes =
      new Stripe[kStripes];  // never destroyed: objects may outlive static destruction
  return stripes[(reinterpret_cast<std::uintptr_t>(object) >> 6) % kStripes];
}

// Counts a reference unless the last one is gone already.
bool retainIfAlive(const Object& object) noexcept {
  auto& refs = ObjectAccess::refs(object);
  std::uint32_t n = refs.load(std::memory_order_relaxed);
  while (n >= ObjectAccess::kOne) {
    if (refs.compare_exchange_weak(n, n + ObjectAccess::kOne, std::memory_order_acq_rel))
      return true;
  }
  return false;
}

void drop(WeakCell* cell) noexcept {
  if (cell->handles.fetch_sub(1, std::memory_order_acq_rel) == 1) delete cell;
}

}  // namespace

void unwatch(const Object* object) noexcept {
  Stripe& stripe = stripeOf(object);
  const std::scoped_lock lock(stripe.mutex);
  const auto found = stripe.cells.find(object);
  if (found == stripe.cells.end()) return;
  found->second->object = nullptr;
  drop(found->second);
  stripe.cells.erase(found);
}

// The table holds one handle of its own on every cell. An object that is being destroyed is gone
// already.
WeakHandle::WeakHandle(const Object* object) {
  if (object == nullptr) return;
  auto& refs = ObjectAccess::refs(*object);
  if ((refs.load(std::memory_order_relaxed) & ObjectAccess::kDying) != 0) return;
  Stripe& stripe = stripeOf(object);
  const std::scoped_lock lock(stripe.mutex);
  auto found = stripe.cells.find(object);
  if (found == stripe.cells.end()) {
    auto cell = std::make_unique<WeakCell>(&stripe.mutex, object);
    found = stripe.cells.emplace(object, cell.get()).first;
    cell.release();
    refs.fetch_or(ObjectAccess::kWatched, std::memory_order_relaxed);
  }
  cell_ = found->second;
  cell_->handles.fetch_add(1, std::memory_order_relaxed);
}

WeakHandle::WeakHandle(const WeakHandle& other) noexcept : cell_(other.cell_) {
  if (cell_ != nullptr) cell_->handles.fetch_add(1, std::memory_order_relaxed);
}

WeakHandle::~WeakHandle() {
  if (cell_ != nullptr) drop(cell_);
}

Object* WeakHandle::lock() const noexcept {
  if (cell_ == nullptr) return nullptr;
  const std::scoped_lock lock(*cell_->mutex);
  if (cell_->object == nullptr || !retainIfAlive(*cell_->object)) return nullptr;
  return const_cast<Object*>(cell_->object);
}

}  // namespace qx::detail

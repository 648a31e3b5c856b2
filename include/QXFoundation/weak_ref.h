// WeakRef: a reference that does not keep its object alive, and reads as nil once the object is
// gone.
//
//     qx::WeakRef<Person> weak = person;
//     if (qx::Ref<Person> p = weak.lock()) p->greet("you");
#pragma once

#include <type_traits>
#include <utility>

#include <QXFoundation/object.h>

namespace qx {

namespace detail {

struct WeakCell;

// The untyped part. Copies share one cell. `lock` may run while another thread releases the object.
class QX_EXPORT WeakHandle {
 public:
  WeakHandle() = default;
  explicit WeakHandle(const Object* object);
  WeakHandle(const WeakHandle& other) noexcept;
  WeakHandle(WeakHandle&& other) noexcept : cell_(std::exchange(other.cell_, nullptr)) {}
  WeakHandle& operator=(WeakHandle other) noexcept {
    std::swap(cell_, other.cell_);
    return *this;
  }
  ~WeakHandle();
  // The object with a count that the caller owns; null when it is gone.
  Object* lock() const noexcept;

 private:
  WeakCell* cell_ = nullptr;
};

}  // namespace detail

// Nil when default-constructed. Copies are cheap. Several threads may use their own copies while
// others release the object; one WeakRef variable belongs to one thread at a time.
template <class T>
class WeakRef {
 public:
  WeakRef() = default;
  // From nil, or an object that it does not keep alive.
  WeakRef(std::nullptr_t) {}
  template <class U>
    requires std::is_convertible_v<U*, T*>
  WeakRef(const Ref<U>& r) : handle_(r.get()) {}
  explicit WeakRef(T* p) : handle_(p) {}
  // Nil when the object is gone, which it is from the beginning of its destructor on.
  [[nodiscard]] Ref<T> lock() const { return Ref<T>::adopt(static_cast<T*>(handle_.lock())); }

 private:
  detail::WeakHandle handle_;
};

}  // namespace qx

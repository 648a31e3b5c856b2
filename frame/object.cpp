#include <cstdlib>

#include <QXFoundation/class.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>

#include "frame/class_record.h"
#include "frame/hashing.h"
#include "frame/raise.h"
#include "frame/weak_table.h"

namespace qx {
namespace {

// Destruction of nested data nests this far on the stack; what lies deeper waits in a list until
// the stack is free again. Plain memory: it is freed whenever it runs empty.
struct Deferred {
  const Object** items = nullptr;
  std::size_t count = 0;
  std::size_t capacity = 0;
  unsigned depth = 0;
};
constexpr unsigned kMaxDepth = 64;

__attribute__((tls_model("initial-exec"))) thread_local Deferred deferred;

// False when there is no memory for the list: the caller then goes on recursively.
bool defer(const Object* object) noexcept {
  if (deferred.count == deferred.capacity) {
    const std::size_t capacity = deferred.capacity == 0 ? 64 : deferred.capacity * 2;
    void* grown = std::realloc(deferred.items, capacity * sizeof(const Object*));
    if (grown == nullptr) return false;
    deferred.items = static_cast<const Object**>(grown);
    deferred.capacity = capacity;
  }
  deferred.items[deferred.count++] = object;
  return true;
}

const Object* nextDeferred() noexcept {
  const Object* next = deferred.items[--deferred.count];
  if (deferred.count == 0) {
    std::free(deferred.items);
    deferred.items = nullptr;
    deferred.capacity = 0;
  }
  return next;
}

}  // namespace

void Object::destroy() const noexcept {
  if ((refs_.load(std::memory_order_relaxed) & kWatched) != 0) detail::unwatch(this);
  // References that the destructor makes come and go without ending the object a second time.
  refs_.store(kDying, std::memory_order_relaxed);
  if ((bits_ & detail::kLeaf) != 0) {
    delete this;
    return;
  }
  if (deferred.depth >= kMaxDepth && defer(this)) return;
  ++deferred.depth;
  delete this;
  --deferred.depth;
  if (deferred.depth != 0) return;
  while (deferred.count != 0) {
    const Object* next = nextDeferred();
    ++deferred.depth;
    delete next;
    --deferred.depth;
  }
}

const Class& Object::cls() const noexcept { return detail::classAtIndex(classIndex_); }

bool Object::isEqual(const PropertyValue& other) const { return other.object() == this; }

std::size_t Object::hash() const {
  return static_cast<std::size_t>(detail::hashWord(reinterpret_cast<std::uintptr_t>(this)));
}

std::string Object::description() const {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string digits;
  for (auto address = reinterpret_cast<std::uintptr_t>(this); address != 0; address >>= 4) {
    digits.insert(digits.begin(), kDigits[address & 15]);
  }
  return std::string("<") + cls().name() + ": 0x" + digits + ">";
}

Ref<Object> Object::copy() const { detail::raiseUnsupported(const_cast<Object*>(this), "copy"); }

Ref<Object> Object::mutableCopy() const {
  detail::raiseUnsupported(const_cast<Object*>(this), "mutableCopy");
}

PropertyValue Object::valueForUndefinedKey(StringArg) const { return {}; }

void Object::setValueForUndefinedKey(const PropertyValue&, StringArg key) {
  detail::raiseNotSettable(cls(), key);
}

}  // namespace qx

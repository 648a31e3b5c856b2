#include "platform/observer_record.h"

#include "frame/hashing.h"
#include "frame/key_text.h"
#include "frame/string_storage.h"
#include "frame/word_access.h"

namespace qx::detail {

ObjectFilter::ObjectFilter(const PropertyValue& object) {
  if (const auto* text = object.isString() ? object.peek<String>() : nullptr) {
    kept_ = immutableString(*text);
  } else if (Object* o = object.object()) {
    weak_ = WeakRef<Object>(o);
    isWeak_ = true;
  } else {
    kept_ = object;
  }
}

bool ObjectFilter::matches(const PropertyValue& object) const {
  if (isWeak_) return object.object() != nullptr && weak_.lock().get() == object.object();
  if (kept_.isNil()) return true;
  return kept_.isString() ? object.isString() && kept_ == object : isSame(kept_, object);
}

std::uint64_t ObjectFilter::hashOf(const PropertyValue& object) {
  if (object.isNil()) return 0;
  if (object.isString()) return KeyText(*object.peek<String>()).hash;
  return hashWord(WordAccess::word(object));
}

bool ObserverRecord::hears(const String& posted, const PropertyValue& object) const {
  return (name == nullptr || name->isEqualToString(posted)) && about.matches(object);
}

bool ObserverRecord::tell(const Notification& notification) {
  if (action) {
    (*action)(notification);
    return true;
  }
  const Ref<Object> alive = observer.lock();
  if (alive == nullptr) return false;
  performSelector(alive, SelectorFor<1>(selector), const_cast<Notification*>(&notification));
  return true;
}

void ObserverRecord::release() {
  if (--count == 0) delete this;
}

}  // namespace qx::detail

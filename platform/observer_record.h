#pragma once

// What a notification center keeps of one observer.

#include <cstdint>
#include <optional>

#include <QXFoundation/notification_center.h>
#include <QXFoundation/weak_ref.h>

namespace qx::detail {

// The object that an observer wants to hear about: any, one by identity (referred to weakly), or
// every string equal to one.
class ObjectFilter {
 public:
  explicit ObjectFilter(const PropertyValue& object);

  bool isAny() const { return !isWeak_ && kept_.isNil(); }
  bool matches(const PropertyValue& object) const;
  // Equal for objects that match; 0 stands for any.
  static std::uint64_t hashOf(const PropertyValue& object);

 private:
  PropertyValue kept_;  // a string, or a value that is no object
  WeakRef<Object> weak_;
  bool isWeak_ = false;
};

// Counted by hand: the center holds one count, an Observation one, a post in progress one.
struct ObserverRecord {
  ObserverRecord(Ref<String> n, const PropertyValue& object) : name(std::move(n)), about(object) {}

  bool hears(const String& posted, const PropertyValue& object) const;
  bool belongsTo(const Object* asked) const { return asked == observer.lock().get(); }
  // False when the observer has ceased to exist.
  bool tell(const Notification& notification);
  void release();

  unsigned count = 1;
  NotificationCenter::State* center = nullptr;  // null once it is to hear nothing more
  std::uint64_t bucket = 0;
  std::uint64_t number = 0;  // in the order of adding
  Ref<String> name;          // nil: any
  ObjectFilter about;
  WeakRef<Object> observer;
  Selector selector;
  std::optional<NotificationAction> action;  // instead of observer and selector
};

}  // namespace qx::detail

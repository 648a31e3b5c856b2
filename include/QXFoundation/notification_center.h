// NotificationCenter, Notification and Observation: telling observers that something happened.
//
//     auto center = qx::NotificationCenter::init();
//     qx::Observation watching = center->observe(
//         "DidChange", nullptr, [&](const qx::Notification& n) { use(n.object(), n.userInfo()); });
//     center->addObserver(window, "documentDidChange:", "DidChange", document);
//     center->postNotificationName("DidChange", document, qx::dict({{"key", "title"}}));
//
// Posting is synchronous: every observer has been told when it returns, in the order in which they
// were added, on the calling thread. Observers may add and remove observers meanwhile, themselves
// included: one that is removed before its turn is not told any more, one that is added is told
// from the next notification on. What an observer raises reaches the poster, and those behind it
// are not told. A center, its observations and its posts belong to one thread at a time.
#pragma once

#include <concepts>
#include <memory>
#include <type_traits>
#include <utility>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>
#include <QXFoundation/string.h>

namespace qx {

// What observers are told: a name, the object it is about (may be nil) and further information (may
// be nil). The class is "NSNotification", with these three as properties. Immutable; as thread-safe
// as what it holds.
class QX_EXPORT Notification : public Object {
 public:
  // Raises InvalidArgumentException for a nil name.
  static Ref<Notification> notificationWithName(StringArg name, const PropertyValue& object,
                                                In<Dictionary> userInfo);

  // What it was made with.
  const Ref<String>& name() const { return name_; }
  const PropertyValue& object() const { return object_; }
  const Ref<Dictionary>& userInfo() const { return userInfo_; }

  std::string description() const override;
  Ref<Object> copy() const override;

  // Inside the library.
  Notification(detail::Passkey, Ref<String> name, PropertyValue object, Ref<Dictionary> userInfo);

 private:
  Ref<String> name_;
  PropertyValue object_;
  Ref<Dictionary> userInfo_;
};

namespace detail {

struct ObserverRecord;

// An owned callable, told of a notification.
class NotificationAction {
 public:
  template <class F>
    requires(!std::same_as<std::remove_cvref_t<F>, NotificationAction>) &&
            std::invocable<std::remove_cvref_t<F>&, const Notification&>
  NotificationAction(F&& f) : callable_(new Cell<std::remove_cvref_t<F>>(std::forward<F>(f))) {}
  void operator()(const Notification& n) { callable_->call(n); }

 private:
  struct Callable {
    virtual ~Callable() = default;
    virtual void call(const Notification& n) = 0;
  };
  template <class F>
  struct Cell final : Callable {
    template <class G>
    explicit Cell(G&& g) : f(std::forward<G>(g)) {}
    void call(const Notification& n) override { f(n); }
    F f;
  };
  std::unique_ptr<Callable> callable_;
};

}  // namespace detail

// Keeps an observation by a callable alive: the callable is told while this exists, and let go of
// with it. It may outlive its center; it does not keep the center alive. Movable; belongs to the
// center's thread.
class [[nodiscard("the observation ends with this object: keep it")]] Observation {
 public:
  Observation() = default;
  // The observation moves; the one that was there ends.
  Observation(Observation&& other) noexcept : record_(std::exchange(other.record_, nullptr)) {}
  Observation& operator=(Observation&& other) noexcept {
    std::swap(record_, other.record_);
    other.end();
    return *this;
  }
  ~Observation() { end(); }

  // Ends the observation now; nothing happens where it has ended.
  QX_EXPORT void end() noexcept;

 private:
  friend class NotificationCenter;
  explicit Observation(detail::ObserverRecord* record) : record_(record) {}
  detail::ObserverRecord* record_ = nullptr;
};

// A place where notifications are posted and observed; there may be any number. The class is
// "NSNotificationCenter".
class QX_EXPORT NotificationCenter : public Object {
 public:
  // A new center, without observers.
  static Ref<NotificationCenter> init();

  // `observer` performs `selector` with the notification as its argument, for every notification of
  // that name (nil: any) about that object (nil: any). Objects are matched by identity, strings by
  // equality. Observers and objects are referred to weakly; an observer added twice is told twice.
  // Raises InvalidArgumentException for a nil observer, a null selector.
  void addObserver(In<Object> observer, SelectorFor<1> selector, StringArg name,
                   const PropertyValue& object);
  // Removes what was added for the observer: all of it, or that of this name (nil: any) and about
  // this object (nil: any).
  void removeObserver(In<Object> observer);
  void removeObserver(In<Object> observer, StringArg name, const PropertyValue& object);

  // The same for a callable of a notification, while the result exists.
  Observation observe(StringArg name, const PropertyValue& object,
                      detail::NotificationAction action);

  // Raises InvalidArgumentException for a nil notification or name.
  void postNotification(In<Notification> notification);
  void postNotificationName(StringArg name, const PropertyValue& object, In<Dictionary> userInfo);

  // Whether a post of that name about that object would reach an observer; spares a poster the work
  // of describing what nobody wants to know. May be true for an observer that has ceased to exist.
  bool hasObservers(StringArg name, const PropertyValue& object) const;

  // Inside the library.
  explicit NotificationCenter(detail::Passkey);

 protected:
  ~NotificationCenter() override;

 private:
  friend class Observation;
  friend struct detail::ObserverRecord;
  struct State;
  std::unique_ptr<State> state_;
};

QX_EXPORT const Class& classObject(detail::Type<Notification>);
QX_EXPORT const Class& classObject(detail::Type<NotificationCenter>);

}  // namespace qx

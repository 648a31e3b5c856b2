#include <algorithm>
#include <unordered_map>
#include <vector>

#include <QXFoundation/notification_center.h>

#include "frame/hashing.h"
#include "frame/library_class.h"
#include "frame/raise.h"
#include "frame/string_storage.h"
#include "platform/observer_record.h"

namespace qx {

using detail::ObjectFilter;
using detail::ObserverRecord;

namespace {

// Keeps a record while it is told or waits to be.
class HeldRecord {
 public:
  explicit HeldRecord(ObserverRecord* record) : record_(record) { ++record_->count; }
  HeldRecord(HeldRecord&& other) noexcept : record_(std::exchange(other.record_, nullptr)) {}
  HeldRecord& operator=(HeldRecord&& other) noexcept {
    std::swap(record_, other.record_);
    return *this;
  }
  ~HeldRecord() {
    if (record_ != nullptr) record_->release();
  }
  ObserverRecord* operator->() const { return record_; }

 private:
  ObserverRecord* record_;
};

std::uint64_t nameHash(const String* name) {
  return name == nullptr ? 0 : detail::StringStorage::hash(*name);
}

}  // namespace

// Observers by what they want to hear. Those that want one name about one object stand apart from
// each other, so that a post looks only at those that it concerns.
struct NotificationCenter::State {
  using Bucket = std::vector<ObserverRecord*>;

  State() = default;
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  // Callables go last: what they hold may end observations of this center.
  ~State() {
    std::unordered_map<std::uint64_t, Bucket> all;
    all.swap(buckets);
    for (const auto& [hash, bucket] : all) {
      for (ObserverRecord* r : bucket) r->center = nullptr;
    }
    for (const auto& [hash, bucket] : all) {
      for (ObserverRecord* r : bucket) r->release();
    }
  }

  static std::size_t form(bool anyName, bool anyObject) {
    return (anyName ? 1U : 0U) + (anyObject ? 2U : 0U);
  }
  std::size_t& countOf(const ObserverRecord& r) {
    return counts[form(r.name == nullptr, r.about.isAny())];
  }

  // Takes over the caller's count.
  void add(ObserverRecord* r, const PropertyValue& object) {
    r->bucket = detail::combineHashes(nameHash(r->name.get()),
                                      r->about.isAny() ? 0 : ObjectFilter::hashOf(object));
    r->number = next++;
    r->center = this;
    Bucket& bucket = buckets[r->bucket];
    bucket.push_back(r);
    ++countOf(*r);
    // Now and then, those that ceased to exist without removing themselves make room.
    if (const std::size_t n = bucket.size(); n >= 8 && (n & (n - 1)) == 0) {
      dropAll(r->bucket, [](const ObserverRecord& other) {
        return !other.action && other.observer.lock() == nullptr;
      });
    }
  }

  void drop(ObserverRecord* r) {
    const auto found = buckets.find(r->bucket);
    std::erase(found->second, r);
    if (found->second.empty()) buckets.erase(found);
    --countOf(*r);
    r->center = nullptr;
    r->release();
  }

  template <class Which>
  void dropAll(std::uint64_t bucket, Which which) {
    const auto found = buckets.find(bucket);
    if (found == buckets.end()) return;
    Bucket gone;
    std::copy_if(found->second.begin(), found->second.end(), std::back_inserter(gone),
                 [&](const ObserverRecord* r) { return which(*r); });
    for (ObserverRecord* r : gone) drop(r);
  }

  // Calls `visit` for those that a post concerns, in groups; within a group in the order of adding.
  template <class Visit>
  void eachHearing(const String& name, const PropertyValue& object, Visit visit) const {
    for (const bool anyName : {false, true}) {
      for (const bool anyObject : {false, true}) {
        if (counts[form(anyName, anyObject)] == 0 || (!anyObject && object.isNil())) continue;
        const auto found = buckets.find(detail::combineHashes(
            anyName ? 0 : nameHash(&name), anyObject ? 0 : ObjectFilter::hashOf(object)));
        if (found == buckets.end()) continue;
        for (ObserverRecord* r : found->second) {
          if (r->hears(name, object)) visit(r);
        }
      }
    }
  }

  std::vector<HeldRecord> heard(const String& name, const PropertyValue& object) const {
    std::vector<HeldRecord> all;
    eachHearing(name, object, [&](ObserverRecord* r) { all.emplace_back(r); });
    std::sort(all.begin(), all.end(),
              [](const HeldRecord& a, const HeldRecord& b) { return a->number < b->number; });
    return all;
  }

  void tell(const Notification& notification) {
    for (const HeldRecord& r : heard(*notification.name(), notification.object())) {
      if (r->center == nullptr) continue;
      if (!r->tell(notification) && r->center != nullptr) drop(r.operator->());
    }
  }

  std::unordered_map<std::uint64_t, Bucket> buckets;
  std::size_t counts[4] = {};
  std::uint64_t next = 0;
};

void Observation::end() noexcept {
  ObserverRecord* r = std::exchange(record_, nullptr);
  if (r == nullptr) return;
  if (r->center != nullptr) r->center->drop(r);
  r->release();
}

NotificationCenter::NotificationCenter(detail::Passkey) : state_(std::make_unique<State>()) {}
NotificationCenter::~NotificationCenter() = default;

Ref<NotificationCenter> NotificationCenter::init() {
  return make<NotificationCenter>(detail::Passkey{});
}

void NotificationCenter::addObserver(In<Object> observer, SelectorFor<1> selector, StringArg name,
                                     const PropertyValue& object) {
  if (!observer || Selector(selector).isNull()) {
    detail::raiseInvalidArgument(
        "-[NSNotificationCenter addObserver:selector:name:object:]: an observer and a selector are "
        "needed");
  }
  auto record = std::make_unique<ObserverRecord>(name.string(), object);
  record->observer = WeakRef<Object>(observer.get());
  record->selector = selector;
  state_->add(record.get(), object);
  (void)record.release();
}

void NotificationCenter::removeObserver(In<Object> observer) {
  removeObserver(observer, nullptr, nullptr);
}

void NotificationCenter::removeObserver(In<Object> observer, StringArg name,
                                        const PropertyValue& object) {
  if (!observer) return;
  const Ref<String> wanted = name.string();
  const auto isMeant = [&](const ObserverRecord& r) {
    return !r.action && r.belongsTo(observer.get()) &&
           (wanted == nullptr || (r.name != nullptr && r.name->isEqualToString(wanted))) &&
           (object.isNil() || (!r.about.isAny() && r.about.matches(object)));
  };
  if (wanted != nullptr && !object.isNil()) {
    state_->dropAll(detail::combineHashes(nameHash(wanted.get()), ObjectFilter::hashOf(object)),
                    isMeant);
    return;
  }
  std::vector<std::uint64_t> hashes;
  hashes.reserve(state_->buckets.size());
  for (const auto& [hash, bucket] : state_->buckets) hashes.push_back(hash);
  for (const std::uint64_t hash : hashes) state_->dropAll(hash, isMeant);
}

Observation NotificationCenter::observe(StringArg name, const PropertyValue& object,
                                        detail::NotificationAction action) {
  auto record = std::make_unique<ObserverRecord>(name.string(), object);
  record->action = std::move(action);
  state_->add(record.get(), object);
  ObserverRecord* added = record.release();
  ++added->count;
  return Observation(added);
}

void NotificationCenter::postNotification(In<Notification> notification) {
  const Ref<NotificationCenter> self(this);  // an observer may let go of the center
  const Ref<Notification> held(&*notification);
  state_->tell(*held);
}

void NotificationCenter::postNotificationName(StringArg name, const PropertyValue& object,
                                              In<Dictionary> userInfo) {
  postNotification(Notification::notificationWithName(name, object, userInfo));
}

bool NotificationCenter::hasObservers(StringArg name, const PropertyValue& object) const {
  if (state_->buckets.empty() || name.isNil()) return false;
  bool any = false;
  state_->eachHearing(*name.string(), object, [&](ObserverRecord*) { any = true; });
  return any;
}

void describe(ClassBuilder<NotificationCenter>& c) {
  c.name("NSNotificationCenter").inherits<Object>();
  c.operation(
      "postNotification:", +[](const PropertyValue& r, const Ref<Notification>& n) {
        r.as<NotificationCenter>()->postNotification(n);
      });
  c.operation(
      "removeObserver:", +[](const PropertyValue& r, const Ref<Object>& observer) {
        r.as<NotificationCenter>()->removeObserver(observer);
      });
}

const Class& classObject(detail::Type<NotificationCenter>) {
  return detail::buildLibraryClass<NotificationCenter>();
}

}  // namespace qx

#include <vector>

#include <QXFoundation/set.h>

#include "frame/array_storage.h"
#include "frame/comparison_operations.h"
#include "frame/deep.h"
#include "frame/hash_index.h"
#include "frame/hashing.h"
#include "frame/library_class.h"
#include "frame/raise.h"

namespace qx {
namespace detail {

// Members in order of insertion; removal leaves nil behind until growth closes the gaps.
struct SetStorage {
  std::vector<PropertyValue> members;
  std::vector<std::uint32_t> hashes;
  HashIndex index;
  std::size_t count = 0;

  static std::uint32_t hashOf(const PropertyValue& v) {
    const std::uint64_t h = v.hash();
    return static_cast<std::uint32_t>(h ^ (h >> 32));
  }
  std::size_t find(const PropertyValue& v, std::uint32_t hash) const {
    return index.find(hash, [&](std::size_t i) { return members[i] == v; });
  }
  void add(const PropertyValue& v) {
    const std::uint32_t hash = hashOf(v);
    if (find(v, hash) != HashIndex::kAbsent) return;
    makeRoomForOne(members);
    makeRoomForOne(hashes);
    index.insert(hash, members.size());
    members.push_back(v);
    hashes.push_back(hash);
    ++count;
  }
  void remove(const PropertyValue& v) {
    const std::uint32_t hash = hashOf(v);
    const std::size_t at = find(v, hash);
    if (at == HashIndex::kAbsent) return;
    index.erase(hash, at);
    const PropertyValue removed = std::move(members[at]);
    --count;
    if (members.size() > 32 && count < members.size() / 2) close();
  }
  // Needs no memory.
  void close() {
    index.clear();
    std::size_t to = 0;
    for (std::size_t i = 0; i < members.size(); ++i) {
      if (members[i].isNil()) continue;
      if (to != i) {
        members[to] = std::move(members[i]);
        hashes[to] = hashes[i];
      }
      index.insert(hashes[to], to);
      ++to;
    }
    members.resize(to);
    hashes.resize(to);
  }
};

}  // namespace detail

using detail::SetStorage;

Set::Set(detail::Passkey, unsigned bits)
    : Object(detail::ObjectKind::set, bits), storage_(new SetStorage) {}
Set::~Set() { delete storage_; }

Ref<Set> Set::from(In<Array> members) {
  if (!members) detail::raiseNil("+[NSSet setWithArray:]");
  auto s = make<Set>(detail::Passkey{});
  for (const PropertyValue& v : *members) s->storage_->add(v);
  return s;
}

std::size_t Set::count() const { return storage_->count; }

PropertyValue Set::member(const PropertyValue& value) const {
  if (value.isNil()) return {};
  const std::size_t at = storage_->find(value, SetStorage::hashOf(value));
  return at == detail::HashIndex::kAbsent ? PropertyValue() : storage_->members[at];
}

Ref<Array> Set::allObjects() const {
  auto all = detail::ArrayStorage::allocate(count());
  PropertyValue* to = detail::ArrayStorage::values(*all);
  for (const PropertyValue& v : storage_->members) {
    if (!v.isNil()) *to++ = v;
  }
  return all;
}

bool Set::isSubsetOfSet(In<Set> other) const {
  if (!other) detail::raiseNil("-[NSSet isSubsetOfSet:]");
  const Set& all = *other;
  for (const PropertyValue& v : storage_->members) {
    if (!v.isNil() && !all.containsObject(v)) return false;
  }
  return true;
}

bool Set::isEqual(const PropertyValue& other) const {
  if (other.object() == this) return true;
  if (!other.isSet()) return false;
  auto* set = static_cast<Set*>(other.object());
  if (set->count() != count()) return false;
  if (auto* budget = detail::EqualityBudget::current()) budget->spend(1 + count());
  return detail::EqualityScope().setsAreEqual(*this, *set, [&] { return isSubsetOfSet(set); });
}

std::size_t Set::hash() const {
  std::size_t h = detail::combineHashes(3, count());
  for (const PropertyValue& v : storage_->members) {
    if (!v.isNil()) h += detail::memberHash(v);
  }
  return h;
}

std::string Set::description() const { return detail::describeDeep(*this); }
Ref<Object> Set::copy() const { return const_cast<Set*>(this); }
Ref<Object> Set::mutableCopy() const { return MutableSet::from(allObjects()); }

MutableSet::MutableSet() : Set(detail::Passkey{}, detail::kMutableVariant) {}
Ref<MutableSet> MutableSet::init() { return make<MutableSet>(); }
Ref<MutableSet> MutableSet::from(In<Array> members) {
  if (!members) detail::raiseNil("+[NSMutableSet setWithArray:]");
  auto s = init();
  for (const PropertyValue& v : *members) s->addObject(v);
  return s;
}

void MutableSet::addObject(const PropertyValue& value) {
  if (value.isNil()) detail::raiseNilStored("-[NSMutableSet addObject:]");
  storage_->add(PropertyValue(value));
}
void MutableSet::removeObject(const PropertyValue& value) {
  if (!value.isNil()) storage_->remove(PropertyValue(value));
}
void MutableSet::removeAllObjects() {
  SetStorage* old = storage_;
  storage_ = new SetStorage;
  delete old;
}
Ref<Object> MutableSet::copy() const { return Set::from(allObjects()); }

void describe(ClassBuilder<Set>& c) {
  c.setCore();
  c.name("NSSet").inherits<Object>();
  c.operation("count", &Set::count).operation("allObjects", &Set::allObjects);
  c.operation(
      "containsObject:", +[](const PropertyValue& r, const PropertyValue& v) {
        return r.as<Set>()->containsObject(v);
      });
  c.operation(
      "member:",
      +[](const PropertyValue& r, const PropertyValue& v) { return r.as<Set>()->member(v); });
  c.operation("doesContain:", &detail::comparisonOperation<detail::Comparison::doesContain>);
}

void describe(ClassBuilder<MutableSet>& c) {
  c.setCore();
  c.name("NSMutableSet").inherits<Set>();
  c.operation(
      "addObject:",
      +[](const PropertyValue& r, const PropertyValue& v) { r.as<MutableSet>()->addObject(v); });
  c.operation(
      "removeObject:",
      +[](const PropertyValue& r, const PropertyValue& v) { r.as<MutableSet>()->removeObject(v); });
  c.operation("removeAllObjects", &MutableSet::removeAllObjects);
}

const Class& classObject(detail::Type<Set>) { return detail::buildLibraryClass<Set>(); }
const Class& classObject(detail::Type<MutableSet>) {
  return detail::buildLibraryClass<MutableSet>();
}

}  // namespace qx

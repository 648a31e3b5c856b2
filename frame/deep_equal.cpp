#include <unordered_set>
#include <vector>

#include <QXFoundation/data.h>
#include <QXFoundation/string.h>

#include "frame/deep.h"
#include "frame/hashing.h"
#include "frame/raise.h"

namespace qx::detail {

std::size_t ObjectPairHash::operator()(const ObjectPair& p) const {
  return combineHashes(reinterpret_cast<std::uintptr_t>(p.a),
                       reinterpret_cast<std::uintptr_t>(p.b));
}

namespace {

constexpr unsigned kMaxNesting = 500;
__attribute__((tls_model("initial-exec"))) thread_local EqualityScope* outermostScope = nullptr;
__attribute__((tls_model("initial-exec"))) thread_local EqualityBudget* spentBudget = nullptr;

}  // namespace

void EqualityBudget::spend(std::uint64_t steps) {
  if (steps > left_) raiseInvalidArgument("isEqual: too many containers are too much alike");
  left_ -= steps;
}

EqualityBudget* EqualityBudget::current() { return spentBudget; }

EqualityBudget::Spending::Spending(EqualityBudget& budget) : outer_(spentBudget) {
  spentBudget = &budget;
}
EqualityBudget::Spending::~Spending() { spentBudget = outer_; }

EqualityScope::EqualityScope() : outermost_(outermostScope == nullptr ? this : outermostScope) {
  if (outermost_->depth_ == kMaxNesting)
    raiseInvalidArgument("isEqual: sets and objects are nested more than 500 deep");
  ++outermost_->depth_;
  outermostScope = outermost_;
}

EqualityScope::~EqualityScope() {
  if (--outermost_->depth_ == 0) outermostScope = nullptr;
}

namespace {

bool isWalked(const PropertyValue& v, ObjectKind kind) {
  const Object* o = v.object();
  return o != nullptr && ObjectAccess::kind(*o) == kind && !ObjectAccess::has(*o, kOwnEquality);
}

// Pairs of containers that remain to be compared. Up to kUnwatched of them are not remembered:
// small data pays nothing.
class Comparer {
 public:
  bool run(const PropertyValue& a, const PropertyValue& b) {
    if (isSame(a, b)) return true;
    putOff(a, b);
    while (!pending_.empty()) {
      const ObjectPair p = pending_.back();
      pending_.pop_back();
      const bool same =
          ObjectAccess::kind(*p.a) == ObjectKind::array
              ? equalArrays(static_cast<const Array&>(*p.a), static_cast<const Array&>(*p.b))
              : equalDictionaries(static_cast<const Dictionary&>(*p.a),
                                  static_cast<const Dictionary&>(*p.b));
      if (!same) return false;
    }
    return true;
  }

 private:
  // Decides at once, or puts the pair off and gives true.
  bool equal(const PropertyValue& a, const PropertyValue& b) {
    if (isSame(a, b)) return true;
    if (isWalked(a, ObjectKind::array)) return b.isArray() && putOff(a, b);
    if (isWalked(a, ObjectKind::dictionary)) return b.isDictionary() && putOff(a, b);
    if (budget_ != nullptr) budget_->spend(textSteps(a));
    return a == b;
  }

  // What comparing the value takes if it is a text or data.
  static std::uint64_t textSteps(const PropertyValue& v) {
    if (v.isString()) return static_cast<const String*>(v.object())->length() / 32;
    if (v.isData()) return static_cast<const Data*>(v.object())->length() / 64;
    return 0;
  }

  bool putOff(const PropertyValue& a, const PropertyValue& b) {
    const ObjectPair p{a.object(), b.object()};
    if (budget_ != nullptr) {
      budget_->spend(1 + (a.isArray() ? static_cast<const Array*>(p.a)->count()
                                      : static_cast<const Dictionary*>(p.a)->count()));
    }
    if (++count_ > kUnwatched && !seen_.insert(p).second) return true;
    pending_.push_back(p);
    return true;
  }

  bool equalArrays(const Array& a, const Array& b) {
    const std::size_t n = a.count();
    if (b.count() != n) return false;
    for (std::size_t i = 0; i < n; ++i) {
      if (!equal(a.begin()[i], b.begin()[i])) return false;
    }
    return true;
  }

  bool equalDictionaries(const Dictionary& a, const Dictionary& b) {
    if (a.count() != b.count()) return false;
    for (const auto& [key, value] : a) {
      const PropertyValue* other = b.find(key);
      if (other == nullptr || !equal(value, *other)) return false;
    }
    return true;
  }

  static constexpr std::size_t kUnwatched = 1000;
  const EqualityScope scope_;
  EqualityBudget* const budget_ = EqualityBudget::current();
  std::size_t count_ = 0;
  std::vector<ObjectPair> pending_;
  std::unordered_set<ObjectPair, ObjectPairHash> seen_;
};

PropertyValue valueOf(const Object& o) { return const_cast<Object*>(&o); }

}  // namespace

bool deepEqual(const Array& a, const PropertyValue& b) {
  return b.isArray() && Comparer().run(valueOf(a), b);
}
bool deepEqual(const Dictionary& a, const PropertyValue& b) {
  return b.isDictionary() && Comparer().run(valueOf(a), b);
}

std::size_t memberHash(const PropertyValue& v) {
  const Object* o = v.object();
  if (o == nullptr) return v.hash();
  switch (ObjectAccess::kind(*o)) {
    case ObjectKind::array:
      return ObjectAccess::has(*o, kOwnHash)
                 ? o->hash()
                 : combineHashes(1, static_cast<const Array*>(o)->count());
    case ObjectKind::dictionary:
      return ObjectAccess::has(*o, kOwnHash)
                 ? o->hash()
                 : combineHashes(2, static_cast<const Dictionary*>(o)->count());
    case ObjectKind::set:
      return 3;
    default:
      return o->hash();
  }
}

std::size_t shallowHash(const Array& a) {
  std::size_t h = combineHashes(1, a.count());
  for (const PropertyValue& v : a) h = combineHashes(h, memberHash(v));
  return h;
}

// Free of order, as equality is.
std::size_t shallowHash(const Dictionary& d) {
  std::size_t h = combineHashes(2, d.count());
  for (const auto& [key, value] : d) h += combineHashes(key.hash(), memberHash(value));
  return h;
}

}  // namespace qx::detail

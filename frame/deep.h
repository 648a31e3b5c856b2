#pragma once

// Work over nested data that must not nest on the stack, and must end on data that holds itself.

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

#include <QXFoundation/array.h>
#include <QXFoundation/dictionary.h>

namespace qx::detail {

// Equality of a container with a value. Iterative over arrays and dictionaries whose classes keep
// the value model's equality; a pair of containers met again counts as equal, so that cyclic and
// shared data end. What nests on the stack (see EqualityScope) ends at its bound.
bool deepEqual(const Array& a, const PropertyValue& b);
bool deepEqual(const Dictionary& a, const PropertyValue& b);

// Steps that comparisons of containers may take while this is spent on a thread; beyond them they
// raise InvalidArgumentException. For values made of bytes from outside. A step is an element, or
// 64 bytes of text or data.
class EqualityBudget {
 public:
  explicit EqualityBudget(std::uint64_t steps) : left_(steps) {}
  void spend(std::uint64_t steps);

  // Spends the budget for all comparisons of this thread as long as it stands.
  class Spending {
   public:
    explicit Spending(EqualityBudget& budget);
    Spending(const Spending&) = delete;
    Spending& operator=(const Spending&) = delete;
    ~Spending();

   private:
    EqualityBudget* const outer_;
  };
  // Null when comparisons are free.
  static EqualityBudget* current();

 private:
  std::uint64_t left_;
};

struct ObjectPair {
  const Object* a;
  const Object* b;
  friend bool operator==(const ObjectPair&, const ObjectPair&) = default;
};
struct ObjectPairHash {
  std::size_t operator()(const ObjectPair& p) const;
};

// Stands around each comparison that may nest on the stack: sets are compared by searching, and
// classes of the application may compare containers of their own. Beyond 500 within each other it
// raises InvalidArgumentException.
class EqualityScope {
 public:
  EqualityScope();
  EqualityScope(const EqualityScope&) = delete;
  EqualityScope& operator=(const EqualityScope&) = delete;
  ~EqualityScope();

  // What `compare` gives for two sets, from before where the comparison they are part of has met
  // them, so that widely shared sets do not multiply.
  template <class Compare>
  bool setsAreEqual(const Object& a, const Object& b, Compare compare) {
    if (outermost_->depth_ == 1) return compare();
    const ObjectPair pair{&a, &b};
    if (const auto known = outermost_->sets_.find(pair); known != outermost_->sets_.end())
      return known->second;
    const bool equal = compare();
    outermost_->sets_.emplace(pair, equal);
    return equal;
  }

 private:
  EqualityScope* const outermost_;
  unsigned depth_ = 0;                                         // of the outermost
  std::unordered_map<ObjectPair, bool, ObjectPairHash> sets_;  // of the outermost
};

// Hash of a container from its count and what it holds directly; containers inside count by kind
// and size alone.
std::size_t shallowHash(const Array& a);
std::size_t shallowHash(const Dictionary& d);
// What a member contributes to that.
std::size_t memberHash(const PropertyValue& v);

// "(1, two, \"a b\")", "{age = 42; name = Bob;}". At most 60 levels deep and about 16 MiB long;
// "..." stands for the rest. Levels count through descriptions of the application's classes, which
// may describe containers of their own.
std::string describeDeep(const Object& container);

}  // namespace qx::detail

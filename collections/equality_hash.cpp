#include "collections/equality_hash.h"

#include <algorithm>

#include <QXFoundation/array.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/set.h>

#include "frame/hashing.h"

namespace qx::detail {
namespace {

// So many values of nested containers take part; each container shares what it was given among its
// members, so that equal containers are hashed alike in whatever order their members stand.
constexpr std::size_t kNestedValues = 1024;

// What begins the hash of a container, by its kind.
enum Start : std::size_t { kArray = 1, kDictionary = 2, kSet = 3 };

class Hasher {
 public:
  std::optional<std::size_t> hash(const PropertyValue& value) {
    const Object* o = value.object();
    const std::size_t h = o == nullptr ? value.hash() : hashOutermost(*o);
    return isReliable_ ? std::optional(h) : std::nullopt;
  }

 private:
  std::size_t hashOutermost(const Object& o) {
    switch (containerKind(o)) {
      case ObjectKind::array: {
        const auto& array = static_cast<const Array&>(o);
        return ofArray(array, array.count(), kNestedValues);
      }
      case ObjectKind::dictionary:
        return ofDictionary(static_cast<const Dictionary&>(o), kNestedValues);
      case ObjectKind::set:
        return ofSet(static_cast<const Set&>(o));
      default:
        return ofObject(o);
    }
  }

  // `share` bounds how many values below this one take part; each level has less, which bounds the
  // nesting.
  std::size_t hashNested(const PropertyValue& value, std::size_t share) {
    const Object* o = value.object();
    if (o == nullptr) return value.hash();
    switch (containerKind(*o)) {
      case ObjectKind::array: {
        const auto& array = static_cast<const Array&>(*o);
        return ofArray(array, std::min(array.count(), share), share);
      }
      case ObjectKind::dictionary: {
        const auto& dictionary = static_cast<const Dictionary&>(*o);
        const std::size_t count = dictionary.count();
        return count > share ? combineHashes(kDictionary, count) : ofDictionary(dictionary, share);
      }
      case ObjectKind::set:
        return combineHashes(kSet, static_cast<const Set*>(o)->count());
      default:
        return ofObject(*o);
    }
  }

  // Containers of classes with functions of their own are objects like others.
  static ObjectKind containerKind(const Object& o) {
    const bool own = ObjectAccess::has(o, kOwnHash) || ObjectAccess::has(o, kHashAside);
    return own ? ObjectKind::object : ObjectAccess::kind(o);
  }

  std::size_t ofObject(const Object& o) {
    if (!ObjectAccess::has(o, kHashAside)) return o.hash();
    isReliable_ = false;
    return 0;
  }

  // Of the first members.
  std::size_t ofArray(const Array& array, std::size_t members, std::size_t share) {
    std::size_t h = combineHashes(kArray, array.count());
    const std::size_t each = share / (members + 1);
    for (std::size_t i = 0; i < members && isReliable_; ++i)
      h = combineHashes(h, hashNested(array.begin()[i], each));
    return h;
  }

  // Free of order, as equality is.
  std::size_t ofDictionary(const Dictionary& dictionary, std::size_t share) {
    std::size_t h = combineHashes(kDictionary, dictionary.count());
    const std::size_t each = share / (dictionary.count() + 1);
    for (const auto& [key, value] : dictionary) {
      if (!isReliable_) break;
      h += combineHashes(key.hash(), hashNested(value, each));
    }
    return h;
  }
  std::size_t ofSet(const Set& set) {
    std::size_t h = combineHashes(kSet, set.count());
    const Ref<Array> members = set.allObjects();
    for (const PropertyValue& member : *members) h += hashNested(member, 0);
    return h;
  }

  bool isReliable_ = true;
};

}  // namespace

std::optional<std::size_t> equalityHash(const PropertyValue& value) { return Hasher().hash(value); }

bool mayEqualForeign(const PropertyValue& element) {
  const Object* o = element.object();
  if (o == nullptr) return false;
  const ObjectKind kind = ObjectAccess::kind(*o);
  return ObjectAccess::has(*o, kOwnEquality) || ObjectAccess::has(*o, kHashAside) ||
         kind == ObjectKind::array || kind == ObjectKind::dictionary || kind == ObjectKind::set;
}

}  // namespace qx::detail

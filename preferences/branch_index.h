#pragma once

// Finds the entry of a tree's root that holds a changed container, without searching every branch
// before it.
//
// What is wanted is the first entry, in the root's order, whose value equals the container or holds
// one that does. For each branch that was searched in vain, the index keeps the hashes of the
// containers in it, so that the next search passes over the branch where no hash fits. This is
// sound only where every change of a branch is told: branches that hold containers of other stores,
// plain containers, or values that may change or compare in their own way are searched every time.

#include <cstdint>
#include <unordered_map>
#include <vector>

#include <QXFoundation/preferences_dictionary.h>
#include <QXFoundation/preferences_link.h>

namespace qx::detail {

class BranchIndex {
 public:
  // The key of the first matching branch; nil when none matches. `link` is that of the store.
  Ref<String> keyOfBranch(const QXPreferencesDictionary& root, const PropertyValue& container,
                          const PreferencesLink& link);

  // A container has changed: the branches that hold it are searched anew.
  void forgetBranchesWith(const Object& container);
  // The root's entry for the key has changed.
  void forgetBranch(const Ref<String>& key) { branches_.erase(key); }
  void forgetAll() { branches_.clear(); }

 private:
  struct Branch {
    std::vector<const Object*> members;  // containers of the tree in it, sorted
    std::vector<std::uint64_t> hashes;   // of all of them, sorted
  };
  struct KeyHash {
    std::size_t operator()(const Ref<String>& key) const { return key->hash(); }
  };
  struct KeyEqual {
    bool operator()(const Ref<String>& a, const Ref<String>& b) const {
      return a.get() == b.get() || a->isEqualToString(b);
    }
  };

  static bool describeBranch(const PropertyValue& top, const PreferencesLink& link, Branch& branch);

  std::unordered_map<Ref<String>, Branch, KeyHash, KeyEqual> branches_;
};

}  // namespace qx::detail

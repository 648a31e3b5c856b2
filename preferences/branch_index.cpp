#include "preferences/branch_index.h"

#include <algorithm>
#include <unordered_set>

#include "frame/hashing.h"
#include "preferences/containers.h"

namespace qx::detail {
namespace {

// A value that neither changes nor has an equality of its own.
bool isFixedLeaf(const PropertyValue& v) {
  const Object* o = v.object();
  if (o == nullptr) return true;
  switch (ObjectAccess::kind(*o)) {
    case ObjectKind::string:
    case ObjectKind::number:
    case ObjectKind::data:
    case ObjectKind::date:
      return !ObjectAccess::has(*o, kMutableVariant) && !ObjectAccess::has(*o, kOwnEquality);
    default:
      return false;
  }
}

// Equal containers have equal hashes. Looks at a few levels; what lies deeper counts by its size.
class StructureHash {
 public:
  // False where the container holds a value whose equality is its own affair.
  static bool compute(const PropertyValue& container, std::uint64_t& hash) {
    StructureHash h;
    hash = h.ofContainer(container, 3);
    return h.isExact_;
  }

 private:
  std::uint64_t of(const PropertyValue& v, unsigned levels) {
    const Object* o = v.object();
    if (o != nullptr && isContainer(v) && !ObjectAccess::has(*o, kOwnEquality)) {
      return ofContainer(v, levels);
    }
    if (!v.isString() && !v.isNumber() && !isFixedLeaf(v)) isExact_ = false;
    return v.hash();
  }

  std::uint64_t ofContainer(const PropertyValue& v, unsigned levels) {
    if (const auto* d = v.isDictionary() ? v.peek<Dictionary>() : nullptr) {
      std::uint64_t h = combineHashes(2, d->count());
      if (levels == 0) return h;
      for (const auto& [key, value] : *d) h += combineHashes(key.hash(), of(value, levels - 1));
      return h;
    }
    const auto* a = v.peek<Array>();
    std::uint64_t h = combineHashes(1, a->count());
    if (levels == 0) return h;
    for (const PropertyValue& value : *a) h = combineHashes(h, of(value, levels - 1));
    return h;
  }

  bool isExact_ = true;
};

// Whether the search has to look: not at leaves, which no container equals.
bool mayMatch(const PropertyValue& top) { return !isFixedLeaf(top); }

bool matches(const PropertyValue& top, const PropertyValue& container) {
  return top == container || (linkOf(top) != nullptr && containsDeeply(top, container));
}

struct Candidate {
  Ref<String> key;
  PropertyValue value;
};

}  // namespace

// Fills in the branch; false where it can not be passed over by its hashes.
bool BranchIndex::describeBranch(const PropertyValue& top, const PreferencesLink& link,
                                 Branch& branch) {
  std::vector<PropertyValue> open{top};
  std::unordered_set<const Object*> seen{top.object()};
  while (!open.empty()) {
    const PropertyValue at = std::move(open.back());
    open.pop_back();
    const PreferencesLink* own = linkOf(at);
    std::uint64_t hash = 0;
    if (own == nullptr || !(*own == link) || ObjectAccess::has(*at.object(), kOwnEquality) ||
        !StructureHash::compute(at, hash)) {
      return false;
    }
    branch.members.push_back(at.object());
    branch.hashes.push_back(hash);
    const auto visit = [&](const PropertyValue& v) {
      if (isFixedLeaf(v)) return true;
      if (!isContainer(v)) return false;
      if (seen.insert(v.object()).second) open.push_back(v);
      return true;
    };
    if (const auto* d = treeDictionary(at)) {
      for (const auto& [key, value] : *d) {
        if (!visit(value)) return false;
      }
    } else if (const auto* a = treeArray(at)) {
      if (!std::all_of(a->begin(), a->end(), visit)) return false;
    }
  }
  std::sort(branch.members.begin(), branch.members.end());
  std::sort(branch.hashes.begin(), branch.hashes.end());
  return true;
}

void BranchIndex::forgetBranchesWith(const Object& container) {
  std::erase_if(branches_, [&](const auto& entry) {
    const auto& members = entry.second.members;
    return std::binary_search(members.begin(), members.end(), &container);
  });
}

// Comparing may run code of the application: what is to be compared is gathered first.
Ref<String> BranchIndex::keyOfBranch(const QXPreferencesDictionary& root,
                                     const PropertyValue& container, const PreferencesLink& link) {
  std::uint64_t hash = 0;
  const bool isHashed = StructureHash::compute(container, hash);
  std::vector<Candidate> candidates;
  for (const auto& [key, value] : root) {
    if (!mayMatch(value)) continue;
    const Ref<String> name = const_cast<String*>(&key);
    if (const auto known = branches_.find(name); isHashed && known != branches_.end()) {
      const auto& hashes = known->second.hashes;
      if (!std::binary_search(hashes.begin(), hashes.end(), hash)) continue;
    }
    candidates.push_back({name, value});
  }
  for (const Candidate& candidate : candidates) {
    if (matches(candidate.value, container)) return candidate.key;
    const PropertyValue* now = root.find(candidate.key);
    Branch branch;
    if (now != nullptr && isSame(*now, candidate.value) &&
        describeBranch(candidate.value, link, branch)) {
      branches_.insert_or_assign(candidate.key, std::move(branch));
    }
  }
  return nullptr;
}

}  // namespace qx::detail

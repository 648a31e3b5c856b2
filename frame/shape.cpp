#include "frame/shape.h"

#include <mutex>
#include <unordered_map>

#include "frame/hashing.h"
#include "frame/string_storage.h"
#include "frame/unicode.h"

namespace qx::detail {

// All shared shapes of the process. The table holds no count: a shape leaves it with its last
// dictionary.
struct ShapeTable {
  std::mutex mutex;
  std::unordered_multimap<std::uint64_t, Shape*> shapes;

  static ShapeTable& instance() {
    static auto* table =
        new ShapeTable;  // never destroyed: dictionaries may outlive static destruction
    return *table;
  }

  static Shape* make(const Ref<String>* keys, std::size_t count, std::uint64_t hash) {
    auto* s = new Shape(true, count);
    s->listHash_ = hash;
    s->keys_.assign(keys, keys + count);
    for (std::size_t i = 0; i < count; ++i) s->hashes_.push_back(StringStorage::hash(*keys[i]));
    return s;
  }

  Shape* findAndRetain(const Ref<String>* keys, std::size_t count, std::uint64_t hash) {
    const auto [first, last] = shapes.equal_range(hash);
    for (auto at = first; at != last; ++at) {
      if (at->second->hasKeys(keys, count)) {
        at->second->retain();
        return at->second;
      }
    }
    return nullptr;
  }

  // Drops a last count under the lock, unless the table has given the shape out again.
  void dropLast(Shape* s) {
    {
      const std::scoped_lock lock(mutex);
      if (s->refs_.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
      const auto [first, last] = shapes.equal_range(s->listHash_);
      for (auto at = first; at != last; ++at) {
        if (at->second == s) {
          shapes.erase(at);
          break;
        }
      }
    }
    delete s;
  }
  static void destroy(Shape* s) { delete s; }
};

namespace {

std::uint64_t listHash(const Ref<String>* keys, std::size_t count) {
  std::uint64_t h = count;
  for (std::size_t i = 0; i < count; ++i) h = combineHashes(h, StringStorage::hash(*keys[i]));
  return h;
}

bool equalKeys(const String& a, const String& b) {
  return &a == &b || equalUnits(StringStorage::span(a), StringStorage::span(b));
}

}  // namespace

Shape* Shape::shared(const Ref<String>* keys, std::size_t count) {
  const std::uint64_t hash = listHash(keys, count);
  ShapeTable& table = ShapeTable::instance();
  const std::scoped_lock lock(table.mutex);
  if (Shape* s = table.findAndRetain(keys, count, hash)) return s;
  Shape* s = ShapeTable::make(keys, count, hash);
  table.shapes.emplace(hash, s);
  return s;
}

Shape* Shape::empty() {
  static Shape* none = shared(nullptr, 0);  // this count is never given up
  none->retain();
  return none;
}

Shape* Shape::own(std::size_t capacity) { return new Shape(false, capacity); }

// A shared shape's last count goes under the table's lock; every other one without.
void Shape::release() noexcept {
  std::uint32_t n = refs_.load(std::memory_order_relaxed);
  while (n > 1) {
    if (refs_.compare_exchange_weak(n, n - 1, std::memory_order_acq_rel)) return;
  }
  if (shared_) {
    ShapeTable::instance().dropLast(this);
  } else {
    ShapeTable::destroy(this);
  }
}

std::size_t Shape::slotOf(const KeyText& key) const {
  const auto matches = [&](std::size_t slot) {
    return equalUnits(StringStorage::span(*keys_[slot]), key.span);
  };
  if (!shared_) return index_.find(key.hash, matches);
  for (std::size_t i = 0; i < hashes_.size(); ++i) {
    if (hashes_[i] == key.hash && matches(i)) return i;
  }
  return kAbsent;
}

bool Shape::hasKeys(const Ref<String>* keys, std::size_t count) const {
  if (count != keys_.size()) return false;
  for (std::size_t i = 0; i < count; ++i) {
    if (!equalKeys(*keys_[i], *keys[i])) return false;
  }
  return true;
}

void Shape::append(Ref<String> key) {
  const std::uint32_t hash = StringStorage::hash(*key);
  keys_.push_back(std::move(key));
  hashes_.push_back(hash);
  index_.insert(hash, keys_.size() - 1);
}

void Shape::makeHole(std::size_t slot) {
  index_.erase(hashes_[slot], slot);
  keys_[slot] = nullptr;
  ++holes_;
}

std::vector<std::size_t> Shape::closeHoles() {
  std::vector<std::size_t> from;
  index_.clear();
  for (std::size_t slot = 0; slot < keys_.size(); ++slot) {
    if (keys_[slot] == nullptr) continue;
    const std::size_t to = from.size();
    from.push_back(slot);
    if (to != slot) {
      keys_[to] = std::move(keys_[slot]);
      hashes_[to] = hashes_[slot];
    }
    index_.insert(hashes_[to], to);
  }
  keys_.resize(from.size());
  hashes_.resize(from.size());
  holes_ = 0;
  return from;
}

}  // namespace qx::detail

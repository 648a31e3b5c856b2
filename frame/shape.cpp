#include "frame/shape.h"

#include <cstring>
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

  // Not in the table yet: under the lock it must not be released, only deleted.
  static std::unique_ptr<Shape> make(const Ref<String>* keys, std::size_t count,
                                     std::uint64_t hash) {
    std::unique_ptr<Shape> s(new Shape(true, count));
    s->listHash_ = hash;
    s->keys_.assign(keys, keys + count);
    for (std::size_t i = 0; i < count; ++i) s->hashes_.push_back(StringStorage::hash(*keys[i]));
    return s;
  }

  ShapeCount find(const Ref<String>* keys, std::size_t count, std::uint64_t hash) {
    const auto [first, last] = shapes.equal_range(hash);
    for (auto at = first; at != last; ++at) {
      if (at->second->hasKeys(keys, count)) return at->second->another();
    }
    return nullptr;
  }

  // Drops a last count under the lock, unless the table has given the shape out again.
  void dropLast(Shape* s) noexcept {
    {
      const std::scoped_lock lock(mutex);
      if (dropReferences(s->refs_, 1) != 1) return;
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
  static void destroy(Shape* s) noexcept { delete s; }
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

ShapeCount Shape::shared(const Ref<String>* keys, std::size_t count) {
  const std::uint64_t hash = listHash(keys, count);
  ShapeTable& table = ShapeTable::instance();
  const std::scoped_lock lock(table.mutex);
  if (ShapeCount known = table.find(keys, count, hash)) return known;
  std::unique_ptr<Shape> made = ShapeTable::make(keys, count, hash);
  table.shapes.emplace(hash, made.get());
  return ShapeCount(made.release());
}

ShapeCount Shape::empty() {
  static Shape* const none = shared(nullptr, 0).release();  // this count is never given up
  return none->another();
}

ShapeCount Shape::own(std::size_t capacity) { return ShapeCount(new Shape(false, capacity)); }

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

// Both texts stand in the narrowest form: of two forms, they differ.
std::size_t Shape::slotOf(const KeyView& key) const {
  const std::size_t bytes = key.span.wide ? key.span.size * 2 : key.span.size;
  const auto matches = [&](std::size_t slot) {
    const TextSpan known = StringStorage::span(*keys_[slot]);
    if (known.size != key.span.size || known.wide != key.span.wide) return false;
    if (bytes > ShortText::kMaxSize) return std::memcmp(known.data, key.span.data, bytes) == 0;
    return ShortText(known.data, bytes) == ShortText(key.span.data, bytes);
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
  makeRoomForOne(keys_);
  makeRoomForOne(hashes_);
  index_.insert(hash, keys_.size());
  keys_.push_back(std::move(key));
  hashes_.push_back(hash);
}

void Shape::makeHole(std::size_t slot) noexcept {
  index_.erase(hashes_[slot], slot);
  keys_[slot] = nullptr;
  ++holes_;
}

}  // namespace qx::detail

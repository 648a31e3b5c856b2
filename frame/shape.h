#pragma once

// Shape: the ordered list of keys of a dictionary, with the way from a key to its slot.
//
// Dictionaries of up to kMaxShared keys share one shape for each list of keys, which is found in a
// table of the process and lives as long as a dictionary uses it. Shared shapes are immutable. A
// larger dictionary has a shape of its own with a hash index; removing a key there leaves a hole,
// which later growth closes.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <QXFoundation/reference_count.h>
#include <QXFoundation/string.h>

#include "frame/hash_index.h"
#include "frame/key_text.h"

namespace qx::detail {

class Shape;

// Owns one count of a shape.
struct ShapeRelease {
  void operator()(Shape* shape) const noexcept;
};
using ShapeCount = std::unique_ptr<Shape, ShapeRelease>;

class Shape {
 public:
  static constexpr std::size_t kMaxShared = 16;
  static constexpr std::size_t kAbsent = ~std::size_t{0};

  Shape(const Shape&) = delete;
  Shape& operator=(const Shape&) = delete;

  // The shared shape of these distinct, immutable keys, at most kMaxShared. Thread-safe.
  static ShapeCount shared(const Ref<String>* keys, std::size_t count);
  static ShapeCount empty();
  // A shape of its own, for one dictionary, empty.
  static ShapeCount own(std::size_t capacity);

  void retain() noexcept { addReferences(refs_, 1); }
  void release() noexcept;
  ShapeCount another() noexcept {
    retain();
    return ShapeCount(this);
  }

  bool isShared() const { return shared_; }
  // Slots, holes included; the keys of holes are nil.
  std::size_t slots() const { return keys_.size(); }
  std::size_t count() const { return keys_.size() - holes_; }
  const Ref<String>& key(std::size_t slot) const { return keys_[slot]; }
  const Ref<String>* keys() const { return keys_.data(); }

  // The key's slot, or kAbsent.
  std::size_t slotOf(const KeyView& key) const;
  bool hasKeys(const Ref<String>* keys, std::size_t count) const;

  // Of an own shape alone. A key that is not there yet gets the next slot; where memory runs out,
  // nothing has changed.
  void append(Ref<String> key);
  void makeHole(std::size_t slot) noexcept;
  bool worthClosing() const { return holes_ > 16 && holes_ > keys_.size() / 2; }
  // Calls move(to, from) for each slot that moves, in order. Needs no memory.
  template <class Move>
  void closeHoles(Move move) {
    index_.clear();
    std::size_t to = 0;
    for (std::size_t slot = 0; slot < keys_.size(); ++slot) {
      if (keys_[slot] == nullptr) continue;
      if (to != slot) {
        keys_[to] = std::move(keys_[slot]);
        hashes_[to] = hashes_[slot];
        move(to, slot);
      }
      index_.insert(hashes_[to], to);
      ++to;
    }
    keys_.resize(to);
    hashes_.resize(to);
    holes_ = 0;
  }

 private:
  Shape(bool shared, std::size_t capacity) : shared_(shared) { keys_.reserve(capacity); }
  ~Shape() = default;
  friend struct ShapeTable;
  friend struct std::default_delete<Shape>;

  ReferenceCount refs_{1};
  const bool shared_;
  std::uint64_t listHash_ = 0;
  std::size_t holes_ = 0;
  std::vector<Ref<String>> keys_;
  std::vector<std::uint32_t> hashes_;
  HashIndex index_;  // of an own shape
};

inline void ShapeRelease::operator()(Shape* shape) const noexcept { shape->release(); }

}  // namespace qx::detail

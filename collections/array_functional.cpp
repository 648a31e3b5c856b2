#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include <QXFoundation/array_functional.h>

#include "frame/array_storage.h"
#include "frame/raise.h"

namespace qx::detail {

namespace {

constexpr std::size_t kFirstRoom = 16;

// Values are words that may be moved as bytes.
void moveValues(PropertyValue* to, const PropertyValue* from, std::size_t count) {
  if (count != 0) std::memcpy(static_cast<void*>(to), from, count * sizeof(PropertyValue));
}

}  // namespace

ArrayGatherer::ArrayGatherer(std::size_t expected) {
  if (expected == 0) return;
  room_ = ArrayStorage::allocateRoom(expected);
  values_ = ArrayStorage::values(*room_);
  capacity_ = expected;
}

ArrayGatherer::~ArrayGatherer() { std::destroy_n(values_, count_); }

void ArrayGatherer::grow(std::size_t least) {
  const std::size_t capacity = std::max({capacity_ * 2, least, kFirstRoom});
  Ref<Array> grown = ArrayStorage::allocateRoom(capacity);
  moveValues(ArrayStorage::values(*grown), values_, count_);
  room_ = std::move(grown);
  values_ = ArrayStorage::values(*room_);
  capacity_ = capacity;
}

void ArrayGatherer::addPicked(const PropertyValue* const* places, std::size_t count) {
  if (capacity_ - count_ < count) grow(count_ + count);
  for (std::size_t i = 0; i < count; ++i) {
    ::new (static_cast<void*>(values_ + count_ + i)) PropertyValue(*places[i]);
  }
  count_ += count;
}

void ArrayGatherer::refuseNil() { raiseNilStored("-[NSMutableArray addObject:]"); }

// What was gathered stays where it is, unless that would waste more than an eighth.
Ref<Array> ArrayGatherer::array() {
  if (room_ == nullptr || capacity_ - count_ > count_ / 8) {
    Ref<Array> exact = ArrayStorage::allocateRoom(count_);
    moveValues(ArrayStorage::values(*exact), values_, count_);
    room_ = std::move(exact);
  }
  ArrayStorage::setCount(*room_, count_);
  values_ = nullptr;
  count_ = capacity_ = 0;
  return std::move(room_);
}

Ref<Array> steadyArray(const Array& array) { return ArrayStorage::steady(array); }

struct ArrayDescent::Levels {
  struct Level {
    Ref<Array> array;
    std::size_t next;
    bool stop;
  };
  std::vector<Level> list;
};

ArrayDescent::ArrayDescent(const Array& array) { start(ArrayStorage::steady(array), 0, false); }
ArrayDescent::~ArrayDescent() { delete outer_; }

void ArrayDescent::start(Ref<Array> array, std::size_t next, bool stop) {
  array_ = std::move(array);
  values_ = array_->begin();
  count_ = array_->count();
  next_ = next;
  stop_ = stop;
}

void ArrayDescent::enter(const Array& inner) {
  Ref<Array> held = ArrayStorage::steady(inner);
  if (outer_ == nullptr) outer_ = new Levels;
  if (outer_->list.size() == kMaxFlatMapDepth)
    raiseInvalidArgument("-[NSArray qxFlatMap:]: the transform's arrays are nested too deep");
  outer_->list.push_back({std::move(array_), next_, stop_});
  start(std::move(held), 0, false);
}

bool ArrayDescent::leave() {
  if (outer_ == nullptr || outer_->list.empty()) return false;
  Levels::Level level = std::move(outer_->list.back());
  outer_->list.pop_back();
  start(std::move(level.array), level.next, level.stop);
  return true;
}

}  // namespace qx::detail

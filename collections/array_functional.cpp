#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include <QXFoundation/array_functional.h>

#include "frame/array_storage.h"
#include "frame/raise.h"

namespace qx::detail {

ArrayGatherer::ArrayGatherer(std::size_t expected) {
  if (expected == 0) return;
  values_ = static_cast<PropertyValue*>(std::malloc(expected * sizeof(PropertyValue)));
  if (values_ == nullptr) throw std::bad_alloc();
  capacity_ = expected;
}

ArrayGatherer::~ArrayGatherer() {
  std::destroy_n(values_, count_);
  std::free(values_);
}

// Values are words that may be moved as bytes.
void ArrayGatherer::grow() {
  const std::size_t capacity = std::max<std::size_t>(capacity_ * 2, 16);
  void* grown = capacity > std::numeric_limits<std::size_t>::max() / sizeof(PropertyValue)
                    ? nullptr
                    : std::realloc(static_cast<void*>(values_), capacity * sizeof(PropertyValue));
  if (grown == nullptr) throw std::bad_alloc();
  values_ = static_cast<PropertyValue*>(grown);
  capacity_ = capacity;
}

void ArrayGatherer::refuseNil() { raiseNilStored("-[NSMutableArray addObject:]"); }

Ref<Array> ArrayGatherer::array() {
  Ref<Array> made = ArrayStorage::allocate(count_);
  if (count_ != 0) {
    std::memcpy(static_cast<void*>(ArrayStorage::values(*made)), values_,
                count_ * sizeof(PropertyValue));
  }
  count_ = 0;
  return made;
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

#include "qualifiers/bindings.h"

#include <algorithm>
#include <utility>

namespace qx::detail {

std::size_t Bindings::find(std::uint16_t classIndex) const {
  for (std::size_t i = 0; i < bindings_.size(); ++i) {
    if (bindings_[i]->layout.isOf(classIndex)) return i;
  }
  return kNone;
}

// The number of a binding that is free to be bound.
std::size_t Bindings::makeOne() {
  if (!isFull()) {
    bindings_.push_back(std::make_unique<Binding>());
    return bindings_.size() - 1;
  }
  const std::size_t number = std::exchange(replaced_, (replaced_ + 1) % PlaceTable::kLayouts);
  shapes_.remove(number);
  if (recentClass_ == number) recentClass_ = kNone;
  return number;
}

std::size_t Bindings::bind(const Shape& shape) {
  const std::size_t number = makeOne();
  Binding& binding = *bindings_[number];
  binding.layout.bind(program_.keys(), shape);
  binding.isBound = false;
  const std::size_t steps = std::min(program_.steps().size(), BoundProgram::kMaxBlockSteps);
  for (std::size_t step = 0; step < steps; ++step) {
    const std::uint32_t key = program_.steps()[step].key;
    const bool isThere =
        key != Program::kNoKey && binding.layout.place(key).way == Place::Way::slot;
    places_.set(
        step, number,
        isThere ? static_cast<std::uint8_t>(binding.layout.place(key).slot) : PlaceTable::kAbsent);
  }
  shapes_.add(shape, number);
  return number;
}

const Binding& Bindings::of(const Shape& shape) {
  std::size_t number = numberOf(shape);
  if (number == kNone) number = bind(shape);
  Binding& binding = *bindings_[number];
  if (!std::exchange(binding.isBound, true)) binding.bound.bindToShape(program_, binding.layout);
  return binding;
}

const Binding& Bindings::of(const Object& object) {
  const std::uint16_t index = ObjectAccess::classIndex(object);
  if (recentClass_ != kNone && bindings_[recentClass_]->layout.isOf(index))
    return *bindings_[recentClass_];
  std::size_t number = find(index);
  if (number == kNone) {
    number = makeOne();
    Binding& binding = *bindings_[number];
    binding.layout.bind(program_.keys(), index);
    binding.bound.bindToClass(program_, binding.layout, Subject::of(object));
  }
  recentClass_ = number;
  return *bindings_[number];
}

}  // namespace qx::detail

#pragma once

// The bindings of one program to the layouts and classes that a run over many objects has met.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "qualifiers/block_run.h"
#include "qualifiers/bound_program.h"
#include "qualifiers/layout.h"
#include "qualifiers/program.h"
#include "qualifiers/shape_numbers.h"

namespace qx::detail {

struct Binding {
  Layout layout;
  BoundProgram bound;
  bool isBound = false;  // to a shape that was met in blocks alone it is not
};

// Belongs to one thread. Of very many layouts the oldest are forgotten.
class Bindings {
 public:
  static constexpr std::size_t kNone = ShapeNumbers::kNone;
  static_assert(PlaceTable::kLayouts <= ShapeNumbers::kMost);

  explicit Bindings(const Program& program) : program_(program) { words_.bindToWords(program); }

  // To a shared shape, and to the class of an object; made where there is none. Ends with the next
  // call.
  const Binding& of(const Shape& shape);
  const Binding& of(const Object& object);

  // The number of the shape's binding, which the table of places knows it by; kNone where
  // another would have to be forgotten for it.
  std::size_t numberOf(const Shape& shape);
  // The program for blocks of dictionaries, with the places of its steps in each layout.
  const BoundProgram& words() const { return words_; }
  const PlaceTable& places() const { return places_; }

 private:
  std::size_t find(std::uint16_t classIndex) const;
  bool isFull() const { return bindings_.size() == PlaceTable::kLayouts; }
  std::size_t makeOne();
  std::size_t bind(const Shape& shape);

  const Program& program_;
  std::vector<std::unique_ptr<Binding>> bindings_;
  std::size_t replaced_ = 0;
  std::size_t recentClass_ = kNone;  // the number of the binding to a class that was asked for last
  ShapeNumbers shapes_;
  BoundProgram words_;
  PlaceTable places_;
};

inline std::size_t Bindings::numberOf(const Shape& shape) {
  const std::size_t number = shapes_.of(shape);
  return number != kNone || isFull() ? number : bind(shape);
}

}  // namespace qx::detail

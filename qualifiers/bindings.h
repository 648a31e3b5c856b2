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

namespace qx::detail {

struct Binding {
  Layout layout;
  BoundProgram bound;
  bool isBound = false;  // to a shape that was met in blocks alone it is not
};

// Belongs to one thread. Of very many layouts the oldest are forgotten.
class Bindings {
 public:
  static constexpr std::size_t kNone = ~std::size_t{0};

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
  // Where a shape's binding was found before: by its address, so that mixed arrays need no search.
  struct Known {
    const Shape* shape = nullptr;
    std::size_t number = 0;
  };
  static constexpr std::size_t kKnown = 256;
  Known& knownOf(const Shape& shape) {
    const auto address = reinterpret_cast<std::uintptr_t>(&shape);
    return known_[(address >> 4 ^ address >> 12) % kKnown];
  }

  template <class Source>
  std::size_t find(const Source& source) const;
  bool isFull() const { return bindings_.size() == PlaceTable::kLayouts; }
  std::size_t makeOne();
  std::size_t bind(const Shape& shape);
  std::size_t findOrBind(const Shape& shape);

  const Program& program_;
  std::vector<std::unique_ptr<Binding>> bindings_;
  std::size_t replaced_ = 0;
  std::size_t recentClass_ = kNone;  // the number of the binding to a class that was asked for last
  Known known_[kKnown];
  BoundProgram words_;
  PlaceTable places_;
};

inline std::size_t Bindings::numberOf(const Shape& shape) {
  Known& known = knownOf(shape);
  if (known.shape == &shape) [[likely]]
    return known.number;
  const std::size_t number = findOrBind(shape);
  if (number != kNone) known = {&shape, number};
  return number;
}

}  // namespace qx::detail

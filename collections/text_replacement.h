#pragma once

// Putting a text together from the pieces of another one and what replaces the pieces between them.

#include <cstddef>
#include <vector>

#include <QXFoundation/string.h>

#include "frame/text_span.h"

namespace qx::detail {

// The places of a text that are to be replaced: ascending, apart from each other, and each of the
// same length unless told.
class Replacements {
 public:
  explicit Replacements(TextSpan text) : text_(text) {}

  bool empty() const { return places_.empty(); }
  void add(std::size_t location, std::size_t length) {
    places_.push_back({static_cast<std::uint32_t>(location), static_cast<std::uint32_t>(length)});
    removed_ += length;
  }
  // The text with each place replaced, in the narrowest form. A result that no string can hold
  // raises InvalidArgumentException.
  Ref<String> apply(TextSpan with) const;

 private:
  struct Place {
    std::uint32_t location;
    std::uint32_t length;
  };
  template <class Unit>
  void write(Unit* to, TextSpan with) const;

  TextSpan text_;
  std::vector<Place> places_;
  std::size_t removed_ = 0;
};

}  // namespace qx::detail

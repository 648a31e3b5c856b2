#pragma once

// Where the keys of a program are found in objects of one class, or in dictionaries of one shape.

#include <cstdint>
#include <vector>

#include <QXFoundation/class.h>

#include "frame/shape.h"
#include "qualifiers/program.h"

namespace qx::detail {

struct Place {
  enum class Way : std::uint8_t {
    absent,     // nil
    slot,       // of a dictionary
    native,     // a field that is read without making a value
    getter,     // made by the class's getter
    undefined,  // the object is asked for a key that its class does not declare
  };
  Way way = Way::absent;
  std::uint32_t slot = 0;
  const Property* property = nullptr;
};

class Layout {
 public:
  Layout() = default;
  Layout(const Layout&) = delete;
  Layout& operator=(const Layout&) = delete;
  ~Layout() { release(); }

  bool isOf(const Shape& shape) const { return shape_ == &shape; }
  bool isOf(std::uint16_t classIndex) const { return classIndex_ == classIndex; }
  void bind(const std::vector<Ref<String>>& keys, const Shape& shape);
  void bind(const std::vector<Ref<String>>& keys, std::uint16_t classIndex);

  const Place& place(std::uint32_t key) const { return places_[key]; }
  // Of a class: true when its objects answer comparisons themselves.
  bool hasEvaluator() const { return hasEvaluator_; }

 private:
  void release();

  static constexpr std::uint32_t kNoClass = ~std::uint32_t{0};

  // Held, so that no other shape comes to stand at its address.
  Shape* shape_ = nullptr;
  std::uint32_t classIndex_ = kNoClass;
  std::vector<Place> places_;
  bool hasEvaluator_ = false;
};

}  // namespace qx::detail

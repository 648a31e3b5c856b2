#pragma once

// Having many objects perform one operation.

#include <cstddef>

#include <QXFoundation/class.h>
#include <QXFoundation/selector.h>

#include "frame/operation_call.h"

namespace qx::detail {

// Looks the operation up once for as many objects of one class as come in a row.
class SelectorCall {
 public:
  explicit SelectorCall(Selector selector) : selector_(selector) {}
  SelectorCall(Selector selector, const PropertyValue& argument)
      : selector_(selector), argument_(argument), count_(1) {}

  // As performSelector does. The caller holds the target.
  PropertyValue operator()(const PropertyValue& target) {
    const Object* o = target.object();
    if (operation_ == nullptr || o == nullptr || ObjectAccess::classIndex(*o) != classIndex_)
      return lookUp(target);
    return callOperation(*operation_, target, selector_, &argument_);
  }

 private:
  PropertyValue lookUp(const PropertyValue& target);

  const Selector selector_;
  const PropertyValue argument_;
  const std::size_t count_ = 0;
  const Operation* operation_ = nullptr;
  std::uint16_t classIndex_ = 0;
};

}  // namespace qx::detail

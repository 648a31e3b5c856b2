#pragma once

// Calling an operation for a selector, with what it does not take told by its name.

#include <QXFoundation/class.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>

namespace qx::detail {

// What raiseKind raises: a value of the wrong kind, told without the operation that was to take it.
class KindException : public InvalidArgumentException {
 public:
  using InvalidArgumentException::InvalidArgumentException;
  ~KindException() override;
};
// The same with the operation: "-[Person greet:]: a value of class NSNumber (5) can not stand for
// a string"
[[noreturn]] void raiseWithin(const PropertyValue& receiver, Selector selector,
                              const KindException& refused);

// The caller holds the receiver, and has counted the arguments.
inline PropertyValue callOperation(const Operation& operation, const PropertyValue& receiver,
                                   Selector selector, const PropertyValue* arguments) {
  try {
    return operation.call(receiver, operation.payload, arguments);
  } catch (const KindException& refused) {
    raiseWithin(receiver, selector, refused);
  }
}

}  // namespace qx::detail

#pragma once

// The raises that several places share, with their texts.

#include <cstddef>
#include <string>

#include <QXFoundation/exception.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>

namespace qx::detail {

struct Taken;

[[noreturn]] void raiseInvalidArgument(std::string reason);
// "-[NSNull compare:]: the receiver has no such operation"
[[noreturn]] void raiseUnsupported(const PropertyValue& receiver, Selector selector);
// "-[NSArray setValue:forKey:]: there is no property "x" that can be set"
[[noreturn]] void raiseNotSettable(const Class& cls, StringArg key);
// "-[Person setValue:forKey:]: the property "age" does not take a value of class NSString (x), only
// an integer that fits"
[[noreturn]] void raiseUnfit(const Class& cls, StringArg key, const Taken& taken,
                             const PropertyValue& got);
// "-[NSArray objectAtIndex:]: index 3 is beyond the count 2"
[[noreturn]] void raiseIndex(const char* operation, std::size_t index, std::size_t count);
[[noreturn]] void raiseRange(const char* operation, std::size_t location, std::size_t length,
                             std::size_t count);
// "-[NSMutableArray addObject:]: nil can not be stored"
[[noreturn]] void raiseNilStored(const char* operation);
[[noreturn]] void raiseTooLong(const char* what);

}  // namespace qx::detail

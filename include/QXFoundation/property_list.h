// PropertyListSerialization: property lists to bytes and back, as XML or binary.
//
//     qx::Ref<qx::Error> error;
//     auto bytes = qx::PropertyListSerialization::dataWithPropertyList(
//         qx::dict({{"name", "Bob"}, {"age", 42}}), qx::PropertyListFormat::xml, &error);
//     auto value = qx::PropertyListSerialization::propertyListWithData(
//         bytes, qx::PropertyListMutability::immutable, nullptr, &error);
//     if (value == nullptr) show(error->localizedDescription());   // "... line 3, column 7: ..."
//
// A property list is a tree of strings, integers (signed and unsigned, 64 bits), reals (32 and 64
// bits), bools, dates, data, arrays and dictionaries. The order of dictionaries is kept. Nil, null,
// sets and objects of other classes are none. What each format can hold, and how strict reading is,
// stands in platform/README.md.
#pragma once

#include <cstddef>
#include <cstdint>

#include <QXFoundation/data.h>
#include <QXFoundation/error.h>
#include <QXFoundation/property_value.h>

namespace qx {

// The two formats.
enum class PropertyListFormat : std::uint8_t { xml, binary };

// What is made mutable when a property list is read. Leaves are strings and data; keys never are.
enum class PropertyListMutability : std::uint8_t {
  immutable,
  mutableContainers,
  mutableContainersAndLeaves
};

// Codes of QXPropertyListErrorDomain. Errors of reading carry their place under
// QXByteOffsetErrorKey, or QXLineErrorKey and QXColumnErrorKey, and in the description.
enum class PropertyListErrorCode : std::uint8_t {
  unknownFormat = 1,  // the bytes are no property list at all
  malformed = 2,      // they break the rules of their format
  unsupported = 3,    // they keep them, but hold what is not read here (an encoding, an entity ...)
  limitExceeded = 4,  // nested too deep, or far larger written out than the list itself
  unwritable = 5,     // a value that is to be written, and that the format can not hold
};

// Containers may be nested this deep, in both formats and both ways.
inline constexpr std::size_t kMaxPropertyListDepth = 512;

// Thread-safe, as far as the values are.
class QX_EXPORT PropertyListSerialization {
 public:
  PropertyListSerialization() = delete;

  // The value in that format; nil and an error where the value is no property list that the format
  // can hold. Containers that hold themselves are refused; one that is met several times is written
  // each time (XML) or once (binary).
  static Ref<Data> dataWithPropertyList(const PropertyValue& value, PropertyListFormat format,
                                        Ref<Error>* error = nullptr);

  // The value that the bytes hold, whose format is recognised by their content and stored in
  // `format`, unless that is null. Nil and an error for bytes that are no property list. Takes
  // memory in proportion to the bytes. Nil data raises.
  static PropertyValue propertyListWithData(In<Data> data, PropertyListMutability options,
                                            PropertyListFormat* format,
                                            Ref<Error>* error = nullptr);

  // Whether dataWithPropertyList would succeed.
  static bool propertyList(const PropertyValue& value, PropertyListFormat isValidForFormat);
};

}  // namespace qx

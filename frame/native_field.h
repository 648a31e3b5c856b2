#pragma once

// A field of an object or a struct, read in place.

#include <cstdint>
#include <string_view>

#include <QXFoundation/class.h>
#include <QXFoundation/property_value.h>

namespace qx::detail {

// What a field holds, borrowed; narrow integers stand widened.
struct NativeField {
  enum class Kind : std::uint8_t {
    boolean,
    signedInteger,
    unsignedInteger,
    single,
    real,
    text,
    value
  };
  Kind kind;
  union {
    std::int64_t i;
    std::uint64_t u;
    double d;
    const PropertyValue* value;
    std::string_view text;
  };

  explicit NativeField(bool b) : kind(Kind::boolean), i(b ? 1 : 0) {}
  explicit NativeField(std::int64_t n) : kind(Kind::signedInteger), i(n) {}
  explicit NativeField(std::uint64_t n) : kind(Kind::unsignedInteger), u(n) {}
  explicit NativeField(float f) : kind(Kind::single), d(static_cast<double>(f)) {}
  explicit NativeField(double n) : kind(Kind::real), d(n) {}
  explicit NativeField(std::string_view s) : kind(Kind::text), text(s) {}
  explicit NativeField(const PropertyValue* v) : kind(Kind::value), value(v) {}
};

// The field of that type at that address; not for the type `none`.
NativeField readField(FieldType type, const void* address);

// The property's field within the subject; not for a property of the type `none`.
inline NativeField readField(const Property& property, const Subject& subject) {
  return readField(property.type, property.field(subject, property.payload));
}

// As a value, what the class's getter would make.
PropertyValue valueOf(const NativeField& field);

}  // namespace qx::detail

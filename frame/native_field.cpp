#include "frame/native_field.h"

#include <string>

namespace qx::detail {
namespace {

template <class T>
const T& at(const void* address) {
  return *static_cast<const T*>(address);
}

}  // namespace

NativeField readField(FieldType type, const void* address) {
  switch (type) {
    case FieldType::boolean:
      return NativeField(at<bool>(address));
    case FieldType::int8:
      return NativeField(std::int64_t{at<std::int8_t>(address)});
    case FieldType::int16:
      return NativeField(std::int64_t{at<std::int16_t>(address)});
    case FieldType::int32:
      return NativeField(std::int64_t{at<std::int32_t>(address)});
    case FieldType::int64:
      return NativeField(at<std::int64_t>(address));
    case FieldType::uint8:
      return NativeField(std::uint64_t{at<std::uint8_t>(address)});
    case FieldType::uint16:
      return NativeField(std::uint64_t{at<std::uint16_t>(address)});
    case FieldType::uint32:
      return NativeField(std::uint64_t{at<std::uint32_t>(address)});
    case FieldType::uint64:
      return NativeField(at<std::uint64_t>(address));
    case FieldType::single:
      return NativeField(at<float>(address));
    case FieldType::real:
      return NativeField(at<double>(address));
    case FieldType::text:
      return NativeField(std::string_view(at<std::string>(address)));
    default:
      return NativeField(static_cast<const PropertyValue*>(address));
  }
}

PropertyValue valueOf(const NativeField& field) {
  switch (field.kind) {
    case NativeField::Kind::boolean:
      return field.i != 0;
    case NativeField::Kind::signedInteger:
      return field.i;
    case NativeField::Kind::unsignedInteger:
      return field.u;
    case NativeField::Kind::single:
      return static_cast<float>(field.d);
    case NativeField::Kind::real:
      return field.d;
    case NativeField::Kind::text:
      return field.text;
    case NativeField::Kind::value:
      return *field.value;
  }
  return {};
}

}  // namespace qx::detail

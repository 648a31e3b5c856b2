#pragma once

// What must hold for every sequence of bytes given as a property list: it is read, or refused with
// a reason; and what is read can be written in both formats, and reads back the same.

#include <string>
#include <string_view>

#include "platform/property_list_io.h"
#include "tests/platform/property_list/same_list.h"

namespace qx::plist {

// Where something did not hold.
struct Complaint {
  std::string what;
  explicit operator bool() const { return !what.empty(); }
};

inline Complaint checkWritten(const PropertyValue& v, PropertyListFormat format, Kept kept) {
  const bool isValid = PropertyListSerialization::propertyList(v, format);
  Ref<Error> error;
  detail::PlistOutput out;
  const bool isWritten = detail::writePropertyList(v, format, out, &error);
  if (isWritten != isValid) return {"the test of validity and the writer differ"};
  if (!isWritten) return {error == nullptr ? "an error is missing" : ""};
  PropertyListFormat read{};
  const PropertyValue again =
      detail::readPropertyList(out.view(), PropertyListMutability::immutable, &read, &error);
  if (again.isNil()) return {"what was written is refused: " + error->localizedDescription()};
  if (read != format) return {"what was written is read as the other format"};
  if (!sameList(v, again, kept)) return {"what was written reads differently"};
  detail::PlistOutput second;
  if (!detail::writePropertyList(again, format, second, &error)) return {"it is not written twice"};
  if (second.view() != out.view()) return {"it is written differently the second time"};
  return {};
}

// Also gives the value; nil where it is refused.
inline Complaint checkBytes(std::string_view bytes, PropertyValue* value = nullptr) {
  constexpr std::size_t kMostWritten = 20000;  // shared objects make long lists of short ones
  Ref<Error> error;
  const PropertyValue v =
      detail::readPropertyList(bytes, PropertyListMutability::immutable, nullptr, &error);
  if (value != nullptr) *value = v;
  if (v.isNil() != (error != nullptr)) return {"neither a value nor an error, or both"};
  if (error != nullptr && error->localizedDescription().empty()) return {"an error without text"};

  Ref<Error> otherError;
  const PropertyValue changeable = detail::readPropertyList(
      bytes, PropertyListMutability::mutableContainersAndLeaves, nullptr, &otherError);
  const bool isLimit = otherError != nullptr && otherError->code() == 4;
  if (changeable.isNil() != v.isNil() && !isLimit) return {"mutable reading differs"};
  if (v.isNil() || valueCount(v, kMostWritten) >= kMostWritten) return {};
  if (!changeable.isNil() && !sameList(v, changeable, Kept::asBinary)) {
    return {"mutable reading gives another value"};
  }
  if (auto c = checkWritten(v, PropertyListFormat::binary, Kept::asBinary)) return c;
  return checkWritten(v, PropertyListFormat::xml, Kept::asXml);
}

}  // namespace qx::plist

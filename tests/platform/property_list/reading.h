#pragma once

// Reading in tests: what comes of some bytes, in one line.

#include <string>
#include <string_view>

#include "platform/property_list_io.h"
#include "tests/platform/property_list/dump.h"
#include "tests/support/processor_time.h"

namespace qx::plist {

struct Outcome {
  PropertyValue value;
  Ref<Error> error;
  double seconds = 0;

  // The list, or the code and text of the error.
  std::string text() const {
    if (error == nullptr) return dump(value);
    return std::to_string(error->code()) + " " + error->localizedDescription();
  }
};

inline Outcome readBytes(std::string_view bytes,
                         PropertyListMutability mutability = PropertyListMutability::immutable) {
  // A copy of just that size, so that the sanitizers see a read beyond it.
  const std::string exact(bytes.begin(), bytes.end());
  Outcome o;
  o.seconds = processorTimeOf(
      [&] { o.value = detail::readPropertyList(exact, mutability, nullptr, &o.error); });
  return o;
}

inline std::string readingOf(std::string_view bytes) { return readBytes(bytes).text(); }

// The value as bytes of the format, or the text of the error.
inline std::string writingOf(const PropertyValue& v, PropertyListFormat format) {
  Ref<Error> error;
  const auto data = PropertyListSerialization::dataWithPropertyList(v, format, &error);
  if (error != nullptr) return std::to_string(error->code()) + " " + error->localizedDescription();
  return std::string(data->view());
}

}  // namespace qx::plist

#pragma once

// What is wrong with a property list. Thrown inside the readers and writers, and turned into an
// Error where they are entered; it never reaches the library's user.

#include <cstddef>
#include <optional>
#include <string>

#include <QXFoundation/error.h>
#include <QXFoundation/property_list.h>

namespace qx::detail {

struct PlistFault {
  PropertyListErrorCode code;
  std::string reason;  // a clause without its full stop
  // The place, as far as there is one.
  std::optional<std::size_t> byte = std::nullopt;
  std::optional<std::size_t> line = std::nullopt;
  std::optional<std::size_t> column = std::nullopt;
  std::optional<std::string> path = std::nullopt;  // to write: "layout.frames[2]", "" the root

  Ref<Error> error() const;
};

}  // namespace qx::detail

#pragma once

#include <string>

namespace qx::detail {

// Copies the extended attributes of the file at `path` (access control lists among them) to an open
// file. 0, or the `errno` value where an attribute that any process may set could not be copied;
// those that belong to the system's security are copied where possible.
[[nodiscard]] int copyExtendedAttributes(const std::string& path, int file);

}  // namespace qx::detail

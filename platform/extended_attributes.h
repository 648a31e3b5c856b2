#pragma once

// Extended attributes of files and folders, by the rules of this library on this system.
//
// Paths are bytes as the system takes them; symbolic links are not followed. A name is stored with
// "user." in front, unless it already names one of the system's namespaces ("user.", "trusted.",
// "security.", "system."). Every function gives 0 or an `errno` value:
//
//   ENAMETOOLONG  a name of more than 255 bytes as it is stored
//   E2BIG         a value that the file system can not hold, although the volume has room
//   ENODATA       there is no such attribute
//   EINVAL        a NUL in path or name
//
// and everything else that the system reports. Thread-safe.

#include <string>
#include <string_view>
#include <vector>

#include <QXFoundation/data.h>

#include "platform/stack_text.h"

namespace qx::detail {

// The bytes of an attribute as it is read: few ones take no memory but the stack's.
using AttributeBytes = BasicStackText<4096>;

// `bytes` is empty before.
[[nodiscard]] int readAttribute(const std::string& path, std::string_view name,
                                AttributeBytes& bytes);
[[nodiscard]] int readAttribute(const std::string& path, std::string_view name, Ref<Data>& value);
[[nodiscard]] int writeAttribute(const std::string& path, std::string_view name,
                                 std::string_view value);
// Removing an attribute that is not there is ENODATA, also where the system would refuse to remove
// it.
[[nodiscard]] int removeAttribute(const std::string& path, std::string_view name);
// The names in the system's order, in the form that the other functions take: without "user." where
// that would be put in front again.
[[nodiscard]] int listAttributes(const std::string& path, std::vector<std::string>& names);

}  // namespace qx::detail

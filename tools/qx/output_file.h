// Files that the tool writes.
#pragma once

#include <string>
#include <string_view>

namespace qxtool {

// Puts the content into the file: whole, or, with a Failure, not at all. A symbolic link stays and
// what it leads to is replaced; what is no regular file (a pipe, a device) is written to.
void writeFile(const std::string& path, std::string_view content);

}  // namespace qxtool

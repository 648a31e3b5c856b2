// What the tool tells on standard error.
#pragma once

#include <string_view>

namespace qxtool {

// One line behind the program's name. Bytes from outside are made printable.
void tell(std::string_view text);

}  // namespace qxtool

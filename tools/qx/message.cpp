#include "tools/qx/message.h"

#include <iostream>

#include "tools/qx/printable.h"

namespace qxtool {

void tell(std::string_view text) { std::cerr << "qx: " << printable(text) << '\n'; }

}  // namespace qxtool

#pragma once

#include <string>

namespace qx::detail {

// "age" -> "setAge:"
std::string setterNamed(std::string property);

}  // namespace qx::detail

#pragma once

// Doubles in the form of the cases: {"repr": decimal text, "hex": exact text}, of which the exact
// one counts.

#include <string>

#include "tests/vector_check/values.h"

namespace vector_check {

// Of {"repr", "hex"}, or of a plain number.
double doubleOf(const json& j);
// {"hex"} alone, in one spelling.
json doubleJson(double d);

// The same with every double in the form that doubleJson gives.
json withExactDoubles(const json& j);

}  // namespace vector_check

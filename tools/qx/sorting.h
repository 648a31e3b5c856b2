// The orders that --sort asks for.
#pragma once

#include <string>
#include <vector>

#include <QXFoundation/array.h>

namespace qxtool {

// Of "KEY" or "KEY:ORDER"; a Failure for an empty key and for an order that there is not.
qx::Ref<qx::Array> orderingsOf(const std::vector<std::string>& sorts);

// By one ordering as the library's key-order sort has it, by several with its stable sort. A
// Failure for values that have no order.
void sortRecords(qx::MutableArray& records, const qx::Ref<qx::Array>& orderings);

}  // namespace qxtool

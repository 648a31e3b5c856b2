#pragma once

#include <QXFoundation/class_builder.h>

namespace qx::detail {

// What this folder adds to NSDate, by selector.
void addDateOperations(ClassBuilderBase& c);

}  // namespace qx::detail

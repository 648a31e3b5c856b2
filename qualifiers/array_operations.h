#pragma once

// What arrays perform by selector through this folder.

#include <QXFoundation/class_builder.h>

namespace qx::detail {

// For the class "NSArray".
void addFilterOperations(ClassBuilderBase& builder);

}  // namespace qx::detail

#pragma once

// What the value types perform by selector through this folder.

#include <QXFoundation/class_builder.h>

namespace qx::detail {

// For the class "NSString".
void addPathOperations(ClassBuilderBase& builder);

}  // namespace qx::detail

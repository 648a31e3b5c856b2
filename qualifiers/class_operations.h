#pragma once

// What the qualifier classes themselves perform by selector.

#include <QXFoundation/class_builder.h>

namespace qx::detail {

void addQualifierClassOperations(ClassBuilderBase& builder);
void addVariableClassOperations(ClassBuilderBase& builder);

}  // namespace qx::detail

#pragma once

// What this folder adds to the classes of others.

#include <QXFoundation/class_builder.h>

namespace qx::detail {

// For the classes "NSObject", "NSArray" and "NSMutableArray".
void addComparisonOperations(ClassBuilderBase& builder);
void addSortedArrayOperations(ClassBuilderBase& builder);
void addSortingOperations(ClassBuilderBase& builder);

}  // namespace qx::detail

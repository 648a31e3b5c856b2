#pragma once

// What the platform's classes perform by selector through this folder. Operations with a place for
// an error or a range are not among them: such a place is no object.

#include <QXFoundation/class_builder.h>

namespace qx::detail {

// For the classes "NSFileManager" and "NSURL".
void addFileManagerOperations(ClassBuilderBase& builder);
void addUrlOperations(ClassBuilderBase& builder);

}  // namespace qx::detail

#pragma once

// What the value types perform by selector through this folder.

#include <QXFoundation/class_builder.h>

namespace qx::detail {

// Each for the class of that name, with NS in front.
void addArrayOperations(ClassBuilderBase& builder);
void addMutableArrayOperations(ClassBuilderBase& builder);
void addDictionaryOperations(ClassBuilderBase& builder);
void addStringOperations(ClassBuilderBase& builder);
void addMutableStringOperations(ClassBuilderBase& builder);
void addPointerArrayOperations(ClassBuilderBase& builder);

}  // namespace qx::detail

#pragma once

// What diagnostics add to the classes.

#include <QXFoundation/class_builder.h>
#include <QXFoundation/process_info.h>
#include <QXFoundation/set.h>

namespace qx::detail {

// For the classes "NSObject" and "NSProcessInfo".
void addDiagnosticOperations(ClassBuilderBase& builder);
void addDebugSetOperation(ClassBuilderBase& builder);

// The switches among the arguments; `debugSet` keeps the first result for good.
Ref<MutableSet> collectDebugSwitches(const ProcessInfo& info);

}  // namespace qx::detail

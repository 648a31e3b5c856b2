#include "qualifiers/array_operations.h"

#include <QXFoundation/array.h>
#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier.h>

namespace qx::detail {
namespace {

Ref<MutableArray> filter(const PropertyValue& receiver, const Ref<QXQualifier>& qualifier) {
  return filteredArrayUsingQualifier(receiver.as<Array>(), qualifier);
}

}  // namespace

void addFilterOperations(ClassBuilderBase& builder) {
  builder.addFunction("filteredArrayUsingQualifier:", &filter);
}

}  // namespace qx::detail

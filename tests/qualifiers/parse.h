#pragma once

// The parser over a list of arguments, for tables of cases.

#include <vector>

#include <QXFoundation/qualifier.h>

namespace qx {

inline Ref<QXQualifier> parse(StringArg format, const std::vector<PropertyValue>& arguments = {}) {
  return QXQualifier::_qualifierWithQualifierFormat(format, arguments.data(), arguments.size());
}

}  // namespace qx

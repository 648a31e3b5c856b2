#pragma once

// Lets failed expectations show values by class and description.

#include <ostream>

#include <QXFoundation/class.h>
#include <QXFoundation/property_value.h>

namespace qx {

inline void PrintTo(const PropertyValue& v, std::ostream* out) {
  if (v.isNil()) {
    *out << "nil";
  } else {
    *out << v.cls()->name() << ' ' << v.description().substr(0, 200);
  }
}

inline void PrintTo(ComparisonResult r, std::ostream* out) { *out << static_cast<int>(r); }

}  // namespace qx

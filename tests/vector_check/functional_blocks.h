#pragma once

// The small functions that the cases of qxMap and its kin name.

#include <string>

#include <QXFoundation/property_value.h>

namespace vector_check {

qx::PropertyValue transformed(const std::string& name, const qx::PropertyValue& e);
// A byte, of which 1 alone is yes.
unsigned char judged(const std::string& name, const qx::PropertyValue& e);
qx::PropertyValue reduced(const std::string& name, const qx::PropertyValue& value,
                          const qx::PropertyValue& e);

}  // namespace vector_check

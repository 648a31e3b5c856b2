#pragma once

// Reading the keys of many elements into a column.

#include <cstddef>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/string.h>

#include "ordering/key_column.h"

namespace qx::detail {

// Reads the keys without running code of the application; false where that is not possible. The
// column then is of no use. Nothing may change before the column is ranked.
bool readBorrowed(const PropertyValue* elements, std::size_t count, const Ref<String>& key,
                  KeyColumn& column);

// The keys as key access gives them, nil where they are missing.
std::vector<PropertyValue> readKeys(const Array& elements, const Ref<String>& key);

}  // namespace qx::detail

#pragma once

// The four comparisons as data.

#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>

namespace qx::detail {

struct Mode {
  bool descending = false;
  bool ignoringCase = false;
};

// Ascending for a selector that is none of the four.
Mode modeOf(Selector selector);

// What the receiver answers to the mode's comparison, which its class may declare itself.
int compareInMode(Mode mode, const PropertyValue& receiver, const PropertyValue& other);

}  // namespace qx::detail

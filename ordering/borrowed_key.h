#pragma once

// The value that an object has for a key, where it stands.

#include <string>

#include <QXFoundation/class.h>

#include "frame/numeric.h"
#include "frame/text_span.h"

namespace qx::detail {

// A field of that type, borrowed. A missing value is a nil PropertyValue.
struct BorrowedKey {
  FieldType type;
  const void* address;

  // Null where the key is no PropertyValue.
  const PropertyValue* value() const {
    return type == FieldType::value ? static_cast<const PropertyValue*>(address) : nullptr;
  }
  // Of a field of text, as UTF-8.
  const std::string& text() const { return *static_cast<const std::string*>(address); }
};

// These are false for every other value, and for one of a subclass, which may compare as it likes.

bool isPlainNumber(const BorrowedKey& key, NumericValue& number);
// False for a field of text that is not ASCII, too.
bool isPlainText(const BorrowedKey& key, TextSpan& text);

}  // namespace qx::detail

#pragma once

// What may be written: the rules for single values, and the check of a whole one.

#include <cstddef>

#include <QXFoundation/date.h>
#include <QXFoundation/property_list.h>

#include "frame/numeric.h"
#include "frame/text_span.h"

namespace qx::detail {

// Refuse with a PlistFault of code `unwritable`.
[[noreturn]] void refuseUnwritable(std::string reason);
// For a value of a kind that no property list holds.
[[noreturn]] void refuseKind(const PropertyValue& value);

// The number as property lists hold it: a decimal as an integer where 64 bits hold it, else as the
// nearest double; unsigned only from 2^63 on. Refuses what is no number.
NumericValue writableNumber(const PropertyValue& value);

// Refuse lone surrogates, and for XML the control characters and non-characters that it can not
// carry, and years beyond its dates; a date that is not finite is refused for both.
void requireWritableText(TextSpan text, PropertyListFormat format);
void requireWritableDate(double secondsSince1970, PropertyListFormat format);

// Refuses a value whose containers hold each other so often, or so deep, that no walk should go
// through it; asks for nothing else. Throws a PlistFault.
void requireBounded(const PropertyValue& root);

// Goes through the whole value without writing it. Throws a PlistFault.
void requireWritable(const PropertyValue& root, PropertyListFormat format);

}  // namespace qx::detail

#pragma once

// Searching and replacing by code unit.

#include <cstddef>

#include <QXFoundation/string.h>

#include "frame/text_span.h"

namespace qx::detail {

// Index of the first place at or after `from` where `part` stands; kNotFound when there is none. An
// empty part stands everywhere. Linear in practice, at worst the product of the lengths for texts
// of mixed form.
std::size_t findText(TextSpan text, TextSpan part, std::size_t from);

// Every occurrence from left to right replaced; the string itself where there is none. An empty
// target stands nowhere.
Ref<String> replaceAll(const String& text, TextSpan target, TextSpan with);

}  // namespace qx::detail

#pragma once

// The errors of extended attributes.

#include <QXFoundation/error.h>
#include <QXFoundation/url.h>

namespace qx::detail {

// A failure of the system, as its `errno` value tells it, for an attribute of a file.
Ref<Error> attributeError(URL& url, StringArg name, int code);

// What kept a value from being written as a property list: that it is none, or what the writer
// said.
Ref<Error> valueError(const PropertyValue& value, StringArg name, const Ref<Error>& writer);

// The errors of one call as one: the only one itself, or one that holds them all.
Ref<Error> gatheredError(URL& url, const Ref<Array>& errors);

}  // namespace qx::detail

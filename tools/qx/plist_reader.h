// Property lists as values and records.
#pragma once

#include <string_view>

#include <QXFoundation/property_list.h>
#include <QXFoundation/property_value.h>

#include "tools/qx/records.h"

namespace qxtool {

class Input;

// Whether a file that starts so is a property list and can be no JSON.
bool looksLikePropertyList(std::string_view start);

// One property list. The Failure names the file, and the place where it is malformed. The format is
// stored unless the place for it is null.
qx::PropertyValue readPropertyList(Input& input, qx::PropertyListFormat* format);

// A list that is an array of dictionaries.
void readPropertyListRecords(Input& input, RecordSink& sink);

}  // namespace qxtool

// JSON text as values and records; see JsonBuilder for what becomes of numbers and keys.
#pragma once

#include <string_view>

#include <QXFoundation/property_value.h>

#include "tools/qx/json_builder.h"
#include "tools/qx/records.h"

namespace qxtool {

class Input;

// One value. The Failure tells what is wrong with the text, and where; a JsonFault what is
// well-formed and still not taken.
qx::PropertyValue valueFromJson(std::string_view text, JsonRules rules);

// An array of dictionaries.
void readJsonRecords(Input& input, RecordSink& sink);

}  // namespace qxtool

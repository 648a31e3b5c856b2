// Values as JSON text.
#pragma once

#include <string>
#include <string_view>

#include <QXFoundation/property_value.h>

namespace qxtool {

// Appends the value in one line. Integers keep their digits; of a real the shortest text is written
// that reads back as the same number, and always with a point or an exponent. Characters that could
// upset a terminal are escaped. What has no form in JSON (data, dates, NaN) is a Failure. The value
// is nested no deeper than what is read.
void appendJson(std::string& out, const qx::PropertyValue& value);

void appendJsonString(std::string& out, std::string_view text);

}  // namespace qxtool

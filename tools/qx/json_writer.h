// Values as JSON text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <QXFoundation/property_value.h>

namespace qxtool {

// Appends the value in one line. Integers keep their digits; of a real the shortest text is written
// that reads back as the same number, and always with a point or an exponent. Characters that could
// upset a terminal are escaped. What has no form in JSON (data, dates, NaN) is a Failure. The value
// is nested no deeper than what is read.
void appendJson(std::string& out, const qx::PropertyValue& value);
// The same for people: what has no form in JSON stands as its description.
void appendShown(std::string& out, const qx::PropertyValue& value);

// A value that has no form in JSON.
struct JsonGap {
  std::string path;  // "[2].joined" from the value that was looked through; may be empty
  std::string reason;
};
// The first within the value.
std::optional<JsonGap> jsonGapOf(const qx::PropertyValue& value);
// The Failure for one in that place, which may be empty.
[[noreturn]] void failFor(const JsonGap& gap, const std::string& place);

void appendJsonString(std::string& out, std::string_view text);

}  // namespace qxtool

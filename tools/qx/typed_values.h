// Values as they are given and shown on the command line.
#pragma once

#include <string>
#include <string_view>

#include <QXFoundation/property_list.h>
#include <QXFoundation/property_value.h>

namespace qxtool {

// The names that --type takes, for messages.
inline constexpr char kValueTypes[] = "string, int, float, double, bool, date, data or json";

// What --type calls the kind of a value; "array" and "dictionary" for containers.
const char* typeOf(const qx::PropertyValue& value);

// The value that the text stands for as that type. A Failure tells what the type takes.
qx::PropertyValue valueFromText(std::string_view type, const std::string& text);

// A Failure where a property list of that format can not hold the value of the command line.
void requireStorable(const qx::PropertyValue& value, qx::PropertyListFormat format);

// A string is its text; true or false; data as hexadecimal digits; dates as in RFC 3339; numbers as
// decimal text; containers as JSON.
std::string valueText(const qx::PropertyValue& value);

// JSON in one line; what JSON has no form for (dates, data, numbers that are not finite) stands as
// the string of its text.
std::string valueJson(const qx::PropertyValue& value);

}  // namespace qxtool

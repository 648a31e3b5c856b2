#pragma once

// Property lists in memory that others hold: the way in for files, fuzzers and tests alike. The
// readers and writers behind throw a PlistFault.

#include <string_view>

#include <QXFoundation/property_list.h>

#include "platform/plist_output.h"

namespace qx::detail {

// As PropertyListSerialization::propertyListWithData, of bytes that are only borrowed.
PropertyValue readPropertyList(std::string_view bytes, PropertyListMutability mutability,
                               PropertyListFormat* format, Ref<Error>* error);
// Appends; false and an error where the value can not be written, with `out` of no use then.
bool writePropertyList(const PropertyValue& value, PropertyListFormat format, PlistOutput& out,
                       Ref<Error>* error);

PropertyValue readXmlPlist(std::string_view bytes, PropertyListMutability mutability);
PropertyValue readBinaryPlist(std::string_view bytes, PropertyListMutability mutability);
void writeXmlPlist(const PropertyValue& root, PlistOutput& out);
void writeBinaryPlist(const PropertyValue& root, PlistOutput& out);

// What the first bytes tell.
bool looksLikeXmlPlist(std::string_view bytes);
bool looksLikeBinaryPlist(std::string_view bytes);

}  // namespace qx::detail

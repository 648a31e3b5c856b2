#pragma once

// The judgement of an independent XML parser.

#include <expat.h>

#include <string>
#include <string_view>

namespace qx::plist {

// Empty for well-formed XML, else what is wrong with it.
inline std::string xmlComplaint(std::string_view bytes) {
  XML_Parser parser = XML_ParserCreate(nullptr);
  std::string complaint;
  if (XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), 1) != XML_STATUS_OK) {
    complaint = XML_ErrorString(XML_GetErrorCode(parser));
    complaint += " in line " + std::to_string(XML_GetCurrentLineNumber(parser));
  }
  XML_ParserFree(parser);
  return complaint;
}

}  // namespace qx::plist

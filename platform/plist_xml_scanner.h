#pragma once

// The markup of an XML property list: tags, texts and what stands between, of which only tags and
// texts come out.
//
// A full XML parser is not needed, and costs more than all the rest of reading: property lists have
// eleven elements and no attributes but the root's. What is accepted here is well-formed XML; of
// what XML offers, an internal subset of the document type (where entities are declared) and names
// beyond ASCII are refused.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/plist_xml_text.h"

namespace qx::detail {

enum class PlistElement : std::uint8_t {
  plist,
  array,
  dict,
  key,
  string,
  integer,
  real,
  date,
  data,
  yes,
  no
};
std::string_view nameOf(PlistElement element);

struct PlistTag {
  enum class Kind : std::uint8_t { open, close, empty };
  PlistElement element;
  Kind kind;
  std::size_t at;  // of its '<' in the text
};

class PlistXmlScanner {
 public:
  // Borrows the text.
  explicit PlistXmlScanner(const XmlText& text);

  // The next tag behind white space, comments and processing instructions.
  PlistTag nextTag();
  // The text from here to the end tag of the element, which is passed; valid until the next call.
  std::string_view text(PlistElement element);
  // Passes what may stand behind the root element, up to the end.
  void finish();

  // Throws a PlistFault for a byte of the text.
  [[noreturn]] void fail(std::size_t at, std::string reason,
                         PropertyListErrorCode code = PropertyListErrorCode::malformed) const;

 private:
  std::size_t offset() const { return static_cast<std::size_t>(at_ - start_); }
  bool takes(std::string_view literal);
  bool startsWith(std::string_view literal) const;
  bool skipSpace();
  void skipMisc();
  bool skipCommentOrInstruction();
  void skipComment();
  void skipInstruction();
  void skipDocumentType();
  void skipLiteral(const char* what, bool isPublic);
  std::string_view takeName(const char* what);
  void skipAttributes();
  void skipAttributeValue();
  PlistElement takeElement();
  std::string_view assembleText(const char* from);
  void appendSection();
  void appendReference(std::string& out);
  char32_t takeCharacterNumber();

  const XmlText& document_;
  const char* start_;
  const char* end_;
  const char* at_;
  std::string assembled_;
};

}  // namespace qx::detail

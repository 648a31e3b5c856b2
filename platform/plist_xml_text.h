#pragma once

// The characters of an XML document: encodings, and what may stand in it at all.

#include <cstddef>
#include <string>
#include <string_view>

#include <QXFoundation/property_list.h>

namespace qx::detail {

// A document as UTF-8 without byte-order mark, well-formed, and with none but the characters that
// XML allows. Borrows from the bytes it was made of, or owns what was converted.
class XmlText {
 public:
  // UTF-8, UTF-16 (with a byte-order mark, or told by its first character), ISO-8859-1 and US-ASCII
  // (declared). Everything else, and a declaration that the bytes contradict, throws a PlistFault.
  explicit XmlText(std::string_view bytes);
  XmlText(const XmlText&) = delete;
  XmlText& operator=(const XmlText&) = delete;

  std::string_view view() const { return text_; }
  // Length of the XML declaration at the start; 0 without one.
  std::size_t declarationSize() const { return declarationSize_; }

  // Throws a PlistFault with the line and column of that byte of view().
  [[noreturn]] void fail(PropertyListErrorCode code, std::size_t at, std::string reason) const;

 private:
  void takeUtf16(std::string_view bytes, bool bigEndian);
  void takeBytes(std::string_view bytes, bool marked);
  void requireUtf8() const;
  void requireXmlCharacters() const;
  // The encoding that the declaration names, in capitals; empty without one.
  std::string readDeclaration();

  std::string converted_;
  std::string_view text_;
  std::size_t declarationSize_ = 0;
};

}  // namespace qx::detail

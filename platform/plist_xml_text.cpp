#include "platform/plist_xml_text.h"

#include <algorithm>
#include <vector>

#include "frame/text_span.h"
#include "frame/utf.h"
#include "platform/plist_fault.h"
#include "platform/plist_text.h"
#include "platform/property_list_io.h"

namespace qx::detail {
namespace {

using Code = PropertyListErrorCode;
using namespace std::string_view_literals;

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Marks[] = {"\xFF\xFE", "\xFE\xFF"};  // little-endian, big-endian
constexpr std::string_view kUtf16Starts[] = {"<\0"sv, "\0<"sv};
constexpr std::string_view kUtf32Marks[] = {"\xFF\xFE\0\0"sv, "\0\0\xFE\xFF"sv};

constexpr bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Below space and no white space.
constexpr bool isControl(unsigned char c) {
  return (c < 0x20) & (c != '\t') & (c != '\n') & (c != '\r');
}

// The first control character, or the size. Blocks are looked at without a branch for each byte.
std::size_t findControl(std::string_view text) {
  constexpr std::size_t kBlock = 64;
  std::size_t at = 0;
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  for (; text.size() - at >= kBlock; at += kBlock) {
    unsigned found = 0;
    for (std::size_t i = 0; i < kBlock; ++i) found |= isControl(byte(at + i)) ? 1U : 0U;
    if (found != 0) break;
  }
  while (at < text.size() && !isControl(byte(at))) ++at;
  return at;
}

// The first of U+FFFE and U+FFFF in well-formed UTF-8, or npos.
std::size_t findNonCharacter(std::string_view text) {
  for (std::size_t at = text.find("\xEF\xBF"); at != std::string_view::npos;
       at = text.find("\xEF\xBF", at + 1)) {
    if (at + 2 < text.size() && (text[at + 2] == '\xBE' || text[at + 2] == '\xBF')) return at;
  }
  return std::string_view::npos;
}

// The first byte that begins no well-formed sequence.
std::size_t findIllFormed(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    at += asciiPrefix(text.substr(at));
    std::size_t size = 2;
    while (size <= 4 && !isValidUtf8(text.substr(at, size))) ++size;
    if (size > 4) return at;
    at += size;
  }
  return text.size();
}

// A run of the declaration that is being read.
struct Cursor {
  std::string_view rest;

  bool take(std::string_view literal) {
    if (!rest.starts_with(literal)) return false;
    rest.remove_prefix(literal.size());
    return true;
  }
  bool takeSpace() {
    const std::size_t before = rest.size();
    while (!rest.empty() && isXmlSpace(static_cast<unsigned char>(rest[0]))) rest.remove_prefix(1);
    return rest.size() != before;
  }
  // `name = "value"` behind white space; false where it is not there, and nothing is taken.
  bool takeAttribute(std::string_view name, std::string_view& value) {
    Cursor c = *this;
    if (!c.takeSpace() || !c.take(name)) return false;
    c.takeSpace();
    if (!c.take("=")) return false;
    c.takeSpace();
    if (c.rest.empty() || (c.rest[0] != '"' && c.rest[0] != '\'')) return false;
    const std::size_t end = c.rest.find(c.rest[0], 1);
    if (end == std::string_view::npos) return false;
    value = c.rest.substr(1, end - 1);
    c.rest.remove_prefix(end + 1);
    *this = c;
    return true;
  }
};

std::string inCapitals(std::string_view name) {
  std::string text(name);
  for (char& c : text) c = static_cast<char>(asciiUpper(static_cast<unsigned char>(c)));
  return text;
}

std::string quoted(std::string_view name) { return "\"" + std::string(name.substr(0, 40)) + "\""; }

}  // namespace

bool looksLikeXmlPlist(std::string_view bytes) {
  for (const std::string_view mark : kUtf32Marks) {
    if (bytes.starts_with(mark)) return true;  // refused with the reason
  }
  for (int i = 0; i < 2; ++i) {
    if (bytes.starts_with(kUtf16Marks[i]) || bytes.starts_with(kUtf16Starts[i])) return true;
  }
  if (bytes.starts_with(kUtf8Mark)) return true;
  return trimmedXmlSpace(bytes.substr(0, 4096)).starts_with('<');
}

XmlText::XmlText(std::string_view bytes) {
  for (const std::string_view mark : kUtf32Marks) {
    if (bytes.starts_with(mark)) fail(Code::unsupported, 0, "the encoding UTF-32 is not read");
  }
  for (int i = 0; i < 2; ++i) {
    const bool marked = bytes.starts_with(kUtf16Marks[i]);
    if (!marked && !bytes.starts_with(kUtf16Starts[i])) continue;
    takeUtf16(bytes.substr(marked ? 2 : 0), i == 1);
    return;
  }
  const bool marked = bytes.starts_with(kUtf8Mark);
  takeBytes(bytes.substr(marked ? kUtf8Mark.size() : 0), marked);
}

void XmlText::takeUtf16(std::string_view bytes, bool bigEndian) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    const unsigned high = byte(bigEndian ? 2 * i : 2 * i + 1);
    const unsigned low = byte(bigEndian ? 2 * i + 1 : 2 * i);
    units[i] = static_cast<char16_t>(high << 8 | low);
  }
  for (std::size_t at = 0; at < units.size();) {
    const std::size_t start = at;
    if (!isSurrogate(nextCodePoint(units.data(), units.size(), at))) continue;
    converted_ = toUtf8(std::u16string_view(units).substr(0, start));
    text_ = converted_;
    fail(Code::malformed, text_.size(), "a lone surrogate is no character");
  }
  converted_ = toUtf8(units);
  text_ = converted_;
  if (bytes.size() % 2 != 0) fail(Code::malformed, text_.size(), "the last character is cut off");
  requireXmlCharacters();
  const std::string declared = readDeclaration();
  if (declared.empty() || declared == "UTF-16" ||
      declared == (bigEndian ? "UTF-16BE" : "UTF-16LE")) {
    return;
  }
  fail(Code::unsupported, 0, "the text is UTF-16, and declares the encoding " + quoted(declared));
}

void XmlText::takeBytes(std::string_view bytes, bool marked) {
  text_ = bytes;
  const std::string declared = readDeclaration();
  if (declared == "ISO-8859-1" && !marked) {
    converted_ = toUtf8(TextSpan::latin1(bytes));
    text_ = converted_;
  } else if (declared == "US-ASCII" && !marked) {
    const std::size_t ascii = asciiPrefix(bytes);
    if (ascii != bytes.size()) fail(Code::malformed, ascii, "the byte is no character of US-ASCII");
  } else if (declared.empty() || declared == "UTF-8") {
    requireUtf8();
  } else if (marked || declared.starts_with("UTF-16")) {
    fail(Code::unsupported, 0, "the bytes contradict the declared encoding " + quoted(declared));
  } else {
    fail(Code::unsupported, 0, "the encoding " + quoted(declared) + " is not read");
  }
  requireXmlCharacters();
}

void XmlText::requireUtf8() const {
  if (isValidUtf8(text_)) return;
  fail(Code::malformed, findIllFormed(text_), "the bytes are no UTF-8");
}

void XmlText::requireXmlCharacters() const {
  const std::size_t at = std::min(findControl(text_), findNonCharacter(text_));
  if (at < text_.size()) fail(Code::malformed, at, "the character is none of XML's");
}

std::string XmlText::readDeclaration() {
  Cursor c{text_};
  if (!c.take("<?xml") || c.rest.empty() || !isXmlSpace(static_cast<unsigned char>(c.rest[0]))) {
    return {};
  }
  std::string_view version;
  std::string_view encoding;
  std::string_view standalone = "no";
  bool isRight = c.takeAttribute("version", version);
  const bool hasEncoding = c.takeAttribute("encoding", encoding);
  c.takeAttribute("standalone", standalone);
  isRight = isRight && (standalone == "yes" || standalone == "no");
  c.takeSpace();
  isRight = isRight && c.take("?>") && hasEncoding == !encoding.empty();
  if (!isRight) fail(Code::malformed, 0, "the XML declaration is malformed");
  if (version != "1.0") fail(Code::unsupported, 0, "XML " + quoted(version) + " is not read");
  declarationSize_ = text_.size() - c.rest.size();
  return inCapitals(encoding);
}

// A line ends with a line feed, a carriage return, or both.
void XmlText::fail(PropertyListErrorCode code, std::size_t at, std::string reason) const {
  const std::string_view before = text_.substr(0, at);
  std::size_t line = 1;
  std::size_t start = 0;
  for (std::size_t i = 0; i < before.size(); ++i) {
    const bool isPair = before[i] == '\r' && i + 1 < text_.size() && text_[i + 1] == '\n';
    if ((before[i] != '\n' && before[i] != '\r') || isPair) continue;
    ++line;
    start = i + 1;
  }
  const std::string_view ofLine = before.substr(start);
  const auto column = ofLine.size() - static_cast<std::size_t>(std::count_if(
                                          ofLine.begin(), ofLine.end(), isContinuation));
  throw PlistFault{code, std::move(reason), std::nullopt, line, column + 1};
}

}  // namespace qx::detail

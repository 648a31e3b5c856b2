#include "platform/plist_xml_scanner.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "frame/text_span.h"
#include "frame/utf.h"
#include "platform/plist_fault.h"
#include "platform/plist_text.h"

namespace qx::detail {
namespace {

using Code = PropertyListErrorCode;

constexpr std::string_view kNames[] = {"plist", "array", "dict", "key",  "string", "integer",
                                       "real",  "date",  "data", "true", "false"};

constexpr bool isNameStart(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
}
constexpr bool isNameCharacter(unsigned char c) {
  return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}
constexpr bool isPublicCharacter(unsigned char c) {
  return isNameCharacter(c) || c == ' ' || c == '\n' || c == '\r' ||
         (c != 0 &&
          std::string_view("'()+,/=?;!*#@$%").find(static_cast<char>(c)) != std::string_view::npos);
}

// Where the run of a text that stands for itself ends: markup, references, line ends that become a
// line feed, and the "]]>" that no text may hold.
constexpr std::array<bool, 256> textStops() {
  std::array<bool, 256> stops{};
  stops['<'] = stops['&'] = stops[']'] = stops['\r'] = true;
  return stops;
}
constexpr std::array<bool, 256> kStopsText = textStops();

const char* skipPlainText(const char* at, const char* end) {
  while (at != end && !kStopsText[static_cast<unsigned char>(*at)]) ++at;
  return at;
}

// Appends the text with each line end as one line feed.
void appendLines(std::string& out, std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t stop = std::min(text.find('\r', at), text.size());
    out.append(text.substr(at, stop - at));
    at = stop;
    if (at == text.size()) return;
    out.push_back('\n');
    at += text.substr(at).starts_with("\r\n") ? 2 : 1;
  }
}

}  // namespace

std::string_view nameOf(PlistElement element) { return kNames[static_cast<std::size_t>(element)]; }

PlistXmlScanner::PlistXmlScanner(const XmlText& text)
    : document_(text),
      start_(text.view().data()),
      end_(start_ + text.view().size()),
      at_(start_ + text.declarationSize()) {
  skipMisc();
  if (startsWith("<!DOCTYPE")) skipDocumentType();
  skipMisc();
}

void PlistXmlScanner::fail(std::size_t at, std::string reason, Code code) const {
  document_.fail(code, at, std::move(reason));
}

bool PlistXmlScanner::startsWith(std::string_view literal) const {
  return static_cast<std::size_t>(end_ - at_) >= literal.size() &&
         std::memcmp(at_, literal.data(), literal.size()) == 0;
}

bool PlistXmlScanner::takes(std::string_view literal) {
  if (!startsWith(literal)) return false;
  at_ += literal.size();
  return true;
}

bool PlistXmlScanner::skipSpace() {
  const char* const from = at_;
  while (at_ != end_ && isXmlSpace(static_cast<unsigned char>(*at_))) ++at_;
  return at_ != from;
}

void PlistXmlScanner::skipMisc() {
  do {
    skipSpace();
  } while (skipCommentOrInstruction());
}

bool PlistXmlScanner::skipCommentOrInstruction() {
  if (startsWith("<!--")) {
    skipComment();
    return true;
  }
  if (startsWith("<?")) {
    skipInstruction();
    return true;
  }
  return false;
}

void PlistXmlScanner::skipComment() {
  const std::size_t from = offset();
  const std::size_t dashes = document_.view().find("--", from + 4);
  if (dashes == std::string_view::npos) fail(from, "the comment does not end");
  at_ = start_ + dashes;
  if (!takes("-->")) fail(offset(), "two hyphens stand within a comment");
}

void PlistXmlScanner::skipInstruction() {
  const std::size_t from = offset();
  at_ += 2;
  const std::string_view name = takeName("a processing instruction");
  const bool isReserved = name.size() == 3 &&
                          asciiLower(static_cast<unsigned char>(name[0])) == 'x' &&
                          asciiLower(static_cast<unsigned char>(name[1])) == 'm' &&
                          asciiLower(static_cast<unsigned char>(name[2])) == 'l';
  if (isReserved) fail(from, "an XML declaration stands elsewhere than at the start");
  if (takes("?>")) return;
  if (!skipSpace()) fail(offset(), "a space is missing in a processing instruction");
  const std::size_t stop = document_.view().find("?>", offset());
  if (stop == std::string_view::npos) fail(from, "the processing instruction does not end");
  at_ = start_ + stop + 2;
}

// The external identifier is read over and never fetched.
void PlistXmlScanner::skipDocumentType() {
  at_ += std::string_view("<!DOCTYPE").size();
  if (!skipSpace()) fail(offset(), "a space is missing in the document type");
  takeName("the document type");
  if (skipSpace()) {
    if (takes("PUBLIC")) {
      skipLiteral("the public identifier", true);
      skipLiteral("the system identifier", false);
    } else if (takes("SYSTEM")) {
      skipLiteral("the system identifier", false);
    }
    skipSpace();
  }
  if (startsWith("[")) {
    fail(offset(), "declarations within the document type, such as entities, are not read",
         Code::unsupported);
  }
  if (!takes(">")) fail(offset(), "the document type is malformed");
}

void PlistXmlScanner::skipLiteral(const char* what, bool isPublic) {
  const std::string_view text = document_.view();
  if (!skipSpace() || at_ == end_ || (*at_ != '"' && *at_ != '\'')) {
    fail(offset(), std::string(what) + " is missing");
  }
  const std::size_t from = offset() + 1;
  const std::size_t stop = text.find(*at_, from);
  if (stop == std::string_view::npos) fail(from, std::string(what) + " does not end");
  for (const char c : text.substr(from, stop - from)) {
    if (isPublic && !isPublicCharacter(static_cast<unsigned char>(c))) {
      fail(from, std::string(what) + " holds a character that may not stand there");
    }
  }
  at_ = start_ + stop + 1;
}

std::string_view PlistXmlScanner::takeName(const char* what) {
  const char* const from = at_;
  if (at_ != end_ && isNameStart(static_cast<unsigned char>(*at_))) {
    while (at_ != end_ && isNameCharacter(static_cast<unsigned char>(*at_))) ++at_;
  }
  if (at_ == from) fail(offset(), "a name is missing in " + std::string(what));
  if (at_ != end_ && !isAscii(static_cast<unsigned char>(*at_))) {
    fail(offset(), "names beyond ASCII are not read", Code::unsupported);
  }
  return {from, static_cast<std::size_t>(at_ - from)};
}

// Of the root element; nothing is known of them that would matter to the values.
void PlistXmlScanner::skipAttributes() {
  constexpr std::size_t kMost = 16;
  std::vector<std::string_view> names;
  while (skipSpace() && at_ != end_ && *at_ != '>' && *at_ != '/') {
    const std::size_t from = offset();
    names.push_back(takeName("an attribute"));
    if (std::count(names.begin(), names.end(), names.back()) != 1) {
      fail(from, "an attribute stands twice");
    }
    if (names.size() > kMost) fail(from, "there are too many attributes", Code::unsupported);
    skipSpace();
    if (!takes("=")) fail(offset(), "an attribute has no value");
    skipSpace();
    skipAttributeValue();
  }
}

void PlistXmlScanner::skipAttributeValue() {
  const std::size_t from = offset();
  if (at_ == end_ || (*at_ != '"' && *at_ != '\'')) fail(from, "an attribute has no value");
  const char quote = *at_++;
  std::string unused;
  while (at_ != end_ && *at_ != quote) {
    if (*at_ == '<') fail(offset(), "\"<\" stands in the value of an attribute");
    if (*at_ == '&') {
      appendReference(unused);
    } else {
      ++at_;
    }
  }
  if (at_ == end_) fail(from, "the value of an attribute does not end");
  ++at_;
}

PlistElement PlistXmlScanner::takeElement() {
  const char* const from = at_;
  while (at_ != end_ && *at_ >= 'a' && *at_ <= 'z') ++at_;
  const std::string_view name(from, static_cast<std::size_t>(at_ - from));
  if (at_ == end_ || !isNameCharacter(static_cast<unsigned char>(*at_))) {
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
      if (kNames[i] == name) return static_cast<PlistElement>(i);
    }
  }
  at_ = from;
  const std::string whole(takeName("a tag").substr(0, 40));
  fail(static_cast<std::size_t>(from - start_), "<" + whole + "> is no element of property lists");
}

PlistTag PlistXmlScanner::nextTag() {
  skipMisc();
  PlistTag tag{PlistElement::plist, PlistTag::Kind::open, offset()};
  if (at_ == end_) fail(tag.at, "the document ends too early");
  if (*at_ != '<') fail(tag.at, "text stands outside of the values");
  ++at_;
  if (takes("/")) tag.kind = PlistTag::Kind::close;
  tag.element = takeElement();
  if (tag.element == PlistElement::plist && tag.kind == PlistTag::Kind::open) {
    skipAttributes();
  } else {
    skipSpace();
  }
  if (tag.kind == PlistTag::Kind::open && takes("/")) tag.kind = PlistTag::Kind::empty;
  if (!takes(">")) {
    fail(tag.at, "the tag of <" + std::string(nameOf(tag.element)) +
                     "> is malformed, or has attributes, which only <plist> may have");
  }
  return tag;
}

std::string_view PlistXmlScanner::text(PlistElement element) {
  const char* const from = at_;
  at_ = skipPlainText(at_, end_);
  std::string_view found(from, static_cast<std::size_t>(at_ - from));
  if (!startsWith("</")) found = assembleText(from);
  at_ += 2;
  const std::size_t name = offset();
  const std::string_view wanted = nameOf(element);
  if (!takes(wanted)) fail(name - 2, "</" + std::string(wanted) + "> is missing here");
  skipSpace();
  if (!takes(">")) fail(name - 2, "</" + std::string(wanted) + "> is missing here");
  return found;
}

// Stops before an end tag.
std::string_view PlistXmlScanner::assembleText(const char* from) {
  assembled_.assign(from, static_cast<std::size_t>(at_ - from));
  while (!startsWith("</")) {
    if (at_ == end_) fail(offset(), "the document ends within a text");
    if (*at_ == '&') {
      appendReference(assembled_);
    } else if (*at_ == '<') {
      if (startsWith("<![CDATA[")) {
        appendSection();
      } else if (!skipCommentOrInstruction()) {
        fail(offset(), "an element stands within a text");
      }
    } else if (*at_ == '\r') {
      at_ += startsWith("\r\n") ? 2 : 1;
      assembled_.push_back('\n');
    } else {
      if (startsWith("]]>")) fail(offset(), "\"]]>\" stands in a text");
      const char* const run = at_++;
      at_ = skipPlainText(at_, end_);
      assembled_.append(run, static_cast<std::size_t>(at_ - run));
    }
  }
  return assembled_;
}

void PlistXmlScanner::appendSection() {
  const std::size_t from = offset() + std::string_view("<![CDATA[").size();
  const std::size_t stop = document_.view().find("]]>", from);
  if (stop == std::string_view::npos) fail(offset(), "the CDATA section does not end");
  appendLines(assembled_, document_.view().substr(from, stop - from));
  at_ = start_ + stop + 3;
}

void PlistXmlScanner::appendReference(std::string& out) {
  const std::size_t from = offset();
  ++at_;
  if (takes("#")) {
    const char32_t c = takeCharacterNumber();
    const bool isCharacter = c < 0x20
                                 ? isXmlSpace(static_cast<unsigned char>(c))
                                 : c <= 0x10FFFF && !isSurrogate(c) && c != 0xFFFE && c != 0xFFFF;
    if (!isCharacter || !takes(";")) fail(from, "the character reference is malformed");
    std::u16string units;
    appendCodePoint(units, c);
    appendUtf8(out, units);
    return;
  }
  constexpr struct {
    std::string_view name;
    char character;
  } kEntities[] = {{"amp;", '&'}, {"lt;", '<'}, {"gt;", '>'}, {"quot;", '"'}, {"apos;", '\''}};
  for (const auto& entity : kEntities) {
    if (!takes(entity.name)) continue;
    out.push_back(entity.character);
    return;
  }
  const std::string name(takeName("a reference").substr(0, 40));
  fail(from, "the entity \"" + name + "\" is not known");
}

// A number beyond all characters stops at the first one beyond.
char32_t PlistXmlScanner::takeCharacterNumber() {
  const char32_t base = takes("x") ? 16 : 10;
  constexpr char32_t kBeyond = 0x110000;
  char32_t number = 0;
  const char* const from = at_;
  for (; at_ != end_; ++at_) {
    const char32_t c = static_cast<unsigned char>(*at_);
    char32_t digit = 0;
    if (isAsciiDigit(c)) {
      digit = c - '0';
    } else if (base == 16 && asciiLower(c) >= 'a' && asciiLower(c) <= 'f') {
      digit = asciiLower(c) - 'a' + 10;
    } else {
      break;
    }
    number = std::min<char32_t>(number * base + digit, kBeyond);
  }
  return at_ == from ? kBeyond : number;
}

void PlistXmlScanner::finish() {
  skipMisc();
  if (at_ != end_) fail(offset(), "something stands behind the root element");
}

}  // namespace qx::detail

// Property lists as XML.

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include <QXFoundation/data.h>

#include "frame/string_storage.h"
#include "platform/plist_rules.h"
#include "platform/plist_text.h"
#include "platform/plist_walk.h"
#include "platform/property_list_io.h"

namespace qx::detail {
namespace {

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFoot = "</plist>\n";

// ASCII that stands for itself in a text.
constexpr std::array<bool, 256> plainCharacters() {
  std::array<bool, 256> plain{};
  for (unsigned c = 0x20; c < 0x80; ++c) plain[c] = c != '&' && c != '<' && c != '>';
  plain['\t'] = plain['\n'] = true;
  return plain;
}
constexpr std::array<bool, 256> kPlain = plainCharacters();

// No character takes more bytes for each of its units than "&amp;" and "&#13;" do.
constexpr std::size_t kMostBytesOfUnit = 5;
// Texts are written in pieces of so many units, so that room is taken for what there is.
constexpr std::size_t kPiece = 4096;

template <std::size_t N>
char* put(char* to, const char (&literal)[N]) {
  std::memcpy(to, literal, N - 1);
  return to + N - 1;
}

char* putCodePoint(char* to, char32_t c) {
  const auto byte = [&to](char32_t b) { *to++ = static_cast<char>(b); };
  if (c >= 0x10000) {
    byte(0xF0 | c >> 18);
    byte(0x80 | (c >> 12 & 63));
    byte(0x80 | (c >> 6 & 63));
  } else if (c >= 0x800) {
    byte(0xE0 | c >> 12);
    byte(0x80 | (c >> 6 & 63));
  } else {
    byte(0xC0 | c >> 6);
  }
  byte(0x80 | (c & 63));
  return to;
}

// A character that is not plain; null for one that XML can not carry. A carriage return would read
// back as a line feed if it stood there as itself.
char* putSpecial(char* to, char32_t c) {
  switch (c) {
    case '&':
      return put(to, "&amp;");
    case '<':
      return put(to, "&lt;");
    case '>':
      return put(to, "&gt;");
    case '\r':
      return put(to, "&#13;");
    default:
      if (c < 0x20 || isSurrogate(c) || c == 0xFFFE || c == 0xFFFF) return nullptr;
      return putCodePoint(to, c);
  }
}

template <class Unit>
char* putText(char* to, const Unit* units, std::size_t size, std::size_t& at, std::size_t stop) {
  while (at < stop) {
    const Unit unit = units[at];
    if (unit < 0x80 && kPlain[unit]) {
      *to++ = static_cast<char>(unit);
      ++at;
      continue;
    }
    to = putSpecial(to, nextCodePoint(units, size, at));
    if (to == nullptr) return nullptr;
  }
  return to;
}

class XmlWriter {
 public:
  XmlWriter(const PropertyValue& root, PlistOutput& out) : root_(root), out_(out) {}

  void open(const Array& a) { openContainer(a.count(), "<array>\n", "<array/>\n"); }
  void open(const Dictionary& d) { openContainer(d.count(), "<dict>\n", "<dict/>\n"); }
  void close(const Array& a) { closeContainer(a.count(), "</array>\n"); }
  void close(const Dictionary& d) { closeContainer(d.count(), "</dict>\n"); }

  // XML writes what is met again once more: whether that ends in reasonable time is looked at
  // first.
  bool again() {
    if (!checked_) requireWritable(root_, PropertyListFormat::xml);
    checked_ = true;
    return false;
  }

  void key(const String& key) { text(key, "<key>", "</key>\n"); }

  void scalar(const PropertyValue& v) {
    if (v.isString()) {
      text(static_cast<const String&>(*v.object()), "<string>", "</string>\n");
    } else if (v.isData()) {
      data(static_cast<const Data&>(*v.object()).view());
    } else if (v.isDate()) {
      date(static_cast<const Date&>(*v.object()).timeIntervalSince1970());
    } else {
      number(writableNumber(v));
    }
  }

 private:
  // Room for `count` bytes behind the indentation, which is written.
  char* line(std::size_t count) {
    char* to = out_.room(depth_ + count);
    std::memset(to, '\t', depth_);
    return to + depth_;
  }

  template <std::size_t N, std::size_t M>
  void openContainer(std::size_t count, const char (&full)[N], const char (&empty)[M]) {
    out_.commit(count == 0 ? put(line(M), empty) : put(line(N), full));
    ++depth_;
  }
  template <std::size_t N>
  void closeContainer(std::size_t count, const char (&tag)[N]) {
    --depth_;
    if (count != 0) out_.commit(put(line(N), tag));
  }

  template <std::size_t N, std::size_t M>
  void text(const String& s, const char (&before)[N], const char (&behind)[M]) {
    const TextSpan span = StringStorage::span(s);
    std::size_t at = 0;
    char* to = put(line(N + M + std::min(span.size, kPiece) * kMostBytesOfUnit), before);
    visitUnits(span, [&](const auto* units, std::size_t size) {
      to = putText(to, units, size, at, std::min(size, kPiece - 1));
      while (to != nullptr && at < size) {
        out_.commit(to);
        to = out_.room(M + kPiece * kMostBytesOfUnit);
        to = putText(to, units, size, at, std::min(size, at + kPiece - 1));
      }
    });
    if (to == nullptr) requireWritableText(span, PropertyListFormat::xml);
    out_.commit(put(to, behind));
  }

  void date(double seconds) {
    requireWritableDate(seconds, PropertyListFormat::xml);
    char* to = put(line(kPlistDateSize + 32), "<date>");
    writePlistDate(seconds, to);
    out_.commit(put(to + kPlistDateSize, "</date>\n"));
  }

  // Lines of 76 columns or a little less, of which a tab takes eight.
  void data(std::string_view bytes) {
    constexpr std::size_t kColumns = 76;
    constexpr std::size_t kFewest = 16;
    const std::size_t used = std::min(depth_ * 8, kColumns - kFewest);
    const std::size_t bytesOfLine = (kColumns - used) / 4 * 3;
    out_.commit(put(line(16), "<data>\n"));
    for (std::size_t at = 0; at < bytes.size(); at += bytesOfLine) {
      char* to = encodeBase64(bytes.substr(at, bytesOfLine), line(kColumns + 1));
      *to++ = '\n';
      out_.commit(to);
    }
    out_.commit(put(line(16), "</data>\n"));
  }

  void number(const NumericValue& n) {
    char* to = line(64);
    switch (n.kind) {
      case NumberKind::boolean:
        to = n.i != 0 ? put(to, "<true/>\n") : put(to, "<false/>\n");
        break;
      case NumberKind::single:
      case NumberKind::real:
        to = put(writePlistReal(n.d, put(to, "<real>")), "</real>\n");
        break;
      case NumberKind::unsignedInteger:
        to = putInteger(to, n.u);
        break;
      default:
        to = putInteger(to, n.i);
    }
    out_.commit(to);
  }

  template <class I>
  static char* putInteger(char* to, I n) {
    to = put(to, "<integer>");
    return put(std::to_chars(to, to + 24, n).ptr, "</integer>\n");
  }

  const PropertyValue& root_;
  PlistOutput& out_;
  std::size_t depth_ = 0;
  bool checked_ = false;
};

}  // namespace

void writeXmlPlist(const PropertyValue& root, PlistOutput& out) {
  out.append(kHead);
  XmlWriter writer(root, out);
  walkPlist(root, writer);
  out.append(kFoot);
}

}  // namespace qx::detail

#include "platform/plist_rules.h"

#include <cmath>

#include <QXFoundation/class.h>

#include "frame/string_storage.h"
#include "platform/plist_fault.h"
#include "platform/plist_text.h"
#include "platform/plist_walk.h"

namespace qx::detail {
namespace {

std::string hexadecimal(char32_t c) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text = "U+";
  for (int shift = 12; shift >= 0; shift -= 4) text += kDigits[c >> shift & 15];
  return text;
}

bool isXmlControl(char32_t c) { return c < 0x20 && !isXmlSpace(static_cast<unsigned char>(c)); }

// Visits each container once, and accepts all.
struct Passage {
  void open(const Object&) {}
  void close(const Object&) {}
  void key(const String&) {}
  void scalar(const PropertyValue&) {}
  bool again() { return true; }
};

// Refuses what can not be written.
class Check : public Passage {
 public:
  explicit Check(PropertyListFormat format) : format_(format) {}

  void key(const String& key) { requireWritableText(StringStorage::span(key), format_); }
  void scalar(const PropertyValue& v) {
    if (v.isString()) {
      key(static_cast<const String&>(*v.object()));
    } else if (v.isDate()) {
      requireWritableDate(static_cast<const Date&>(*v.object()).timeIntervalSince1970(), format_);
    } else if (!v.isData()) {
      writableNumber(v);
    }
  }

 private:
  PropertyListFormat format_;
};

}  // namespace

void refuseUnwritable(std::string reason) {
  throw PlistFault{PropertyListErrorCode::unwritable, std::move(reason)};
}

void refuseKind(const PropertyValue& value) {
  if (value.isNil()) refuseUnwritable("nil is no value of a property list");
  if (value.isNull()) refuseUnwritable("null is no value of a property list");
  refuseUnwritable(std::string("an object of the class ") + value.cls()->name() +
                   " is no value of a property list");
}

NumericValue writableNumber(const PropertyValue& value) {
  NumericValue n;
  if (!numericOf(value, n)) refuseKind(value);
  if (n.kind == NumberKind::decimal) {
    if (const auto i = n.decimal->exactInt64()) return NumericValue::signedInteger(*i);
    if (const auto u = n.decimal->exactUInt64()) return NumericValue::unsignedInteger(*u);
    return NumericValue::real(n.decimal->toDouble());
  }
  if (n.kind == NumberKind::unsignedInteger && n.u >> 63 == 0) {
    return NumericValue::signedInteger(static_cast<std::int64_t>(n.u));
  }
  return n;
}

void requireWritableText(TextSpan text, PropertyListFormat format) {
  if (!text.wide && format == PropertyListFormat::binary) return;
  for (std::size_t at = 0; at < text.size;) {
    const char32_t c = text.next(at);
    if (isSurrogate(c)) refuseUnwritable("a string holds the lone surrogate " + hexadecimal(c));
    if (format == PropertyListFormat::binary) continue;
    if (isXmlControl(c) || c == 0xFFFE || c == 0xFFFF) {
      refuseUnwritable("a string holds the character " + hexadecimal(c) +
                       ", which XML can not carry");
    }
  }
}

void requireWritableDate(double secondsSince1970, PropertyListFormat format) {
  if (!std::isfinite(secondsSince1970)) refuseUnwritable("a date is no moment in time");
  if (format == PropertyListFormat::xml && !isPlistDate(secondsSince1970)) {
    refuseUnwritable("a date is beyond the years 1 to 9999 of the XML format");
  }
}

void requireBounded(const PropertyValue& root) {
  Passage passage;
  walkPlist(root, passage);
}

void requireWritable(const PropertyValue& root, PropertyListFormat format) {
  Check check(format);
  walkPlist(root, check);
}

}  // namespace qx::detail

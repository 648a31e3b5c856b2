#include "frame/key_text.h"

#include <QXFoundation/string.h>

#include "frame/hashing.h"
#include "frame/string_storage.h"
#include "frame/utf.h"

namespace qx::detail {
namespace {

TextSpan convert(std::string_view utf8, std::string& narrow, std::u16string& wide) {
  if (asciiPrefix(utf8) == utf8.size()) return TextSpan::latin1(utf8);
  const Utf8Shape shape = scanUtf8(utf8);
  if (shape.wide) {
    wide.resize(shape.units);
    utf8ToUtf16(utf8, wide.data());
    return TextSpan(wide);
  }
  narrow.resize(shape.units);
  utf8ToLatin1(utf8, reinterpret_cast<unsigned char*>(narrow.data()));
  return TextSpan::latin1(narrow);
}

}  // namespace

KeyText::KeyText(StringArg text) {
  if (const String* s = text.object()) {
    span = StringStorage::span(*s);
    if (span.wide && StringStorage::isMutable(*s) && StringStorage::fitsLatin1(span)) {
      narrow_ = StringStorage::narrowed(span);
      span = TextSpan::latin1(narrow_);
      hash = hashText(span);
    } else {
      hash = StringStorage::hash(*s);
    }
    return;
  }
  span = convert(text.bytes(), narrow_, wide_);
  hash = hashText(span);
}

ArgText::ArgText(StringArg text) {
  const String* s = text.object();
  span_ = s != nullptr ? StringStorage::span(*s) : convert(text.bytes(), narrow_, wide_);
}

}  // namespace qx::detail

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
  const String* s = text.object();
  if (s == nullptr) {
    span = convert(text.bytes(), narrow_, wide_);
    hash = hashText(span);
  } else if (StringStorage::isMutable(*s)) {
    take(StringStorage::span(*s));
  } else {
    span = StringStorage::span(*s);
    hash = StringStorage::hash(*s);
  }
}

void KeyText::take(TextSpan text) {
  span = text;
  if (text.wide && StringStorage::fitsLatin1(text)) {
    narrow_ = StringStorage::narrowed(text);
    span = TextSpan::latin1(narrow_);
  }
  hash = hashText(span);
}

ArgText::ArgText(StringArg text) {
  const String* s = text.object();
  span_ = s != nullptr ? StringStorage::span(*s) : convert(text.bytes(), narrow_, wide_);
}

}  // namespace qx::detail

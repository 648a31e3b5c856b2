#include "frame/text_search.h"

#include "frame/string_storage.h"

namespace qx::detail {
namespace {

std::size_t found(std::size_t at) { return at == std::string_view::npos ? kNotFound : at; }

}  // namespace

std::size_t findText(TextSpan text, TextSpan part, std::size_t from) {
  if (from > text.size || part.size > text.size - from) return kNotFound;
  if (part.empty()) return from;
  if (!text.wide && !part.wide) return found(text.latin1View().find(part.latin1View(), from));
  if (text.wide && part.wide) return found(text.utf16View().find(part.utf16View(), from));
  if (!text.wide) {  // a wide part that fits Latin-1 comes from a mutable string only
    if (!StringStorage::fitsLatin1(part)) return kNotFound;
    return found(text.latin1View().find(StringStorage::narrowed(part), from));
  }
  return found(text.utf16View().find(part.toUtf16(), from));
}

Ref<String> replaceAll(const String& string, TextSpan target, TextSpan with) {
  const TextSpan text = StringStorage::span(string);
  std::size_t at = target.empty() ? kNotFound : findText(text, target, 0);
  if (at == kNotFound) return immutableString(string);
  const auto result = MutableString::init();
  const auto append = [&](TextSpan part) {
    StringStorage::replace(*result, {result->length(), 0}, part,
                           "-[NSMutableString appendString:]");
  };
  std::size_t start = 0;
  for (; at != kNotFound; at = findText(text, target, start)) {
    append(text.substr(start, at - start));
    append(with);
    start = at + target.size;
  }
  append(text.substr(start));
  return StringStorage::make(StringStorage::span(*result));
}

}  // namespace qx::detail

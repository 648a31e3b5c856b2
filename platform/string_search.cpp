#include <QXFoundation/string_search.h>

#include "frame/key_text.h"
#include "frame/raise.h"
#include "frame/string_storage.h"
#include "frame/unicode.h"
#include "platform/folded_text.h"
#include "platform/member_finder.h"
#include "platform/text_finder.h"

namespace qx {

using detail::FoldedText;
using detail::TextSpan;
using enum StringCompareOptions;

namespace {

constexpr Range kNone{kNotFound, 0};

TextSpan partOf(const String& string, Range range, const char* operation) {
  if (range.location > string.length() || range.length > string.length() - range.location)
    detail::raiseRange(operation, range.location, range.length, string.length());
  return detail::StringStorage::span(string).substr(range.location, range.length);
}

Range movedBy(std::size_t distance, Range range) {
  return range.location == kNotFound ? kNone : Range{range.location + distance, range.length};
}

// The first occurrence that keeps to whole characters, the last one with `backwards`.
Range searchFolded(const FoldedText& text, const std::u16string& part,
                   StringCompareOptions options) {
  const std::u16string& units = text.units();
  if (part.empty()) return kNone;
  const detail::PrefixTable table(part.data(), part.size());
  detail::PrefixTable::Scan<char16_t> scan(table, part.data(), part.size());
  Range found = kNone;
  for (std::size_t end = 1; end <= units.size(); ++end) {
    if (!scan.take(units[end - 1])) continue;
    const std::size_t start = end - part.size();
    if (!text.isBoundary(start) || !text.isBoundary(end)) continue;
    const bool fromEnd = hasOption(options, backwards);
    if (hasOption(options, anchored) && (fromEnd ? end != units.size() : start != 0)) continue;
    found = {text.origin(start), text.origin(end) - text.origin(start)};
    if (!fromEnd) break;
  }
  return found;
}

Range searchText(TextSpan text, TextSpan part, StringCompareOptions options) {
  if (part.empty()) return kNone;
  const bool fromEnd = hasOption(options, backwards);
  if (detail::changesEquality(options) || (fromEnd && !hasOption(options, anchored)))
    return searchFolded(FoldedText(text, options), FoldedText(part, options).units(), options);
  if (!hasOption(options, anchored)) {
    const std::size_t at = detail::TextFinder(text, part).find(0);
    return at == kNotFound ? kNone : Range{at, part.size};
  }
  if (part.size > text.size) return kNone;
  const std::size_t at = fromEnd ? text.size - part.size : 0;
  return detail::equalUnits(text.substr(at, part.size), part) ? Range{at, part.size} : kNone;
}

// The last member, or the first or last character if it is a member.
Range searchMember(TextSpan text, const CharacterSet& set, StringCompareOptions options) {
  const bool fromEnd = hasOption(options, backwards);
  const bool once = hasOption(options, anchored);
  if (!fromEnd && !once) return detail::MemberFinder(text, set).find(0);
  for (std::size_t at = fromEnd ? text.size : 0; fromEnd ? at > 0 : at < text.size;) {
    const std::size_t before = at;
    const char32_t c = fromEnd ? text.previous(at) : text.next(at);
    if (set.longCharacterIsMember(c))
      return fromEnd ? Range{at, before - at} : Range{before, at - before};
    if (once) break;
  }
  return kNone;
}

}  // namespace

Range rangeOfString(In<String> string, StringArg other, StringCompareOptions options, Range range) {
  constexpr char kOperation[] = "-[NSString rangeOfString:options:range:]";
  if (!string) return kNone;
  if (other.isNil()) detail::raiseNil(kOperation);
  const TextSpan text = partOf(*string, range, kOperation);
  return movedBy(range.location, searchText(text, detail::ArgText(other), options));
}

Range rangeOfString(In<String> string, StringArg other, StringCompareOptions options) {
  return string ? rangeOfString(string, other, options, {0, string->length()}) : kNone;
}

Range rangeOfCharacterFromSet(In<String> string, In<CharacterSet> set, StringCompareOptions options,
                              Range range) {
  constexpr char kOperation[] = "-[NSString rangeOfCharacterFromSet:options:range:]";
  if (!string) return kNone;
  if (!set) detail::raiseNil(kOperation);
  const TextSpan text = partOf(*string, range, kOperation);
  return movedBy(range.location, searchMember(text, *set, options));
}

}  // namespace qx

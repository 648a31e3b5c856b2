#include <QXFoundation/string_operations.h>

#include "collections/added_operations.h"
#include "collections/text_replacement.h"
#include "frame/key_text.h"
#include "frame/raise.h"
#include "frame/string_storage.h"
#include "platform/member_finder.h"
#include "platform/text_finder.h"
#include "platform/url_path.h"

namespace qx {

using detail::ArgText;
using detail::StringStorage;
using detail::TextSpan;

namespace {

bool isAbsolutePath(TextSpan path) { return !path.empty() && (path[0] == u'/' || path[0] == u'~'); }

detail::Replacements membersOf(TextSpan text, const CharacterSet& set) {
  detail::Replacements members(text);
  const detail::MemberFinder finder(text, set);
  for (Range r = finder.find(0); r.location != kNotFound; r = finder.find(r.location + r.length))
    members.add(r.location, r.length);
  return members;
}

const CharacterSet& present(In<CharacterSet> set, const char* operation) {
  if (!set) detail::raiseNil(operation);
  return *set;
}

// A replacement for what was found.
StringArg presentText(StringArg text, const char* operation) {
  if (text.isNil()) detail::raiseNil(operation);
  return text;
}

}  // namespace

Ref<String> localPath(In<String> string) {
  if (!string) return nullptr;
  const TextSpan text = StringStorage::span(*string);
  if (!isAbsolutePath(text)) return Ref<String>(string.get());
  return StringStorage::make(text.substr(1));
}

bool qxBoolValue(In<String> string) {
  if (!string) return false;
  return string->isEqualToString("YES") || string->isEqualToString("Y") ||
         string->isEqualToString("yes") || string->isEqualToString("y");
}

std::uint32_t unsignedIntValue(In<String> string) {
  return string ? static_cast<std::uint32_t>(string->intValue()) : 0;
}

bool containsCharacterInSet(In<String> string, In<CharacterSet> set) {
  if (!string) return false;
  const CharacterSet& members = present(set, "-[NSString containsCharacterInSet:]");
  return detail::MemberFinder(StringStorage::span(*string), members).find(0).location != kNotFound;
}

bool containsString(In<String> string, StringArg other) {
  return containsString(string, other, StringCompareOptions::none);
}

bool containsString(In<String> string, StringArg other, StringCompareOptions options) {
  if (!string) return false;
  if (other.isNil() || ArgText(other)->empty()) return true;
  return rangeOfString(string, other, options).location != kNotFound;
}

Ref<String> stringByReplacingAllOccurrencesOfString(In<String> string, StringArg target,
                                                    StringArg withString) {
  constexpr char kOperation[] = "-[NSString stringByReplacingAllOccurrencesOfString:withString:]";
  if (!string) return nullptr;
  if (target.isNil()) detail::raiseNil(kOperation);
  const ArgText sought(target);
  const TextSpan text = StringStorage::span(*string);
  detail::Replacements places(text);
  detail::TextFinder finder(text, sought);
  for (std::size_t at = finder.find(0); at != kNotFound; at = finder.find(at + sought->size))
    places.add(at, sought->size);
  if (places.empty()) return detail::immutableString(*string);
  return places.apply(ArgText(presentText(withString, kOperation)));
}

Ref<String> stringByReplacingCharactersInSet(In<String> string, In<CharacterSet> set,
                                             StringArg withString) {
  constexpr char kOperation[] = "-[NSString stringByReplacingCharactersInSet:withString:]";
  if (!string) return nullptr;
  const auto members = membersOf(StringStorage::span(*string), present(set, kOperation));
  if (members.empty()) return Ref<String>(string.get());
  return MutableString::from(members.apply(ArgText(presentText(withString, kOperation))));
}

void replaceAllOccurrencesOfCharactersInSet(In<MutableString> string, In<CharacterSet> set,
                                            StringArg withString) {
  constexpr char kOperation[] =
      "-[NSMutableString replaceAllOccurrencesOfCharactersInSet:withString:]";
  if (!string) return;
  const auto members = membersOf(StringStorage::span(*string), present(set, kOperation));
  if (members.empty()) return;
  string->setString(members.apply(ArgText(presentText(withString, kOperation))));
}

Ref<String> hfsPathFromPOSIXPath(In<String> string) {
  if (!string) return nullptr;
  const std::string path = string->utf8();
  const bool isDirectory = path.ends_with('/');
  const auto url = detail::FilePathURL::fromPosixPath(path, isDirectory);
  if (!url) return nullptr;
  return String::from(url->colonPath());
}

namespace detail {
namespace {

// The options of a search as a number; others than the known ones raise.
StringCompareOptions optionsOf(std::uint32_t bits) {
  using enum StringCompareOptions;
  constexpr auto kKnown = caseInsensitive | literal | backwards | anchored | numeric |
                          diacriticInsensitive | widthInsensitive | forcedOrdering;
  if ((bits & ~static_cast<std::uint32_t>(kKnown)) != 0)
    raiseInvalidArgument("-[NSString containsString:options:]: unknown options " +
                         std::to_string(bits));
  return static_cast<StringCompareOptions>(bits);
}

using Value = const PropertyValue&;
using Text = const Ref<String>&;
using Characters = const Ref<CharacterSet>&;

}  // namespace

void addStringOperations(ClassBuilderBase& c) {
  c.addFunction("localPath", +[](Value r) { return localPath(r.as<String>()); });
  c.addFunction("qxBoolValue", +[](Value r) { return qxBoolValue(r.as<String>()); });
  c.addFunction("unsignedIntValue", +[](Value r) { return unsignedIntValue(r.as<String>()); });
  c.addFunction(
      "containsCharacterInSet:",
      +[](Value r, Characters set) { return containsCharacterInSet(r.as<String>(), set); });
  c.addFunction(
      "containsString:",
      +[](Value r, Text other) { return containsString(r.as<String>(), other); });
  c.addFunction(
      "containsString:options:", +[](Value r, Text other, std::uint32_t options) {
        return containsString(r.as<String>(), other, optionsOf(options));
      });
  c.addFunction(
      "stringByReplacingAllOccurrencesOfString:withString:", +[](Value r, Text target, Text with) {
        return stringByReplacingAllOccurrencesOfString(r.as<String>(), target, with);
      });
  c.addFunction(
      "stringByReplacingCharactersInSet:withString:", +[](Value r, Characters set, Text with) {
        return stringByReplacingCharactersInSet(r.as<String>(), set, with);
      });
  c.addFunction(
      "hfsPathFromPOSIXPath", +[](Value r) { return hfsPathFromPOSIXPath(r.as<String>()); });
}

void addMutableStringOperations(ClassBuilderBase& c) {
  c.addFunction(
      "replaceAllOccurrencesOfCharactersInSet:withString:",
      +[](Value r, Characters set, Text with) {
        replaceAllOccurrencesOfCharactersInSet(r.as<MutableString>(), set, with);
      });
}

}  // namespace detail
}  // namespace qx

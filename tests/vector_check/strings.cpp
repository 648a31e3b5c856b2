// localPath, qxBoolValue, unsignedIntValue, containsCharacterInSet, containsString,
// containsString_options, replaceAllOccurrencesOfString, mutableReplaceCharactersInSet,
// stringByReplacingCharactersInSet

#include "tests/vector_check/driver.h"
#include "tests/vector_check/extended_values.h"

namespace vector_check {

using namespace qx;

namespace {

Ref<String> text(const json& args, const char* name) {
  return String::from(args.at(name).get<std::string>());
}
Ref<CharacterSet> setOf(const json& args) {
  return CharacterSet::characterSetWithCharactersInString(text(args, "set"));
}
json textJson(const Ref<String>& s) { return {{"result", s->utf8()}, {"length", s->length()}}; }

StringCompareOptions optionsOf(const json& names) {
  auto options = StringCompareOptions::none;
  for (const json& name : names) {
    options = options | (name == "caseInsensitive" ? StringCompareOptions::caseInsensitive
                                                   : StringCompareOptions::literal);
  }
  return options;
}

Outcome local(const json& args, const json& expect) {
  return compare(expect, localPath(text(args, "string"))->utf8());
}
Outcome boolValue(const json& args, const json& expect) {
  return compare(expect, qxBoolValue(text(args, "string")));
}
Outcome unsignedValue(const json& args, const json& expect) {
  return compare(expect, unsignedIntValue(text(args, "string")));
}
Outcome containsMember(const json& args, const json& expect) {
  return compare(expect, containsCharacterInSet(text(args, "string"), setOf(args)));
}
Outcome containsText(const json& args, const json& expect) {
  const PropertyValue s = extendedValue(args.at("s"));
  return compare(expect, containsString(text(args, "string"), s.as<String>()));
}
Outcome containsTextWithOptions(const json& args, const json& expect) {
  const PropertyValue s = extendedValue(args.at("s"));
  return compare(
      expect, containsString(text(args, "string"), s.as<String>(), optionsOf(args.at("options"))));
}
Outcome replaceText(const json& args, const json& expect) {
  return compare(expect,
                 textJson(stringByReplacingAllOccurrencesOfString(
                     text(args, "string"), text(args, "target"), text(args, "replacement"))));
}
Outcome replaceMembersInPlace(const json& args, const json& expect) {
  const auto s = MutableString::from(text(args, "string"));
  replaceAllOccurrencesOfCharactersInSet(s, setOf(args), text(args, "replacement"));
  return compare(expect, textJson(s));
}
Outcome replaceMembers(const json& args, const json& expect) {
  const auto s = text(args, "string");
  const auto result = stringByReplacingCharactersInSet(s, setOf(args), text(args, "replacement"));
  json actual = textJson(result);
  actual["same"] = result.get() == s.get();
  return compare(expect, actual);
}

}  // namespace

void addStringOperations(Operations& operations) {
  operations["localPath"] = local;
  operations["qxBoolValue"] = boolValue;
  operations["unsignedIntValue"] = unsignedValue;
  operations["containsCharacterInSet"] = containsMember;
  operations["containsString"] = containsText;
  operations["containsString_options"] = containsTextWithOptions;
  operations["replaceAllOccurrencesOfString"] = replaceText;
  operations["mutableReplaceCharactersInSet"] = replaceMembersInPlace;
  operations["stringByReplacingCharactersInSet"] = replaceMembers;
}

}  // namespace vector_check

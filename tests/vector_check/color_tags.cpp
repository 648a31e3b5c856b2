// tag_..., tags_to_strings, string_to_tag, strings_to_tags

#include "files/color_tag_text.h"
#include "tests/vector_check/driver.h"
#include "tests/vector_check/extended_values.h"

namespace vector_check {

using namespace qx;

namespace {

Ref<QXColorTag> tagOf(const json& j) {
  return QXColorTag::colorTagWithName(j.at("name").get<std::string>(),
                                      j.at("color").get<std::int32_t>());
}

json tagJson(const QXColorTag& tag) {
  return {{"name", tag.name()->utf8()}, {"color", tag.color()}};
}

bool isNil(const json& j) { return j == nilJson(); }

Outcome tagToString(const json& args, const json& expect) {
  return compare(expect, plainJson(detail::storedTag(tagOf(args))));
}

Outcome stringToTag(const json& args, const json& expect) {
  return compare(expect, tagJson(*detail::tagFromStored(args.at("string").get<std::string>())));
}

Outcome tagsToStrings(const json& args, const json& expect) {
  const json& given = args.at("tags");
  Ref<MutableArray> tags;
  if (!isNil(given)) {
    tags = MutableArray::init();
    for (const json& tag : given) tags->addObject(tagOf(tag));
  }
  return compare(expect, extendedJson(detail::storedTags(tags)));
}

Outcome stringsToTags(const json& args, const json& expect) {
  const auto tags = detail::tagsFromStored(extendedValue(args.at("strings")));
  if (tags == nullptr) return compare(expect, nilJson());
  json all = json::array();
  for (const PropertyValue& tag : *tags) all.push_back(tagJson(*tag.as<QXColorTag>()));
  return compare(expect, all);
}

Outcome tagEqual(const json& args, const json& expect) {
  const auto a = tagOf(args.at("a"));
  const json& other = args.at("b");
  PropertyValue b;
  if (other == "same") {
    b = a;
  } else if (other.contains("string")) {
    b = other.at("string").get<std::string>();
  } else if (!isNil(other)) {
    b = tagOf(other);
  }
  return compare(expect, a->isEqual(b));
}

Outcome tagSetName(const json& args, const json& expect) {
  const auto tag = QXColorTag::colorTagWithName("", 0);
  tag->setName(args.at("name").get<std::string>());
  return compare(expect, tag->name()->utf8());
}

Outcome tagInitName(const json& args, const json& expect) {
  return compare(expect,
                 QXColorTag::initWithName(args.at("name").get<std::string>(), 0)->name()->utf8());
}

Outcome tagFormatterString(const json& args, const json& expect) {
  const json& given = args.at("object");
  const auto formatter = QXColorTagFormatter::init();
  if (given.contains("number")) {
    const PropertyValue number = plainValue(given.at("number"));
    return compare(expect, {{"number", plainJson(formatter->stringForObjectValue(number))}});
  }
  const PropertyValue object = given.contains("tag") ? PropertyValue(tagOf(given.at("tag")))
                                                     : plainValue(given.at("string"));
  return compare(expect, {{"string", plainJson(formatter->stringForObjectValue(object))}});
}

Outcome tagFormatterObject(const json& args, const json& expect) {
  PropertyValue object;
  const bool ok = QXColorTagFormatter::init()->getObjectValue(
      &object, args.at("string").get<std::string>(), nullptr);
  return compare(expect, {{"ok", ok}, {"tag", tagJson(*object.as<QXColorTag>())}});
}

}  // namespace

void addColorTagOperations(Operations& operations) {
  operations["tag_to_string"] = tagToString;
  operations["string_to_tag"] = stringToTag;
  operations["tags_to_strings"] = tagsToStrings;
  operations["strings_to_tags"] = stringsToTags;
  operations["tag_equal"] = tagEqual;
  operations["tag_set_name"] = tagSetName;
  operations["tag_init_name"] = tagInitName;
  operations["tag_formatter_string"] = tagFormatterString;
  operations["tag_formatter_object"] = tagFormatterObject;
}

}  // namespace vector_check

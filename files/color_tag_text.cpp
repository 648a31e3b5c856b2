#include "files/color_tag_text.h"

#include <QXFoundation/array_functional.h>

#include "frame/raise.h"

namespace qx::detail {

Ref<String> storedTag(const PropertyValue& tag) {
  const auto* known = tag.peek<QXColorTag>();
  if (known == nullptr) raiseUnsupported(tag, "color");
  const Ref<String>& name = known->name();
  if (known->color() == 0) return name;
  const auto colour = "\n" + std::to_string(known->color());
  // A missing name is written as formats write what is missing.
  return (name != nullptr ? name : String::from("(null)"))->stringByAppendingString(colour);
}

Ref<QXColorTag> tagFromStored(const PropertyValue& text) {
  const auto* string = text.peek<String>();
  if (string == nullptr) raiseUnsupported(text, "componentsSeparatedByString:");
  const auto pieces = string->componentsSeparatedByString("\n");
  const auto colour = pieces->count() > 1 ? pieces->objectAtIndex(1).intValue() : 0;
  return QXColorTag::colorTagWithName(pieces->objectAtIndex(0).as<String>(), colour);
}

Ref<Array> storedTags(In<Array> tags) {
  return qxFlatMap(tags, [](const PropertyValue& tag) { return PropertyValue(storedTag(tag)); });
}

Ref<Array> tagsFromStored(const PropertyValue& texts) {
  if (texts.isNil()) return nullptr;
  if (!texts.isArray()) raiseUnsupported(texts, "qxFlatMap:");
  return qxFlatMap(texts.as<Array>(),
                   [](const PropertyValue& text) { return PropertyValue(tagFromStored(text)); });
}

}  // namespace qx::detail

#include <QXFoundation/color_tag.h>
#include <QXFoundation/extended_attributes.h>

#include "files/color_tag_text.h"
#include "frame/library_class.h"
#include "frame/raise.h"

namespace qx {

QXColorTag::~QXColorTag() = default;

Ref<QXColorTag> QXColorTag::colorTagWithName(StringArg name, std::int32_t andColor) {
  return initWithName(name, andColor);
}

Ref<QXColorTag> QXColorTag::initWithName(StringArg name, std::int32_t andColor) {
  return make<QXColorTag>(name, andColor);
}

void QXColorTag::setName(StringArg name) {
  name_ = name.isNil() ? nullptr : name.string()->normalizedString(NormalForm::d);
}

bool QXColorTag::isEqual(const PropertyValue& other) const {
  const auto* tag = other.peek<QXColorTag>();
  if (tag == this) return true;
  if (tag == nullptr || tag->color_ != color_ || name_ == nullptr || tag->name_ == nullptr) {
    return false;
  }
  return name_->lowercaseString()->isEqualToString(tag->name_->lowercaseString());
}

std::string QXColorTag::description() const {
  return PropertyValue(name_).description() + " (" + std::to_string(color_) + ")";
}

Ref<Object> QXColorTag::copy() const { return make<QXColorTag>(name_, color_); }

Ref<QXColorTagFormatter> QXColorTagFormatter::init() { return make<QXColorTagFormatter>(); }

PropertyValue QXColorTagFormatter::stringForObjectValue(const PropertyValue& value) const {
  const auto* tag = value.peek<QXColorTag>();
  return tag != nullptr ? PropertyValue(tag->name()) : value;
}

bool QXColorTagFormatter::getObjectValue(PropertyValue* object, StringArg forString,
                                         Ref<String>*) const {
  if (object == nullptr) {
    detail::raiseInvalidArgument(
        "-[QXColorTagFormatter getObjectValue:forString:errorDescription:]: there is no place for "
        "the object");
  }
  *object = QXColorTag::colorTagWithName(forString, 0);
  return true;
}

Ref<Array> colorTagsWithError(In<URL> url, Ref<Error>*) {
  return detail::tagsFromStored(
      valueOfExtendedAttributeWithName(url, kColorTagsAttribute, nullptr));
}

bool setColorTags(In<URL> url, In<Array> tags, Ref<Error>* error) {
  if (!url) return false;
  return setExtendedAttributeValue(url, detail::storedTags(tags), kColorTagsAttribute, error);
}

void describe(ClassBuilder<QXColorTag>& c) {
  c.name("QXColorTag").inherits<Object>();
  c.property("name", &QXColorTag::name)
      .property("color", &QXColorTag::color, &QXColorTag::setColor);
  c.operation(
      "setName:",
      +[](const PropertyValue& r, const Ref<String>& name) { r.as<QXColorTag>()->setName(name); });
  c.classOperation(
      "colorTagWithName:andColor:", +[](const Ref<String>& name, std::int32_t color) {
        return QXColorTag::colorTagWithName(name, color);
      });
}

void describe(ClassBuilder<QXColorTagFormatter>& c) {
  c.name("QXColorTagFormatter").inherits<Formatter>();
}

const Class& classObject(detail::Type<QXColorTag>) {
  return detail::buildLibraryClass<QXColorTag>();
}
const Class& classObject(detail::Type<QXColorTagFormatter>) {
  return detail::buildLibraryClass<QXColorTagFormatter>();
}

}  // namespace qx

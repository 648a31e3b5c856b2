#include "files/attribute_errors.h"

#include <cerrno>

#include <QXFoundation/array.h>
#include <QXFoundation/class.h>
#include <QXFoundation/extended_attributes.h>
#include <QXFoundation/localized_text.h>
#include <QXFoundation/property_list.h>

namespace qx::detail {
namespace {

// The system's own texts for these two speak of files and arguments.
std::string descriptionOf(int code) {
  if (code == ENAMETOOLONG) return "Attribute name too long";
  if (code == E2BIG) return "Attribute too big";
  return Error::posixError(code)->localizedDescription();
}

Ref<Error> withName(const Error& error, StringArg name) {
  const auto info = MutableDictionary::dictionaryWithDictionary(error.userInfo());
  info->setObject(name, QXExtendedAttributeNameKey);
  return Error::errorWithDomain(error.domain(), error.code(), info);
}

}  // namespace

Ref<Error> attributeError(URL& url, StringArg name, int code) {
  return Error::errorWithDomain(NSPOSIXErrorDomain, code,
                                dict({{NSLocalizedDescriptionKey, descriptionOf(code)},
                                      {NSURLErrorKey, &url},
                                      {QXExtendedAttributeNameKey, name}}));
}

Ref<Error> valueError(const PropertyValue& value, StringArg name, const Ref<Error>& writer) {
  if (PropertyListSerialization::propertyList(value, PropertyListFormat::binary)) {
    return withName(*writer, name);
  }
  const std::string text =
      std::string("Value of class ") + value.cls()->name() + " cannot be serialized into a plist";
  return Error::errorWithDomain(QXExtendedAttributesErrorDomain, kAttributeValueNotSerializable,
                                dict({{QXExtendedAttributeNameKey, name},
                                      {NSLocalizedDescriptionKey, text},
                                      {"value", value}}));
}

Ref<Error> gatheredError(URL& url, const Ref<Array>& errors) {
  if (errors->count() == 1) return errors->firstObject().as<Error>();
  const std::string text = localizedText("Failed to set one or more extended attributes.");
  return Error::errorWithDomain(QXExtendedAttributesErrorDomain, kSeveralAttributesFailed,
                                dict({{NSLocalizedDescriptionKey, text},
                                      {NSURLErrorKey, &url},
                                      {QXUnderlyingErrorsKey, PropertyValue(errors->copy())}}));
}

}  // namespace qx::detail

#include <QXFoundation/property_list.h>

#include "platform/plist_fault.h"
#include "platform/plist_rules.h"
#include "platform/property_list_io.h"

namespace qx {
namespace detail {

PropertyValue readPropertyList(std::string_view bytes, PropertyListMutability mutability,
                               PropertyListFormat* format, Ref<Error>* error) {
  try {
    if (looksLikeBinaryPlist(bytes)) {
      if (format != nullptr) *format = PropertyListFormat::binary;
      return readBinaryPlist(bytes, mutability);
    }
    if (looksLikeXmlPlist(bytes)) {
      if (format != nullptr) *format = PropertyListFormat::xml;
      return readXmlPlist(bytes, mutability);
    }
    throw PlistFault{PropertyListErrorCode::unknownFormat,
                     bytes.empty() ? "there are no bytes" : "the bytes are neither XML nor binary"};
  } catch (const PlistFault& fault) {
    fill(error, fault.error());
    return {};
  }
}

bool writePropertyList(const PropertyValue& value, PropertyListFormat format, PlistOutput& out,
                       Ref<Error>* error) {
  try {
    if (format == PropertyListFormat::xml) {
      writeXmlPlist(value, out);
    } else {
      writeBinaryPlist(value, out);
    }
    return true;
  } catch (const PlistFault& fault) {
    fill(error, fault.error());
    return false;
  }
}

}  // namespace detail

Ref<Data> PropertyListSerialization::dataWithPropertyList(const PropertyValue& value,
                                                          PropertyListFormat format,
                                                          Ref<Error>* error) {
  detail::PlistOutput out;
  if (!detail::writePropertyList(value, format, out, error)) return nullptr;
  return Data::from(out.view());
}

PropertyValue PropertyListSerialization::propertyListWithData(In<Data> data,
                                                              PropertyListMutability options,
                                                              PropertyListFormat* format,
                                                              Ref<Error>* error) {
  return detail::readPropertyList(data->view(), options, format, error);
}

bool PropertyListSerialization::propertyList(const PropertyValue& value,
                                             PropertyListFormat isValidForFormat) {
  try {
    detail::requireWritable(value, isValidForFormat);
    return true;
  } catch (const detail::PlistFault&) {
    return false;
  }
}

}  // namespace qx

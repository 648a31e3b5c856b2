#include "platform/plist_fault.h"

#include <QXFoundation/dictionary.h>

namespace qx::detail {
namespace {

std::string placeText(const PlistFault& f) {
  if (f.byte) return "byte " + std::to_string(*f.byte);
  if (f.line) return "line " + std::to_string(*f.line) + ", column " + std::to_string(*f.column);
  return f.path.value_or("");
}

std::string sentence(const PlistFault& f) {
  std::string text = f.code == PropertyListErrorCode::unwritable
                         ? "The value can not be written as a property list: "
                         : "The property list can not be read: ";
  if (f.code == PropertyListErrorCode::limitExceeded)
    text = "A limit of property lists is passed: ";
  const std::string place = placeText(f);
  if (!place.empty()) text += place + ": ";
  return text + f.reason + ".";
}

void note(const Ref<MutableDictionary>& info, StringArg key, const std::optional<std::size_t>& n) {
  if (n) info->setObject(PropertyValue(*n), key);
}

}  // namespace

Ref<Error> PlistFault::error() const {
  const auto info = MutableDictionary::init();
  info->setObject(sentence(*this), NSLocalizedDescriptionKey);
  note(info, QXByteOffsetErrorKey, byte);
  note(info, QXLineErrorKey, line);
  note(info, QXColumnErrorKey, column);
  return Error::errorWithDomain(QXPropertyListErrorDomain, static_cast<std::int64_t>(code), info);
}

}  // namespace qx::detail

#include "platform/extended_attributes.h"

#include <cerrno>

#include <QXFoundation/exception.h>
#include <QXFoundation/extended_attributes.h>

#include "files/attribute_errors.h"
#include "frame/raise.h"
#include "platform/path_text.h"
#include "platform/property_list_io.h"

namespace qx {
namespace {

bool isEmpty(StringArg name) {
  return name.object() != nullptr ? name.object()->length() == 0 : name.bytes().empty();
}

// Names are passed on as the bytes that are given.
class NameBytes {
 public:
  explicit NameBytes(StringArg name) : arg_(name) {
    if (isEmpty(name)) detail::raiseInvalidArgument("extended attribute name cannot be empty");
    if (name.object() != nullptr) utf8_ = name.utf8();
  }
  std::string_view view() const {
    return arg_.object() != nullptr ? std::string_view(utf8_) : arg_.bytes();
  }

 private:
  StringArg arg_;
  std::string utf8_;
};

// The operation's full name, as its exceptions tell it.
std::string named(const char* operation) {
  return std::string("-[NSURL(NSURL_extensions) ") + operation + "]";
}

void requireFileURL(const URL& url, const char* operation) {
  if (url.isFileURL()) return;
  throw InternalInconsistencyException(named(operation) + " only valid on file URLs");
}

void requireName(StringArg name, const char* operation) {
  if (isEmpty(name))
    detail::raiseInvalidArgument(named(operation) + " name parameter can't be nil");
}

bool succeeded(int code, URL& url, StringArg name, Ref<Error>* error) {
  if (code != 0 && error != nullptr) *error = detail::attributeError(url, name, code);
  return code == 0;
}

bool writeBytes(URL& url, std::string_view bytes, StringArg name, Ref<Error>* error) {
  const NameBytes stored(name);
  const int code = detail::writeAttribute(url.fileSystemRepresentation(), stored.view(), bytes);
  return succeeded(code, url, name, error);
}

// Without a place nothing is told of a failure, and there is no need to find out what it was.
bool writeValue(URL& url, const PropertyValue& value, StringArg name, Ref<Error>* error) {
  detail::PlistOutput bytes;
  Ref<Error> fault;
  const bool isWritten =
      detail::writePropertyList(value, PropertyListFormat::binary, bytes, error ? &fault : nullptr);
  if (isWritten) return writeBytes(url, bytes.view(), name, error);
  if (error != nullptr) *error = detail::valueError(value, name, fault);
  return false;
}

constexpr char kSetAll[] = "setExtendedAttributes:error:";
constexpr char kValueOf[] = "valueOfExtendedAttributeWithName:error:";
constexpr char kRemove[] = "removeExtendedAttributeWithName:error:";

}  // namespace

Ref<Data> dataForExtendedAttribute(In<URL> url, StringArg name, Ref<Error>* error) {
  if (!url) return nullptr;
  const NameBytes stored(name);
  Ref<Data> value;
  const int code = detail::readAttribute(url->fileSystemRepresentation(), stored.view(), value);
  return succeeded(code, *url, name, error) ? value : nullptr;
}

bool setExtendedAttributeData(In<URL> url, In<Data> data, StringArg name, Ref<Error>* error) {
  if (!url) return false;
  const NameBytes checked(name);
  if (!data) detail::raiseNil("-[NSURL(NSURL_extensions) setExtendedAttributeData:name:error:]");
  return writeBytes(*url, data->view(), name, error);
}

bool setExtendedAttributes(In<URL> url, In<Dictionary> attributes, Ref<Error>* error) {
  if (!url) return false;
  requireFileURL(*url, kSetAll);
  if (!attributes || attributes->count() == 0) return true;
  const Ref<Array> errors = MutableArray::init();
  for (const auto& [name, value] : *attributes) {
    Ref<Error> failure;
    if (!writeValue(*url, value, name, error != nullptr ? &failure : nullptr) && error != nullptr) {
      static_cast<MutableArray&>(*errors).addObject(failure);
    }
  }
  if (errors->count() == 0) return true;
  *error = detail::gatheredError(*url, errors);
  return false;
}

PropertyValue valueOfExtendedAttributeWithName(In<URL> url, StringArg name, Ref<Error>* error) {
  if (!url) return nullptr;
  requireFileURL(*url, kValueOf);
  requireName(name, kValueOf);
  const NameBytes stored(name);
  detail::AttributeBytes bytes;
  const int code = detail::readAttribute(url->fileSystemRepresentation(), stored.view(), bytes);
  if (!succeeded(code, *url, name, error)) return nullptr;
  return detail::readPropertyList(bytes.view(), PropertyListMutability::immutable, nullptr, error);
}

// One value needs no dictionary to hold it; the result is what setExtendedAttributes gives.
bool setExtendedAttributeValue(In<URL> url, const PropertyValue& value, StringArg forName,
                               Ref<Error>* error) {
  if (!url) return false;
  if (value.isNil()) return removeExtendedAttributeWithName(url, forName, error);
  requireFileURL(*url, kSetAll);
  if (forName.isNil()) detail::raiseNil(kSetAll);
  return writeValue(*url, value, forName, error) || error == nullptr;
}

bool removeExtendedAttributeWithName(In<URL> url, StringArg name, Ref<Error>* error) {
  if (!url) return false;
  requireFileURL(*url, kRemove);
  requireName(name, kRemove);
  const NameBytes stored(name);
  const int code = detail::removeAttribute(url->fileSystemRepresentation(), stored.view());
  return code == ENODATA || succeeded(code, *url, name, error);
}

Ref<Array> extendedAttributeNames(In<URL> url, Ref<Error>* error) {
  if (!url) return nullptr;
  requireFileURL(*url, "extendedAttributeNames");
  std::vector<std::string> names;
  if (const int code = detail::listAttributes(url->fileSystemRepresentation(), names)) {
    detail::fill(error, Error::posixError(code));
    return nullptr;
  }
  const auto all = MutableArray::init();
  for (const std::string& name : names) all->addObject(String::from(name));
  return Array::from(all->begin(), all->count());
}

}  // namespace qx

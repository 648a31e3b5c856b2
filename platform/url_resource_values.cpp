// Properties of the files that URLs name.

#include <cerrno>

#include <QXFoundation/url.h>

#include "frame/key_text.h"
#include "platform/attribute_calls.h"
#include "platform/extended_attributes.h"

namespace qx {
namespace {

// By this attribute and its text, a file asks backup programs to leave it out.
constexpr char kBackupAttribute[] = "user.xdg.robots.backup";
constexpr char kNoBackup[] = "false";

int checkAccess(const URL& url, StringArg key) {
  if (key.isNil() || key.utf8() != NSURLIsExcludedFromBackupKey) return ENOTSUP;
  return url.isFileURL() ? 0 : EINVAL;
}

int setExcluded(const std::string& path, bool excluded) {
  const int error = excluded ? detail::writeAttribute(path, kBackupAttribute, kNoBackup)
                             : detail::removeAttribute(path, kBackupAttribute);
  // Many file systems have no such flag; the attribute alone will do.
  static_cast<void>(detail::attributeCalls().setNoDump(path.c_str(), excluded));
  return error == ENODATA ? 0 : error;
}

bool report(int code, Ref<Error>* error) {
  if (code != 0) detail::fill(error, Error::posixError(code));
  return code == 0;
}

}  // namespace

bool URL::setResourceValue(const PropertyValue& value, StringArg forKey, Ref<Error>* error) const {
  int code = checkAccess(*this, forKey);
  const auto excluded = value.to<bool>();
  if (code == 0 && !excluded) code = EINVAL;
  if (code == 0) code = setExcluded(fileSystemRepresentation(), *excluded);
  return report(code, error);
}

bool URL::getResourceValue(PropertyValue* value, StringArg forKey, Ref<Error>* error) const {
  int code = checkAccess(*this, forKey);
  Ref<Data> stored;
  if (code == 0) {
    code = detail::readAttribute(fileSystemRepresentation(), kBackupAttribute, stored);
  }
  if (code == ENODATA) code = 0;
  if (code == 0 && value != nullptr) *value = stored != nullptr && stored->view() == kNoBackup;
  return report(code, error);
}

}  // namespace qx

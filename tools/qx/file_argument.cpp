#include "tools/qx/file_argument.h"

#include <cerrno>

#include <QXFoundation/constants.h>

namespace qxtool {

qx::Ref<qx::URL> urlOfFile(const std::string& path) {
  if (path.empty()) throw Failure("FILE is empty");
  const auto url = qx::URL::fileURLWithPath(path);
  if (url == nullptr) throw Failure("the current folder, where " + path + " stands, is not known");
  return url;
}

bool tellsOfNoAttribute(const qx::Ref<qx::Error>& error) {
  return error != nullptr && error->code() == ENODATA &&
         error->domain()->isEqualToString(qx::NSPOSIXErrorDomain);
}

Failure attributeFailure(const std::string& doing, const std::string& path,
                         const qx::Ref<qx::Error>& error) {
  return Failure("cannot " + doing + " of " + path +
                 (error != nullptr ? ": " + error->localizedDescription() : std::string()));
}

}  // namespace qxtool

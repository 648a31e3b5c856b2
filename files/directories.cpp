#include <QXFoundation/directories.h>

#include "frame/raise.h"
#include "platform/path_text.h"

namespace qx {
namespace {

using Components = std::vector<std::string_view>;

bool createFolders(const Components& components, std::size_t count, In<Dictionary> attributes) {
  const auto files = FileManager::defaultManager();
  std::string path;
  for (std::size_t i = 0; i < count; ++i) {
    path = detail::joinedPath(path, components[i]);
    if (files->fileExistsAtPath(path)) continue;
    if (!files->createDirectoryAtPath(path, false, attributes)) return false;
  }
  return true;
}

}  // namespace

bool createDirectoriesAtPath(In<FileManager> files, StringArg path, In<Dictionary> attributes) {
  if (!files) return false;
  if (path.isNil()) detail::raiseNil("-[NSFileManager createDirectoriesAtPath:attributes:]");
  const std::string bytes = detail::pathBytes(path);
  const Components components = detail::componentsOfPath(bytes);
  return createFolders(components, components.size(), attributes);
}

bool createPathToFile(In<FileManager> files, StringArg path, In<Dictionary> attributes) {
  if (!files) return false;
  if (path.isNil()) detail::raiseNil("-[NSFileManager createPathToFile:attributes:]");
  const std::string bytes = detail::pathBytes(path);
  const Components components = detail::componentsOfPath(bytes);
  return components.size() < 2 || createFolders(components, components.size() - 1, attributes);
}

void excludeURLFromBackup(In<FileManager> files, In<URL> url) {
  if (!files || !url) return;
  static_cast<void>(url->setResourceValue(true, NSURLIsExcludedFromBackupKey));
}

}  // namespace qx

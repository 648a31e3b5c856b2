#include <QXFoundation/directories.h>
#include <QXFoundation/lock_file.h>

#include "files/added_operations.h"

namespace qx::detail {
namespace {

using Value = const PropertyValue&;
using Text = const Ref<String>&;
using Attributes = const Ref<Dictionary>&;

Ref<FileManager> manager(Value receiver) { return receiver.as<FileManager>(); }

}  // namespace

void addFileManagerOperations(ClassBuilderBase& c) {
  c.addFunction(
      "lockFilePathForPath:",
      +[](Value r, Text path) { return lockFilePathForPath(manager(r), path); });
  c.addFunction(
      "unlockFileAtPath:", +[](Value r, Text path) { unlockFileAtPath(manager(r), path); });
  c.addFunction(
      "createDirectoriesAtPath:attributes:", +[](Value r, Text path, Attributes attributes) {
        return createDirectoriesAtPath(manager(r), path, attributes);
      });
  c.addFunction(
      "createPathToFile:attributes:", +[](Value r, Text path, Attributes attributes) {
        return createPathToFile(manager(r), path, attributes);
      });
  c.addFunction("scratchDirectoryPath", +[](Value r) { return scratchDirectoryPath(manager(r)); });
  c.addFunction(
      "tempFilenameFromTemplate:andPosition:", +[](Value r, Text pattern, std::int32_t position) {
        return tempFilenameFromTemplate(manager(r), pattern, position);
      });
  c.addFunction(
      "tempFilenameFromTemplate:andSubstring:", +[](Value r, Text pattern, Text substring) {
        return tempFilenameFromTemplate(manager(r), pattern, StringArg(substring));
      });
  c.addFunction(
      "tempFilenameFromHashesTemplate:",
      +[](Value r, Text pattern) { return tempFilenameFromHashesTemplate(manager(r), pattern); });
  c.addFunction(
      "excludeURLFromBackup:",
      +[](Value r, const Ref<URL>& url) { excludeURLFromBackup(manager(r), url); });
}

}  // namespace qx::detail

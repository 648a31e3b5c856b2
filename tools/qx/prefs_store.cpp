#include "tools/qx/prefs_store.h"

#include <filesystem>
#include <system_error>

#include <QXFoundation/exception.h>
#include <QXFoundation/property_list.h>
#include <QXFoundation/user_defaults.h>

#include "tools/qx/failure.h"
#include "tools/qx/input.h"
#include "tools/qx/printable.h"
#include "tools/qx/progress.h"

namespace qxtool {
namespace {

std::string contentOf(const std::string& path) {
  Progress progress;
  Input input(path, progress);
  return {Input::Iterator(input), Input::Iterator()};
}

void requireDictionary(const std::string& path, const std::string& content) {
  if (content.empty()) return;
  qx::Ref<qx::Error> error;
  const qx::PropertyValue value = qx::PropertyListSerialization::propertyListWithData(
      qx::Data::from(content), qx::PropertyListMutability::immutable, nullptr, &error);
  if (value.isNil()) throw Failure(path + ": " + error->localizedDescription());
  if (!value.isDictionary()) throw Failure(path + ": the property list is no dictionary");
}

qx::Ref<qx::String> pathOf(const std::string& application) {
  try {
    return qx::UserDefaults::pathForApplicationName(application);
  } catch (const qx::InvalidArgumentException&) {
    throw Failure("the name of the application can not be that of a file: " +
                  quotedIfEmpty(application));
  }
}

}  // namespace

SettingsPlace SettingsPlace::ofFile(const std::string& path) {
  if (path.empty()) throw Failure("FILE is empty");
  if (path == "-") throw Failure("settings are kept in files; one of the name - is ./-");
  // Paths are text to the library.
  if (!isValidUtf8(path)) throw Failure("the name of FILE is not UTF-8: " + path);
  return {path, true};
}

SettingsPlace SettingsPlace::ofApplication(const std::string& name) {
  if (!isValidUtf8(name)) throw Failure("the name of the application is not UTF-8: " + name);
  const auto path = pathOf(name);
  if (path == nullptr) throw Failure("the user's home folder is not known");
  qx::UserDefaults::setApplicationName(name);
  return {path->utf8(), false};
}

qx::Ref<qx::QXPreferences> SettingsPlace::open(bool mustExist) const {
  std::error_code error;
  const auto status = std::filesystem::status(path_, error);
  const bool isMissing = status.type() == std::filesystem::file_type::not_found;
  if (!isMissing && std::filesystem::is_other(status)) {
    throw Failure(path_ + " is no regular file");
  }
  if (!isMissing || (isFile_ && mustExist)) requireDictionary(path_, contentOf(path_));
  return isFile_ ? qx::QXPreferences::initWithPath(path_) : qx::QXPreferences::init();
}

}  // namespace qxtool

// The store that qx prefs works on.
#pragma once

#include <string>

#include <QXFoundation/preferences.h>

namespace qxtool {

// What stands where settings are kept, found before a store is made from it: a store starts empty
// over whatever it cannot read.
class SettingsPlace {
 public:
  // A file that need not be there.
  static SettingsPlace ofFile(const std::string& path);
  // The user defaults of an application of that name. Once in the life of the process.
  static SettingsPlace ofApplication(const std::string& name);

  const std::string& path() const { return path_; }

  // A Failure names the file where it cannot be read, or is no dictionary as a property list; where
  // it is missing, too, if it must be there. An application's may be missing, and an empty file
  // holds no settings.
  qx::Ref<qx::QXPreferences> open(bool mustExist) const;

 private:
  SettingsPlace(std::string path, bool isFile) : path_(std::move(path)), isFile_(isFile) {}

  std::string path_;
  bool isFile_;
};

}  // namespace qxtool

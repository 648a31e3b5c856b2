#pragma once

// The user defaults of the process, and how tests put others in their place.

#include <QXFoundation/user_defaults.h>

namespace qx::detail {

// Makes `defaults` the standard user defaults while it lives.
class ReplacedUserDefaults {
 public:
  explicit ReplacedUserDefaults(Ref<UserDefaults> defaults);
  ReplacedUserDefaults(const ReplacedUserDefaults&) = delete;
  ReplacedUserDefaults& operator=(const ReplacedUserDefaults&) = delete;
  ~ReplacedUserDefaults();

 private:
  Ref<UserDefaults> before_;
};

// Where the property list of an application stands: `$XDG_CONFIG_HOME` where that is an absolute
// path, else `.config` in the user's home. Empty when no home is known.
std::string userDefaultsPath(const std::string& application);

}  // namespace qx::detail

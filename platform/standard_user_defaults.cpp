#include "platform/standard_user_defaults.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <vector>

#include <QXFoundation/exception.h>
#include <QXFoundation/process_info.h>

#include "frame/library_class.h"
#include "frame/raise.h"
#include "platform/file_user_defaults.h"

namespace qx {
namespace detail {
namespace {

struct Standard {
  std::mutex mutex;
  std::string application;  // empty: the process's name
  Ref<UserDefaults> defaults;

  static Standard& instance() {
    static auto* standard = new Standard;  // never destroyed: used until the end of the process
    return *standard;
  }
};

std::string homeFolder() {
  if (const char* home = std::getenv("HOME"); home != nullptr && home[0] == '/') return home;
  passwd entry{};
  passwd* found = nullptr;
  std::vector<char> room(1024);
  while (::getpwuid_r(::getuid(), &entry, room.data(), room.size(), &found) == ERANGE) {
    room.resize(room.size() * 2);
  }
  return found != nullptr && found->pw_dir != nullptr ? found->pw_dir : "";
}

// The name as text; raises where no file can have it.
std::string fileName(StringArg name, const char* operation) {
  std::string text = name.utf8();
  if (text.empty() || text == "." || text == ".." || text.find('/') != std::string::npos ||
      text.find('\0') != std::string::npos) {
    raiseInvalidArgument(std::string(operation) + ": the name can not be that of a file");
  }
  return text;
}

}  // namespace

std::string userDefaultsPath(const std::string& application) {
  const char* config = std::getenv("XDG_CONFIG_HOME");
  if (config != nullptr && config[0] == '/') {
    return std::string(config) + "/" + application + ".plist";
  }
  const std::string home = homeFolder();
  return home.empty() ? "" : home + "/.config/" + application + ".plist";
}

ReplacedUserDefaults::ReplacedUserDefaults(Ref<UserDefaults> defaults) {
  Standard& standard = Standard::instance();
  const std::scoped_lock lock(standard.mutex);
  before_ = std::exchange(standard.defaults, std::move(defaults));
}

ReplacedUserDefaults::~ReplacedUserDefaults() {
  Standard& standard = Standard::instance();
  const std::scoped_lock lock(standard.mutex);
  std::swap(standard.defaults, before_);
}

}  // namespace detail

Ref<UserDefaults> UserDefaults::standardUserDefaults() {
  detail::Standard& standard = detail::Standard::instance();
  const std::scoped_lock lock(standard.mutex);
  if (standard.defaults == nullptr) {
    std::string name = standard.application;
    if (name.empty()) name = ProcessInfo::processInfo()->processName();
    if (name.empty()) name = "application";
    standard.defaults = make<detail::FileUserDefaults>(detail::userDefaultsPath(name));
  }
  return standard.defaults;
}

void UserDefaults::setApplicationName(StringArg name) {
  const std::string text = detail::fileName(name, "+[NSUserDefaults setApplicationName:]");
  detail::Standard& standard = detail::Standard::instance();
  const std::scoped_lock lock(standard.mutex);
  if (standard.defaults != nullptr) {
    throw InternalInconsistencyException(
        "+[NSUserDefaults setApplicationName:]: the standard user defaults are in use already");
  }
  standard.application = text;
}

Ref<String> UserDefaults::pathForApplicationName(StringArg name) {
  const std::string path =
      detail::userDefaultsPath(detail::fileName(name, "+[NSUserDefaults pathForApplicationName:]"));
  return path.empty() ? nullptr : String::from(path);
}

void describe(ClassBuilder<UserDefaults>& c) {
  c.name("NSUserDefaults").inherits<Object>();
  c.operation(
      "objectForKey:", +[](const PropertyValue& r, const Ref<String>& key) {
        return r.as<UserDefaults>()->objectForKey(key);
      });
  c.operation(
      "setObject:forKey:",
      +[](const PropertyValue& r, const PropertyValue& value, const Ref<String>& key) {
        r.as<UserDefaults>()->setObject(value, key);
      });
  c.operation(
      "removeObjectForKey:", +[](const PropertyValue& r, const Ref<String>& key) {
        r.as<UserDefaults>()->removeObjectForKey(key);
      });
  c.operation(
      "registerDefaults:", +[](const PropertyValue& r, const Ref<Dictionary>& values) {
        r.as<UserDefaults>()->registerDefaults(values);
      });
  c.operation("dictionaryRepresentation", &UserDefaults::dictionaryRepresentation);
  c.operation("synchronize", &UserDefaults::synchronize);
}

const Class& classObject(detail::Type<UserDefaults>) {
  return detail::buildLibraryClass<UserDefaults>();
}

}  // namespace qx

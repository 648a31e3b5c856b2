#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>

#include <QXFoundation/file_manager.h>

#include "frame/library_class.h"
#include "frame/raise.h"
#include "platform/atomic_file.h"
#include "platform/file_calls.h"
#include "platform/path_text.h"

namespace qx {
namespace {

constexpr mode_t kNewFolder = 0777;
constexpr mode_t kAllBits = 07777;

// The bytes for a system call; an `errno` value where they can not be passed.
int pathForCall(StringArg path, const char* operation, std::string& bytes) {
  if (path.isNil()) detail::raiseNil(operation);
  bytes = detail::pathBytes(path);
  return bytes.find('\0') == std::string::npos ? 0 : EINVAL;
}

bool report(int code, Ref<Error>* error) {
  if (code != 0) detail::fill(error, Error::posixError(code));
  return code == 0;
}

std::optional<mode_t> permissionsIn(In<Dictionary> attributes) {
  if (!attributes) return std::nullopt;
  const PropertyValue bits = attributes->objectForKey(NSFilePosixPermissions);
  if (!bits.isNumber()) return std::nullopt;
  return static_cast<mode_t>(bits.integerValue()) & kAllBits;
}

bool isFolder(const std::string& path) {
  struct stat about{};
  return detail::fileCalls().stat(path.c_str(), &about) == 0 && S_ISDIR(about.st_mode);
}

// The new folder begins with no more rights than it is to have. What the umask took away, and the
// bits that making a folder does not know, are set afterwards.
int makeFolder(const std::string& path, std::optional<mode_t> permissions) {
  detail::FileCalls& calls = detail::fileCalls();
  if (calls.mkdir(path.c_str(), permissions.value_or(kNewFolder) & 0777) != 0) return errno;
  if (!permissions || calls.chmod(path.c_str(), *permissions) == 0) return 0;
  const int error = errno;
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
  return error;
}

int makeFolderWithThoseAbove(const std::string& path, std::optional<mode_t> permissions) {
  int error = makeFolder(path, permissions);
  if (error == ENOENT && detail::folderOf(path) != path) {
    error = detail::makeFolders(detail::folderOf(path), kNewFolder);
    if (error == 0) error = makeFolder(path, permissions);
  }
  return error == EEXIST && isFolder(path) ? 0 : error;
}

int removeItem(const std::string& path) {
  if (detail::fileCalls().unlink(path.c_str()) == 0) return 0;
  const int refused = errno;
  struct stat about{};
  if (detail::fileCalls().lstat(path.c_str(), &about) != 0) return errno;
  if (!S_ISDIR(about.st_mode)) return refused;
  std::error_code error;
  std::filesystem::remove_all(path, error);
  return error.value();
}

}  // namespace

FileManager::~FileManager() = default;

Ref<FileManager> FileManager::defaultManager() {
  static auto* shared = make<FileManager>().leak();  // for the life of the process
  return shared;
}

bool FileManager::fileExistsAtPath(StringArg path) const { return fileExistsAtPath(path, nullptr); }

bool FileManager::fileExistsAtPath(StringArg path, bool* isDirectory) const {
  std::string bytes;
  if (pathForCall(path, "-[NSFileManager fileExistsAtPath:]", bytes) != 0) return false;
  struct stat about{};
  if (detail::fileCalls().stat(bytes.c_str(), &about) != 0) return false;
  if (isDirectory != nullptr) *isDirectory = S_ISDIR(about.st_mode);
  return true;
}

bool FileManager::createDirectoryAtPath(StringArg path, bool withIntermediateDirectories,
                                        In<Dictionary> attributes, Ref<Error>* error) {
  std::string bytes;
  int code = pathForCall(path, "-[NSFileManager createDirectoryAtPath:]", bytes);
  const auto permissions = permissionsIn(attributes);
  while (bytes.size() > 1 && bytes.ends_with('/')) bytes.pop_back();
  if (code == 0) {
    code = withIntermediateDirectories ? makeFolderWithThoseAbove(bytes, permissions)
                                       : makeFolder(bytes, permissions);
  }
  return report(code, error);
}

bool FileManager::removeItemAtPath(StringArg path, Ref<Error>* error) {
  std::string bytes;
  int code = pathForCall(path, "-[NSFileManager removeItemAtPath:error:]", bytes);
  if (code == 0) code = removeItem(bytes);
  return report(code, error);
}

Ref<Dictionary> FileManager::attributesOfItemAtPath(StringArg path, Ref<Error>* error) const {
  std::string bytes;
  int code = pathForCall(path, "-[NSFileManager attributesOfItemAtPath:error:]", bytes);
  struct stat about{};
  if (code == 0 && detail::fileCalls().lstat(bytes.c_str(), &about) != 0) code = errno;
  if (!report(code, error)) return nullptr;
  return dict({{NSFilePosixPermissions, about.st_mode & kAllBits}});
}

void describe(ClassBuilder<FileManager>& c) {
  c.name("NSFileManager").inherits<Object>();
  c.operation(
      "fileExistsAtPath:", +[](const PropertyValue& r, const Ref<String>& path) {
        return r.as<FileManager>()->fileExistsAtPath(path);
      });
  c.addClassOperation(
      {"defaultManager",
       [](const PropertyValue&, const detail::Payload&, const PropertyValue*) -> PropertyValue {
         return FileManager::defaultManager();
       },
       0,
       {}});
  c.addClassOperation(
      {"didLoad",
       [](const PropertyValue&, const detail::Payload&, const PropertyValue*) -> PropertyValue {
         FileManager::didLoad();
         return {};
       },
       0,
       {}});
}

const Class& classObject(detail::Type<FileManager>) {
  return detail::buildLibraryClass<FileManager>();
}

}  // namespace qx

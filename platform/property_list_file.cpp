#include "platform/property_list_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "platform/atomic_file.h"
#include "platform/file_calls.h"
#include "platform/property_list_io.h"

namespace qx::detail {
namespace {

constexpr AtomicWrite kSettings{.durable = true, .following = true};

// Gives what stands at `path` a second name, or where the file system has no such thing a copy.
int keepAs(const std::string& path, const std::string& kept) {
  if (fileCalls().link(path.c_str(), kept.c_str()) == 0 || errno == ENOENT) return 0;
  const int refused = errno;
  std::string content;
  if (const int code = readFile(path, content)) return code == EISDIR ? code : refused;
  if (refused == EEXIST) {
    // Kept before, by a process that came no further.
    std::string earlier;
    return readFile(kept, earlier) == 0 && earlier == content ? 0 : EEXIST;
  }
  return createFile(kept, content);
}

}  // namespace

PropertyListFile::State PropertyListFile::read(Ref<Dictionary>& content, Ref<Error>* error) {
  content = nullptr;
  std::string bytes;
  const int code = readFile(path_, bytes);
  keepsFirst_ = code != 0 && code != ENOENT && code != ENOTDIR;
  if (keepsFirst_) {
    fill(error, Error::posixError(code));
    return State::unreadable;
  }
  if (bytes.empty()) return State::absent;
  const PropertyValue value =
      readPropertyList(bytes, PropertyListMutability::immutable, nullptr, nullptr);
  content = value.as<Dictionary>();
  keepsFirst_ = content == nullptr;
  return keepsFirst_ ? State::damaged : State::whole;
}

// Nil where it is kept, or nothing is there.
Ref<Error> PropertyListFile::keepDamaged() {
  std::string target;
  if (const int code = followLinks(path_, target)) return Error::posixError(code);
  const std::string kept = target + ".damaged";
  const int code = keepAs(target, kept);
  if (code == 0) return nullptr;
  const std::string reason = code == EEXIST ? "another file stands there"
                                            : Error::posixError(code)->localizedDescription();
  const std::string text = "The damaged file can not be kept as " + kept + ": " + reason;
  return Error::errorWithDomain(NSPOSIXErrorDomain, code,
                                dict({{NSLocalizedDescriptionKey, text}}));
}

bool PropertyListFile::write(const Dictionary& content, Ref<Error>* error) {
  PlistOutput bytes;
  if (!writePropertyList(const_cast<Dictionary*>(&content), PropertyListFormat::xml, bytes,
                         error)) {
    return false;
  }
  if (keepsFirst_) {
    if (auto kept = keepDamaged()) {
      fill(error, std::move(kept));
      return false;
    }
  }
  if (const int code = replaceFile(path_, bytes.view(), kSettings)) {
    fill(error, Error::posixError(code));
    return false;
  }
  keepsFirst_ = false;
  return true;
}

}  // namespace qx::detail

#include "platform/property_list_file.h"

#include <sys/stat.h>

#include <cerrno>

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
  if (readFile(path, content) != 0) return refused;
  if (refused == EEXIST) {
    // Kept before, by a process that came no further.
    std::string earlier;
    return readFile(kept, earlier) == 0 && earlier == content ? 0 : EEXIST;
  }
  return createFile(kept, content);
}

}  // namespace

PropertyListFile::State PropertyListFile::read(Ref<Dictionary>& content) {
  content = nullptr;
  std::string bytes;
  const int error = readFile(path_, bytes);
  keepsFirst_ = error != 0 && error != ENOENT && error != ENOTDIR;
  if (keepsFirst_) return State::unreadable;
  if (bytes.empty()) return State::absent;
  const PropertyValue value =
      readPropertyList(bytes, PropertyListMutability::immutable, nullptr, nullptr);
  content = value.as<Dictionary>();
  keepsFirst_ = content == nullptr;
  return keepsFirst_ ? State::damaged : State::whole;
}

bool PropertyListFile::keepDamaged() {
  std::string target;
  if (followLinks(path_, target) != 0) return false;
  return keepAs(target, target + ".damaged") == 0;
}

bool PropertyListFile::write(const Dictionary& content) {
  PlistOutput bytes;
  if (!writePropertyList(const_cast<Dictionary*>(&content), PropertyListFormat::xml, bytes,
                         nullptr)) {
    return false;
  }
  if (keepsFirst_ && !keepDamaged()) return false;
  if (replaceFile(path_, bytes.view(), kSettings) != 0) return false;
  keepsFirst_ = false;
  return true;
}

}  // namespace qx::detail

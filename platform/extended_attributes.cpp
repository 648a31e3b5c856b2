#include "platform/extended_attributes.h"

#include <cerrno>
#include <cstring>

#include "platform/attribute_calls.h"

namespace qx::detail {
namespace {

constexpr std::string_view kNamespaces[] = {"user.", "trusted.", "security.", "system."};
constexpr std::string_view kOwnNamespace = "user.";
constexpr std::size_t kLongestName = 255;  // the kernel's limit, which it reports as ERANGE
constexpr std::size_t kUsualSize = 4096;   // values up to this size are read by one call

bool namesNamespace(std::string_view name) {
  for (const std::string_view space : kNamespaces) {
    if (name.starts_with(space)) return true;
  }
  return false;
}

// The name as the system takes it, with a NUL behind it.
class StoredName {
 public:
  explicit StoredName(std::string_view name) {
    const std::string_view prefix = namesNamespace(name) ? "" : kOwnNamespace;
    const std::size_t size = prefix.size() + name.size();
    if (size > kLongestName) {
      error_ = ENAMETOOLONG;
    } else if (name.find('\0') != std::string_view::npos) {
      error_ = EINVAL;
    } else {
      std::memcpy(text_, prefix.data(), prefix.size());
      std::memcpy(text_ + prefix.size(), name.data(), name.size());
      text_[size] = '\0';
    }
  }

  // Of the name, and of a path to go with it.
  int error(const std::string& path) const {
    return error_ == 0 && path.find('\0') != std::string::npos ? EINVAL : error_;
  }
  const char* text() const { return text_; }

 private:
  char text_[kLongestName + 1];
  int error_ = 0;
};

// Reads at most so many bytes; the size, or -1.
ssize_t readInto(AttributeBytes& bytes, const char* path, const char* name, std::size_t most) {
  char* room = bytes.room(most);
  const ssize_t got = attributeCalls().lgetxattr(path, name, room, most);
  if (got > 0) bytes.commit(room + got);
  return got;
}

// Values grow between the question for their size and the reading of them, when others write.
int readLarge(const char* path, const char* name, AttributeBytes& bytes) {
  for (;;) {
    const ssize_t size = attributeCalls().lgetxattr(path, name, nullptr, 0);
    if (size < 0) return errno;
    // A size of 0 would be a question again.
    if (readInto(bytes, path, name, static_cast<std::size_t>(size) + 1) >= 0) return 0;
    if (errno != ERANGE) return errno;
  }
}

bool isAbsent(const std::string& path, const char* name) {
  return attributeCalls().lgetxattr(path.c_str(), name, nullptr, 0) < 0 && errno == ENODATA;
}

}  // namespace

int readAttribute(const std::string& path, std::string_view name, AttributeBytes& bytes) {
  const StoredName stored(name);
  if (const int error = stored.error(path)) return error;
  if (readInto(bytes, path.c_str(), stored.text(), kUsualSize) >= 0) return 0;
  return errno == ERANGE ? readLarge(path.c_str(), stored.text(), bytes) : errno;
}

int readAttribute(const std::string& path, std::string_view name, Ref<Data>& value) {
  AttributeBytes bytes;
  const int error = readAttribute(path, name, bytes);
  if (error == 0) value = Data::from(bytes.view());
  return error;
}

int writeAttribute(const std::string& path, std::string_view name, std::string_view value) {
  const StoredName stored(name);
  if (const int error = stored.error(path)) return error;
  AttributeCalls& calls = attributeCalls();
  if (calls.lsetxattr(path.c_str(), stored.text(), value.data(), value.size()) == 0) return 0;
  const int error = errno;
  // Some file systems have little room for attributes, and call it full.
  const bool isTooBig = error == ENOSPC && calls.volumeHasRoom(path.c_str(), value.size());
  return isTooBig ? E2BIG : error;
}

int removeAttribute(const std::string& path, std::string_view name) {
  const StoredName stored(name);
  if (const int error = stored.error(path)) return error;
  if (attributeCalls().lremovexattr(path.c_str(), stored.text()) == 0) return 0;
  const int error = errno;
  const bool isRefused = error == EPERM || error == EACCES || error == EROFS;
  return isRefused && isAbsent(path, stored.text()) ? ENODATA : error;
}

int listAttributes(const std::string& path, std::vector<std::string>& names) {
  names.clear();
  if (path.find('\0') != std::string::npos) return EINVAL;
  std::string bytes;
  for (;;) {
    const ssize_t size = attributeCalls().llistxattr(path.c_str(), nullptr, 0);
    if (size < 0) return errno;
    bytes.resize(static_cast<std::size_t>(size) + 1);
    const ssize_t got = attributeCalls().llistxattr(path.c_str(), bytes.data(), bytes.size());
    if (got < 0 && errno != ERANGE) return errno;
    if (got < 0) continue;
    bytes.resize(static_cast<std::size_t>(got));
    break;
  }
  for (std::size_t at = 0; at < bytes.size();) {
    std::string name(bytes.c_str() + at);
    at += name.size() + 1;
    const bool isOwn = name.starts_with(kOwnNamespace);
    const std::string_view rest = std::string_view(name).substr(isOwn ? kOwnNamespace.size() : 0);
    names.emplace_back(isOwn && (rest.empty() || namesNamespace(rest)) ? name : rest);
  }
  return 0;
}

}  // namespace qx::detail

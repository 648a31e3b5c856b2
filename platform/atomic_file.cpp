#include "platform/atomic_file.h"

#include <fcntl.h>

#include <cerrno>
#include <climits>

#include "platform/file_calls.h"
#include "platform/new_content.h"

namespace qx::detail {
namespace {

constexpr int kMostLinks = 40;  // as many as the system follows

bool holdsNul(const std::string& path) { return path.find('\0') != std::string::npos; }

std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// The size is what the system says; the file may hold more by now.
int readAll(int file, std::size_t expected, std::size_t most, std::string& bytes) {
  bytes.resize(expected + 1);  // room to meet the end at once
  std::size_t size = 0;
  for (;;) {
    const ssize_t got = fileCalls().read(file, bytes.data() + size, bytes.size() - size);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return errno;
    if (got == 0) break;
    size += static_cast<std::size_t>(got);
    if (size > most) return EFBIG;
    if (size == bytes.size()) bytes.resize(size * 2);
  }
  bytes.resize(size);
  return 0;
}

bool isForWantOfRoom(int error) {
  return error == ENOSPC || error == EDQUOT || error == EROFS || error == EIO;
}

// A file for the content, without a name where the system has such files.
int writeAside(NewContent& content, std::string_view bytes, const struct stat* like, bool durable,
               bool unnamed) {
  if (!unnamed || !content.beginUnnamed()) {
    if (const int error = content.beginNamed()) return error;
  }
  return content.fill(bytes, like, durable);
}

int closeAndReplace(NewContent& content) {
  OpenFile file = content.takeFile();
  if (const int error = file.close()) return error;
  return content.takePlace();
}

int writeBeside(const std::string& target, std::string_view bytes, const struct stat* like,
                bool durable) {
  {
    NewContent content(target);
    if (const int error = writeAside(content, bytes, like, durable, true)) return error;
    const int error = content.isNamed() ? 0 : content.nameIt();
    if (error == 0) return closeAndReplace(content);
    if (isForWantOfRoom(error)) return error;
  }
  NewContent content(target);
  if (const int error = writeAside(content, bytes, like, durable, false)) return error;
  return closeAndReplace(content);
}

// Puts the content in its place: over what is there, or where nothing is.
int publish(NewContent& content, bool replacing) {
  if (!replacing) return content.takeFreePlace();
  if (!content.isNamed()) {
    if (const int error = content.nameIt()) return error;
  }
  return content.takePlace();
}

}  // namespace

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

int followLinks(std::string path, std::string& target) {
  if (holdsNul(path)) return EINVAL;
  for (int links = 0; links <= kMostLinks; ++links) {
    char to[PATH_MAX];
    const ssize_t size = fileCalls().readlink(path.c_str(), to, sizeof to);
    if (size < 0) {
      if (errno != EINVAL && errno != ENOENT) return errno;
      target = std::move(path);
      return 0;
    }
    const std::string_view link(to, static_cast<std::size_t>(size));
    path = link.starts_with('/') ? std::string(link) : folderOf(path) + "/" + std::string(link);
  }
  return ELOOP;
}

int synchronizeFolder(const std::string& folder) {
  const OpenFile file(folder.c_str(), O_RDONLY | O_DIRECTORY);
  if (!file.isOpen()) return errno == EACCES ? 0 : errno;
  const int error = synchronizeFile(file.get());
  return error == EINVAL || error == ENOTSUP ? 0 : error;
}

int replaceFile(const std::string& path, std::string_view bytes, AtomicWrite how) {
  if (holdsNul(path)) return EINVAL;
  std::string target = path;
  struct stat about{};
  bool exists = false;
  if (how.following) {
    if (const int error = followLinks(path, target)) return error;
    exists = fileCalls().stat(target.c_str(), &about) == 0;
    if (!exists && errno != ENOENT) return errno;
    if (exists && !S_ISREG(about.st_mode)) return S_ISDIR(about.st_mode) ? EISDIR : EINVAL;
  }
  const std::string name = nameOf(target);
  if (name.empty() || name == "." || name == "..") return EISDIR;
  if (const int error = writeBeside(target, bytes, exists ? &about : nullptr, how.durable)) {
    return error;
  }
  return how.durable ? synchronizeFolder(folderOf(target)) : 0;
}

int createFile(const std::string& path, std::string_view bytes) {
  if (holdsNul(path)) return EINVAL;
  OpenFile file(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0666);
  if (!file.isOpen()) return errno;
  int error = writeAll(file.get(), bytes);
  if (error == 0) error = synchronizeFile(file.get());
  if (error == 0) error = file.close();
  if (error != 0) fileCalls().unlink(path.c_str());
  return error;
}

int readFile(const std::string& path, std::string& bytes) {
  return readFile(path, bytes, bytes.max_size() / 4);
}

int readFile(const std::string& path, std::string& bytes, std::size_t most) {
  bytes.clear();
  if (holdsNul(path)) return EINVAL;
  // Opening a pipe for reading would wait for a writer.
  const OpenFile file(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
  return file.isOpen() ? readOpenFile(file.get(), bytes, most) : errno;
}

int readOpenFile(int file, std::string& bytes, std::size_t most) {
  bytes.clear();
  struct stat about{};
  if (fileCalls().fstat(file, &about) != 0) return errno;
  if (!S_ISREG(about.st_mode)) return S_ISDIR(about.st_mode) ? EISDIR : EINVAL;
  if (static_cast<std::size_t>(about.st_size) > most) return EFBIG;
  return readAll(file, static_cast<std::size_t>(about.st_size), most, bytes);
}

int publishFile(const std::string& path, std::string_view bytes, bool replacing, OpenFile& file) {
  if (holdsNul(path)) return EINVAL;
  for (const bool unnamed : {true, false}) {
    NewContent content(path);
    if (const int error = writeAside(content, bytes, nullptr, false, unnamed)) return error;
    const int error = publish(content, replacing);
    if (error == 0) file = content.takeFile();
    // Naming an unnamed file needs /proc; one with a name needs nothing.
    if (error == 0 || error == EEXIST || isForWantOfRoom(error) || !unnamed) return error;
  }
  return 0;
}

int makeFolders(const std::string& path, mode_t mode) {
  if (path.empty()) return ENOENT;
  if (holdsNul(path)) return EINVAL;
  if (fileCalls().mkdir(path.c_str(), mode) == 0) return 0;
  if (errno == ENOENT && folderOf(path) != path) {
    if (const int error = makeFolders(folderOf(path), mode)) return error;
    return fileCalls().mkdir(path.c_str(), mode) == 0 || errno == EEXIST ? 0 : errno;
  }
  if (errno != EEXIST) return errno;
  struct stat about{};
  if (fileCalls().stat(path.c_str(), &about) != 0) return errno;
  return S_ISDIR(about.st_mode) ? 0 : ENOTDIR;
}

}  // namespace qx::detail

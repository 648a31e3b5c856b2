#include "platform/atomic_file.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/random.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>

#include "platform/file_attributes.h"
#include "platform/file_calls.h"

namespace qx::detail {
namespace {

constexpr mode_t kNewFile = 0666;
constexpr int kMostLinks = 40;  // as many as the system follows

bool holdsNul(const std::string& path) { return path.find('\0') != std::string::npos; }

std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// A hidden name beside the target, at most 200 bytes long, that nobody else uses.
std::string temporaryPath(const std::string& target) {
  std::string name = nameOf(target);
  if (name.size() > 170) {
    std::size_t cut = 170;
    while (cut > 0 && (static_cast<unsigned char>(name[cut]) & 0xC0) == 0x80) --cut;
    name.resize(cut);
  }
  std::uint64_t random = 0;
  if (::getrandom(&random, sizeof random, 0) != sizeof random) {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    random =
        (static_cast<std::uint64_t>(::getpid()) << 32) ^ static_cast<std::uint64_t>(now.tv_nsec);
  }
  constexpr char kDigits[] = "0123456789abcdef";
  std::string digits(16, '0');
  for (char& digit : digits) {
    digit = kDigits[random & 15];
    random >>= 4;
  }
  return folderOf(target) + "/." + name + "." + digits + ".tmp";
}

// A file that grows beyond the process's limit raises SIGXFSZ, which ends most programs. While this
// lives, the calling thread gets the error alone.
class FileSizeSignalHeld {
 public:
  FileSizeSignalHeld() {
    sigemptyset(&signal_);
    sigaddset(&signal_, SIGXFSZ);
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGXFSZ) == 1;
    pthread_sigmask(SIG_BLOCK, &signal_, &before_);
  }
  FileSizeSignalHeld(const FileSizeSignalHeld&) = delete;
  FileSizeSignalHeld& operator=(const FileSizeSignalHeld&) = delete;
  ~FileSizeSignalHeld() {
    const timespec now{};
    while (!wasPending_ && sigtimedwait(&signal_, nullptr, &now) == -1 && errno == EINTR) {
    }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

 private:
  sigset_t signal_;
  sigset_t before_;
  bool wasPending_ = false;
};

int writeAll(int file, std::string_view bytes) {
  const FileSizeSignalHeld held;
  while (!bytes.empty()) {
    const ssize_t written = fileCalls().write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    if (written == 0) return EIO;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

int synchronizeFile(int file) {
  while (fileCalls().fsync(file) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

// The new content on its way into the target's place. Until it stands there, whatever exists of it
// is removed again.
class NewContent {
 public:
  explicit NewContent(std::string target) : target_(std::move(target)) {}
  NewContent(const NewContent&) = delete;
  NewContent& operator=(const NewContent&) = delete;
  ~NewContent() {
    if (!name_.empty()) fileCalls().unlink(name_.c_str());
  }

  // A file without a name, of which nothing stays behind even if the process is killed. False where
  // the system has none.
  bool beginUnnamed() {
    file_ = OpenFile(folderOf(target_).c_str(), O_TMPFILE | O_WRONLY, kNewFile);
    return file_.isOpen();
  }

  int beginNamed() {
    for (int tries = 0; tries < 100; ++tries) {
      const std::string path = temporaryPath(target_);
      file_ = OpenFile(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, kNewFile);
      if (file_.isOpen()) {
        name_ = path;
        return 0;
      }
      if (errno != EEXIST) return errno;
    }
    return EEXIST;
  }

  int fill(std::string_view bytes, const struct stat* like, bool durable) {
    if (const int error = writeAll(file_.get(), bytes)) return error;
    if (like != nullptr) {
      if (const int error = becomeLike(*like)) return error;
    }
    return durable ? synchronizeFile(file_.get()) : 0;
  }

  // Gives an unnamed file its temporary name.
  int nameIt() {
    for (int tries = 0; tries < 100; ++tries) {
      const std::string path = temporaryPath(target_);
      if (fileCalls().linkDescriptor(file_.get(), path.c_str()) == 0) {
        name_ = path;
        return 0;
      }
      if (errno != EEXIST) return errno;
    }
    return EEXIST;
  }

  int takePlace() {
    if (const int error = file_.close()) return error;
    if (fileCalls().rename(name_.c_str(), target_.c_str()) != 0) return errno;
    name_.clear();
    return 0;
  }

 private:
  // The owner is kept where the process may; without that right the file becomes the writer's, as
  // any new file would.
  int becomeLike(const struct stat& like) {
    FileCalls& calls = fileCalls();
    if (calls.fchown(file_.get(), like.st_uid, like.st_gid) != 0) {
      (void)calls.fchown(file_.get(), static_cast<uid_t>(-1), like.st_gid);
    }
    if (const int error = copyExtendedAttributes(target_, file_.get())) return error;
    return calls.fchmod(file_.get(), like.st_mode & 07777) == 0 ? 0 : errno;
  }

  std::string target_;
  std::string name_;  // of the temporary file, while there is one
  OpenFile file_;
};

bool isForWantOfRoom(int error) {
  return error == ENOSPC || error == EDQUOT || error == EROFS || error == EIO;
}

int writeBeside(const std::string& target, std::string_view bytes, const struct stat* like,
                bool durable) {
  {
    NewContent content(target);
    if (content.beginUnnamed()) {
      if (const int error = content.fill(bytes, like, durable)) return error;
      const int error = content.nameIt();
      if (error == 0) return content.takePlace();
      if (isForWantOfRoom(error)) return error;
    }
  }
  NewContent content(target);
  if (const int error = content.beginNamed()) return error;
  if (const int error = content.fill(bytes, like, durable)) return error;
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
  OpenFile file(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, kNewFile);
  if (!file.isOpen()) return errno;
  int error = writeAll(file.get(), bytes);
  if (error == 0) error = synchronizeFile(file.get());
  if (error == 0) error = file.close();
  if (error != 0) fileCalls().unlink(path.c_str());
  return error;
}

int readFile(const std::string& path, std::string& bytes) {
  bytes.clear();
  if (holdsNul(path)) return EINVAL;
  // Opening a pipe for reading would wait for a writer.
  const OpenFile file(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (!file.isOpen()) return errno;
  struct stat about{};
  if (fileCalls().fstat(file.get(), &about) != 0) return errno;
  if (!S_ISREG(about.st_mode)) return S_ISDIR(about.st_mode) ? EISDIR : EINVAL;
  bytes.resize(static_cast<std::size_t>(about.st_size) + 1);  // room to meet the end at once
  std::size_t size = 0;
  for (;;) {
    const ssize_t got = fileCalls().read(file.get(), bytes.data() + size, bytes.size() - size);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return errno;
    if (got == 0) break;
    size += static_cast<std::size_t>(got);
    if (size == bytes.size()) bytes.resize(size * 2);
  }
  bytes.resize(size);
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

#include "platform/new_content.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/random.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "platform/atomic_file.h"
#include "platform/file_attributes.h"

namespace qx::detail {
namespace {

constexpr mode_t kNewFile = 0666;
constexpr int kMostNames = 100;  // that are tried before something must be wrong

// A hidden name beside the target, at most 200 bytes long, that nobody else uses.
std::string temporaryPath(const std::string& target) {
  std::string name = target.substr(target.rfind('/') + 1);
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

}  // namespace

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

NewContent::~NewContent() {
  if (!name_.empty()) fileCalls().unlink(name_.c_str());
}

bool NewContent::beginUnnamed() {
  file_ = OpenFile(folderOf(target_).c_str(), O_TMPFILE | O_WRONLY, kNewFile);
  return file_.isOpen();
}

int NewContent::beginNamed() {
  for (int tries = 0; tries < kMostNames; ++tries) {
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

int NewContent::fill(std::string_view bytes, const struct stat* like, bool durable) {
  if (const int error = writeAll(file_.get(), bytes)) return error;
  if (like != nullptr) {
    if (const int error = becomeLike(*like)) return error;
  }
  return durable ? synchronizeFile(file_.get()) : 0;
}

int NewContent::nameIt() {
  for (int tries = 0; tries < kMostNames; ++tries) {
    const std::string path = temporaryPath(target_);
    if (fileCalls().linkDescriptor(file_.get(), path.c_str()) == 0) {
      name_ = path;
      return 0;
    }
    if (errno != EEXIST) return errno;
  }
  return EEXIST;
}

int NewContent::takePlace() {
  if (fileCalls().rename(name_.c_str(), target_.c_str()) != 0) return errno;
  name_.clear();
  return 0;
}

int NewContent::takeFreePlace() {
  const int result = isNamed() ? fileCalls().link(name_.c_str(), target_.c_str())
                               : fileCalls().linkDescriptor(file_.get(), target_.c_str());
  return result == 0 ? 0 : errno;
}

// The owner is kept where the process may; without that right the file becomes the writer's, as
// any new file would.
int NewContent::becomeLike(const struct stat& like) {
  FileCalls& calls = fileCalls();
  if (calls.fchown(file_.get(), like.st_uid, like.st_gid) != 0) {
    (void)calls.fchown(file_.get(), static_cast<uid_t>(-1), like.st_gid);
  }
  if (const int error = copyExtendedAttributes(target_, file_.get())) return error;
  return calls.fchmod(file_.get(), like.st_mode & 07777) == 0 ? 0 : errno;
}

}  // namespace qx::detail

#include "tools/qx/output_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "tools/qx/failure.h"

namespace qxtool {
namespace {

// Of the last system call.
[[noreturn]] void failWriting(const std::string& path) {
  throw Failure("cannot write " + quotedIfEmpty(path) + ": " +
                std::generic_category().message(errno));
}

// False and errno when it fails. Closes the file.
bool writeAndClose(int file, std::string_view content, bool synchronised) {
  bool isDone = true;
  while (isDone && !content.empty()) {
    const ssize_t count = ::write(file, content.data(), content.size());
    if (count >= 0) content.remove_prefix(static_cast<std::size_t>(count));
    isDone = count >= 0 || errno == EINTR;
  }
  if (isDone && synchronised) isDone = ::fsync(file) == 0;
  const int reason = errno;
  const bool isClosed = ::close(file) == 0;
  if (!isDone) errno = reason;
  return isDone && isClosed;
}

mode_t modeOfNewFiles() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

// Writes a file beside the one of that path and gives it its name.
void replaceFile(const std::string& path, std::string_view content, mode_t mode) {
  std::string temporary = path + ".XXXXXX";
  const int file = ::mkostemp(temporary.data(), O_CLOEXEC);
  if (file < 0) failWriting(path);
  const bool hasMode = ::fchmod(file, mode) == 0;
  const bool isWritten = writeAndClose(file, content, true) && hasMode;
  if (isWritten && ::rename(temporary.c_str(), path.c_str()) == 0) return;
  const int reason = errno;
  ::unlink(temporary.c_str());
  errno = reason;
  failWriting(path);
}

}  // namespace

void writeFile(const std::string& path, std::string_view content) {
  struct stat status{};
  if (::stat(path.c_str(), &status) != 0) {
    if (errno != ENOENT) failWriting(path);
    return replaceFile(path, content, modeOfNewFiles());
  }
  if (S_ISREG(status.st_mode)) {
    std::error_code error;
    const auto target = std::filesystem::canonical(path, error);
    return replaceFile(error ? path : target.string(), content, status.st_mode & 07777);
  }
  const int file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (file < 0 || !writeAndClose(file, content, false)) failWriting(path);
}

}  // namespace qxtool

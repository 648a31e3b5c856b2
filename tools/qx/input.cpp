#include "tools/qx/input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "tools/qx/failure.h"
#include "tools/qx/progress.h"

namespace qxtool {
namespace {

constexpr std::size_t kBlockSize = 256 * 1024;

[[noreturn]] void failReading(const std::string& name) {
  throw Failure("cannot read " + name + ": " + std::generic_category().message(errno));
}

}  // namespace

Input::Input(const std::string& path, Progress& progress)
    : name_(path == "-" ? "standard input" : path), progress_(progress) {
  file_ = path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file_ < 0) failReading(name_);
  struct stat status{};
  if (::fstat(file_, &status) == 0 && S_ISREG(status.st_mode)) {
    size_ = static_cast<std::uint64_t>(status.st_size);
  }
  block_.resize(kBlockSize);
}

Input::~Input() {
  if (file_ > STDIN_FILENO) ::close(file_);
}

bool Input::readBlock() {
  ssize_t count = 0;
  do {
    count = ::read(file_, block_.data(), block_.size());
  } while (count < 0 && errno == EINTR);
  if (count < 0) failReading(name_);
  next_ = block_.data();
  end_ = next_ + count;
  read_ += static_cast<std::uint64_t>(count);
  progress_.tick("reading", read_, size_);
  return count > 0;
}

}  // namespace qxtool

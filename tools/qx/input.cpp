#include "tools/qx/input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "tools/qx/failure.h"
#include "tools/qx/printable.h"
#include "tools/qx/progress.h"

namespace qxtool {
namespace {

constexpr std::size_t kBlockSize = 256 * 1024;

[[noreturn]] void failReading(const std::string& name) {
  throw Failure("cannot read " + quotedIfEmpty(name) + ": " +
                std::generic_category().message(errno));
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
  next_ = end_ = block_.data();
}

Input::~Input() {
  if (file_ > STDIN_FILENO) ::close(file_);
}

bool Input::readBlock() {
  next_ = end_ = block_.data();
  return readMore();
}

bool Input::readMore() {
  if (ended_) return false;
  const auto room = static_cast<std::size_t>(block_.data() + block_.size() - end_);
  ssize_t count = 0;
  do {
    count = ::read(file_, end_, room);
  } while (count < 0 && errno == EINTR);
  if (count < 0) failReading(name_);
  ended_ = count == 0;
  end_ += count;
  read_ += static_cast<std::uint64_t>(count);
  progress_.tick("reading", read_, size_);
  return !ended_;
}

std::string_view Input::start() {
  while (end_ != block_.data() + block_.size() && readMore()) {
  }
  return {next_, static_cast<std::size_t>(end_ - next_)};
}

std::string Input::takeRest() {
  std::string rest;
  while (!atEnd()) {
    rest.append(next_, static_cast<std::size_t>(end_ - next_));
    next_ = end_;
  }
  return rest;
}

}  // namespace qxtool

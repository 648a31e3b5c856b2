#pragma once

// The path of a file URL, in the two styles in which it can be written.

#include <optional>
#include <string>
#include <string_view>

namespace qx::detail {

class FilePathURL {
 public:
  // From a POSIX path; a relative one starts at the current directory. "." and ".." are resolved
  // and doubled slashes made one by the text alone. Nothing for the empty path, one with a NUL, and
  // a relative one where the current directory is not known.
  static std::optional<FilePathURL> fromPosixPath(std::string_view path, bool isDirectory);

  // Absolute, without a slash at the end.
  const std::string& posixPath() const { return path_; }
  bool isDirectory() const { return isDirectory_; }

  // The volume's name, then the components of the path on it, each behind a colon; a directory's
  // ends with a colon, and so does a volume's. A colon within a component, which would part it,
  // becomes "/".
  std::string colonPath() const;

 private:
  FilePathURL(std::string path, bool isDirectory)
      : path_(std::move(path)), isDirectory_(isDirectory) {}
  std::string path_;
  bool isDirectory_;
};

}  // namespace qx::detail

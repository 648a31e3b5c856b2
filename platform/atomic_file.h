#pragma once

// Reading whole files, and replacing them so that a reader sees the old content or the new one.
//
// Paths are UTF-8 bytes as the system takes them. Every function gives 0 or the `errno` value of
// what failed; nothing is printed and nothing raised but for want of memory. Thread-safe; two
// writers of one file at the same time leave the content of one of them, whole.

#include <sys/types.h>

#include <string>
#include <string_view>

#include "platform/file_calls.h"

namespace qx::detail {

struct AtomicWrite {
  // The content is on the disk before it takes the old one's place, and the new entry of the folder
  // when the call returns. Without it, a crash of the system may lose the new content.
  bool durable = false;
  // A symbolic link is followed to the file it names, and an existing file's mode, owner (where the
  // process may give files away), and extended attributes are kept. Without it, the entry at the
  // path itself is replaced, by a file with the mode of a new one.
  bool following = false;
};

// Writes a file beside the target and renames it over the target. On failure the target is as it
// was and nothing else stays behind; the one exception is a folder that could not be synchronised
// after the rename, when the new content is in place and the error is still reported. A target that
// is no regular file is refused when following (EISDIR, EINVAL). A hard link to the old content
// keeps the old content. A killed process leaves at most a temporary file, named after the target.
[[nodiscard]] int replaceFile(const std::string& path, std::string_view bytes, AtomicWrite how);

// Writes a file that is not there yet, durably; EEXIST where something is. Nothing stays behind on
// failure.
[[nodiscard]] int createFile(const std::string& path, std::string_view bytes);

// The content of a regular file, links followed. EISDIR for a folder, EINVAL for anything else that
// is no regular file; never waits for a writer.
[[nodiscard]] int readFile(const std::string& path, std::string& bytes);
// The same of a file that is not larger than that; EFBIG for one that is.
[[nodiscard]] int readFile(const std::string& path, std::string& bytes, std::size_t most);

// The same of an open file, from its start.
[[nodiscard]] int readOpenFile(int file, std::string& bytes, std::size_t most);

// Puts a new file with the content in place, whole, and leaves it open: over what is there, or
// (EEXIST otherwise) where nothing is. Neither durable nor following.
[[nodiscard]] int publishFile(const std::string& path, std::string_view bytes, bool replacing,
                              OpenFile& file);

// Where a chain of symbolic links ends; that file need not exist. ELOOP beyond 40 links.
[[nodiscard]] int followLinks(std::string path, std::string& target);

// Creates the folder and those above it that are missing.
[[nodiscard]] int makeFolders(const std::string& path, mode_t mode);

// The folder part of a path; "." where there is none.
std::string folderOf(const std::string& path);

// Makes the entries of a folder last. Folders that the process may not read, and file systems that
// can not do it, count as done.
[[nodiscard]] int synchronizeFolder(const std::string& folder);

}  // namespace qx::detail

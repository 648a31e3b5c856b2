#pragma once

// New content on its way into a file's place.

#include <sys/stat.h>

#include <string>
#include <string_view>

#include "platform/file_calls.h"

namespace qx::detail {

// Writes everything, or gives the `errno` value of what failed. A file that grows beyond the
// process's limit is an error like any other: no signal reaches the program.
[[nodiscard]] int writeAll(int file, std::string_view bytes);
// Waits until the file is on the disk.
[[nodiscard]] int synchronizeFile(int file);

// A new file in the target's folder. Until it stands in the target's place, whatever exists of it
// is removed again. Functions that give an int give 0 or the `errno` value of what failed.
class NewContent {
 public:
  explicit NewContent(std::string target) : target_(std::move(target)) {}
  NewContent(const NewContent&) = delete;
  NewContent& operator=(const NewContent&) = delete;
  ~NewContent();

  // A file without a name, of which nothing stays behind even if the process is killed. False where
  // the system has none.
  bool beginUnnamed();
  int beginNamed();
  // Writes the content. Owner, mode and attributes become those of the target where `like`
  // describes it.
  int fill(std::string_view bytes, const struct stat* like, bool durable);
  // Gives an unnamed file its temporary name.
  int nameIt();
  // Takes the place of what is there, if anything.
  int takePlace();
  // Takes the place where nothing is; EEXIST where something is.
  int takeFreePlace();

  bool isNamed() const { return !name_.empty(); }
  // The file, open; once it stands in its place.
  OpenFile takeFile() { return std::move(file_); }

 private:
  int becomeLike(const struct stat& like);

  std::string target_;
  std::string name_;  // of the temporary file, while there is one
  OpenFile file_;
};

}  // namespace qx::detail

#pragma once

// A file that holds one dictionary as a property list, and never loses what a user had in it.

#include <string>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/error.h>

namespace qx::detail {

class PropertyListFile {
 public:
  // UTF-8; a symbolic link stands for the file it names.
  explicit PropertyListFile(std::string path) : path_(std::move(path)) {}

  const std::string& path() const { return path_; }

  // absent: there is no file, or an empty one. damaged: there is one, and it is no dictionary as a
  // property list. unreadable: the system does not give its content.
  enum class State { absent, whole, damaged, unreadable };
  // Sets `content` where the file is whole, and to nil otherwise. An error where it is unreadable.
  State read(Ref<Dictionary>& content, Ref<Error>* error = nullptr);

  // Puts the dictionary in the file's place, durably, as XML; the file's mode and attributes stay.
  // When the last reading found the file damaged or unreadable, what stands there is first kept as
  // "<file>.damaged"; where another content stands under that name already, nothing is replaced.
  // False with an error, and the old file as it was, where any of that fails.
  [[nodiscard]] bool write(const Dictionary& content, Ref<Error>* error = nullptr);

 private:
  Ref<Error> keepDamaged();

  std::string path_;
  bool keepsFirst_ = false;  // the content at hand was not understood
};

}  // namespace qx::detail

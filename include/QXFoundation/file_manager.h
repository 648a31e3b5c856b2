// FileManager: whether files exist, making folders, removing.
//
//     auto files = qx::FileManager::defaultManager();
//     qx::Ref<qx::Error> error;
//     if (!files->createDirectoryAtPath(path, true, qx::dict({{qx::NSFilePosixPermissions, 0700}}),
//                                       &error)) show(error->localizedDescription());
//
// Paths are taken as the bytes that are given, also where these are no UTF-8; relative ones start
// at the current directory. A path with a NUL names nothing (EINVAL). Nil as a path raises
// InvalidArgumentException.
#pragma once

#include <QXFoundation/dictionary.h>
#include <QXFoundation/error.h>
#include <QXFoundation/object.h>
#include <QXFoundation/string_arg.h>

namespace qx {

// Key of a dictionary of file attributes: the permissions as an integer, of which the lower twelve
// bits count (0700 for the owner alone). They become exactly these, whatever the process's umask
// is. Other keys are left alone.
inline constexpr char NSFilePosixPermissions[] = "NSFilePosixPermissions";

// The class is "NSFileManager". Without state of its own; thread-safe. What other headers add to it
// (locks, temporary names ...) asks for existing files through the receiver, so that a subclass may
// answer otherwise.
class QX_EXPORT FileManager : public Object {
 public:
  // The one that everybody shares.
  static Ref<FileManager> defaultManager();

  // Makes the two locks that stand between threads which look for temporary names and scratch
  // directories, and forgets the scratch directory that was made. An application calls it once,
  // before several threads use these operations; without it there are no locks.
  static void didLoad();

  // Whether there is something at the end of all symbolic links.
  virtual bool fileExistsAtPath(StringArg path) const;
  // The same; sets `isDirectory`, unless that is null or there is nothing.
  virtual bool fileExistsAtPath(StringArg path, bool* isDirectory) const;

  // Makes a folder. With intermediate directories, those above it are made too, with the rights
  // that new folders have, and a folder that exists already is a success and left as it is;
  // without, both are failures. Nil attributes give it the rights of a new folder. When the rights
  // asked for can not be set, nothing stays behind.
  virtual bool createDirectoryAtPath(StringArg path, bool withIntermediateDirectories,
                                     In<Dictionary> attributes, Ref<Error>* error = nullptr);

  // Removes a file, a symbolic link (not what it names), or a folder with everything in it.
  virtual bool removeItemAtPath(StringArg path, Ref<Error>* error = nullptr);

  // What is at the path, symbolic links not followed: a dictionary with NSFilePosixPermissions. Nil
  // and an error where there is nothing.
  virtual Ref<Dictionary> attributesOfItemAtPath(StringArg path, Ref<Error>* error = nullptr) const;

 protected:
  ~FileManager() override;
};

QX_EXPORT const Class& classObject(detail::Type<FileManager>);

}  // namespace qx

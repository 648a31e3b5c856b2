// Chains of folders, names that are not in use yet, a private scratch folder, exclusion from
// backups.
//
//     auto files = qx::FileManager::defaultManager();
//     createPathToFile(files, "/data/a/b/c.txt", nullptr);               // makes /data/a/b
//     auto name = tempFilenameFromTemplate(files, "/tmp/out-@@.txt", "@@");   // "/tmp/out-1.txt"
//     auto folder = scratchDirectoryPath(files);   // "/tmp/Report-alice-1", of this process alone
//
// A nil file manager gives nil or false, and nil as a path or template raises
// InvalidArgumentException. An application that uses these operations from several threads calls
// FileManager::didLoad once before.
#pragma once

#include <cstdint>

#include <QXFoundation/file_manager.h>
#include <QXFoundation/string.h>
#include <QXFoundation/url.h>

namespace qx {

// The extended attribute by which another system keeps a file out of backups, for clients that care
// for files of that system. The library itself does not use it.
inline constexpr char iCloudDoNotBackupAttributeName[] = "com.apple.MobileBackup";

// Makes the folders that are missing on the way, each with these attributes (see
// NSFilePosixPermissions; nil for those of a new folder). What exists is passed over, folder or
// not. False as soon as one can not be made; those made before stay. The shared file manager does
// the work, whichever is the receiver.
QX_EXPORT bool createDirectoriesAtPath(In<FileManager> files, StringArg path,
                                       In<Dictionary> attributes);
// The same for the folders above a file. True, with nothing made, for a name without a folder.
QX_EXPORT bool createPathToFile(In<FileManager> files, StringArg path, In<Dictionary> attributes);

// The template with a part replaced by the first number, from 1 on, that makes a path where nothing
// exists. Nothing is made: the name is free at the moment of the test, and the lock stands between
// the threads of this process only. A range outside the template (in UTF-16 code units) raises
// RangeException; so does a position, which stands for the six units behind it, without as many,
// and a substring that does not occur.
QX_EXPORT Ref<String> tempFilenameFromTemplate(In<FileManager> files, StringArg pattern,
                                               Range andRange);
QX_EXPORT Ref<String> tempFilenameFromTemplate(In<FileManager> files, StringArg pattern,
                                               std::int32_t andPosition);
QX_EXPORT Ref<String> tempFilenameFromTemplate(In<FileManager> files, StringArg pattern,
                                               StringArg andSubstring);
// The same for the first "######".
QX_EXPORT Ref<String> tempFilenameFromHashesTemplate(In<FileManager> files, StringArg pattern);

// A folder for this process alone, which only its user may enter. Made by the first call, and anew
// when it has vanished; never deleted by the library. It stands in the folder that the user default
// "QXScratchDirectory" names, or in NSTemporaryDirectory where that is absent, "" or
// "NSTemporaryDirectory", and is called "PROCESS-USER-NUMBER". Nil where it can not be made.
QX_EXPORT Ref<String> scratchDirectoryPath(In<FileManager> files);

// Sets NSURLIsExcludedFromBackupKey (url.h). Whether that succeeded is not told.
QX_EXPORT void excludeURLFromBackup(In<FileManager> files, In<URL> url);

}  // namespace qx

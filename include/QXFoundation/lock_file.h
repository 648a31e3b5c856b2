// Lock files: advisory locks that name their holder, for programs that agree to ask for them.
//
//     auto files = qx::FileManager::defaultManager();
//     bool created = false;
//     qx::Ref<qx::Error> error;
//     auto record = lockFileAtPath(files, "/data/report.txt", false, created, &error);
//     if (created) {                                     // ours
//       work();
//       unlockFileAtPath(files, "/data/report.txt");
//     } else if (record) {                               // held: the holder's record
//       show(record->objectForKey("userName"));
//     } else {                                           // it could not be written
//     }
//
// The lock of a file is another file beside it, with ".lock" added to its name: a property list
// (XML) with up to four entries.
//
//     hostIdentifier   string   QXUniqueMachineIdentifier
//     hostName         string   QXHostName
//     userName         string   NSUserName
//     processNumber    integer  the number of the process
//
// A lock binds only those who ask. It stays when its process ends without unlocking; the next one
// to ask on the same machine takes it over. Between looking and writing another process may write
// its own lock: THE LAST WRITER WINS, and the first is not told. Where two must never hold one
// lock, use QXFileLock (file_lock.h) on all sides; its header tells how the two kinds meet.
// Thread-safe; no lock stands between the threads of a process.
#pragma once

#include <QXFoundation/file_manager.h>

namespace qx {

// The path of the lock: that of the file, standardised (see stringByStandardizingPath), and
// ".lock". A nil path raises InvalidArgumentException, here and below; a nil file manager gives
// nil.
QX_EXPORT Ref<String> lockFilePathForPath(In<FileManager> files, StringArg path);

// Takes the lock, and gives the new record with `created` true. With `created` false: the holder's
// record (which may be this process), an empty dictionary where there is a lock that can not be
// read, or nil where the lock could not be written. The error is filled only where writing the lock
// itself failed, not where folders are missing and can not be made.
//
// A lock is taken over when its record is of this machine (by identifier, else by host name) and
// its process is gone. With `overridingExistingLock` any lock is replaced, unread.
QX_EXPORT Ref<Dictionary> lockFileAtPath(In<FileManager> files, StringArg path,
                                         bool overridingExistingLock, bool& created,
                                         Ref<Error>* error = nullptr);

// Removes the lock. Raises InternalInconsistencyException where there is none, it can not be read,
// or its record does not name this host, user and process; GenericException where it can not be
// removed. The lock then stays as it was.
QX_EXPORT void unlockFileAtPath(In<FileManager> files, StringArg path);

// What became of the process that a lock's record names.
enum class LockHolder : unsigned char {
  alive,    // it exists, or may: the lock is held
  gone,     // it was on this machine and has ended: the lock is taken over by who asks next
  unknown,  // it can not be judged from here: of another machine, or the record names no process
};
// Judges the process that the record names.
QX_EXPORT LockHolder holderOfLockRecord(In<Dictionary> record);

// The record of the lock of a file as it is now; nil where there is no lock, an empty dictionary
// where it can not be read.
QX_EXPORT Ref<Dictionary> lockRecordForPath(In<FileManager> files, StringArg path);

}  // namespace qx

#pragma once

// The steps by which a lock file is published, taken over and removed by one process at a time.

#include <string>

#include <QXFoundation/dictionary.h>

#include "platform/file_calls.h"

namespace qx::detail {

struct LockAttempt {
  int error = 0;           // an `errno` value; then nothing else is set
  OpenFile file;           // the lock file, open, where the lock was got
  Ref<Dictionary> record;  // the new record, or the holder's; empty where it can not be read
};

LockAttempt attemptLock(const std::string& lockPath);

// Removes the lock file if it is the open one; ESTALE where it is another, or none.
[[nodiscard]] int removeLock(const std::string& lockPath, const OpenFile& file);

}  // namespace qx::detail

#pragma once

// What a lock file holds, and what it tells of its holder.

#include <cstdint>
#include <string>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/error.h>
#include <QXFoundation/lock_file.h>

namespace qx::detail {

// The path of a file's lock, as bytes.
std::string lockPathOf(StringArg path);

// The record of this process.
Ref<Dictionary> ownLockRecord();

// The bytes of a lock file; false where the record can not be written as one.
[[nodiscard]] bool lockFileBytes(const Dictionary& record, std::string& bytes);

// The record that bytes hold; nil where they are no dictionary as a property list.
Ref<Dictionary> lockRecordFrom(std::string_view bytes);
// The same of a file. What is larger than any record is not read.
Ref<Dictionary> readLockFile(const std::string& path);

// Whether this process made the record: host name, user and process, all three.
bool isOwnLockRecord(const Dictionary& record);

}  // namespace qx::detail

// The lock of a file as somebody else holds it.
#pragma once

#include <optional>
#include <string>

#include <QXFoundation/dictionary.h>

namespace qxtool {

struct HeldLock {
  std::string file;  // the lock file
  // Who holds it; empty where that can not be read, and then the reason is known.
  qx::Ref<qx::Dictionary> record;
  std::string fault;
};

// The lock of the file of that path; none where there is no lock. Whatever stands in its place
// counts: nobody gets the lock while it does. A Failure where that can not be looked at.
std::optional<HeldLock> heldLockOf(const std::string& path);

// An entry of a lock's record, made printable; "unknown" where it lacks it.
std::string entryOf(const qx::Dictionary& record, const char* key);

}  // namespace qxtool

// qx lock: runs a command while it holds the lock of a file, or shows who holds it.

#include <unistd.h>

#include <CLI/App.hpp>
#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include <QXFoundation/file_lock.h>
#include <QXFoundation/lock_file.h>

#include "tools/qx/child_command.h"
#include "tools/qx/command.h"
#include "tools/qx/failure.h"
#include "tools/qx/labelled_lines.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

constexpr int kHeld = 75;

struct LockOptions {
  std::string path;
  std::vector<std::string> command;
  bool overriding = false;
  bool show = false;
};

std::string entryOf(const qx::Ref<qx::Dictionary>& record, const char* key) {
  const qx::PropertyValue value = record->objectForKey(key);
  return value.isNil() ? "unknown" : printable(value.description());
}

const char* nameOf(qx::LockHolder holder) {
  switch (holder) {
    case qx::LockHolder::alive:
      return "alive";
    case qx::LockHolder::gone:
      return "gone";
    case qx::LockHolder::unknown:
      break;
  }
  return "cannot be judged from here";
}

void showLock(const LockOptions& options) {
  const auto files = qx::FileManager::defaultManager();
  const auto record = lockRecordForPath(files, options.path);
  if (record == nullptr) throw Failure(options.path + " is not locked", Failure::kNotFound);
  showLines({{"lock", printable(lockFilePathForPath(files, options.path)->utf8())},
             {"user", entryOf(record, "userName")},
             {"host", entryOf(record, "hostName")},
             {"machine", entryOf(record, "hostIdentifier")},
             {"process", entryOf(record, "processNumber")},
             {"holder", nameOf(qx::holderOfLockRecord(record))}});
}

[[noreturn]] void failAsHeld(const std::string& path, const qx::Ref<qx::Dictionary>& record) {
  throw Failure(path + " is locked by " + entryOf(record, "userName") + " on " +
                    entryOf(record, "hostName") + " (" + entryOf(record, "hostIdentifier") +
                    "), process " + entryOf(record, "processNumber"),
                kHeld);
}

[[noreturn]] void failFor(const std::string& path, const qx::Ref<qx::Error>& error) {
  throw Failure("cannot lock " + path +
                (error != nullptr ? ": " + error->localizedDescription() : ""));
}

// The lock there is now gives way, whoever holds it; the next step is the same for all. A folder of
// that name is no lock, and nobody means to lose what is in it.
void removeOther(const std::string& path) {
  const auto lock = lockFilePathForPath(qx::FileManager::defaultManager(), path)->utf8();
  if (::unlink(lock.c_str()) != 0 && errno != ENOENT) failFor(path, qx::Error::posixError(errno));
}

qx::QXFileLock lockOf(const LockOptions& options) {
  if (options.overriding) removeOther(options.path);
  qx::Ref<qx::Error> error;
  auto lock = qx::QXFileLock::lock(options.path, &error);
  if (!lock.isHeld() && lock.record() != nullptr) failAsHeld(options.path, lock.record());
  if (!lock.isHeld()) failFor(options.path, error);
  return lock;
}

void runLocked(const LockOptions& options) {
  HeldSignals signals;
  auto lock = lockOf(options);
  const int status = signals.run(options.command);
  qx::Ref<qx::Error> error;
  if (!lock.unlock(&error) && status == 0) {
    throw Failure(
        "the command is done, but its lock was not there any more, or could not be "
        "removed: " +
        (error != nullptr ? error->localizedDescription() : std::string()));
  }
  if (status != 0) throw Exit{status};
}

void runLock(const LockOptions& options) {
  if (options.show == !options.command.empty()) {
    throw Failure(options.show ? "--show runs no command"
                               : "no command is given; it stands behind --, or use --show");
  }
  options.show ? showLock(options) : runLocked(options);
}

std::function<void()> declareLock(CLI::App& app) {
  const auto options = std::make_shared<LockOptions>();
  app.add_option("PATH", options->path, "The file to lock; the lock is PATH.lock beside it")
      ->type_name("")
      ->required();
  app.add_option("COMMAND", options->command, "What to run under the lock, behind --")
      ->type_name("");
  app.add_flag("--override", options->overriding, "Take the lock from whoever holds it");
  app.add_flag("--show", options->show, "Show the lock's record, and whether its holder lives");
  return [options] { runLock(*options); };
}

}  // namespace

const Command kLockCommand{
    "lock", "Run a command under the lock of a file, or show who holds it",
    "The exit status is that of the command, 128 and the signal's number where a signal ended "
    "it,\n"
    "and 75 where the lock is held. Signals that would end qx are handed on to the command, and "
    "the\n"
    "lock is given back when the command has ended. --show tells 1 where there is no lock.\n"
    "\n"
    "Examples:\n"
    "  qx lock report.txt -- sort -o report.txt report.txt\n"
    "  qx lock report.txt --show",
    &declareLock};

}  // namespace qxtool

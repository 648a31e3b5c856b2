// qx lock: runs a command while it holds the lock of a file, or shows who holds it.

#include <unistd.h>

#include <CLI/App.hpp>
#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/file_lock.h>
#include <QXFoundation/lock_file.h>

#include "tools/qx/child_command.h"
#include "tools/qx/command.h"
#include "tools/qx/failure.h"
#include "tools/qx/held_lock.h"
#include "tools/qx/labelled_lines.h"
#include "tools/qx/message.h"
#include "tools/qx/output.h"
#include "tools/qx/printable.h"
#include "tools/qx/typed_values.h"

namespace qxtool {
namespace {

constexpr int kHeld = 75;

struct LockOptions {
  std::string path;
  std::vector<std::string> command;
  bool overriding = false;
  bool show = false;
  bool json = false;
};

struct HolderState {
  const char* text;  // for people
  const char* name;  // in JSON
};

HolderState stateOf(qx::LockHolder holder) {
  switch (holder) {
    case qx::LockHolder::alive:
      return {"alive", "alive"};
    case qx::LockHolder::gone:
      return {"gone", "gone"};
    case qx::LockHolder::unknown:
      break;
  }
  return {"cannot be judged from here", "unknown"};
}

void showLines(const HeldLock& lock) {
  const qx::Dictionary& record = *lock.record;
  std::vector<LabelledLine> lines{{"lock", printable(lock.file)},
                                  {"user", entryOf(record, "userName")},
                                  {"host", entryOf(record, "hostName")},
                                  {"machine", entryOf(record, "hostIdentifier")},
                                  {"process", entryOf(record, "processNumber")},
                                  {"holder", stateOf(qx::holderOfLockRecord(lock.record)).text}};
  if (!lock.fault.empty()) lines.push_back({"fault", lock.fault});
  showLines(lines);
}

qx::PropertyValue stringOrNull(const qx::PropertyValue& value) {
  return value.isString() ? value : qx::PropertyValue(qx::null);
}

void showJson(const HeldLock& lock) {
  const qx::Dictionary& record = *lock.record;
  const qx::PropertyValue process = record.objectForKey("processNumber");
  const auto all = qx::MutableDictionary::init();
  all->setObject(lock.file, "lock");
  all->setObject(stringOrNull(record.objectForKey("userName")), "user");
  all->setObject(stringOrNull(record.objectForKey("hostName")), "host");
  all->setObject(stringOrNull(record.objectForKey("hostIdentifier")), "machine");
  all->setObject(process.isNil() ? qx::PropertyValue(qx::null) : process.intValue(), "process");
  all->setObject(stateOf(qx::holderOfLockRecord(lock.record)).name, "holder");
  if (!lock.fault.empty()) all->setObject(lock.fault, "fault");
  show(valueJson(all) + "\n");
}

void showLock(const LockOptions& options) {
  if (options.json && !isValidUtf8(options.path)) {
    throw Failure("JSON has no form for a name that is not UTF-8: " + options.path);
  }
  const auto lock = heldLockOf(options.path);
  if (!lock) throw Failure(options.path + " is not locked", Failure::kNotFound);
  options.json ? showJson(*lock) : showLines(*lock);
}

[[noreturn]] void failAsHeld(const std::string& path, const qx::Dictionary& record) {
  if (record.count() > 0) {
    throw Failure(path + " is locked by " + entryOf(record, "userName") + " on " +
                      entryOf(record, "hostName") + " (" + entryOf(record, "hostIdentifier") +
                      "), process " + entryOf(record, "processNumber"),
                  kHeld);
  }
  const auto lock = heldLockOf(path);
  throw Failure(path + " is locked, by whom cannot be read" +
                    (lock ? " in " + lock->file + ": " + lock->fault : std::string()),
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
  if (!lock.isHeld() && lock.record() != nullptr) failAsHeld(options.path, *lock.record());
  if (!lock.isHeld()) failFor(options.path, error);
  return lock;
}

// Empty where the lock was the command's to its end.
std::string lossOf(qx::QXFileLock& lock, const std::string& path) {
  qx::Ref<qx::Error> error;
  if (lock.unlock(&error)) return {};
  if (error == nullptr || error->code() == ESTALE) {
    return "somebody took or removed the lock of " + path + " while the command ran";
  }
  return "the lock of " + path + " cannot be removed: " + error->localizedDescription();
}

void runLocked(const LockOptions& options) {
  HeldSignals signals;
  auto lock = lockOf(options);
  const int status = signals.run(options.command);
  const std::string loss = lossOf(lock, options.path);
  if (!loss.empty()) tell(loss);
  if (status != 0) throw Exit{status};
  if (!loss.empty()) throw Exit{Failure::kFailed};
}

void runLock(const LockOptions& options) {
  if (options.path.empty()) throw Failure("PATH is empty");
  if (options.show == !options.command.empty()) {
    throw Failure(options.show ? "--show runs no command"
                               : "no command is given; it stands behind --, or use --show");
  }
  if (options.show && options.overriding) throw Failure("--show overrides nothing");
  if (!options.show && options.json) throw Failure("--json goes with --show");
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
  app.add_flag("--json", options->json, "With --show: as JSON");
  return [options] { runLock(*options); };
}

}  // namespace

const Command kLockCommand{
    "lock", "Run a command under the lock of a file, or show who holds it",
    "The exit status is that of the command, 128 and the signal's number where a signal ended "
    "it,\n"
    "and 75 where the lock is held. Signals that would end qx are handed on to the command, and "
    "the\n"
    "lock is given back when the command has ended. --show tells 1 where there is no lock; a lock\n"
    "that was lost while the command ran is told, with 2 where the command gave 0.\n"
    "\n"
    "Examples:\n"
    "  qx lock report.txt -- sort -o report.txt report.txt\n"
    "  qx lock report.txt --show --json",
    &declareLock};

}  // namespace qxtool

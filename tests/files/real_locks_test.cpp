// Locks of real processes: live ones, dead ones, and those of other users.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include <QXFoundation/exception.h>
#include <QXFoundation/file_lock.h>
#include <QXFoundation/lock_file.h>

#include "platform/processes.h"
#include "tests/files/lock_records.h"
#include "tests/frame/raises.h"
#include "tests/support/child_process.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::ChildProcess;
using test_support::files;
using test_support::recordOfProcess;
using test_support::TemporaryFolder;
using test_support::writeRecord;

TEST(RealLocks, OfADeadProcessAreTakenOver) {
  const TemporaryFolder folder;
  ChildProcess child([&] {
    bool created = false;
    return lockFileAtPath(files(), folder / "f", false, created) != nullptr && created ? 0 : 1;
  });
  const pid_t number = child.number();
  ASSERT_EQ(child.wait(), 0);
  EXPECT_TRUE(lockRecordForPath(files(), folder / "f")->objectForKey("processNumber") == number);
  bool created = false;
  const auto record = lockFileAtPath(files(), folder / "f", false, created);
  EXPECT_TRUE(created);
  EXPECT_TRUE(record->objectForKey("processNumber") == ::getpid());
}

TEST(RealLocks, OfALiveProcessAreHeld) {
  const TemporaryFolder folder;
  ChildProcess child([] {
    ::pause();
    return 0;
  });
  writeRecord(folder / "f.lock", recordOfProcess(child.number()));
  bool created = true;
  EXPECT_TRUE(PropertyValue(lockFileAtPath(files(), folder / "f", false, created)) ==
              PropertyValue(recordOfProcess(child.number())));
  EXPECT_FALSE(created);
  EXPECT_THROW(unlockFileAtPath(files(), folder / "f"), InternalInconsistencyException);
  child.kill();
  EXPECT_TRUE(lockFileAtPath(files(), folder / "f", false, created) != nullptr);
  EXPECT_TRUE(created);
}

// To a process without rights, one of root's is alive although it may not be signalled, and gone
// once it has ended.
TEST(RealLocks, OfAProcessThatMayNotBeSignalledAreHeldUntilItEnds) {
  if (::getuid() != 0) GTEST_SKIP() << "only a privileged process can give its rights up";
  const TemporaryFolder folder;
  std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
  ChildProcess holder([] {
    ::pause();
    return 0;
  });
  const pid_t own = ::getpid();
  ChildProcess child([&] {
    if (!test_support::becomeNobody() || ::getuid() == 0 || ::geteuid() == 0) return 10;
    const std::string lockPath = folder / "f.lock";
    for (const pid_t process : {pid_t{1}, own, holder.number()}) {
      if (::kill(process, 0) == 0 || errno != EPERM) return 11;
      if (detail::processes().probe(process) != EPERM) return 12;
      const auto record = recordOfProcess(process);
      writeRecord(lockPath, record);
      if (holderOfLockRecord(record) != LockHolder::alive) return 13;
      bool created = true;
      const auto found = lockFileAtPath(files(), folder / "f", false, created);
      if (created || !found->isEqual(record)) return 14;
      const auto strict = QXFileLock::lock(folder / "f");
      if (strict.isHeld() || !strict.record()->isEqual(record)) return 15;
    }
    ::kill(::getpid(), SIGSTOP);
    bool created = false;
    const auto taken = lockFileAtPath(files(), folder / "f", false, created);
    return created && taken->objectForKey("processNumber") == ::getpid() ? 0 : 16;
  });
  int status = 0;
  ASSERT_EQ(::waitpid(child.number(), &status, WUNTRACED), child.number());
  if (WIFEXITED(status)) FAIL() << "step " << WEXITSTATUS(status);
  holder.kill();
  ::kill(child.number(), SIGCONT);
  EXPECT_EQ(child.wait(), 0);
}

TEST(RealLocks, OfAnotherUserAreNotUnlocked) {
  if (::getuid() != 0) GTEST_SKIP() << "only a privileged process can give its rights up";
  const TemporaryFolder folder;
  std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
  ChildProcess child([&] {
    bool created = false;
    lockFileAtPath(files(), folder / "f", false, created);
    if (!created || !test_support::becomeNobody()) return 10;
    const std::string reason =
        reasonOf<InternalInconsistencyException>([&] { unlockFileAtPath(files(), folder / "f"); });
    return reason.find("lock file doesn't match current process") != std::string::npos ? 0 : 11;
  });
  EXPECT_EQ(child.wait(), 0);
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"f.lock"}));
}

TEST(RealLocks, InAFolderThatMayNotBeWrittenFail) {
  if (::getuid() != 0) GTEST_SKIP() << "only a privileged process can give its rights up";
  const TemporaryFolder folder;
  std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
  std::filesystem::create_directory(folder / "d");
  ChildProcess child([&] {
    if (!test_support::becomeNobody()) return 10;
    bool created = true;
    Ref<Error> error;
    if (lockFileAtPath(files(), folder / "d/f", false, created, &error) != nullptr || created)
      return 11;
    if (error == nullptr || error->code() != EACCES) return 12;
    return lockFileAtPath(files(), folder / "new/f", false, created, &error) == nullptr &&
                   error == nullptr
               ? 0
               : 13;
  });
  EXPECT_EQ(child.wait(), 0);
}

TEST(RealLocks, AreReadableForOthers) {
  const TemporaryFolder folder;
  const test_support::WithUmask umask(022);
  bool created = false;
  lockFileAtPath(files(), folder / "f", false, created);
  EXPECT_EQ(test_support::modeOf(folder / "f.lock"), 0644U);
}

}  // namespace
}  // namespace qx

// QXFileLock: one holder at a time, stale locks, and how it meets lockFileAtPath.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <type_traits>

#include <QXFoundation/exception.h>
#include <QXFoundation/file_lock.h>
#include <QXFoundation/lock_file.h>
#include <QXFoundation/machine_identity.h>
#include <QXFoundation/path.h>

#include "tests/files/lock_records.h"
#include "tests/support/child_process.h"
#include "tests/support/failing_file_calls.h"
#include "tests/support/fake_machine.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::ChildProcess;
using test_support::files;

static_assert(!std::is_copy_constructible_v<QXFileLock>);
static_assert(std::is_nothrow_move_constructible_v<QXFileLock>);
static_assert(std::is_nothrow_move_assignable_v<QXFileLock>);

class FileLockTest : public testing::Test {
 protected:
  bool isLocked() const { return std::filesystem::exists(lock_); }
  void writeRecord(const PropertyValue& record) const { test_support::writeRecord(lock_, record); }
  void writeRecordOf(pid_t process) const { writeRecord(test_support::recordOfProcess(process)); }

  test_support::TemporaryFolder folder_;
  std::string path_ = folder_ / "f";
  std::string lock_ = folder_ / "f.lock";
  Ref<Error> error_;
};

TEST_F(FileLockTest, HoldsUntilItGoes) {
  {
    const auto lock = QXFileLock::lock(path_, &error_);
    ASSERT_TRUE(lock.isHeld());
    EXPECT_TRUE(PropertyValue(lockRecordForPath(files(), path_)) == PropertyValue(lock.record()));
    EXPECT_TRUE(lock.record()->objectForKey("processNumber") == ::getpid());
    EXPECT_EQ(lock.record()->count(), 4U);
    EXPECT_EQ(folder_.names(), (std::vector<std::string>{"f.lock"}));
  }
  EXPECT_TRUE(folder_.names().empty());
  EXPECT_TRUE(error_ == nullptr);
}

TEST_F(FileLockTest, IsUnlockedByHand) {
  auto lock = QXFileLock::lock(path_, &error_);
  EXPECT_TRUE(lock.unlock(&error_));
  EXPECT_FALSE(lock.isHeld());
  EXPECT_TRUE(lock.record() == nullptr);
  EXPECT_FALSE(isLocked());
  EXPECT_FALSE(lock.unlock(&error_));
  EXPECT_TRUE(error_ == nullptr);
}

TEST_F(FileLockTest, IsHeldByOneAtATime) {
  const auto first = QXFileLock::lock(path_);
  const auto second = QXFileLock::lock(path_, &error_);
  EXPECT_FALSE(second.isHeld());
  EXPECT_TRUE(PropertyValue(second.record()) == PropertyValue(first.record()));
  EXPECT_TRUE(error_ == nullptr);
  EXPECT_TRUE(first.isHeld());
}

TEST_F(FileLockTest, MovesWithItsLock) {
  auto first = QXFileLock::lock(path_);
  QXFileLock second = std::move(first);
  EXPECT_FALSE(first.isHeld());  // NOLINT(bugprone-use-after-move): it is empty then
  EXPECT_TRUE(second.isHeld());
  auto other = QXFileLock::lock(folder_ / "g");
  other = std::move(second);
  EXPECT_TRUE(other.isHeld());
  EXPECT_EQ(folder_.names(), (std::vector<std::string>{"f.lock"}));
  QXFileLock& itself = other;
  other = std::move(itself);
  EXPECT_TRUE(other.isHeld());
  other = QXFileLock();
  EXPECT_FALSE(isLocked());
}

TEST_F(FileLockTest, MakesMissingFolders) {
  const auto lock = QXFileLock::lock(folder_ / "a/b/f", &error_);
  EXPECT_TRUE(lock.isHeld());
  EXPECT_TRUE(std::filesystem::exists(folder_ / "a/b/f.lock"));
}

TEST_F(FileLockTest, TakesOverFromADeadProcess) {
  ChildProcess child([&] {
    auto lock = QXFileLock::lock(path_);
    return lock.isHeld() ? (::_exit(0), 0) : 1;
  });
  ASSERT_EQ(child.wait(), 0);
  ASSERT_TRUE(isLocked());
  const auto lock = QXFileLock::lock(path_, &error_);
  EXPECT_TRUE(lock.isHeld());
  EXPECT_EQ(folder_.names(), (std::vector<std::string>{"f.lock"}));
  EXPECT_TRUE(lockRecordForPath(files(), path_)->objectForKey("processNumber") == ::getpid());
}

TEST_F(FileLockTest, LeavesAllOtherLocksAlone) {
  ChildProcess alive([] {
    ::pause();
    return 0;
  });
  const auto held = [&] {
    const std::string before = test_support::readBytes(lock_);
    const auto lock = QXFileLock::lock(path_, &error_);
    return !lock.isHeld() && error_ == nullptr && lock.record() != nullptr &&
           test_support::readBytes(lock_) == before;
  };
  writeRecordOf(alive.number());
  EXPECT_TRUE(held());
  writeRecordOf(1);
  EXPECT_TRUE(held());
  writeRecordOf(0);
  EXPECT_TRUE(held());
  writeRecord(
      dict({{"hostIdentifier", "another"}, {"hostName", "another"}, {"processNumber", 999999}}));
  EXPECT_TRUE(held());
  for (const char* garbage : {"", "garbage", "<plist><array/></plist>"}) {
    test_support::writeBytes(lock_, garbage);
    EXPECT_TRUE(held());
    EXPECT_EQ(QXFileLock::lock(path_).record()->count(), 0U);
  }
}

TEST_F(FileLockTest, TakesWhatIsNoFileForALockOfOthers) {
  std::filesystem::create_directory(lock_);
  EXPECT_EQ(QXFileLock::lock(path_, &error_).record()->count(), 0U);
  std::filesystem::remove(lock_);
  std::filesystem::create_symlink(folder_ / "nowhere", lock_);
  EXPECT_EQ(QXFileLock::lock(path_, &error_).record()->count(), 0U);
  EXPECT_TRUE(std::filesystem::is_symlink(lock_));
  EXPECT_TRUE(error_ == nullptr);
}

TEST_F(FileLockTest, RemovesOnlyItsOwn) {
  auto lock = QXFileLock::lock(path_);
  writeRecordOf(::getpid());
  EXPECT_TRUE(lock.unlock()) << "the same file, written to";

  lock = QXFileLock::lock(path_);
  bool created = false;
  const auto other = lockFileAtPath(files(), path_, true, created);
  ASSERT_TRUE(created);
  EXPECT_FALSE(lock.unlock(&error_));
  EXPECT_EQ(error_->code(), ESTALE);
  EXPECT_TRUE(isLocked());
  unlockFileAtPath(files(), path_);

  lock = QXFileLock::lock(path_);
  unlockFileAtPath(files(), path_);
  EXPECT_FALSE(lock.unlock(&error_));
  EXPECT_EQ(error_->code(), ESTALE);
}

// Numbers of files are given anew at once by some file systems.
TEST_F(FileLockTest, IsNotTakenInByAFileOfTheSameNumber) {
  auto lock = QXFileLock::lock(path_);
  std::filesystem::remove(lock_);
  for (int i = 0; i < 50; ++i) {
    writeRecordOf(::getpid());
    if (i < 49) std::filesystem::remove(lock_);
  }
  EXPECT_FALSE(lock.unlock(&error_));
  EXPECT_TRUE(isLocked());
}

TEST_F(FileLockTest, RemainsTheParentsInAForkedChild) {
  auto lock = QXFileLock::lock(path_);
  ChildProcess child([&] {
    const bool held = lock.isHeld();
    const bool unlocked = lock.unlock();
    lock = QXFileLock();
    return held || unlocked || !isLocked() ? 1 : 0;
  });
  EXPECT_EQ(child.wait(), 0);
  EXPECT_TRUE(isLocked());
  EXPECT_TRUE(lock.unlock());
}

TEST_F(FileLockTest, HonoursLockFilesAndIsHonoured) {
  bool created = false;
  {
    const auto lock = QXFileLock::lock(path_);
    EXPECT_TRUE(PropertyValue(lockFileAtPath(files(), path_, false, created)) ==
                PropertyValue(lock.record()));
    EXPECT_FALSE(created);
  }
  const auto record = lockFileAtPath(files(), path_, false, created);
  ASSERT_TRUE(created);
  const auto lock = QXFileLock::lock(path_);
  EXPECT_FALSE(lock.isHeld());
  EXPECT_TRUE(PropertyValue(lock.record()) == PropertyValue(record));
}

TEST_F(FileLockTest, GivesUpWhereTheOldFileStaysLocked) {
  writeRecordOf(test_support::endedProcess());
  const int file = ::open(lock_.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(file, LOCK_EX), 0);
  const auto lock = QXFileLock::lock(path_, &error_);
  EXPECT_FALSE(lock.isHeld());
  EXPECT_TRUE(lock.record() == nullptr);
  EXPECT_EQ(error_->code(), EAGAIN);
  ::close(file);
  EXPECT_TRUE(QXFileLock::lock(path_).isHeld());
}

// Whoever may read a lock file may lock it, too.
TEST_F(FileLockTest, IsGivenBackThoughAStrangerKeepsTheFileLocked) {
  auto lock = QXFileLock::lock(path_);
  const int file = ::open(lock_.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(file, LOCK_EX), 0);
  EXPECT_TRUE(lock.unlock(&error_));
  EXPECT_TRUE(error_ == nullptr);
  EXPECT_FALSE(isLocked());
  ::close(file);
}

// Between looking at a stale lock and locking it, another process took it over.
class OvertakingCalls : public detail::FileCalls {
 public:
  std::string target;
  std::string content;
  int flock(int file, int operation) override {
    if (!content.empty() && operation != LOCK_UN) {
      test_support::writeBytes(target + ".new", content);
      std::filesystem::rename(target + ".new", target);
      content.clear();
    }
    return FileCalls::flock(file, operation);
  }
};

TEST_F(FileLockTest, DoesNotTakeOverWhatAnotherTookOver) {
  writeRecordOf(::getppid());
  OvertakingCalls calls;
  calls.target = lock_;
  calls.content = test_support::readBytes(lock_);
  writeRecordOf(test_support::endedProcess());
  const detail::ReplacedFileCalls replaced(calls);
  const auto lock = QXFileLock::lock(path_, &error_);
  EXPECT_FALSE(lock.isHeld());
  EXPECT_TRUE(lock.record()->objectForKey("processNumber") == ::getppid());
}

TEST_F(FileLockTest, WorksWithoutUnnamedFilesAndWithoutProc) {
  test_support::FailingFileCalls calls("linkDescriptor", 0, ENOENT);
  const detail::ReplacedFileCalls replaced(calls);
  for (const bool unnamed : {false, true}) {
    calls.allowsUnnamedFiles = unnamed;
    auto lock = QXFileLock::lock(path_, &error_);
    ASSERT_TRUE(lock.isHeld());
    EXPECT_EQ(folder_.names(), (std::vector<std::string>{"f.lock"}));
    EXPECT_FALSE(QXFileLock::lock(path_).isHeld());
    EXPECT_TRUE(lock.unlock());
    writeRecordOf(test_support::endedProcess());
    EXPECT_TRUE(QXFileLock::lock(path_, &error_).isHeld());
    EXPECT_TRUE(folder_.names().empty());
  }
}

TEST_F(FileLockTest, ReportsWhatTheSystemRefuses) {
  for (const char* call : {"write", "open"}) {
    test_support::FailingFileCalls calls(call, 0, ENOSPC);
    const detail::ReplacedFileCalls replaced(calls);
    const auto lock = QXFileLock::lock(path_, &error_);
    EXPECT_FALSE(lock.isHeld());
    EXPECT_TRUE(lock.record() == nullptr);
    ASSERT_TRUE(error_ != nullptr);
    EXPECT_EQ(error_->code(), ENOSPC) << call;
  }
  EXPECT_TRUE(folder_.names().empty());
  test_support::writeBytes(path_, "");
  const auto below = QXFileLock::lock(path_ + "/x", &error_);
  EXPECT_FALSE(below.isHeld());
  EXPECT_EQ(error_->code(), ENOTDIR);
  EXPECT_THROW((void)QXFileLock::lock(nullptr), InvalidArgumentException);
}

TEST_F(FileLockTest, NeedsRights) {
  if (::getuid() != 0) GTEST_SKIP() << "only a privileged process can give its rights up";
  std::filesystem::permissions(folder_.path(), std::filesystem::perms(0755));
  ChildProcess child([&] {
    if (!test_support::becomeNobody()) return 10;
    const auto lock = QXFileLock::lock(path_, &error_);
    return !lock.isHeld() && error_->code() == EACCES ? 0 : 11;
  });
  EXPECT_EQ(child.wait(), 0);
}

TEST_F(FileLockTest, ReportsThatItCouldNotBeRemoved) {
  if (::getuid() != 0) GTEST_SKIP() << "only a privileged process can give its rights up";
  std::filesystem::permissions(folder_.path(), std::filesystem::perms(0777));
  ChildProcess child([&] {
    if (!test_support::becomeNobody()) return 10;
    auto lock = QXFileLock::lock(path_, &error_);
    if (!lock.isHeld()) return 11;
    ::kill(::getpid(), SIGSTOP);
    if (lock.unlock(&error_)) return 12;
    return error_->code() == EACCES ? 0 : 13;
  });
  int status = 0;
  ASSERT_EQ(::waitpid(child.number(), &status, WUNTRACED), child.number());
  std::filesystem::permissions(folder_.path(), std::filesystem::perms(0755));
  ::kill(child.number(), SIGCONT);
  EXPECT_EQ(child.wait(), 0);
  EXPECT_TRUE(isLocked());
}

}  // namespace
}  // namespace qx

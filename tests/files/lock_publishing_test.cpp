// How a lock's record comes into its place.

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include <QXFoundation/file_lock.h>
#include <QXFoundation/lock_file.h>

#include "tests/support/failing_file_calls.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::TemporaryFolder;

Ref<FileManager> files() { return FileManager::defaultManager(); }

// Another's lock is put in place just before ours would be.
class QuickerOther : public test_support::FailingFileCalls {
 public:
  QuickerOther() : FailingFileCalls("none", 0, 0) {}

  int linkDescriptor(int file, const char* path) override {
    if (!wasQuicker_) test_support::writeBytes(path, "another's");
    wasQuicker_ = true;
    return FailingFileCalls::linkDescriptor(file, path);
  }

 private:
  bool wasQuicker_ = false;
};

TEST(LockPublishing, TheLastWriterWins) {
  const TemporaryFolder folder;
  QuickerOther calls;
  const detail::ReplacedFileCalls replaced(calls);
  bool created = false;
  const auto record = lockFileAtPath(files(), folder / "f", false, created);
  EXPECT_TRUE(created);
  EXPECT_TRUE(calls.wasRenamed);
  EXPECT_TRUE(PropertyValue(lockRecordForPath(files(), folder / "f")) == record);
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"f.lock"}));
}

TEST(LockPublishing, OfAFreeLockNeedsNoRenaming) {
  const TemporaryFolder folder;
  test_support::FailingFileCalls calls("mkdir", 0, EIO);
  const detail::ReplacedFileCalls replaced(calls);
  bool created = false;
  EXPECT_TRUE(lockFileAtPath(files(), folder / "f", false, created) != nullptr);
  EXPECT_TRUE(created);
  EXPECT_FALSE(calls.wasRenamed);
  unlockFileAtPath(files(), folder / "f");
  EXPECT_TRUE(folder.names().empty());
}

TEST(LockPublishing, OverAnotherThatCanNotBeRenamedFillsTheError) {
  const TemporaryFolder folder;
  test_support::writeBytes(folder / "f.lock", "another's");
  test_support::FailingFileCalls calls("rename", 0, ENOSPC);
  const detail::ReplacedFileCalls replaced(calls);
  bool created = true;
  Ref<Error> error;
  EXPECT_TRUE(lockFileAtPath(files(), folder / "f", true, created, &error) == nullptr);
  EXPECT_FALSE(created);
  ASSERT_TRUE(error != nullptr);
  EXPECT_EQ(error->code(), ENOSPC);
  EXPECT_EQ(test_support::readBytes(folder / "f.lock"), "another's");
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"f.lock"}));
}

TEST(LockPublishing, WorksWithoutUnnamedFiles) {
  const TemporaryFolder folder;
  test_support::FailingFileCalls calls("none", 0, 0);
  calls.allowsUnnamedFiles = false;
  const detail::ReplacedFileCalls replaced(calls);
  bool created = false;
  EXPECT_TRUE(lockFileAtPath(files(), folder / "a/b/f", false, created) != nullptr);
  EXPECT_TRUE(created);
  unlockFileAtPath(files(), folder / "a/b/f");
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"a"}));
}

// As of a file system that has no hard links.
class WithoutLinks : public test_support::FailingFileCalls {
 public:
  WithoutLinks(const char* call, int error) : FailingFileCalls(call, 0, error) {}
  int link(const char*, const char*) override {
    errno = EPERM;
    return -1;
  }
};

TEST(LockPublishing, WorksWithoutHardLinks) {
  for (const int error : {EPERM, EOPNOTSUPP, ENOSYS, EMLINK}) {
    for (const bool unnamed : {false, true}) {
      const TemporaryFolder folder;
      WithoutLinks calls("linkDescriptor", error);
      calls.allowsUnnamedFiles = unnamed;
      const detail::ReplacedFileCalls replaced(calls);
      bool created = false;
      Ref<Error> failure;
      const auto record = lockFileAtPath(files(), folder / "a/f", false, created, &failure);
      EXPECT_TRUE(created) << error;
      EXPECT_TRUE(failure == nullptr);
      EXPECT_TRUE(PropertyValue(lockRecordForPath(files(), folder / "a/f")) == record);
      unlockFileAtPath(files(), folder / "a/f");
      const auto strict = QXFileLock::lock(folder / "a/f", &failure);
      EXPECT_FALSE(strict.isHeld());
      EXPECT_EQ(failure->code(), EPERM);
      EXPECT_TRUE(std::filesystem::is_empty(folder / "a"));
    }
  }
}

}  // namespace
}  // namespace qx

#include "platform/atomic_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>

#include "platform/file_calls.h"
#include "tests/support/failing_file_calls.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

namespace qx::detail {
namespace {

using test_support::FailingFileCalls;
using test_support::modeOf;
using test_support::readBytes;
using test_support::TemporaryFolder;
using test_support::writeBytes;
using testing::ElementsAre;

constexpr AtomicWrite kPlain{};
constexpr AtomicWrite kSafe{.durable = true, .following = true};

ino_t inodeOf(const std::string& path) {
  struct stat about{};
  EXPECT_EQ(::lstat(path.c_str(), &about), 0);
  return about.st_ino;
}

class AtomicFile : public testing::TestWithParam<AtomicWrite> {
 protected:
  TemporaryFolder folder;
  std::string path = folder / "file";
};

INSTANTIATE_TEST_SUITE_P(Options, AtomicFile,
                         testing::Values(AtomicWrite{},
                                         AtomicWrite{.durable = true, .following = false},
                                         AtomicWrite{.durable = false, .following = true}, kSafe));

TEST_P(AtomicFile, MakesANewFileWithTheModeOfOne) {
  const test_support::WithUmask umask(027);
  EXPECT_EQ(replaceFile(path, "content", GetParam()), 0);
  EXPECT_EQ(readBytes(path), "content");
  EXPECT_EQ(modeOf(path), 0640U);
  EXPECT_THAT(folder.names(), ElementsAre("file"));
}

TEST_P(AtomicFile, ReplacesByAnotherFile) {
  writeBytes(path, "old and longer");
  std::filesystem::create_hard_link(path, folder / "link");
  const ino_t before = inodeOf(path);
  EXPECT_EQ(replaceFile(path, "new", GetParam()), 0);
  EXPECT_EQ(readBytes(path), "new");
  EXPECT_NE(inodeOf(path), before);
  EXPECT_EQ(readBytes(folder / "link"), "old and longer");
  EXPECT_THAT(folder.names(), ElementsAre("file", "link"));
}

TEST_P(AtomicFile, WritesNothingAndMuch) {
  EXPECT_EQ(replaceFile(path, "", GetParam()), 0);
  EXPECT_EQ(std::filesystem::file_size(path), 0U);
  const std::string much(5'000'000, 'x');
  EXPECT_EQ(replaceFile(path, much, GetParam()), 0);
  EXPECT_EQ(readBytes(path), much);
}

TEST_P(AtomicFile, TakesRelativePathsAndNamesAsLongAsThereAre) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  EXPECT_EQ(replaceFile("relative", "r", GetParam()), 0);
  std::filesystem::current_path(before);
  EXPECT_EQ(readBytes(folder / "relative"), "r");
  std::string name;
  while (name.size() < 252) name += "漢";
  EXPECT_EQ(replaceFile(folder / name, "long", GetParam()), 0);
  EXPECT_EQ(readBytes(folder / name), "long");
}

TEST_P(AtomicFile, RefusesWhatIsNoPathOfAFile) {
  const std::string inside = path + "/deeper";
  EXPECT_EQ(replaceFile(folder / "none/file", "x", GetParam()), ENOENT);
  EXPECT_EQ(replaceFile(std::string("a\0b", 3), "x", GetParam()), EINVAL);
  EXPECT_EQ(replaceFile(folder.path() + "/", "x", GetParam()), EISDIR);
  EXPECT_EQ(replaceFile("", "x", GetParam()), EISDIR);
  EXPECT_EQ(replaceFile(folder.path(), "x", GetParam()), EISDIR);
  writeBytes(path, "old");
  EXPECT_EQ(replaceFile(inside, "x", GetParam()), ENOTDIR);
  EXPECT_THAT(folder.names(), ElementsAre("file"));
}

// Each call that can fail, at each of its turns: the old file stays, and nothing else does.
TEST_P(AtomicFile, KeepsTheOldFileWhateverFails) {
  const std::string content(100'000, 'n');
  for (const char* call : {"open", "write", "fsync", "close", "rename", "fchmod"}) {
    for (int turn = 1; turn <= 4; ++turn) {
      for (const bool unnamed : {true, false}) {
        writeBytes(path, "old");
        FailingFileCalls calls(call, turn, EIO);
        calls.allowsUnnamedFiles = unnamed;
        int error = 0;
        {
          const ReplacedFileCalls replaced(calls);
          error = replaceFile(path, content, GetParam());
        }
        // Synchronising the folder, or asking for it, comes after the new content took its place.
        const bool isInPlace = calls.wasRenamed;
        EXPECT_EQ(readBytes(path), isInPlace ? content : "old") << call << turn;
        if (error == 0) {
          EXPECT_TRUE(isInPlace) << call << turn;
        } else {
          EXPECT_EQ(error, EIO) << call << turn;
        }
        if (!calls.hasFailed) {
          EXPECT_EQ(error, 0) << call << turn;
        }
        EXPECT_THAT(folder.names(), ElementsAre("file")) << call << turn;
      }
    }
  }
}

TEST_P(AtomicFile, GoesOnAfterInterruptionsAndShortWrites) {
  const std::string content(100'000, 'n');
  for (const char* call : {"open", "write", "fsync"}) {
    FailingFileCalls calls(call, 1, EINTR);
    calls.shortWrites = true;
    const ReplacedFileCalls replaced(calls);
    EXPECT_EQ(replaceFile(path, content, GetParam()), 0) << call;
    EXPECT_EQ(readBytes(path), content) << call;
  }
}

TEST_P(AtomicFile, TakesANamedFileWhereThereAreNoOthers) {
  FailingFileCalls calls("none", 0, 0);
  calls.allowsUnnamedFiles = false;
  const ReplacedFileCalls replaced(calls);
  EXPECT_EQ(replaceFile(path, "content", GetParam()), 0);
  EXPECT_EQ(readBytes(path), "content");
  EXPECT_THAT(folder.names(), ElementsAre("file"));
}

// As where /proc is not there.
TEST_P(AtomicFile, TakesANamedFileWhereTheOtherCanNotBeNamed) {
  FailingFileCalls calls("linkDescriptor", 1, ENOENT);
  const ReplacedFileCalls replaced(calls);
  EXPECT_EQ(replaceFile(path, "content", GetParam()), 0);
  EXPECT_EQ(readBytes(path), "content");
  EXPECT_THAT(folder.names(), ElementsAre("file"));
}

TEST(AtomicFileDurable, SynchronisesTheContentBeforeAndTheFolderAfterTheRename) {
  const TemporaryFolder folder;
  for (const bool unnamed : {true, false}) {
    FailingFileCalls calls("none", 0, 0);
    calls.allowsUnnamedFiles = unnamed;
    const ReplacedFileCalls replaced(calls);
    EXPECT_EQ(replaceFile(folder / "file", "x", kSafe), 0);
    EXPECT_EQ(calls.order, "write fsync rename fsync ");
    calls.order.clear();
    EXPECT_EQ(replaceFile(folder / "file", "x", kPlain), 0);
    EXPECT_EQ(calls.order, "write rename ");
  }
}

TEST(AtomicFileDurable, ReportsAFolderThatCanNotBeSynchronised) {
  const TemporaryFolder folder;
  writeBytes(folder / "file", "old");
  for (const auto& [error, result] : {std::pair{EIO, EIO}, {EINVAL, 0}}) {
    FailingFileCalls calls("fsync", 2, error);
    const ReplacedFileCalls replaced(calls);
    EXPECT_EQ(replaceFile(folder / "file", "new", kSafe), result);
    EXPECT_EQ(readBytes(folder / "file"), "new");
  }
}

TEST(AtomicFileFollowing, WritesTheFileThatALinkNames) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder / "other");
  writeBytes(folder / "other/target", "old");
  std::filesystem::create_symlink("other/target", folder / "relative");
  std::filesystem::create_symlink(folder / "relative", folder / "absolute");
  EXPECT_EQ(replaceFile(folder / "absolute", "new", kSafe), 0);
  EXPECT_EQ(readBytes(folder / "other/target"), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "absolute"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "relative"));
  EXPECT_THAT(folder.names(), ElementsAre("absolute", "other", "relative"));
}

TEST(AtomicFileFollowing, MakesTheFileThatALinkNames) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink("missing", folder / "link");
  EXPECT_EQ(replaceFile(folder / "link", "new", kSafe), 0);
  EXPECT_EQ(readBytes(folder / "missing"), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
}

TEST(AtomicFileFollowing, RefusesACircleOfLinks) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink("b", folder / "a");
  std::filesystem::create_symlink("a", folder / "b");
  EXPECT_EQ(replaceFile(folder / "a", "new", kSafe), ELOOP);
}

TEST(AtomicFileFollowing, ReplacesTheLinkItselfOtherwise) {
  const TemporaryFolder folder;
  writeBytes(folder / "target", "old");
  std::filesystem::create_symlink("target", folder / "link");
  EXPECT_EQ(replaceFile(folder / "link", "new", kPlain), 0);
  EXPECT_EQ(readBytes(folder / "target"), "old");
  EXPECT_FALSE(std::filesystem::is_symlink(folder / "link"));
}

TEST(AtomicFileFollowing, KeepsModeAndAttributes) {
  const TemporaryFolder folder;
  const std::string path = folder / "file";
  writeBytes(path, "old");
  const std::string large(1000, 'v');
  const bool hasAttributes =
      ::setxattr(path.c_str(), "user.one", "1", 1, 0) == 0 &&
      ::setxattr(path.c_str(), "user.empty", "", 0, 0) == 0 &&
      ::setxattr(path.c_str(), "user.large", large.data(), large.size(), 0) == 0;
  ASSERT_EQ(::chmod(path.c_str(), 0604), 0);
  EXPECT_EQ(replaceFile(path, "new", kSafe), 0);
  EXPECT_EQ(modeOf(path), 0604U);
  if (!hasAttributes) GTEST_SKIP() << "this file system has no attributes";
  char value[2000];
  EXPECT_EQ(::getxattr(path.c_str(), "user.one", value, sizeof value), 1);
  EXPECT_EQ(::getxattr(path.c_str(), "user.empty", value, sizeof value), 0);
  EXPECT_EQ(::getxattr(path.c_str(), "user.large", value, sizeof value), 1000);
  EXPECT_EQ(replaceFile(path, "new", kPlain), 0);
  EXPECT_EQ(::getxattr(path.c_str(), "user.one", value, sizeof value), -1);
}

TEST(AtomicFileFollowing, KeepsTheOwnerWhereItMay) {
  const TemporaryFolder folder;
  const std::string path = folder / "file";
  writeBytes(path, "old");
  if (::chown(path.c_str(), 1234, 4321) != 0) GTEST_SKIP() << "only a privileged process may";
  EXPECT_EQ(replaceFile(path, "new", kSafe), 0);
  struct stat about{};
  ASSERT_EQ(::stat(path.c_str(), &about), 0);
  EXPECT_EQ(about.st_uid, 1234U);
  EXPECT_EQ(about.st_gid, 4321U);
  FailingFileCalls calls("fchown", 1, EPERM);
  const ReplacedFileCalls replaced(calls);
  EXPECT_EQ(replaceFile(path, "newer", kSafe), 0);
  ASSERT_EQ(::stat(path.c_str(), &about), 0);
  EXPECT_EQ(about.st_uid, ::geteuid());
  EXPECT_EQ(about.st_gid, 4321U);
}

TEST(AtomicFileFollowing, RefusesWhatIsNoRegularFile) {
  const TemporaryFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(replaceFile(folder / "pipe", "x", kSafe), EINVAL);
  EXPECT_EQ(replaceFile("/dev/null", "x", kSafe), EINVAL);
  std::string bytes;
  EXPECT_EQ(readFile(folder / "pipe", bytes), EINVAL);
  EXPECT_EQ(readFile(folder.path(), bytes), EISDIR);
  EXPECT_EQ(readFile(folder / "none", bytes), ENOENT);
  EXPECT_EQ(readFile(std::string("a\0b", 3), bytes), EINVAL);
}

TEST(AtomicFileFull, FailsWithoutASignalAtTheLimitOfTheFileSize) {
  const TemporaryFolder folder;
  writeBytes(folder / "file", "old");
  const pid_t child = ::fork();
  if (child == 0) {
    const rlimit limit{4096, 4096};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const std::string large(100'000, 'x');
    const int error = replaceFile(folder / "file", large, kSafe);
    sigset_t pending;
    sigpending(&pending);
    const bool isClean = sigismember(&pending, SIGXFSZ) == 0;
    const bool small = replaceFile(folder / "small", "small", kSafe) == 0;
    ::_exit(error == EFBIG && isClean && small ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status)) << "the signal ended it";
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(readBytes(folder / "file"), "old");
  EXPECT_THAT(folder.names(), ElementsAre("file", "small"));
}

TEST(ReadFile, ReadsWholeFilesAndFollowsLinks) {
  const TemporaryFolder folder;
  const std::string content(300'000, 'c');
  writeBytes(folder / "file", content);
  std::filesystem::create_symlink("file", folder / "link");
  std::string bytes = "before";
  EXPECT_EQ(readFile(folder / "link", bytes), 0);
  EXPECT_EQ(bytes, content);
  // A file that tells no size.
  EXPECT_EQ(readFile("/proc/self/status", bytes), 0);
  EXPECT_NE(bytes.find("Pid:"), std::string::npos);
  FailingFileCalls calls("read", 1, EINTR);
  const ReplacedFileCalls replaced(calls);
  EXPECT_EQ(readFile(folder / "file", bytes), 0);
  EXPECT_EQ(bytes, content);
}

TEST(ReadFile, ReportsFailures) {
  const TemporaryFolder folder;
  writeBytes(folder / "file", "content");
  std::string bytes;
  for (const char* call : {"open", "fstat", "read"}) {
    FailingFileCalls calls(call, 1, EIO);
    const ReplacedFileCalls replaced(calls);
    EXPECT_EQ(readFile(folder / "file", bytes), EIO) << call;
  }
}

TEST(CreateFile, NeverReplacesAndLeavesNothingBehind) {
  const TemporaryFolder folder;
  EXPECT_EQ(createFile(folder / "file", "one"), 0);
  EXPECT_EQ(createFile(folder / "file", "two"), EEXIST);
  EXPECT_EQ(readBytes(folder / "file"), "one");
  for (const char* call : {"write", "fsync", "close"}) {
    FailingFileCalls calls(call, 1, ENOSPC);
    const ReplacedFileCalls replaced(calls);
    EXPECT_EQ(createFile(folder / "other", "two"), ENOSPC) << call;
  }
  EXPECT_THAT(folder.names(), ElementsAre("file"));
}

TEST(MakeFolders, MakesThoseThatAreMissing) {
  const TemporaryFolder folder;
  EXPECT_EQ(makeFolders(folder / "a/b/c", 0700), 0);
  EXPECT_EQ(makeFolders(folder / "a/b/c", 0700), 0);
  EXPECT_EQ(makeFolders(folder / "a/b/d/", 0700), 0);
  EXPECT_EQ(modeOf(folder / "a/b/c"), 0700U);
  writeBytes(folder / "file", "");
  EXPECT_EQ(makeFolders(folder / "file", 0700), ENOTDIR);
  EXPECT_EQ(makeFolders(folder / "file/x", 0700), ENOTDIR);
  EXPECT_EQ(makeFolders("", 0700), ENOENT);
  EXPECT_EQ(makeFolders(std::string("a\0b", 3), 0700), EINVAL);
}

}  // namespace
}  // namespace qx::detail

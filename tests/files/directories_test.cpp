// Chains of folders, temporary names, scratch folders, exclusion from backups.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <future>
#include <mutex>
#include <set>
#include <thread>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/directories.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/path.h>
#include <QXFoundation/process_info.h>

#include "platform/attribute_calls.h"
#include "tests/frame/raises.h"
#include "tests/support/child_process.h"
#include "tests/support/fake_machine.h"
#include "tests/support/files.h"
#include "tests/support/memory_user_defaults.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::files;
using test_support::modeOf;
using test_support::TemporaryFolder;
using test_support::WithUmask;

// ---- chains

TEST(CreateDirectories, MakesWhatIsMissing) {
  const TemporaryFolder folder;
  EXPECT_TRUE(createDirectoriesAtPath(files(), folder / "a/b//c/", nullptr));
  EXPECT_TRUE(std::filesystem::is_directory(folder / "a/b/c"));
  EXPECT_TRUE(createDirectoriesAtPath(files(), folder / "a/b/c", nullptr));
  EXPECT_TRUE(createDirectoriesAtPath(files(), folder / "a/b/d", nullptr));
}

TEST(CreateDirectories, GivesEachNewOneTheRights) {
  const WithUmask umask(077);
  const TemporaryFolder folder;
  EXPECT_TRUE(createDirectoriesAtPath(files(), folder / "a", nullptr));
  EXPECT_EQ(modeOf(folder / "a"), 0700U);
  EXPECT_TRUE(
      createDirectoriesAtPath(files(), folder / "a/b/c", dict({{NSFilePosixPermissions, 01775}})));
  EXPECT_EQ(modeOf(folder / "a"), 0700U);
  EXPECT_EQ(modeOf(folder / "a/b"), 01775U);
  EXPECT_EQ(modeOf(folder / "a/b/c"), 01775U);
}

TEST(CreateDirectories, PassesOverWhatExistsWhateverItIs) {
  const TemporaryFolder folder;
  test_support::writeBytes(folder / "file", "");
  EXPECT_TRUE(createDirectoriesAtPath(files(), folder / "file", nullptr));
  EXPECT_FALSE(createDirectoriesAtPath(files(), folder / "file/below", nullptr));
}

TEST(CreateDirectories, RefuseANameWithANul) {
  const TemporaryFolder folder;
  EXPECT_FALSE(createDirectoriesAtPath(files(), (folder / "a") + std::string("\0b", 2), nullptr));
  EXPECT_TRUE(folder.names().empty());
}

TEST(CreateDirectories, KeepsWhatItMadeBeforeAFailure) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink(folder / "nowhere/x", folder / "link");
  EXPECT_FALSE(createDirectoriesAtPath(files(), folder / "link/b", nullptr));
  EXPECT_FALSE(createDirectoriesAtPath(files(), (folder / "a/") + std::string(300, 'x'), nullptr));
  EXPECT_TRUE(std::filesystem::is_directory(folder / "a"));
}

TEST(CreateDirectories, OfNoComponentsIsASuccess) {
  EXPECT_TRUE(createDirectoriesAtPath(files(), "", nullptr));
  EXPECT_TRUE(createDirectoriesAtPath(files(), "/", nullptr));
  EXPECT_FALSE(createDirectoriesAtPath(nullptr, "/", nullptr));
  EXPECT_THROW(createDirectoriesAtPath(files(), nullptr, nullptr), InvalidArgumentException);
}

// Says that nothing exists, and makes nothing.
class BlindManager : public FileManager {
 public:
  using FileManager::fileExistsAtPath;
  bool fileExistsAtPath(StringArg) const override { return false; }
  bool createDirectoryAtPath(StringArg, bool, In<Dictionary>, Ref<Error>*) override {
    return false;
  }
};
void describe(ClassBuilder<BlindManager>& c) { c.name("BlindManager").inherits<FileManager>(); }

TEST(CreateDirectories, WorksThroughTheSharedManager) {
  const TemporaryFolder folder;
  const Ref<FileManager> blind = make<BlindManager>();
  EXPECT_TRUE(createDirectoriesAtPath(blind, folder / "a/b", nullptr));
  EXPECT_TRUE(createPathToFile(blind, folder / "c/d/f", nullptr));
  EXPECT_TRUE(std::filesystem::is_directory(folder / "c/d"));
}

TEST(CreatePathToFile, MakesTheFoldersAbove) {
  const TemporaryFolder folder;
  EXPECT_TRUE(createPathToFile(files(), folder / "a/b/f.txt", nullptr));
  EXPECT_TRUE(std::filesystem::is_directory(folder / "a/b"));
  EXPECT_FALSE(std::filesystem::exists(folder / "a/b/f.txt"));
  test_support::writeBytes(folder / "file", "");
  EXPECT_FALSE(createPathToFile(files(), folder / "file/x/f.txt", nullptr));
}

TEST(CreatePathToFile, OfABareNameMakesNothing) {
  EXPECT_TRUE(createPathToFile(files(), "a bare name that nobody makes", nullptr));
  EXPECT_FALSE(std::filesystem::exists("a bare name that nobody makes"));
  EXPECT_TRUE(createPathToFile(files(), "", nullptr));
  EXPECT_FALSE(createPathToFile(nullptr, "a", nullptr));
  EXPECT_THROW(createPathToFile(files(), nullptr, nullptr), InvalidArgumentException);
}

// ---- temporary names

TEST(TemporaryNames, TakeTheFirstFreeNumber) {
  const TemporaryFolder folder;
  const std::string pattern = folder / "out-######.txt";
  EXPECT_EQ(tempFilenameFromHashesTemplate(files(), pattern)->utf8(), folder / "out-1.txt");
  EXPECT_TRUE(folder.names().empty());
  for (int i = 1; i <= 9; ++i) {
    test_support::writeBytes(folder / ("out-" + std::to_string(i) + ".txt"), "");
  }
  EXPECT_EQ(tempFilenameFromHashesTemplate(files(), pattern)->utf8(), folder / "out-10.txt");
  std::filesystem::remove(folder / "out-4.txt");
  EXPECT_EQ(tempFilenameFromHashesTemplate(files(), pattern)->utf8(), folder / "out-4.txt");
}

TEST(TemporaryNames, ReplaceTheFirstPlace) {
  EXPECT_EQ(tempFilenameFromTemplate(files(), "/no/x@@@@", "@@")->utf8(), "/no/x1@@");
  EXPECT_EQ(tempFilenameFromTemplate(files(), "/no/abcdefgh", 4)->utf8(), "/no/1gh");
  EXPECT_EQ(tempFilenameFromTemplate(files(), "/no/abc", Range{5, 0})->utf8(), "/no/a1bc");
  EXPECT_EQ(tempFilenameFromHashesTemplate(files(), "/no/########")->utf8(), "/no/1##");
}

TEST(TemporaryNames, OutsideTheTemplateRaiseAndLetGoOfTheLock) {
  FileManager::didLoad();
  EXPECT_THROW((void)tempFilenameFromTemplate(files(), "/no/abc", 2), RangeException);
  EXPECT_THROW((void)tempFilenameFromTemplate(files(), "/no/abc", -1), RangeException);
  EXPECT_THROW((void)tempFilenameFromTemplate(files(), "/no/abc", INT32_MIN), RangeException);
  EXPECT_THROW((void)tempFilenameFromTemplate(files(), "/no/abc", Range{7, 1}), RangeException);
  EXPECT_THROW((void)tempFilenameFromTemplate(files(), "/no/abc", Range{1, ~std::size_t{0}}),
               RangeException);
  EXPECT_THROW((void)tempFilenameFromTemplate(files(), "/no/abc", "x"), RangeException);
  EXPECT_THROW((void)tempFilenameFromTemplate(files(), "/no/abc", ""), RangeException);
  EXPECT_THROW((void)tempFilenameFromHashesTemplate(files(), "/no/#####"), RangeException);
  auto other = std::async(std::launch::async, [] {
    return tempFilenameFromHashesTemplate(files(), "/no/######")->utf8();
  });
  ASSERT_EQ(other.wait_for(std::chrono::seconds(20)), std::future_status::ready);
  EXPECT_EQ(other.get(), "/no/1");
}

TEST(TemporaryNames, NeedATemplate) {
  EXPECT_THROW((void)tempFilenameFromTemplate(files(), nullptr, 0), InvalidArgumentException);
  EXPECT_THROW((void)tempFilenameFromTemplate(files(), "x", nullptr), InvalidArgumentException);
  EXPECT_THROW((void)tempFilenameFromHashesTemplate(files(), nullptr), InvalidArgumentException);
  EXPECT_TRUE(tempFilenameFromHashesTemplate(nullptr, "######") == nullptr);
  EXPECT_TRUE(tempFilenameFromTemplate(nullptr, "x", 0) == nullptr);
}

// Answers as the test tells, and can raise in the middle of a search.
class CountingManager : public FileManager {
 public:
  using FileManager::fileExistsAtPath;
  bool fileExistsAtPath(StringArg path) const override {
    asked.push_back(path.utf8());
    if (asked.size() == raiseAt) throw GenericException("stop");
    return asked.size() < freeAt;
  }
  mutable std::vector<std::string> asked;
  std::size_t raiseAt = 0;
  std::size_t freeAt = 1;
};
void describe(ClassBuilder<CountingManager>& c) {
  c.name("CountingManager").inherits<FileManager>();
}

TEST(TemporaryNames, AskTheReceiverInOrder) {
  const auto manager = make<CountingManager>();
  manager->freeAt = 1234;
  EXPECT_EQ(tempFilenameFromHashesTemplate(manager, "a######b")->utf8(), "a1234b");
  EXPECT_EQ(manager->asked.size(), 1234U);
  EXPECT_EQ(manager->asked[0], "a1b");
  EXPECT_EQ(manager->asked[1], "a2b");
}

TEST(TemporaryNames, AnExceptionPassesUnchangedAndLetsGoOfTheLock) {
  FileManager::didLoad();
  const auto manager = make<CountingManager>();
  manager->freeAt = 100;
  manager->raiseAt = 5;
  EXPECT_EQ(reasonOf<GenericException>(
                [&] { (void)tempFilenameFromHashesTemplate(manager, "a######b"); }),
            "stop");
  auto other = std::async(std::launch::async, [] {
    return tempFilenameFromHashesTemplate(files(), "/no/######")->utf8();
  });
  ASSERT_EQ(other.wait_for(std::chrono::seconds(20)), std::future_status::ready);
}

// ---- scratch folders

std::string scratchName(int number) {
  return ProcessInfo::processInfo()->processName() + "-" + NSUserName()->utf8() + "-" +
         std::to_string(number);
}

class Scratch : public testing::Test {
 protected:
  Scratch() { FileManager::didLoad(); }
  ~Scratch() override { FileManager::didLoad(); }

  test_support::WithMemoryUserDefaults memory_;
  TemporaryFolder folder_;
  test_support::ScopedVariable temporary_{"TMPDIR", folder_.path().c_str()};
};

TEST_F(Scratch, IsMadeOnceForTheOwnerAlone) {
  const WithUmask umask(0777);
  const std::string path = scratchDirectoryPath(files())->utf8();
  EXPECT_EQ(path, folder_ / scratchName(1));
  EXPECT_EQ(modeOf(path), 0700U);
  EXPECT_EQ(scratchDirectoryPath(files())->utf8(), path);
  EXPECT_EQ(folder_.names().size(), 1U);
}

TEST_F(Scratch, IsMadeAnewWhenItVanished) {
  const std::string first = scratchDirectoryPath(files())->utf8();
  std::filesystem::remove(first);
  test_support::writeBytes(first, "a file now");
  EXPECT_EQ(scratchDirectoryPath(files())->utf8(), folder_ / scratchName(2));
  EXPECT_EQ(modeOf(folder_ / scratchName(2)), 0700U);
}

TEST_F(Scratch, IsForgottenByDidLoad) {
  EXPECT_EQ(scratchDirectoryPath(files())->utf8(), folder_ / scratchName(1));
  FileManager::didLoad();
  EXPECT_EQ(scratchDirectoryPath(files())->utf8(), folder_ / scratchName(2));
}

TEST_F(Scratch, StandsWhereTheUserDefaultSays) {
  const WithUmask umask(022);
  int number = 0;
  for (const char* asAbsent : {"", "NSTemporaryDirectory"}) {
    memory_.defaults->setObject(asAbsent, "QXScratchDirectory");
    FileManager::didLoad();
    EXPECT_EQ(scratchDirectoryPath(files())->utf8(), folder_ / scratchName(++number));
  }
  memory_.defaults->setObject(folder_ / "base/below", "QXScratchDirectory");
  FileManager::didLoad();
  EXPECT_EQ(scratchDirectoryPath(files())->utf8(), folder_ / ("base/below/" + scratchName(1)));
  EXPECT_EQ(modeOf(folder_ / "base/below"), 01777U);
  EXPECT_EQ(modeOf(folder_ / "base"), 0755U);
}

TEST_F(Scratch, ExpandsATilde) {
  const test_support::ScopedVariable home("HOME", folder_.path().c_str());
  memory_.defaults->setObject("~/mine", "QXScratchDirectory");
  EXPECT_EQ(scratchDirectoryPath(files())->utf8(), folder_ / ("mine/" + scratchName(1)));
}

TEST_F(Scratch, LeavesTheRightsOfABaseThatExists) {
  std::filesystem::create_directory(folder_ / "base");
  std::filesystem::permissions(folder_ / "base", std::filesystem::perms(0750));
  memory_.defaults->setObject(folder_ / "base", "QXScratchDirectory");
  ASSERT_TRUE(scratchDirectoryPath(files()) != nullptr);
  EXPECT_EQ(modeOf(folder_ / "base"), 0750U);
}

TEST_F(Scratch, IsNilAndNotKeptWhereItCanNotBeMade) {
  test_support::writeBytes(folder_ / "file", "");
  memory_.defaults->setObject(folder_ / "file", "QXScratchDirectory");
  EXPECT_TRUE(scratchDirectoryPath(files()) == nullptr);
  memory_.defaults->removeObjectForKey("QXScratchDirectory");
  EXPECT_TRUE(scratchDirectoryPath(files()) != nullptr);
  EXPECT_TRUE(scratchDirectoryPath(nullptr) == nullptr);
}

TEST_F(Scratch, OfTwoProcessesAreTwo) {
  const std::string own = scratchDirectoryPath(files())->utf8();
  test_support::ChildProcess child([&] {
    FileManager::didLoad();
    return scratchDirectoryPath(files())->utf8() == folder_ / scratchName(2) ? 0 : 1;
  });
  EXPECT_EQ(child.wait(), 0);
  EXPECT_NE(own, folder_ / scratchName(2));
}

// The two locks in their one order, and the names in between.
TEST_F(Scratch, ThreadsShareOneFolder) {
  std::vector<std::thread> threads;
  std::mutex mutex;
  std::set<std::string> seen;
  for (int i = 0; i < 16; ++i) {
    threads.emplace_back([&, i] {
      for (int round = 0; round < 50; ++round) {
        const std::string path = scratchDirectoryPath(files())->utf8();
        const auto name = tempFilenameFromHashesTemplate(files(), path + "/f-######");
        createDirectoriesAtPath(files(), path + "/d" + std::to_string(i % 4) + "/e", nullptr);
        const std::scoped_lock lock(mutex);
        seen.insert(path);
        EXPECT_EQ(name->utf8(), path + "/f-1");
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(seen, (std::set<std::string>{folder_ / scratchName(1)}));
}

TEST_F(Scratch, ThreadsMayMeetALockThatIsReplaced) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([i] {
      for (int round = 0; round < 30; ++round) {
        if (i == 0) FileManager::didLoad();
        EXPECT_TRUE(tempFilenameFromHashesTemplate(files(), "/no/######") != nullptr);
      }
    });
  }
  for (auto& thread : threads) thread.join();
}

// ---- backups

TEST(ExcludeFromBackup, SetsTheAttribute) {
  const TemporaryFolder folder;
  test_support::writeBytes(folder / "f", "x");
  const auto url = URL::fileURLWithPath(folder / "f");
  PropertyValue excluded;
  ASSERT_TRUE(url->getResourceValue(&excluded, NSURLIsExcludedFromBackupKey));
  EXPECT_TRUE(excluded == false);
  excludeURLFromBackup(files(), url);
  ASSERT_TRUE(url->getResourceValue(&excluded, NSURLIsExcludedFromBackupKey));
  EXPECT_TRUE(excluded == true);
  char text[10] = "";
  ASSERT_EQ(detail::attributeCalls().lgetxattr((folder / "f").c_str(), "user.xdg.robots.backup",
                                               text, sizeof text),
            5);
  EXPECT_EQ(std::string(text), "false");
}

TEST(ExcludeFromBackup, TellsNothingOfFailures) {
  excludeURLFromBackup(files(), URL::fileURLWithPath("/no/such/file"));
  excludeURLFromBackup(files(), URL::URLWithString("http://example.com/"));
  excludeURLFromBackup(files(), nullptr);
  excludeURLFromBackup(nullptr, URL::fileURLWithPath("/"));
  EXPECT_STREQ(iCloudDoNotBackupAttributeName, "com.apple.MobileBackup");
}

// ---- by selector

TEST(FileManagerSelectors, ReachTheSameOperations) {
  const TemporaryFolder folder;
  const PropertyValue manager = files();
  EXPECT_TRUE(performSelector(manager, "lockFilePathForPath:", "/a") == "/a.lock");
  EXPECT_TRUE(performSelector(manager, "createDirectoriesAtPath:attributes:", folder / "a/b",
                              nullptr) == true);
  EXPECT_TRUE(performSelector(manager, "createPathToFile:attributes:", folder / "c/d", nullptr) ==
              true);
  EXPECT_TRUE(performSelector(manager, "tempFilenameFromHashesTemplate:", "/no/######") == "/no/1");
  EXPECT_TRUE(performSelector(manager, "tempFilenameFromTemplate:andSubstring:", "/no/@", "@") ==
              "/no/1");
  EXPECT_TRUE(performSelector(manager, "tempFilenameFromTemplate:andPosition:", "/no/######", 4) ==
              "/no/1");
  EXPECT_THROW(performSelector(manager, "unlockFileAtPath:", folder / "x"),
               InternalInconsistencyException);
  performSelector(PropertyValue(classOf<FileManager>()), "didLoad");
  EXPECT_TRUE(
      isSame(performSelector(PropertyValue(classOf<FileManager>()), "defaultManager"), manager));
}

}  // namespace
}  // namespace qx

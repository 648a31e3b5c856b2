// Existence, folders, removing.

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/file_manager.h>

#include "tests/support/failing_file_calls.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::files;
using test_support::modeOf;
using test_support::TemporaryFolder;
using test_support::WithUmask;

TEST(FileManager, IsShared) {
  EXPECT_TRUE(isSame(PropertyValue(files()), PropertyValue(files())));
  EXPECT_STREQ(files()->cls().name(), "NSFileManager");
}

TEST(FileManager, TellsWhetherSomethingExists) {
  const TemporaryFolder folder;
  test_support::writeBytes(folder / "f", "");
  std::filesystem::create_symlink(folder / "f", folder / "link");
  std::filesystem::create_symlink(folder / "nothing", folder / "broken");
  EXPECT_TRUE(files()->fileExistsAtPath(folder / "f"));
  EXPECT_TRUE(files()->fileExistsAtPath(folder / "link"));
  EXPECT_FALSE(files()->fileExistsAtPath(folder / "broken"));
  EXPECT_FALSE(files()->fileExistsAtPath(""));
  EXPECT_FALSE(files()->fileExistsAtPath((folder / "f") + std::string("\0x", 2)));
  bool isDirectory = true;
  EXPECT_TRUE(files()->fileExistsAtPath(folder / "f", &isDirectory));
  EXPECT_FALSE(isDirectory);
  EXPECT_TRUE(files()->fileExistsAtPath(folder.path(), &isDirectory));
  EXPECT_TRUE(isDirectory);
  EXPECT_TRUE(performSelector(PropertyValue(files()), "fileExistsAtPath:", folder / "f") == true);
  EXPECT_THROW((void)files()->fileExistsAtPath(nullptr), InvalidArgumentException);
}

TEST(FileManager, TakesPathsOfAnyBytes) {
  const TemporaryFolder folder;
  test_support::writeBytes(folder / "\xFF\xFE", "");
  EXPECT_TRUE(files()->fileExistsAtPath(folder / "\xFF\xFE"));
}

TEST(FileManager, MakesFolders) {
  const TemporaryFolder folder;
  Ref<Error> error;
  EXPECT_TRUE(files()->createDirectoryAtPath(folder / "a", false, nullptr, &error));
  EXPECT_FALSE(files()->createDirectoryAtPath(folder / "a", false, nullptr, &error));
  EXPECT_EQ(error->code(), EEXIST);
  EXPECT_TRUE(files()->createDirectoryAtPath(folder / "a", true, nullptr));
  EXPECT_FALSE(files()->createDirectoryAtPath(folder / "b/c", false, nullptr, &error));
  EXPECT_EQ(error->code(), ENOENT);
  EXPECT_TRUE(files()->createDirectoryAtPath(folder / "b/c/d/", true, nullptr, nullptr));
  test_support::writeBytes(folder / "f", "");
  EXPECT_FALSE(files()->createDirectoryAtPath(folder / "f", true, nullptr, &error));
  EXPECT_EQ(error->code(), EEXIST);
  EXPECT_FALSE(files()->createDirectoryAtPath(folder / "f/g/h", true, nullptr, &error));
  EXPECT_EQ(error->code(), ENOTDIR);
}

TEST(FileManager, GivesExactRightsWhateverTheUmask) {
  const TemporaryFolder folder;
  for (const mode_t umask : {mode_t{0}, mode_t{022}, mode_t{0777}}) {
    for (const int mode : {0700, 01777, 0, 0755, 02770}) {
      const WithUmask limited(umask);
      EXPECT_TRUE(files()->createDirectoryAtPath(folder / "x", false,
                                                 dict({{NSFilePosixPermissions, mode}})));
      EXPECT_EQ(modeOf(folder / "x"), static_cast<mode_t>(mode));
      EXPECT_TRUE(
          files()->attributesOfItemAtPath(folder / "x")->objectForKey(NSFilePosixPermissions) ==
          mode);
      EXPECT_TRUE(files()->removeItemAtPath(folder / "x"));
    }
  }
}

TEST(FileManager, LeavesTheFoldersOnTheWayTheirUsualRights) {
  const TemporaryFolder folder;
  const WithUmask umask(027);
  EXPECT_TRUE(files()->createDirectoryAtPath(folder / "a/b", true,
                                             dict({{NSFilePosixPermissions, 01777}, {"x", 1}})));
  EXPECT_EQ(modeOf(folder / "a"), 0750U);
  EXPECT_EQ(modeOf(folder / "a/b"), 01777U);
}

class WithoutChmod : public detail::FileCalls {
 public:
  int chmod(const char*, mode_t) override {
    errno = EPERM;
    return -1;
  }
};

TEST(FileManager, LeavesNothingWhereTheRightsCanNotBeSet) {
  const TemporaryFolder folder;
  WithoutChmod calls;
  const detail::ReplacedFileCalls replaced(calls);
  Ref<Error> error;
  EXPECT_FALSE(files()->createDirectoryAtPath(folder / "a", false,
                                              dict({{NSFilePosixPermissions, 0700}}), &error));
  EXPECT_EQ(error->code(), EPERM);
  EXPECT_TRUE(folder.names().empty());
}

TEST(FileManager, RemovesFilesLinksAndWholeFolders) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "d/e/f");
  test_support::writeBytes(folder / "d/e/file", "x");
  test_support::writeBytes(folder / "kept", "x");
  std::filesystem::create_symlink(folder / "kept", folder / "d/link");
  std::filesystem::create_symlink(folder / "d", folder / "link");
  Ref<Error> error;
  EXPECT_TRUE(files()->removeItemAtPath(folder / "link", &error));
  EXPECT_TRUE(std::filesystem::exists(folder / "d/e/file"));
  EXPECT_TRUE(files()->removeItemAtPath(folder / "d", &error));
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"kept"}));
  EXPECT_FALSE(files()->removeItemAtPath(folder / "d", &error));
  EXPECT_EQ(error->code(), ENOENT);
  EXPECT_TRUE(files()->attributesOfItemAtPath(folder / "d", &error) == nullptr);
  EXPECT_EQ(error->code(), ENOENT);
}

}  // namespace
}  // namespace qx

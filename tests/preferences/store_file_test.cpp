#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>

#include <QXFoundation/QXFoundation.h>

#include "tests/preferences/store_files.h"
#include "tests/support/failing_file_calls.h"
#include "tests/support/memory_user_defaults.h"

namespace qx {
namespace {

using detail::ReplacedFileCalls;
using test_support::FailingFileCalls;
using testing::ElementsAre;

// A store with a file "s.plist" in a folder of its own.
class StoreFile : public testing::Test {
 protected:
  Ref<QXPreferences> open() const { return QXPreferences::initWithPath(files / "s.plist"); }

  test_support::WithMemoryUserDefaults memory;
  StoreFiles files;
};

// Runs in a process of its own; what it gives is that process's exit code.
int inChild(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work());
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST_F(StoreFile, IsAnXmlPropertyListOfTheWholeTree) {
  const auto store = open();
  store->setInteger(5, "a.list[0].n");
  store->setObject(Date::dateWithTimeIntervalSince1970(0), "a.date");
  store->setObject(Data::from("d"), "data");
  store->setBool(true, "flag");
  ASSERT_TRUE(store->synchronize());
  EXPECT_TRUE(files.readBytes("s.plist").starts_with("<?xml"));
  EXPECT_THAT(files.names(), ElementsAre("s.plist"));
  const auto again = open();
  EXPECT_EQ(PropertyValue(again->userValues()), PropertyValue(store->userValues()));
  EXPECT_EQ(again->get<bool>("flag"), true);
}

TEST_F(StoreFile, MayBeBinaryAtFirst) {
  files.write("s.plist", dict({{"a", 1}}), PropertyListFormat::binary);
  const auto store = open();
  EXPECT_EQ(store->integerForKeyPath("a"), 1);
  EXPECT_TRUE(store->synchronize());
  EXPECT_TRUE(files.readBytes("s.plist").starts_with("<?xml"));
  EXPECT_THAT(files.names(), ElementsAre("s.plist"));
}

TEST_F(StoreFile, StaysWhereTheTreeIsNoPropertyList) {
  files.write("s.plist", dict({{"a", 1}}));
  const std::string before = files.readBytes("s.plist");
  const PropertyValue values[] = {null, PropertyValue(MutableSet::init()), array(null),
                                  PropertyValue(open()), "\x01"};
  for (const PropertyValue& value : values) {
    const auto store = open();
    store->setObject(value, "bad.value");
    EXPECT_TRUE(store->isDirty());
    EXPECT_FALSE(store->synchronize()) << value.description();
    EXPECT_FALSE(store->isDirty());
    ASSERT_NE(store->lastSaveError(), nullptr);
    EXPECT_NE(store->lastSaveError()->localizedDescription().find("bad.value"), std::string::npos)
        << store->lastSaveError()->localizedDescription();
    EXPECT_EQ(files.readBytes("s.plist"), before);
    store->setObject("good", "bad.value");
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(store->lastSaveError(), nullptr);
    files.writeBytes("s.plist", before);
  }
}

TEST_F(StoreFile, StaysWhateverCallFails) {
  files.write("s.plist", dict({{"a", "old"}}));
  const std::string before = files.readBytes("s.plist");
  const auto store = open();
  store->setObject("new", "a");
  for (const char* call : {"write", "fsync", "close", "rename", "fchmod"}) {
    for (const bool unnamed : {true, false}) {
      FailingFileCalls calls(call, 1, call == std::string("write") ? ENOSPC : EIO);
      calls.allowsUnnamedFiles = unnamed;
      {
        const ReplacedFileCalls replaced(calls);
        store->setDirty(true);
        EXPECT_FALSE(store->synchronize()) << call;
      }
      const auto error = store->lastSaveError();
      ASSERT_NE(error, nullptr) << call;
      EXPECT_TRUE(error->domain()->isEqualToString(NSPOSIXErrorDomain));
      EXPECT_EQ(error->code(), call == std::string("write") ? ENOSPC : EIO) << call;
      EXPECT_FALSE(store->isDirty());
      EXPECT_EQ(files.readBytes("s.plist"), before) << call;
      EXPECT_THAT(files.names(), ElementsAre("s.plist")) << call;
    }
  }
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(store->lastSaveError(), nullptr);
  EXPECT_EQ(files.read("s.plist"), dict({{"a", "new"}}));
}

TEST_F(StoreFile, TellsWhyAChangeWasNotSavedImmediately) {
  const auto store = open();
  store->setAppliesImmediately(true);
  EXPECT_EQ(store->lastSaveError(), nullptr);
  {
    FailingFileCalls calls("write", 0, ENOSPC);
    const ReplacedFileCalls replaced(calls);
    store->setInteger(1, "a");
    ASSERT_NE(store->lastSaveError(), nullptr);
    EXPECT_EQ(store->lastSaveError()->code(), ENOSPC);
  }
  // A change of a container, which several steps make up.
  store->setObject(array(1), "list");
  EXPECT_EQ(store->lastSaveError(), nullptr);
  FailingFileCalls calls("write", 0, EIO);
  const ReplacedFileCalls replaced(calls);
  store->arrayForKeyPath("list").as<MutableArray>()->addObjectsFromArray(array(2, 3));
  ASSERT_NE(store->lastSaveError(), nullptr);
  EXPECT_EQ(store->lastSaveError()->code(), EIO);
}

TEST_F(StoreFile, TellsThatADamagedFileCanNotBeKept) {
  files.writeBytes("s.plist", "damaged");
  files.writeBytes("s.plist.damaged", "other");
  const auto store = open();
  EXPECT_FALSE(store->synchronize());
  ASSERT_NE(store->lastSaveError(), nullptr);
  EXPECT_EQ(store->lastSaveError()->code(), EEXIST);
  EXPECT_EQ(store->lastSaveError()->localizedDescription(), "The damaged file can not be kept as " +
                                                                (files / "s.plist.damaged") +
                                                                ": another file stands there");
}

TEST_F(StoreFile, StaysInAFolderThatIsReadOnly) {
  files.write("s.plist", dict({{"a", 1}}));
  const std::string before = files.readBytes("s.plist");
  const int code = inChild([&] {
    const auto store = open();
    store->setInteger(2, "a");
    ::chmod(files.path().c_str(), 0555);
    // Rights bind everyone but the superuser.
    if (::geteuid() == 0 && (::setegid(65534) != 0 || ::seteuid(65534) != 0)) return 3;
    return store->synchronize() ? 1 : 0;
  });
  ::chmod(files.path().c_str(), 0755);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(files.readBytes("s.plist"), before);
  EXPECT_THAT(files.names(), ElementsAre("s.plist"));
}

TEST_F(StoreFile, StaysWhenTheDiskIsFull) {
  files.write("s.plist", dict({{"a", 1}}));
  const std::string before = files.readBytes("s.plist");
  const int code = inChild([&] {
    const rlimit limit{2000, 2000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const auto store = open();
    store->setObject(std::string(10'000, 'x'), "large");
    if (store->synchronize()) return 1;
    store->removeObjectForKeyPath("large");
    return store->synchronize() ? 0 : 2;
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(files.readBytes("s.plist"), before) << "saved again, without the large value";
  EXPECT_THAT(files.names(), ElementsAre("s.plist"));
}

// A file system of its own, filled to the last block.
TEST_F(StoreFile, StaysWhenItsFileSystemIsFull) {
  const std::string disk = files / "disk";
  std::filesystem::create_directory(disk);
  if (::mount("none", disk.c_str(), "tmpfs", 0, "size=64k") != 0) {
    GTEST_SKIP() << "only a privileged process may mount a file system";
  }
  {
    const auto store = QXPreferences::initWithPath(disk + "/s.plist");
    store->setInteger(1, "a");
    EXPECT_TRUE(store->synchronize());
    const std::string before = files.readBytes("disk/s.plist");
    store->setObject(std::string(200'000, 'x'), "large");
    EXPECT_FALSE(store->synchronize());
    EXPECT_EQ(files.readBytes("disk/s.plist"), before);
    const auto names = std::filesystem::directory_iterator(disk);
    EXPECT_EQ(std::distance(begin(names), end(names)), 1);
    store->removeObjectForKeyPath("large");
    EXPECT_TRUE(store->synchronize()) << "what was tried takes no room any more";
  }
  EXPECT_EQ(::umount(disk.c_str()), 0);
}

TEST_F(StoreFile, MayBeReachedByALink) {
  std::filesystem::create_directory(files / "other");
  files.write("other/real.plist", dict({{"a", 1}}));
  std::filesystem::create_symlink("other/real.plist", files / "s.plist");
  const auto store = open();
  EXPECT_EQ(store->integerForKeyPath("a"), 1);
  store->setInteger(2, "a");
  EXPECT_TRUE(store->synchronize());
  EXPECT_TRUE(std::filesystem::is_symlink(files / "s.plist"));
  EXPECT_EQ(files.read("other/real.plist"), dict({{"a", 2}}));
}

TEST_F(StoreFile, KeepsModeAndAttributes) {
  files.write("s.plist", dict({{"a", 1}}));
  const std::string path = files / "s.plist";
  ASSERT_EQ(::chmod(path.c_str(), 0600), 0);
  const bool hasAttributes = ::setxattr(path.c_str(), "user.kept", "x", 1, 0) == 0;
  const auto store = open();
  store->setInteger(2, "a");
  EXPECT_TRUE(store->synchronize());
  struct stat about{};
  ASSERT_EQ(::stat(path.c_str(), &about), 0);
  EXPECT_EQ(about.st_mode & 07777, 0600U);
  char value[8];
  if (hasAttributes) {
    EXPECT_EQ(::getxattr(path.c_str(), "user.kept", value, sizeof value), 1);
  }
}

TEST_F(StoreFile, OfAnotherProgramMayBeReplacedMeanwhile) {
  const auto store = open();
  store->setInteger(1, "mine");
  files.write("s.plist", dict({{"theirs", 1}}));
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(files.read("s.plist"), dict({{"mine", 1}})) << "the whole tree is written";
}

// ---- damaged files

class DamagedStoreFile : public StoreFile, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Contents, DamagedStoreFile,
                         testing::Values("no list", "<plist><dict><key>a", "bplist00garbage",
                                         "<plist version=\"1.0\"><array/></plist>"));

TEST_P(DamagedStoreFile, CountsAsEmptyAndIsKeptBeforeItIsReplaced) {
  files.writeBytes("s.plist", GetParam());
  const auto store = open();
  EXPECT_EQ(store->userValues()->count(), 0U);
  EXPECT_THAT(files.names(), ElementsAre("s.plist"));
  store->setInteger(1, "a");
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(files.read("s.plist"), dict({{"a", 1}}));
  EXPECT_EQ(files.readBytes("s.plist.damaged"), GetParam());
  store->setInteger(2, "a");
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(files.readBytes("s.plist.damaged"), GetParam());
  EXPECT_THAT(files.names(), ElementsAre("s.plist", "s.plist.damaged"));
}

TEST_P(DamagedStoreFile, IsNotReplacedWhereAnEarlierOneIsKept) {
  files.writeBytes("s.plist", GetParam());
  files.writeBytes("s.plist.damaged", "earlier");
  const auto store = open();
  store->setInteger(1, "a");
  EXPECT_FALSE(store->synchronize());
  EXPECT_EQ(files.readBytes("s.plist"), GetParam());
  EXPECT_EQ(files.readBytes("s.plist.damaged"), "earlier");
  EXPECT_THAT(files.names(), ElementsAre("s.plist", "s.plist.damaged"));
  files.remove("s.plist.damaged");
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(files.readBytes("s.plist.damaged"), GetParam());
}

TEST_P(DamagedStoreFile, KeptByAnInterruptedWriteNeedsNoSecondCopy) {
  files.writeBytes("s.plist", GetParam());
  files.writeBytes("s.plist.damaged", GetParam());
  const auto store = open();
  store->setInteger(1, "a");
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(files.read("s.plist"), dict({{"a", 1}}));
}

TEST_P(DamagedStoreFile, IsCopiedWhereThereAreNoSecondNames) {
  files.writeBytes("s.plist", GetParam());
  const auto store = open();
  store->setInteger(1, "a");
  FailingFileCalls calls("link", 1, EPERM);
  const ReplacedFileCalls replaced(calls);
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(files.readBytes("s.plist.damaged"), GetParam());
}

class NoSecondNamesNoRoom : public FailingFileCalls {
 public:
  NoSecondNamesNoRoom() : FailingFileCalls("write", 1, ENOSPC) {}
  int link(const char*, const char*) override {
    errno = EPERM;
    return -1;
  }
};

TEST_P(DamagedStoreFile, StaysWhenItCanNotBeKept) {
  files.writeBytes("s.plist", GetParam());
  const auto store = open();
  store->setInteger(1, "a");
  {
    NoSecondNamesNoRoom calls;
    const ReplacedFileCalls replaced(calls);
    EXPECT_FALSE(store->synchronize());
  }
  EXPECT_EQ(files.readBytes("s.plist"), GetParam());
  EXPECT_THAT(files.names(), ElementsAre("s.plist"));
}

TEST_F(StoreFile, DamagedBehindALinkIsKeptBesideWhatTheLinkNames) {
  std::filesystem::create_directory(files / "other");
  files.writeBytes("other/real.plist", "damaged");
  std::filesystem::create_symlink("other/real.plist", files / "s.plist");
  const auto store = open();
  store->setInteger(1, "a");
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(files.readBytes("other/real.plist.damaged"), "damaged");
  EXPECT_TRUE(std::filesystem::is_symlink(files / "s.plist"));
}

TEST_F(StoreFile, ThatCouldNotBeReadIsKeptToo) {
  files.write("s.plist", dict({{"precious", 1}}));
  Ref<QXPreferences> store;
  {
    FailingFileCalls calls("read", 0, EIO);
    const ReplacedFileCalls replaced(calls);
    store = open();
  }
  EXPECT_EQ(store->userValues()->count(), 0U);
  store->setInteger(1, "a");
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(files.read("s.plist.damaged"), dict({{"precious", 1}}));
}

TEST_F(StoreFile, EmptyHoldsNothingToKeep) {
  files.writeBytes("s.plist", "");
  const auto store = open();
  store->setInteger(1, "a");
  EXPECT_TRUE(store->synchronize());
  EXPECT_THAT(files.names(), ElementsAre("s.plist"));
}

TEST_F(StoreFile, DamagedAndRemovedMeanwhileIsWritten) {
  files.writeBytes("s.plist", "damaged");
  const auto store = open();
  files.remove("s.plist");
  store->setInteger(1, "a");
  EXPECT_TRUE(store->synchronize());
  EXPECT_THAT(files.names(), ElementsAre("s.plist"));
}

TEST_F(StoreFile, InAFolderThatIsNotThereFails) {
  const auto store = QXPreferences::initWithPath(files / "none/s.plist");
  store->setInteger(1, "a");
  EXPECT_FALSE(store->synchronize());
  std::filesystem::create_directory(files / "none");
  EXPECT_TRUE(store->synchronize());
  const auto folder = QXPreferences::initWithPath(files / "none");
  folder->setInteger(1, "a");
  EXPECT_FALSE(folder->synchronize());
  EXPECT_THAT(files.names(), ElementsAre("none"));
}

}  // namespace
}  // namespace qx

// Giving locks back: whose they are, and what is left alone.

#include <gtest/gtest.h>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/lock_file.h>

#include "tests/files/lock_records.h"
#include "tests/frame/raises.h"
#include "tests/support/fake_machine.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::FakeIdentity;
using test_support::FakeProcesses;
using test_support::FakeUser;
using test_support::files;
using test_support::TemporaryFolder;
using test_support::writeRecord;

TEST(Unlocking, RemovesTheLockOfThisProcess) {
  const TemporaryFolder folder;
  bool created = false;
  ASSERT_TRUE(lockFileAtPath(files(), folder / "f", false, created) != nullptr);
  unlockFileAtPath(files(), folder / "f");
  EXPECT_TRUE(folder.names().empty());
  EXPECT_EQ(
      reasonOf<InternalInconsistencyException>([&] { unlockFileAtPath(files(), folder / "f"); }),
      "Error unlocking file at " + (folder / "f") + ": lock file " + (folder / "f.lock") +
          " does not exist");
}

TEST(Unlocking, NamesThePathAsItWasGiven) {
  EXPECT_EQ(
      reasonOf<InternalInconsistencyException>(
          [] { unlockFileAtPath(files(), "/no//such/./file"); }),
      "Error unlocking file at /no//such/./file: lock file /no/such/file.lock does not exist");
}

struct ForeignCase {
  const char* name;
  PropertyValue host, user, process;
  bool isOwn;
};

class ForeignLock : public testing::TestWithParam<ForeignCase> {};

TEST_P(ForeignLock, IsLeftAlone) {
  const FakeIdentity identity("11:22", "here");
  const FakeUser user("ann");
  FakeProcesses processes;
  processes.own = 77;
  const TemporaryFolder folder;
  const auto record = MutableDictionary::init();
  record->setObject("a different one does not matter", "hostIdentifier");
  record->setValueForKey(GetParam().host, "hostName");
  record->setValueForKey(GetParam().user, "userName");
  record->setValueForKey(GetParam().process, "processNumber");
  writeRecord(folder / "f.lock", record);
  const std::string before = test_support::readBytes(folder / "f.lock");
  if (GetParam().isOwn) {
    unlockFileAtPath(files(), folder / "f");
    EXPECT_TRUE(folder.names().empty());
    return;
  }
  EXPECT_EQ(
      reasonOf<InternalInconsistencyException>([&] { unlockFileAtPath(files(), folder / "f"); }),
      "Error unlocking file at " + (folder / "f") + ": lock file doesn't match current process");
  EXPECT_EQ(test_support::readBytes(folder / "f.lock"), before);
}

INSTANTIATE_TEST_SUITE_P(Table, ForeignLock,
                         testing::Values(ForeignCase{"own", "here", "ann", 77, true},
                                         ForeignCase{"own_as_text", "here", "ann", "77", true},
                                         ForeignCase{"own_as_real", "here", "ann", 77.5, true},
                                         ForeignCase{"own_in_its_lower_32_bits", "here", "ann",
                                                     std::int64_t{0x10000004D}, true},
                                         ForeignCase{"other_host", "there", "ann", 77, false},
                                         ForeignCase{"other_user", "here", "bob", 77, false},
                                         ForeignCase{"other_process", "here", "ann", 78, false},
                                         ForeignCase{"no_host", nullptr, "ann", 77, false},
                                         ForeignCase{"no_user", "here", nullptr, 77, false},
                                         ForeignCase{"no_process", "here", "ann", nullptr, false},
                                         ForeignCase{"host_is_no_text", 5, "ann", 77, false}),
                         [](const auto& c) { return c.param.name; });

// A file manager for which nothing can be removed.
class KeepingManager : public FileManager {
 public:
  bool removeItemAtPath(StringArg, Ref<Error>*) override { return false; }
};
void describe(ClassBuilder<KeepingManager>& c) { c.name("KeepingManager").inherits<FileManager>(); }

TEST(Unlocking, RaisesWhereTheLockCanNotBeRemoved) {
  const TemporaryFolder folder;
  const Ref<FileManager> keeping = make<KeepingManager>();
  bool created = false;
  ASSERT_TRUE(lockFileAtPath(keeping, folder / "f", false, created) != nullptr);
  EXPECT_EQ(reasonOf<GenericException>([&] { unlockFileAtPath(keeping, folder / "f"); }),
            "Error unlocking file at " + (folder / "f") + ": lock file couldn't be removed");
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"f.lock"}));
}

// A file manager that sees nothing.
class BlindManager : public FileManager {
 public:
  using FileManager::fileExistsAtPath;
  bool fileExistsAtPath(StringArg) const override { return false; }
};
void describe(ClassBuilder<BlindManager>& c) { c.name("BlindManager").inherits<FileManager>(); }

TEST(Unlocking, AsksTheReceiverWhetherThereIsALock) {
  const TemporaryFolder folder;
  const Ref<FileManager> blind = make<BlindManager>();
  bool created = false;
  ASSERT_TRUE(lockFileAtPath(blind, folder / "f", false, created) != nullptr);
  EXPECT_EQ(
      reasonOf<InternalInconsistencyException>([&] { unlockFileAtPath(blind, folder / "f"); }),
      "Error unlocking file at " + (folder / "f") + ": lock file " + (folder / "f.lock") +
          " does not exist");
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"f.lock"}));
}

}  // namespace
}  // namespace qx

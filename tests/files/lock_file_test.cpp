// Lock files: their names and records, every row of the decision, and every failure to take one.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include <QXFoundation/exception.h>
#include <QXFoundation/lock_file.h>
#include <QXFoundation/machine_identity.h>
#include <QXFoundation/path.h>
#include <QXFoundation/property_list.h>

#include "tests/files/lock_records.h"
#include "tests/frame/raises.h"
#include "tests/support/failing_file_calls.h"
#include "tests/support/fake_machine.h"
#include "tests/support/files.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::FakeIdentity;
using test_support::FakeProcesses;
using test_support::FakeUser;
using test_support::files;
using test_support::recordOfProcess;
using test_support::TemporaryFolder;
using test_support::writeRecord;

// ---- names and records

struct PathCase {
  const char* path;
  const char* lock;
};

class LockPath : public testing::TestWithParam<PathCase> {};

TEST_P(LockPath, IsThatOfTheFileStandardised) {
  const FakeUser user("ann", "/home/ann");
  const test_support::ScopedVariable home("HOME", "/home/ann");
  EXPECT_EQ(lockFilePathForPath(files(), GetParam().path)->utf8(), GetParam().lock);
}

INSTANTIATE_TEST_SUITE_P(Table, LockPath,
                         testing::Values(PathCase{"/data/report.txt", "/data/report.txt.lock"},
                                         PathCase{"report.txt", "report.txt.lock"},
                                         PathCase{"~/a", "/home/ann/a.lock"},
                                         PathCase{"/data/../x//./y/", "/x/y.lock"},
                                         PathCase{"/a.lock", "/a.lock.lock"},
                                         PathCase{"../x", "../x.lock"}, PathCase{"", ".lock"}));

TEST(LockFile, HoldsARecordOfThisProcess) {
  const TemporaryFolder folder;
  bool created = false;
  const auto record = lockFileAtPath(files(), folder / "f", false, created);
  EXPECT_TRUE(created);
  EXPECT_TRUE(PropertyValue(record) == PropertyValue(recordOfProcess(::getpid())));
  const std::string bytes = test_support::readBytes(folder / "f.lock");
  EXPECT_EQ(bytes.rfind("<?xml", 0), 0U);
  EXPECT_TRUE(PropertyListSerialization::propertyListWithData(Data::from(bytes),
                                                              PropertyListMutability::immutable,
                                                              nullptr) == PropertyValue(record));
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"f.lock"}));
}

TEST(LockFile, LeavesOutWhatIsNotKnown) {
  const FakeIdentity identity("id", std::nullopt);
  const TemporaryFolder folder;
  bool created = false;
  const auto record = lockFileAtPath(files(), folder / "f", false, created);
  EXPECT_TRUE(created);
  EXPECT_TRUE(PropertyValue(record->allKeys()) ==
              PropertyValue(array("hostIdentifier", "userName", "processNumber")));
}

// ---- the decision

struct DecisionCase {
  const char* name;
  PropertyValue record;
  int answer;  // of the probe
  bool takesOver;
  pid_t probed;  // 0: not called
};

PropertyValue recordWith(const char* identifier, const char* host, const PropertyValue& process) {
  const auto record = MutableDictionary::init();
  record->setValueForKey(StringArg(identifier), "hostIdentifier");
  record->setValueForKey(StringArg(host), "hostName");
  record->setValueForKey("somebody", "userName");
  record->setValueForKey(process, "processNumber");
  return record;
}

class LockDecision : public testing::TestWithParam<DecisionCase> {};

TEST_P(LockDecision, FollowsMachineProcessAndProbe) {
  const FakeIdentity identity("11:22", "here");
  FakeProcesses processes;
  processes.answer = GetParam().answer;
  const TemporaryFolder folder;
  writeRecord(folder / "f.lock", GetParam().record);
  bool created = !GetParam().takesOver;
  const auto result = lockFileAtPath(files(), folder / "f", false, created);
  EXPECT_EQ(created, GetParam().takesOver);
  EXPECT_EQ(result->objectForKey("userName") == "somebody", !GetParam().takesOver);
  if (!created) {
    EXPECT_TRUE(PropertyValue(result) == GetParam().record);
  }
  EXPECT_EQ(processes.probed.size(), GetParam().probed == 0 ? 0U : 1U);
  if (!processes.probed.empty()) {
    EXPECT_EQ(processes.probed[0], GetParam().probed);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, LockDecision,
    testing::Values(
        DecisionCase{"other_machine", recordWith("33", "there", 5), ESRCH, false, 0},
        DecisionCase{"no_machine", recordWith(nullptr, nullptr, 5), ESRCH, false, 0},
        DecisionCase{"case_of_name", recordWith("33", "Here", 5), ESRCH, false, 0},
        DecisionCase{"zero", recordWith("11:22", "there", 0), ESRCH, false, 0},
        DecisionCase{"negative", recordWith("11:22", "there", -7), ESRCH, false, 0},
        DecisionCase{"without_number", recordWith("11:22", "there", nullptr), ESRCH, false, 0},
        DecisionCase{"alive", recordWith("11:22", "there", 5), 0, false, 5},
        DecisionCase{"gone", recordWith("11:22", "there", 5), ESRCH, true, 5},
        DecisionCase{"not_permitted", recordWith("11:22", "there", 5), EPERM, false, 5},
        DecisionCase{"other_error", recordWith("11:22", "there", 5), EINVAL, false, 5},
        DecisionCase{"same_name_other_identifier", recordWith("33", "here", 5), ESRCH, true, 5},
        DecisionCase{"same_name_no_identifier", recordWith(nullptr, "here", 5), 0, false, 5},
        DecisionCase{"digits", recordWith("11:22", nullptr, "0123 "), ESRCH, true, 123},
        DecisionCase{"no_digits", recordWith("11:22", nullptr, "x"), ESRCH, false, 0},
        DecisionCase{"real", recordWith("11:22", nullptr, 9.75), ESRCH, true, 9},
        DecisionCase{"wider", recordWith("11:22", nullptr, std::int64_t{0x100000009}), ESRCH, true,
                     9},
        DecisionCase{"array", recordWith("11:22", nullptr, array(5)), ESRCH, false, 0}),
    [](const auto& c) { return c.param.name; });

TEST(LockDecision, AsksForTheHostNameOnlyWhereTheIdentifierIsAnother) {
  FakeIdentity identity("11:22", "here");
  FakeProcesses processes;
  EXPECT_EQ(holderOfLockRecord(recordWith("11:22", "there", 5).as<Dictionary>()),
            LockHolder::alive);
  EXPECT_EQ(identity.namesAsked, 0);
}

TEST(LockDecision, MachinesWithoutAddressesCountAsTheSame) {
  const FakeIdentity identity(kNoUniqueMachineIdentifier, "here");
  FakeProcesses processes;
  processes.answer = ESRCH;
  EXPECT_EQ(holderOfLockRecord(recordWith(kNoUniqueMachineIdentifier, "there", 5).as<Dictionary>()),
            LockHolder::gone);
}

TEST(LockDecision, AMissingHostNameEqualsNothing) {
  const FakeIdentity identity("11:22", std::nullopt);
  EXPECT_EQ(holderOfLockRecord(recordWith("33", nullptr, 5).as<Dictionary>()), LockHolder::unknown);
  EXPECT_EQ(holderOfLockRecord(nullptr), LockHolder::unknown);
}

// ---- taking

TEST(LockFile, AskedForTwiceByOneProcessIsHeldByItself) {
  const TemporaryFolder folder;
  bool created = false;
  const auto first = lockFileAtPath(files(), folder / "f", false, created);
  ASSERT_TRUE(created);
  const auto second = lockFileAtPath(files(), folder / "f", false, created);
  EXPECT_FALSE(created);
  EXPECT_TRUE(PropertyValue(second) == PropertyValue(first));
}

TEST(LockFile, IsReadInAnyFormatOfPropertyLists) {
  const TemporaryFolder folder;
  const auto record = recordOfProcess(::getpid());
  test_support::writeBytes(
      folder / "f.lock",
      PropertyListSerialization::dataWithPropertyList(record, PropertyListFormat::binary)->view());
  bool created = true;
  EXPECT_TRUE(PropertyValue(lockFileAtPath(files(), folder / "f", false, created)) ==
              PropertyValue(record));
  EXPECT_FALSE(created);
  unlockFileAtPath(files(), folder / "f");
  EXPECT_TRUE(folder.names().empty());
}

const char* const kUnreadable[] = {"", "garbage", "<plist><array/></plist>",
                                   "<?xml version=\"1.0\"?><plist><dict><key>hostName</key><str",
                                   "\x00\x01\x02"};

TEST(LockFile, ThatCanNotBeReadIsHeldByAnUnknownOwner) {
  const TemporaryFolder folder;
  for (const char* bytes : kUnreadable) {
    test_support::writeBytes(folder / "f.lock", bytes);
    bool created = true;
    Ref<Error> error = Error::posixError(1);
    const auto record = lockFileAtPath(files(), folder / "f", false, created, &error);
    EXPECT_FALSE(created);
    EXPECT_EQ(record->count(), 0U);
    EXPECT_TRUE(error == nullptr);
    EXPECT_EQ(test_support::readBytes(folder / "f.lock"), bytes);
    EXPECT_EQ(
        reasonOf<InternalInconsistencyException>([&] { unlockFileAtPath(files(), folder / "f"); }),
        "Error unlocking file at " + (folder / "f") + ": couldn't read lock file " +
            (folder / "f.lock"));
  }
}

TEST(LockFile, ThatIsNoFileIsHeldByAnUnknownOwner) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder / "a.lock");
  ASSERT_EQ(::mkfifo((folder / "b.lock").c_str(), 0600), 0);
  for (const char* name : {"a", "b"}) {
    bool created = true;
    EXPECT_EQ(lockFileAtPath(files(), folder / name, false, created)->count(), 0U);
    EXPECT_FALSE(created);
  }
}

TEST(LockFile, OfAbsurdSizeIsNotRead) {
  const TemporaryFolder folder;
  test_support::writeBytes(folder / "f.lock", "x");
  std::filesystem::resize_file(folder / "f.lock", std::uintmax_t{1} << 40);
  bool created = true;
  EXPECT_EQ(lockFileAtPath(files(), folder / "f", false, created)->count(), 0U);
  EXPECT_FALSE(created);
}

TEST(LockFile, IsOverriddenUnread) {
  FakeProcesses processes;
  const TemporaryFolder folder;
  for (const char* bytes : kUnreadable) {
    test_support::writeBytes(folder / "f.lock", bytes);
    bool created = false;
    const auto record = lockFileAtPath(files(), folder / "f", true, created);
    EXPECT_TRUE(created);
    EXPECT_TRUE(record->objectForKey("processNumber") == processes.own);
  }
  EXPECT_TRUE(processes.probed.empty());
}

TEST(LockFile, InAFolderThatDoesNotExistMakesTheFolders) {
  const TemporaryFolder folder;
  bool created = false;
  EXPECT_TRUE(lockFileAtPath(files(), folder / "a/b/c/f", false, created) != nullptr);
  EXPECT_TRUE(created);
  EXPECT_TRUE(std::filesystem::exists(folder / "a/b/c/f.lock"));
}

TEST(LockFile, BelowAFileCanNotBeMadeAndFillsNoError) {
  const TemporaryFolder folder;
  test_support::writeBytes(folder / "a", "");
  bool created = true;
  Ref<Error> error = Error::posixError(1);
  EXPECT_TRUE(lockFileAtPath(files(), folder / "a/b/f", false, created, &error) == nullptr);
  EXPECT_FALSE(created);
  EXPECT_TRUE(error == nullptr);
}

TEST(LockFile, ThatCanNotBeWrittenFillsTheError) {
  const TemporaryFolder folder;
  for (const char* call : {"write", "linkDescriptor", "close", "open"}) {
    test_support::FailingFileCalls calls(call, 0, ENOSPC);
    const detail::ReplacedFileCalls replaced(calls);
    bool created = true;
    Ref<Error> error;
    EXPECT_TRUE(lockFileAtPath(files(), folder / "f", false, created, &error) == nullptr) << call;
    EXPECT_FALSE(created);
    ASSERT_TRUE(error != nullptr) << call;
    EXPECT_EQ(error->domain()->utf8(), NSPOSIXErrorDomain);
    EXPECT_EQ(error->code(), ENOSPC);
    bool second = true;
    EXPECT_TRUE(lockFileAtPath(files(), folder / "f", false, second) == nullptr);
  }
  EXPECT_TRUE(folder.names().empty());
}

TEST(LockFile, IsWrittenNeitherDurablyNorThroughASymbolicLink) {
  const TemporaryFolder folder;
  test_support::writeBytes(folder / "victim", "v");
  std::filesystem::create_symlink(folder / "victim", folder / "f.lock");
  test_support::FailingFileCalls calls("none", 0, 0);
  const detail::ReplacedFileCalls replaced(calls);
  bool created = false;
  EXPECT_TRUE(lockFileAtPath(files(), folder / "f", true, created) != nullptr);
  EXPECT_EQ(calls.order.find("fsync"), std::string::npos);
  EXPECT_EQ(test_support::readBytes(folder / "victim"), "v");
  EXPECT_FALSE(std::filesystem::is_symlink(folder / "f.lock"));
}

TEST(LockFile, OfAnExistingNameThatLeadsNowhereIsFree) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink(folder / "nothing", folder / "f.lock");
  bool created = false;
  EXPECT_TRUE(lockFileAtPath(files(), folder / "f", false, created) != nullptr);
  EXPECT_TRUE(created);
  EXPECT_FALSE(std::filesystem::exists(folder / "nothing"));
}

TEST(LockFile, PassesOnThatTheMachineHasNoIdentity) {
  test_support::FakeMachineSystem system;
  const test_support::FreshIdentity fresh;
  system.listError = EPERM;
  const TemporaryFolder folder;
  bool created = true;
  EXPECT_THROW(lockFileAtPath(files(), folder / "f", false, created), GenericException);
  EXPECT_FALSE(created);
  EXPECT_TRUE(folder.names().empty());
}

TEST(LockFile, NeedsAPathAndTakesANilManager) {
  bool created = true;
  EXPECT_TRUE(lockFileAtPath(nullptr, "/x", false, created) == nullptr);
  EXPECT_FALSE(created);
  EXPECT_TRUE(lockFilePathForPath(nullptr, "/x") == nullptr);
  unlockFileAtPath(nullptr, "/x");
  EXPECT_THROW(lockFileAtPath(files(), nullptr, false, created), InvalidArgumentException);
  EXPECT_THROW(lockFilePathForPath(files(), nullptr), InvalidArgumentException);
  EXPECT_THROW(unlockFileAtPath(files(), nullptr), InvalidArgumentException);
}

TEST(LockFile, TellsItsRecord) {
  const TemporaryFolder folder;
  EXPECT_TRUE(lockRecordForPath(files(), folder / "f") == nullptr);
  test_support::writeBytes(folder / "f.lock", "garbage");
  EXPECT_EQ(lockRecordForPath(files(), folder / "f")->count(), 0U);
  writeRecord(folder / "f.lock", dict({{"hostName", "x"}}));
  EXPECT_TRUE(PropertyValue(lockRecordForPath(files(), folder / "f")) ==
              PropertyValue(dict({{"hostName", "x"}})));
  EXPECT_TRUE(lockRecordForPath(nullptr, "/x") == nullptr);
}

}  // namespace
}  // namespace qx

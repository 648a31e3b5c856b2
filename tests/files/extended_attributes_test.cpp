// Extended attributes on the real file systems of this machine.

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <QXFoundation/date.h>
#include <QXFoundation/extended_attributes.h>
#include <QXFoundation/property_list.h>

#include "tests/files/attribute_checks.h"
#include "tests/support/child_process.h"
#include "tests/support/raw_attributes.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::bytesOf;
using test_support::ChildProcess;
using test_support::expectError;
using test_support::storedAttribute;
using test_support::urlOf;

// One file, in a folder of a given file system; skipped where that takes no attributes.
class OnFileSystem : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    std::string pattern = std::string(GetParam()) + "/qxtestXXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) GTEST_SKIP() << GetParam() << " is not there";
    folder_ = pattern;
    file_ = folder_ + "/f";
    test_support::writeBytes(file_, "content");
    if (::lsetxattr(file_.c_str(), "user.probe", "", 0, 0) != 0) {
      GTEST_SKIP() << GetParam() << " takes no user attributes: " << ::strerror(errno);
    }
    ::lremovexattr(file_.c_str(), "user.probe");
    url_ = urlOf(file_);
  }
  void TearDown() override {
    std::error_code ignored;
    if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
  }

  std::string folder_;
  std::string file_;
  Ref<URL> url_;
  Ref<Error> error_;
};

TEST_P(OnFileSystem, BytesAreKeptAsTheyAre) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  const std::string large(3000, 'x');
  for (const std::string& bytes : {std::string(), std::string("a"), all, large}) {
    ASSERT_TRUE(setExtendedAttributeData(url_, Data::from(bytes), "org.example.a", &error_));
    EXPECT_EQ(bytesOf(dataForExtendedAttribute(url_, "org.example.a", &error_)), bytes);
    EXPECT_EQ(storedAttribute(file_, "user.org.example.a"), bytes);
  }
  EXPECT_TRUE(error_ == nullptr);
}

TEST_P(OnFileSystem, NamesWithANamespaceAreTakenAsTheyAre) {
  ASSERT_TRUE(setExtendedAttributeData(url_, Data::from("1"), "user.a", nullptr));
  EXPECT_EQ(storedAttribute(file_, "user.a"), "1");
  EXPECT_EQ(bytesOf(dataForExtendedAttribute(url_, "a")), "1");
  ASSERT_TRUE(setExtendedAttributeData(url_, Data::from("2"), "users.a", nullptr));
  EXPECT_EQ(storedAttribute(file_, "user.users.a"), "2");
  ASSERT_TRUE(setExtendedAttributeData(url_, Data::from("3"), "\xC3\xA4 b\n", nullptr));
  EXPECT_EQ(storedAttribute(file_, "user.\xC3\xA4 b\n"), "3");
  if (::getuid() == 0) {
    ASSERT_TRUE(setExtendedAttributeData(url_, Data::from("4"), "trusted.a", &error_));
    EXPECT_EQ(storedAttribute(file_, "trusted.a"), "4");
  }
}

TEST_P(OnFileSystem, AbsentAttributesAreErrors) {
  EXPECT_TRUE(dataForExtendedAttribute(url_, "absent", &error_) == nullptr);
  expectError(error_, ENODATA, ::strerror(ENODATA), "absent");
  EXPECT_TRUE(dataForExtendedAttribute(url_, "absent") == nullptr);
  error_ = nullptr;
  EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "absent", &error_).isNil());
  expectError(error_, ENODATA, ::strerror(ENODATA), "absent");
}

TEST_P(OnFileSystem, AbsentAttributesAreRemoved) {
  EXPECT_TRUE(removeExtendedAttributeWithName(url_, "absent", &error_));
  EXPECT_TRUE(error_ == nullptr);
  ASSERT_TRUE(setExtendedAttributeData(url_, Data::from("1"), "a"));
  EXPECT_TRUE(removeExtendedAttributeWithName(url_, "a"));
  EXPECT_EQ(storedAttribute(file_, "user.a"), "absent");
}

TEST_P(OnFileSystem, AbsentFilesAreErrors) {
  const auto absent = urlOf(folder_ + "/absent");
  EXPECT_TRUE(dataForExtendedAttribute(absent, "a", &error_) == nullptr);
  expectError(error_, ENOENT, ::strerror(ENOENT), "a");
  EXPECT_FALSE(setExtendedAttributeData(absent, Data::from("1"), "a", &error_));
  expectError(error_, ENOENT, ::strerror(ENOENT), "a");
  EXPECT_FALSE(removeExtendedAttributeWithName(absent, "a", &error_));
  expectError(error_, ENOENT, ::strerror(ENOENT), "a");
  EXPECT_TRUE(extendedAttributeNames(absent, &error_) == nullptr);
  EXPECT_EQ(error_->code(), ENOENT);
}

TEST_P(OnFileSystem, LongNamesAreErrors) {
  const std::string fits(250, 'n');  // and "user." in front
  const std::string tooLong(251, 'n');
  EXPECT_TRUE(setExtendedAttributeData(url_, Data::from("1"), fits, &error_));
  EXPECT_EQ(bytesOf(dataForExtendedAttribute(url_, fits)), "1");
  for (const std::string& name : {tooLong, std::string(5000, 'n'), "user." + tooLong}) {
    EXPECT_FALSE(setExtendedAttributeData(url_, Data::from("1"), name, &error_));
    expectError(error_, ENAMETOOLONG, "Attribute name too long", name);
    EXPECT_TRUE(dataForExtendedAttribute(url_, name, &error_) == nullptr);
    expectError(error_, ENAMETOOLONG, "Attribute name too long", name);
    EXPECT_FALSE(removeExtendedAttributeWithName(url_, name, &error_));
    expectError(error_, ENAMETOOLONG, "Attribute name too long", name);
  }
}

TEST_P(OnFileSystem, LargeValuesAreErrorsAndLeaveTheOldOne) {
  ASSERT_TRUE(setExtendedAttributeData(url_, Data::from("old"), "a"));
  for (const std::size_t size : {std::size_t{65537}, std::size_t{1} << 20}) {
    EXPECT_FALSE(setExtendedAttributeData(url_, Data::from(std::string(size, 'x')), "a", &error_));
    expectError(error_, E2BIG, "Attribute too big", "a");
  }
  EXPECT_EQ(bytesOf(dataForExtendedAttribute(url_, "a")), "old");
}

// 65536 bytes are the system's limit, which only some file systems reach.
TEST_P(OnFileSystem, ValuesUpToTheLimitAreWrittenOrTooBig) {
  const std::string bytes(65536, 'x');
  if (setExtendedAttributeData(url_, Data::from(bytes), "a", &error_)) {
    EXPECT_EQ(bytesOf(dataForExtendedAttribute(url_, "a")), bytes);
  } else {
    expectError(error_, E2BIG, "Attribute too big", "a");
  }
}

TEST_P(OnFileSystem, SymbolicLinksAreMeantThemselves) {
  const std::string link = folder_ + "/link";
  std::filesystem::create_symlink(file_, link);
  ASSERT_TRUE(setExtendedAttributeData(url_, Data::from("of the file"), "a"));
  EXPECT_TRUE(dataForExtendedAttribute(urlOf(link), "a", &error_) == nullptr);
  expectError(error_, ENODATA, ::strerror(ENODATA), "a");
  EXPECT_FALSE(setExtendedAttributeData(urlOf(link), Data::from("1"), "a", &error_));
  expectError(error_, EPERM, ::strerror(EPERM), "a");
  EXPECT_TRUE(removeExtendedAttributeWithName(urlOf(link), "a", &error_));
  EXPECT_EQ(storedAttribute(file_, "user.a"), "of the file");
  if (::getuid() == 0) {
    ASSERT_TRUE(setExtendedAttributeData(urlOf(link), Data::from("2"), "trusted.a", &error_));
    EXPECT_EQ(storedAttribute(link, "trusted.a"), "2");
    EXPECT_EQ(storedAttribute(file_, "trusted.a"), "absent");
    EXPECT_TRUE(removeExtendedAttributeWithName(urlOf(link), "trusted.a", &error_));
    EXPECT_EQ(storedAttribute(link, "trusted.a"), "absent");
  }
}

TEST_P(OnFileSystem, FoldersHaveAttributesToo) {
  ASSERT_TRUE(setExtendedAttributeValue(urlOf(folder_), 5, "a", &error_));
  EXPECT_TRUE(valueOfExtendedAttributeWithName(URL::fileURLWithPath(folder_, true), "a") == 5);
}

TEST_P(OnFileSystem, RightsAreNeeded) {
  if (::getuid() != 0) GTEST_SKIP() << "only a privileged process can give its rights up";
  std::filesystem::permissions(folder_, std::filesystem::perms::all);
  ::lsetxattr(file_.c_str(), "user.there", "1", 1, 0);
  std::filesystem::permissions(file_, std::filesystem::perms(0444));
  ChildProcess child([&] {
    if (!test_support::becomeNobody()) return 10;
    Ref<Error> error;
    if (bytesOf(dataForExtendedAttribute(url_, "there")) != "1") return 11;
    if (setExtendedAttributeData(url_, Data::from("2"), "there", &error)) return 12;
    if (error->code() != EACCES && error->code() != EPERM) return 13;
    if (removeExtendedAttributeWithName(url_, "there", &error)) return 14;
    if (error->code() != EACCES && error->code() != EPERM) return 15;
    if (!removeExtendedAttributeWithName(url_, "absent", &error)) return 16;
    if (setExtendedAttributeData(url_, Data::from("2"), "trusted.a", &error)) return 17;
    return error->code() == EPERM ? 0 : 18;
  });
  EXPECT_EQ(child.wait(), 0);
  std::filesystem::permissions(file_, std::filesystem::perms(0000));
  ChildProcess blind([&] {
    if (!test_support::becomeNobody()) return 10;
    Ref<Error> error;
    return dataForExtendedAttribute(url_, "there", &error) == nullptr && error->code() == EACCES
               ? 0
               : 11;
  });
  EXPECT_EQ(blind.wait(), 0);
  EXPECT_EQ(storedAttribute(file_, "user.there"), "1");
}

TEST_P(OnFileSystem, ValuesAreKeptWithTheirKinds) {
  const PropertyValue value = dict({{"text", "\xC3\xA4\xF0\x9F\x98\x80"},
                                    {"numbers", array(1, -5, 2.5, true, std::uint64_t{1} << 63)},
                                    {"data", Data::from(std::string("\0\xFF", 2))},
                                    {"date", Date::dateWithTimeIntervalSince1970(86400)},
                                    {"nested", dict({{"empty", array()}})}});
  ASSERT_TRUE(setExtendedAttributeValue(url_, value, "v", &error_));
  EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "v", &error_) == value);
  EXPECT_EQ(storedAttribute(file_, "user.v").rfind("bplist00", 0), 0U);
  ASSERT_TRUE(setExtendedAttributeValue(url_, nullptr, "v", &error_));
  EXPECT_EQ(storedAttribute(file_, "user.v"), "absent");
  ASSERT_TRUE(setExtendedAttributeValue(url_, nullptr, "v", &error_));
}

TEST_P(OnFileSystem, ValuesAreReadByAnotherProgram) {
  ASSERT_TRUE(setExtendedAttributeValue(url_,
                                        dict({{"name",
                                               "B\xC3\xB6"
                                               "b"},
                                              {"list", array(1, 2.5, true, Data::from("x"))}}),
                                        "v"));
  const std::string command =
      "python3 -c 'import os,plistlib,sys\n"
      "v = plistlib.loads(os.getxattr(sys.argv[1], \"user.v\"), fmt=plistlib.FMT_BINARY)\n"
      "sys.exit(0 if v == {\"name\": \"B\\u00f6b\", \"list\": [1, 2.5, True, b\"x\"]} else 1)' " +
      file_;
  EXPECT_EQ(::system(command.c_str()), 0);
}

TEST_P(OnFileSystem, ValuesOfAnotherProgramAreReadInAnyFormat) {
  for (const char* format : {"FMT_XML", "FMT_BINARY"}) {
    const std::string command = std::string("python3 -c 'import os,plistlib,sys\n") +
                                "os.setxattr(sys.argv[1], \"user.v\", plistlib.dumps([\"a\", 1], "
                                "fmt=plistlib." +
                                format + "))' " + file_;
    ASSERT_EQ(::system(command.c_str()), 0);
    EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "v") == PropertyValue(array("a", 1)));
  }
}

TEST_P(OnFileSystem, NamesAreListedAsTheyAreTaken) {
  for (const char* name : {"user.a", "user.user.b", "user.trusted.c", "user.system"}) {
    ASSERT_EQ(::lsetxattr(file_.c_str(), name, name, ::strlen(name), 0), 0);
  }
  const auto names = extendedAttributeNames(url_, &error_);
  std::size_t own = 0;
  for (const PropertyValue& name : *names) {
    const auto data = dataForExtendedAttribute(url_, name.as<String>());
    ASSERT_TRUE(data != nullptr) << name.description();
    own += data->view().starts_with("user.") ? 1 : 0;
  }
  EXPECT_EQ(own, 4U);
  EXPECT_TRUE(names->containsObject("a"));
  EXPECT_TRUE(names->containsObject("system"));
  EXPECT_TRUE(names->containsObject("user.user.b"));
  EXPECT_TRUE(names->containsObject("user.trusted.c"));
}

INSTANTIATE_TEST_SUITE_P(Table, OnFileSystem, testing::Values("/tmp", "/dev/shm", "/var/tmp"),
                         [](const auto& c) {
                           std::string name = c.param;
                           for (char& letter : name) letter = letter == '/' ? '_' : letter;
                           return name;
                         });

// /proc and /sys are the file systems that every machine has and that take no attributes.
TEST(ExtendedAttributes, OfAnUnsupportedFileSystemAreErrors) {
  Ref<Error> error;
  EXPECT_FALSE(setExtendedAttributeData(urlOf("/proc/self/stat"), Data::from("1"), "a", &error));
  expectError(error, ENOTSUP, ::strerror(ENOTSUP), "a");
  EXPECT_TRUE(dataForExtendedAttribute(urlOf("/proc/self/stat"), "a", &error) == nullptr);
  expectError(error, ENOTSUP, ::strerror(ENOTSUP), "a");
  EXPECT_FALSE(removeExtendedAttributeWithName(urlOf("/proc/self/stat"), "a", &error));
  expectError(error, ENOTSUP, ::strerror(ENOTSUP), "a");
}

}  // namespace
}  // namespace qx

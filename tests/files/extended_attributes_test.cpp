// Extended attributes: on the real file systems of this machine, and with a system that fails.

#include "platform/extended_attributes.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/date.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/extended_attributes.h>
#include <QXFoundation/localized_text.h>
#include <QXFoundation/property_list.h>

#include "files/attribute_errors.h"
#include "platform/attribute_calls.h"
#include "tests/frame/raises.h"
#include "tests/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::ChildProcess;
using test_support::TemporaryFolder;

Ref<URL> urlOf(const std::string& path) { return URL::fileURLWithPath(path); }

std::string bytesOf(const Ref<Data>& data) {
  return data == nullptr ? "nil" : std::string(data->view());
}

std::string rawAttribute(const std::string& path, const char* name) {
  char bytes[70000];
  const ssize_t size = ::lgetxattr(path.c_str(), name, bytes, sizeof bytes);
  return size < 0 ? "absent" : std::string(bytes, static_cast<std::size_t>(size));
}

// An error as its domain, code, description and attribute's name.
void expectError(const Ref<Error>& error, int code, const std::string& description,
                 const std::string& name) {
  ASSERT_TRUE(error != nullptr);
  EXPECT_EQ(error->domain()->utf8(), NSPOSIXErrorDomain);
  EXPECT_EQ(error->code(), code);
  EXPECT_EQ(error->localizedDescription(), description);
  EXPECT_TRUE(error->userInfo()->objectForKey(QXExtendedAttributeNameKey) == name);
  EXPECT_TRUE(error->userInfo()->objectForKey(NSURLErrorKey).as<URL>() != nullptr);
  EXPECT_EQ(error->userInfo()->count(), 3U);
}

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
    EXPECT_EQ(rawAttribute(file_, "user.org.example.a"), bytes);
  }
  EXPECT_TRUE(error_ == nullptr);
}

TEST_P(OnFileSystem, NamesWithANamespaceAreTakenAsTheyAre) {
  ASSERT_TRUE(setExtendedAttributeData(url_, Data::from("1"), "user.a", nullptr));
  EXPECT_EQ(rawAttribute(file_, "user.a"), "1");
  EXPECT_EQ(bytesOf(dataForExtendedAttribute(url_, "a")), "1");
  ASSERT_TRUE(setExtendedAttributeData(url_, Data::from("2"), "users.a", nullptr));
  EXPECT_EQ(rawAttribute(file_, "user.users.a"), "2");
  ASSERT_TRUE(setExtendedAttributeData(url_, Data::from("3"), "\xC3\xA4 b\n", nullptr));
  EXPECT_EQ(rawAttribute(file_, "user.\xC3\xA4 b\n"), "3");
  if (::getuid() == 0) {
    ASSERT_TRUE(setExtendedAttributeData(url_, Data::from("4"), "trusted.a", &error_));
    EXPECT_EQ(rawAttribute(file_, "trusted.a"), "4");
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
  EXPECT_EQ(rawAttribute(file_, "user.a"), "absent");
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
  EXPECT_EQ(rawAttribute(file_, "user.a"), "of the file");
  if (::getuid() == 0) {
    ASSERT_TRUE(setExtendedAttributeData(urlOf(link), Data::from("2"), "trusted.a", &error_));
    EXPECT_EQ(rawAttribute(link, "trusted.a"), "2");
    EXPECT_EQ(rawAttribute(file_, "trusted.a"), "absent");
    EXPECT_TRUE(removeExtendedAttributeWithName(urlOf(link), "trusted.a", &error_));
    EXPECT_EQ(rawAttribute(link, "trusted.a"), "absent");
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
  EXPECT_EQ(rawAttribute(file_, "user.there"), "1");
}

TEST_P(OnFileSystem, ValuesAreKeptWithTheirKinds) {
  const PropertyValue value = dict({{"text", "\xC3\xA4\xF0\x9F\x98\x80"},
                                    {"numbers", array(1, -5, 2.5, true, std::uint64_t{1} << 63)},
                                    {"data", Data::from(std::string("\0\xFF", 2))},
                                    {"date", Date::dateWithTimeIntervalSince1970(86400)},
                                    {"nested", dict({{"empty", array()}})}});
  ASSERT_TRUE(setExtendedAttributeValue(url_, value, "v", &error_));
  EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "v", &error_) == value);
  EXPECT_EQ(rawAttribute(file_, "user.v").rfind("bplist00", 0), 0U);
  ASSERT_TRUE(setExtendedAttributeValue(url_, nullptr, "v", &error_));
  EXPECT_EQ(rawAttribute(file_, "user.v"), "absent");
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

// ---- arguments

constexpr char kEmptyName[] = "extended attribute name cannot be empty";

TEST(ExtendedAttributes, NeedAName) {
  const auto url = urlOf("/no/such");
  for (const StringArg name : {StringArg(nullptr), StringArg("")}) {
    EXPECT_EQ(
        reasonOf<InvalidArgumentException>([&] { (void)dataForExtendedAttribute(url, name); }),
        kEmptyName);
    EXPECT_EQ(reasonOf<InvalidArgumentException>(
                  [&] { setExtendedAttributeData(url, Data::from(""), name); }),
              kEmptyName);
    EXPECT_EQ(reasonOf<InvalidArgumentException>(
                  [&] { (void)valueOfExtendedAttributeWithName(url, name); }),
              "-[NSURL(NSURL_extensions) valueOfExtendedAttributeWithName:error:] name parameter "
              "can't be nil");
    EXPECT_EQ(
        reasonOf<InvalidArgumentException>([&] { removeExtendedAttributeWithName(url, name); }),
        "-[NSURL(NSURL_extensions) removeExtendedAttributeWithName:error:] name parameter "
        "can't be nil");
    EXPECT_EQ(
        reasonOf<InvalidArgumentException>([&] { setExtendedAttributeValue(url, nullptr, name); }),
        "-[NSURL(NSURL_extensions) removeExtendedAttributeWithName:error:] name parameter "
        "can't be nil");
  }
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { setExtendedAttributeValue(url, 1, ""); }),
            kEmptyName);
  EXPECT_THROW(setExtendedAttributeValue(url, 1, nullptr), InvalidArgumentException);
  EXPECT_THROW(setExtendedAttributeData(url, nullptr, "a"), InvalidArgumentException);
}

TEST(ExtendedAttributes, OfValuesNeedAFileUrl) {
  const auto url = URL::URLWithString("http://example.com/tmp");
  EXPECT_EQ(reasonOf<InternalInconsistencyException>([&] { setExtendedAttributes(url, dict()); }),
            "-[NSURL(NSURL_extensions) setExtendedAttributes:error:] only valid on file URLs");
  EXPECT_EQ(
      reasonOf<InternalInconsistencyException>([&] { setExtendedAttributeValue(url, 1, "a"); }),
      "-[NSURL(NSURL_extensions) setExtendedAttributes:error:] only valid on file URLs");
  EXPECT_EQ(reasonOf<InternalInconsistencyException>(
                [&] { (void)valueOfExtendedAttributeWithName(url, nullptr); }),
            "-[NSURL(NSURL_extensions) valueOfExtendedAttributeWithName:error:] only valid on file "
            "URLs");
  EXPECT_EQ(reasonOf<InternalInconsistencyException>(
                [&] { removeExtendedAttributeWithName(url, nullptr); }),
            "-[NSURL(NSURL_extensions) removeExtendedAttributeWithName:error:] only valid on file "
            "URLs");
  EXPECT_THROW((void)extendedAttributeNames(url), InternalInconsistencyException);
}

TEST(ExtendedAttributes, OfBytesTakeThePathOfAnyUrl) {
  const TemporaryFolder folder;
  test_support::writeBytes(folder / "a b", "");
  const auto url = URL::URLWithString("http://example.com" + folder.path() + "/a%20b?x#y");
  ASSERT_TRUE(setExtendedAttributeData(url, Data::from("1"), "a"));
  EXPECT_EQ(rawAttribute(folder / "a b", "user.a"), "1");
  EXPECT_EQ(bytesOf(dataForExtendedAttribute(url, "a")), "1");
}

TEST(ExtendedAttributes, OfNilAreNil) {
  EXPECT_TRUE(dataForExtendedAttribute(nullptr, "a") == nullptr);
  EXPECT_FALSE(setExtendedAttributeData(nullptr, Data::from(""), "a"));
  EXPECT_FALSE(setExtendedAttributes(nullptr, dict({{"a", 1}})));
  EXPECT_TRUE(valueOfExtendedAttributeWithName(nullptr, "a").isNil());
  EXPECT_FALSE(setExtendedAttributeValue(nullptr, 1, "a"));
  EXPECT_FALSE(removeExtendedAttributeWithName(nullptr, "a"));
  EXPECT_TRUE(extendedAttributeNames(nullptr) == nullptr);
}

TEST(ExtendedAttributes, RefuseANul) {
  Ref<Error> error;
  EXPECT_FALSE(setExtendedAttributeData(urlOf("/tmp"), Data::from("1"), std::string_view("a\0b", 3),
                                        &error));
  EXPECT_EQ(error->code(), EINVAL);
  error = nullptr;
  EXPECT_TRUE(dataForExtendedAttribute(URL::URLWithString("file:///tmp%00x"), "a", &error) ==
              nullptr);
  EXPECT_EQ(error->code(), EINVAL);
}

// ---- several at once

class Several : public testing::Test {
 protected:
  Several() { test_support::writeBytes(folder_ / "f", ""); }
  TemporaryFolder folder_;
  Ref<URL> url_ = urlOf(folder_ / "f");
  Ref<Error> error_;
};

TEST_F(Several, AreWrittenInOrder) {
  EXPECT_TRUE(setExtendedAttributes(url_, dict(), &error_));
  EXPECT_TRUE(setExtendedAttributes(url_, dict({{"a", 1}, {"b", array("x")}}), &error_));
  EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "a") == 1);
  EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "b") == PropertyValue(array("x")));
  EXPECT_TRUE(error_ == nullptr);
}

TEST_F(Several, WithOneFailureGiveItAsItIs) {
  const std::string longName(300, 'n');
  EXPECT_FALSE(setExtendedAttributes(url_, dict({{longName, 1}, {"b", 2}}), &error_));
  expectError(error_, ENAMETOOLONG, "Attribute name too long", longName);
  EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "b") == 2);
}

// An object of an application, which no property list can hold.
class Gadget : public Object {};
void describe(ClassBuilder<Gadget>& c) { c.name("Gadget"); }

TEST_F(Several, WithAValueThatIsNoPropertyListWriteTheOthers) {
  const PropertyValue gadget = make<Gadget>();
  EXPECT_FALSE(setExtendedAttributes(url_, dict({{"a", 1}, {"g", gadget}, {"b", 2}}), &error_));
  EXPECT_EQ(error_->domain()->utf8(), "XAExtendedAttributesErrorDomain");
  EXPECT_EQ(error_->code(), 1968);
  EXPECT_EQ(error_->localizedDescription(),
            "Value of class Gadget cannot be serialized into a plist");
  EXPECT_TRUE(error_->userInfo()->objectForKey("XAExtendedAttributeName") == "g");
  EXPECT_TRUE(isSame(error_->userInfo()->objectForKey("value"), gadget));
  EXPECT_EQ(error_->userInfo()->count(), 3U);
  EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "a") == 1);
  EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "b") == 2);
}

TEST_F(Several, NameTheClassOfWhatIsNoPropertyList) {
  setExtendedAttributeValue(url_, qx::null, "n", &error_);
  EXPECT_EQ(error_->localizedDescription(),
            "Value of class NSNull cannot be serialized into a plist");
  setExtendedAttributeValue(url_, array(qx::null), "n", &error_);
  EXPECT_EQ(error_->localizedDescription(),
            "Value of class NSArray cannot be serialized into a plist");
}

TEST_F(Several, WithSeveralFailuresGatherThem) {
  const std::string longName(300, 'n');
  EXPECT_FALSE(setExtendedAttributes(
      url_, dict({{longName, 1}, {"g", qx::null}, {"b", 2}, {"c", std::string(1 << 20, 'x')}}),
      &error_));
  EXPECT_EQ(error_->domain()->utf8(), QXExtendedAttributesErrorDomain);
  EXPECT_EQ(error_->code(), 1969);
  EXPECT_EQ(error_->localizedDescription(), "Failed to set one or more extended attributes.");
  EXPECT_TRUE(error_->userInfo()->objectForKey(NSURLErrorKey) == PropertyValue(url_));
  const auto all = error_->userInfo()->objectForKey("XAUnderlyingErrors").as<Array>();
  ASSERT_EQ(all->count(), 3U);
  EXPECT_EQ(all->objectAtIndex(0).as<Error>()->code(), ENAMETOOLONG);
  EXPECT_EQ(all->objectAtIndex(1).as<Error>()->code(), 1968);
  EXPECT_EQ(all->objectAtIndex(2).as<Error>()->code(), E2BIG);
  EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "b") == 2);
}

TEST_F(Several, AreToldInTheApplicationsLanguage) {
  setTranslation([](const std::string& text) { return "<" + text + ">"; });
  setExtendedAttributes(url_, dict({{"a", qx::null}, {"b", qx::null}}), &error_);
  setTranslation(nullptr);
  EXPECT_EQ(error_->localizedDescription(), "<Failed to set one or more extended attributes.>");
}

TEST_F(Several, WithoutAPlaceAreAlwaysTrue) {
  EXPECT_TRUE(setExtendedAttributes(urlOf(folder_ / "absent"), dict({{"a", 1}, {"g", qx::null}})));
  EXPECT_TRUE(setExtendedAttributeValue(urlOf(folder_ / "absent"), 1, "a"));
  EXPECT_FALSE(removeExtendedAttributeWithName(urlOf(folder_ / "absent"), "a"));
  EXPECT_TRUE(setExtendedAttributes(url_, dict({{"g", qx::null}, {"b", 2}})));
  EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "b") == 2);
}

TEST_F(Several, WithAnEmptyNameRaiseAtItsTurn) {
  EXPECT_EQ(reasonOf<InvalidArgumentException>(
                [&] { setExtendedAttributes(url_, dict({{"a", 1}, {"", 2}, {"b", 3}}), &error_); }),
            kEmptyName);
  EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "a") == 1);
  EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "b").isNil());
  EXPECT_FALSE(setExtendedAttributes(url_, dict({{"", qx::null}}), &error_));
  EXPECT_EQ(error_->code(), 1968);
}

TEST_F(Several, ThatAreNoPropertyListsAreReadAsErrors) {
  for (const std::string bytes : {"", "garbage", "bplist00\x01"}) {
    ASSERT_TRUE(setExtendedAttributeData(url_, Data::from(bytes), "a"));
    error_ = nullptr;
    EXPECT_TRUE(valueOfExtendedAttributeWithName(url_, "a", &error_).isNil());
    ASSERT_TRUE(error_ != nullptr);
    EXPECT_EQ(error_->domain()->utf8(), QXPropertyListErrorDomain);
    EXPECT_EQ(rawAttribute(folder_ / "f", "user.a"), bytes);
  }
}

TEST_F(Several, ErrorsOfTheWriterGetTheName) {
  const auto writer = Error::errorWithDomain("Writer", 7, dict({{"why", "room"}}));
  const auto error = detail::valueError(1, "a", writer);
  EXPECT_EQ(error->domain()->utf8(), "Writer");
  EXPECT_EQ(error->code(), 7);
  EXPECT_TRUE(PropertyValue(error->userInfo()) ==
              PropertyValue(dict({{"why", "room"}, {"XAExtendedAttributeName", "a"}})));
}

// ---- a system that does as the test tells

class FakeAttributes : public detail::AttributeCalls {
 public:
  std::string value;
  std::vector<std::size_t> growth;  // sizes after each question for the size
  int getError = 0, setError = 0, removeError = 0;
  bool hasRoom = false;
  int questions = 0;

  ssize_t lgetxattr(const char*, const char*, void* bytes, std::size_t size) override {
    if (getError != 0) return fail(getError);
    const auto length = static_cast<ssize_t>(value.size());
    if (size == 0) {
      ++questions;
      if (!growth.empty()) {
        value.resize(growth.front(), 'g');
        growth.erase(growth.begin());
      }
      return length;
    }
    if (value.size() > size) return fail(ERANGE);
    std::memcpy(bytes, value.data(), value.size());
    return length;
  }
  int lsetxattr(const char*, const char*, const void*, std::size_t) override {
    return setError != 0 ? fail(setError) : 0;
  }
  int lremovexattr(const char*, const char*) override {
    return removeError != 0 ? fail(removeError) : 0;
  }
  bool volumeHasRoom(const char*, std::size_t) override { return hasRoom; }

 private:
  static int fail(int error) {
    errno = error;
    return -1;
  }
  detail::ReplacedAttributeCalls replaced_{*this};
};

TEST(AttributeCalls, AValueThatGrowsIsReadAgain) {
  FakeAttributes calls;
  calls.value = std::string(5000, 'x');
  calls.growth = {6000, 7000, 7000};
  EXPECT_EQ(dataForExtendedAttribute(urlOf("/f"), "a")->length(), 7000U);
  EXPECT_EQ(calls.questions, 3);
}

TEST(AttributeCalls, AVolumeWithRoomIsNotFull) {
  FakeAttributes calls;
  Ref<Error> error;
  calls.setError = ENOSPC;
  EXPECT_FALSE(setExtendedAttributeData(urlOf("/f"), Data::from("1"), "a", &error));
  EXPECT_EQ(error->code(), ENOSPC);
  EXPECT_EQ(error->localizedDescription(), ::strerror(ENOSPC));
  calls.hasRoom = true;
  EXPECT_FALSE(setExtendedAttributeData(urlOf("/f"), Data::from("1"), "a", &error));
  EXPECT_EQ(error->code(), E2BIG);
  calls.setError = EDQUOT;
  EXPECT_FALSE(setExtendedAttributeData(urlOf("/f"), Data::from("1"), "a", &error));
  EXPECT_EQ(error->code(), EDQUOT);
}

TEST(AttributeCalls, RemovingWhatIsAbsentSucceedsWhereItIsRefused) {
  FakeAttributes calls;
  Ref<Error> error;
  for (const int refusal : {EPERM, EACCES, EROFS}) {
    calls.removeError = refusal;
    calls.getError = ENODATA;
    EXPECT_TRUE(removeExtendedAttributeWithName(urlOf("/f"), "a", &error));
    calls.getError = 0;
    EXPECT_FALSE(removeExtendedAttributeWithName(urlOf("/f"), "a", &error));
    EXPECT_EQ(error->code(), refusal);
    calls.getError = EACCES;
    EXPECT_FALSE(removeExtendedAttributeWithName(urlOf("/f"), "a", &error));
    EXPECT_EQ(error->code(), refusal);
  }
  calls.removeError = EIO;
  calls.getError = ENODATA;
  EXPECT_FALSE(removeExtendedAttributeWithName(urlOf("/f"), "a", &error));
  EXPECT_EQ(error->code(), EIO);
}

}  // namespace
}  // namespace qx

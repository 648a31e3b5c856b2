// URLs: validity, parts, file URLs, resource values.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/url.h>

#include "platform/attribute_calls.h"
#include "platform/percent_encoding.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

struct ValidityCase {
  std::string text;
  bool isValid;
};

class UrlValidity : public testing::TestWithParam<ValidityCase> {};

TEST_P(UrlValidity, IsThatOfRfc3986) {
  const auto url = URL::URLWithString(GetParam().text);
  EXPECT_EQ(url != nullptr, GetParam().isValid);
  if (url != nullptr) {
    EXPECT_EQ(url->absoluteString()->utf8(), GetParam().text);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, UrlValidity,
    testing::Values(ValidityCase{"http://example.com/p?a=1#top", true},
                    ValidityCase{"mailto:a@b.example", true}, ValidityCase{"../x?y", true},
                    ValidityCase{"", true}, ValidityCase{"#", true}, ValidityCase{"?", true},
                    ValidityCase{"//host", true}, ValidityCase{"http://[::1]:80/", true},
                    ValidityCase{"file:///a%20b", true}, ValidityCase{"a b", false},
                    ValidityCase{"http://h/%zz", false}, ValidityCase{"http://h/%2", false},
                    ValidityCase{"http://h/#a#b", false}, ValidityCase{"http://h/\xC3\xA4", false},
                    ValidityCase{"http://h:x/", false}, ValidityCase{"1:2", false},
                    ValidityCase{"http://h/<>", false}, ValidityCase{std::string("a\0b", 3), false},
                    ValidityCase{"http://h/\n", false}, ValidityCase{"http://[::g]/", false}));

struct PartsCase {
  const char* text;
  PropertyValue scheme, host, path, query, fragment;
};

class UrlParts : public testing::TestWithParam<PartsCase> {};

TEST_P(UrlParts, AreAsWritten) {
  const PropertyValue url = URL::URLWithString(GetParam().text);
  ASSERT_FALSE(url.isNil());
  EXPECT_TRUE(url["scheme"] == GetParam().scheme);
  EXPECT_TRUE(url["host"] == GetParam().host);
  EXPECT_TRUE(url["path"] == GetParam().path) << url["path"].description();
  EXPECT_TRUE(url["query"] == GetParam().query);
  EXPECT_TRUE(url["fragment"] == GetParam().fragment);
}

INSTANTIATE_TEST_SUITE_P(
    Table, UrlParts,
    testing::Values(PartsCase{"http://u:p@h.example:8080/a/b?x=1&y#t", "http", "h.example", "/a/b",
                              "x=1&y", "t"},
                    PartsCase{"http://h", "http", "h", "", nullptr, nullptr},
                    PartsCase{"http://h?q", "http", "h", "", "q", nullptr},
                    PartsCase{"http://h#f?g", "http", "h", "", nullptr, "f?g"},
                    PartsCase{"http://h/p?", "http", "h", "/p", "", nullptr},
                    PartsCase{"http://h/p?#", "http", "h", "/p", "", ""},
                    PartsCase{"http://[fe80::1]:80/", "http", "fe80::1", "/", nullptr, nullptr},
                    PartsCase{"mailto:a@b", "mailto", nullptr, "a@b", nullptr, nullptr},
                    PartsCase{"file:///a%20b/%C3%A4/", "file", "", "/a b/\xC3\xA4", nullptr,
                              nullptr},
                    PartsCase{"/a/b:c", nullptr, nullptr, "/a/b:c", nullptr, nullptr},
                    PartsCase{"./b:c?d:e", nullptr, nullptr, "./b:c", "d:e", nullptr},
                    PartsCase{"", nullptr, nullptr, "", nullptr, nullptr},
                    PartsCase{"file:/%FF", "file", nullptr, "/\xEF\xBF\xBD", nullptr, nullptr}));

TEST(URL, OfAFileHasAnyBytesOfItsPath) {
  std::string path = "/";
  for (int byte = 1; byte < 256; ++byte) {
    if (byte != '/') path += static_cast<char>(byte);
  }
  const auto url = URL::fileURLWithPath(path);
  EXPECT_EQ(url->fileSystemRepresentation(), path);
  EXPECT_TRUE(url->isFileURL());
  EXPECT_TRUE(URL::URLWithString(url->absoluteString()) != nullptr);
  EXPECT_EQ(URL::URLWithString(url->absoluteString())->fileSystemRepresentation(), path);
}

TEST(URL, OfAFileIsEncoded) {
  const auto text = [](StringArg path) { return URL::fileURLWithPath(path)->description(); };
  EXPECT_EQ(text("/home/bob/a b"), "file:///home/bob/a%20b");
  EXPECT_EQ(text("/100%?#[]"), "file:///100%25%3F%23%5B%5D");
  EXPECT_EQ(text("/\xC3\xA4"), "file:///%C3%A4");
  EXPECT_EQ(text("/a/../b/./"), "file:///a/../b/./");
  EXPECT_EQ(URL::fileURLWithPath("/a", true)->description(), "file:///a/");
  EXPECT_EQ(URL::fileURLWithPath("/a/", true)->description(), "file:///a/");
  EXPECT_TRUE(URL::fileURLWithPath("/a", true)->hasDirectoryPath());
  EXPECT_FALSE(URL::fileURLWithPath("/a")->hasDirectoryPath());
  EXPECT_EQ(URL::fileURLWithPath("/")->path()->utf8(), "/");
  EXPECT_TRUE(URL::fileURLWithPath("") == nullptr);
  EXPECT_THROW((void)URL::fileURLWithPath(nullptr), InvalidArgumentException);
}

TEST(URL, OfARelativePathStartsAtTheCurrentDirectory) {
  char folder[4096] = "";
  ASSERT_NE(::getcwd(folder, sizeof folder), nullptr);
  EXPECT_EQ(URL::fileURLWithPath("x/y")->path()->utf8(), std::string(folder) + "/x/y");
}

TEST(URL, TellsFileUrlsByTheScheme) {
  EXPECT_TRUE(URL::URLWithString("file:///a")->isFileURL());
  EXPECT_TRUE(URL::URLWithString("FiLe:/a")->isFileURL());
  EXPECT_FALSE(URL::URLWithString("files:///a")->isFileURL());
  EXPECT_FALSE(URL::URLWithString("http://a")->isFileURL());
  EXPECT_FALSE(URL::URLWithString("/a")->isFileURL());
  EXPECT_TRUE(URL::URLWithString(nullptr) == nullptr);
}

TEST(URL, IsEqualByText) {
  const PropertyValue a = URL::URLWithString("http://h/a");
  EXPECT_TRUE(a == PropertyValue(URL::URLWithString("http://h/a")));
  EXPECT_EQ(a.hash(), PropertyValue(URL::URLWithString("http://h/a")).hash());
  EXPECT_FALSE(a == PropertyValue(URL::URLWithString("http://h/A")));
  EXPECT_FALSE(a == PropertyValue("http://h/a"));
  EXPECT_TRUE(isSame(a.copy(), a));
  EXPECT_TRUE(classNamed("NSURL")->initWithString("http://h/a") == a);
  EXPECT_TRUE(performSelector(a, "isFileURL") == false);
}

TEST(URL, OfGreatLengthIsTaken) {
  std::string text = "http://h/";
  for (int i = 0; i < 300000; ++i) text += "a/";
  EXPECT_TRUE(URL::URLWithString(text) != nullptr);
}

TEST(PercentEncoding, IsUndoneByteByByte) {
  EXPECT_EQ(detail::percentDecoded("a%20b%2fc%"), "a b/c%");
  EXPECT_EQ(detail::percentDecoded("%4%41%zz%e2%82%AC"), "%4A%zz\xE2\x82\xAC");
  EXPECT_EQ(detail::percentDecoded(""), "");
}

// ---- resource values

class NoDumpCalls : public detail::AttributeCalls {
 public:
  int setNoDump(const char*, bool noDump) override {
    flags.push_back(noDump);
    errno = ENOTTY;
    return -1;
  }
  std::vector<bool> flags;
};

TEST(ResourceValue, KeepsAFileOutOfBackups) {
  NoDumpCalls calls;
  const detail::ReplacedAttributeCalls replaced(calls);
  const test_support::TemporaryFolder folder;
  test_support::writeBytes(folder / "f", "x");
  const auto url = URL::fileURLWithPath(folder / "f");
  Ref<Error> error;
  PropertyValue value;
  ASSERT_TRUE(url->setResourceValue(true, NSURLIsExcludedFromBackupKey, &error))
      << error->localizedDescription();
  EXPECT_TRUE(url->getResourceValue(&value, NSURLIsExcludedFromBackupKey, &error));
  EXPECT_TRUE(value == true);
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(url->setResourceValue(false, NSURLIsExcludedFromBackupKey, &error));
    EXPECT_TRUE(url->getResourceValue(&value, NSURLIsExcludedFromBackupKey, &error));
    EXPECT_TRUE(value == false);
  }
  EXPECT_EQ(calls.flags, (std::vector<bool>{true, false, false}));
}

TEST(ResourceValue, OfAnotherKindIsRefused) {
  const test_support::TemporaryFolder folder;
  test_support::writeBytes(folder / "f", "x");
  const auto url = URL::fileURLWithPath(folder / "f");
  Ref<Error> error;
  EXPECT_FALSE(url->setResourceValue(1, NSURLIsExcludedFromBackupKey, &error));
  EXPECT_EQ(error->code(), EINVAL);
  EXPECT_FALSE(url->setResourceValue(true, "NSURLOther", &error));
  EXPECT_EQ(error->code(), ENOTSUP);
  EXPECT_FALSE(url->getResourceValue(nullptr, nullptr, &error));
  EXPECT_FALSE(URL::fileURLWithPath(folder / "g")
                   ->setResourceValue(true, NSURLIsExcludedFromBackupKey, &error));
  EXPECT_EQ(error->code(), ENOENT);
  EXPECT_FALSE(URL::URLWithString("http://h/")
                   ->setResourceValue(true, NSURLIsExcludedFromBackupKey, &error));
  EXPECT_EQ(error->code(), EINVAL);
}

TEST(NoDumpFlag, IsSetWhereTheFileSystemHasOne) {
  const test_support::TemporaryFolder folder;
  test_support::writeBytes(folder / "f", "x");
  detail::AttributeCalls calls;
  if (calls.setNoDump((folder / "f").c_str(), true) != 0) {
    GTEST_SKIP() << "this file system has no such flag";
  }
  EXPECT_EQ(calls.setNoDump((folder / "f").c_str(), true), 0);
  EXPECT_EQ(calls.setNoDump((folder / "f").c_str(), false), 0);
  EXPECT_EQ(calls.setNoDump("/dev/null", true), -1);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(calls.setNoDump((folder / "nothing").c_str(), true), -1);
}

}  // namespace
}  // namespace qx

// Paths as texts.

#include <gtest/gtest.h>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/path.h>

#include "tests/support/fake_machine.h"
#include "tests/support/scoped_variable.h"

namespace qx {
namespace {

using test_support::FakeUser;
using test_support::ScopedVariable;

struct PathCase {
  const char* path;
  const char* result;
};

class Standardizing : public testing::TestWithParam<PathCase> {};

TEST_P(Standardizing, WorksOnTheText) {
  FakeUser user("ann");
  user.others = {{"bob", "/users/bob"}, {"root", "/"}};
  const ScopedVariable home("HOME", "/home/ann");
  EXPECT_EQ(stringByStandardizingPath(String::from(GetParam().path))->utf8(), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Standardizing,
    testing::Values(PathCase{"", ""}, PathCase{"/", "/"}, PathCase{"//", "/"}, PathCase{".", "."},
                    PathCase{"./", "."}, PathCase{"a/..", "."}, PathCase{"..", ".."},
                    PathCase{"../..", "../.."}, PathCase{"a/../..", ".."},
                    PathCase{"a/../../b", "../b"}, PathCase{"/..", "/"}, PathCase{"/../a", "/a"},
                    PathCase{"/a/../../b", "/b"}, PathCase{"/a/./b//c/", "/a/b/c"},
                    PathCase{"./a", "a"}, PathCase{"a/b/../c", "a/c"}, PathCase{"...", "..."},
                    PathCase{"a..", "a.."}, PathCase{"~", "/home/ann"}, PathCase{"~/", "/home/ann"},
                    PathCase{"~/x", "/home/ann/x"}, PathCase{"~/../x", "/home/x"},
                    PathCase{"~bob", "/users/bob"}, PathCase{"~bob/x", "/users/bob/x"},
                    PathCase{"~root/x", "/x"}, PathCase{"~nobodyatall/x", "~nobodyatall/x"},
                    PathCase{"/~/x", "/~/x"}, PathCase{"a/~", "a/~"},
                    PathCase{"\xC3\xA4//b", "\xC3\xA4/b"}));

TEST(Tilde, NeedsAHome) {
  const FakeUser user("ann", "/from/account");
  {
    const ScopedVariable home("HOME", "relative");
    EXPECT_EQ(stringByExpandingTildeInPath(String::from("~/a"))->utf8(), "/from/account/a");
  }
  {
    const ScopedVariable home("HOME", nullptr);
    EXPECT_EQ(stringByExpandingTildeInPath(String::from("~"))->utf8(), "/from/account");
  }
  const FakeUser homeless("bob", "");
  const ScopedVariable home("HOME", nullptr);
  EXPECT_EQ(stringByExpandingTildeInPath(String::from("~/a"))->utf8(), "~/a");
  EXPECT_EQ(stringByExpandingTildeInPath(String::from("/a//./b"))->utf8(), "/a//./b");
}

TEST(PathComponents, ArePartedBySlashes) {
  const auto parts = [](const char* path) {
    return PropertyValue(pathComponents(String::from(path)));
  };
  EXPECT_TRUE(parts("") == PropertyValue(array()));
  EXPECT_TRUE(parts("/") == PropertyValue(array("/")));
  EXPECT_TRUE(parts("///") == PropertyValue(array("/")));
  EXPECT_TRUE(parts("/a//b") == PropertyValue(array("/", "a", "b")));
  EXPECT_TRUE(parts("a/./b/") == PropertyValue(array("a", ".", "b", "/")));
  EXPECT_EQ(qxPathWithComponents(array("/", "a", "b", "/"))->utf8(), "/a/b");
  EXPECT_EQ(qxPathWithComponents(array("a", "b"))->utf8(), "a/b");
  EXPECT_EQ(qxPathWithComponents(array())->utf8(), "");
  EXPECT_THROW((void)qxPathWithComponents(array(1)), InvalidArgumentException);
}

TEST(PathComponents, AreAddedBehindOneSlash) {
  const auto join = [](const char* path, const char* name) {
    return stringByAppendingPathComponent(String::from(path), name)->utf8();
  };
  EXPECT_EQ(join("/tmp", "a"), "/tmp/a");
  EXPECT_EQ(join("/tmp/", "a"), "/tmp/a");
  EXPECT_EQ(join("/", "a"), "/a");
  EXPECT_EQ(join("", "a"), "a");
  EXPECT_THROW((void)stringByAppendingPathComponent(String::from("a"), nullptr),
               InvalidArgumentException);
}

TEST(Paths, OfNilAreNil) {
  EXPECT_TRUE(stringByExpandingTildeInPath(nullptr) == nullptr);
  EXPECT_TRUE(stringByStandardizingPath(nullptr) == nullptr);
  EXPECT_TRUE(pathComponents(nullptr) == nullptr);
  EXPECT_TRUE(qxPathWithComponents(nullptr) == nullptr);
  EXPECT_TRUE(stringByAppendingPathComponent(nullptr, "a") == nullptr);
}

TEST(Paths, AreReachedBySelector) {
  EXPECT_TRUE(performSelector("/a/../b", "stringByStandardizingPath") == "/b");
  EXPECT_TRUE(performSelector("/a", "stringByExpandingTildeInPath") == "/a");
  EXPECT_TRUE(performSelector("a/b", "pathComponents") == PropertyValue(array("a", "b")));
  EXPECT_TRUE(performSelector("a", "stringByAppendingPathComponent:", "b") == "a/b");
}

TEST(TemporaryDirectory, IsTheVariableOrTmp) {
  {
    const ScopedVariable folder("TMPDIR", "/somewhere");
    EXPECT_EQ(NSTemporaryDirectory()->utf8(), "/somewhere");
  }
  {
    const ScopedVariable folder("TMPDIR", "relative");
    EXPECT_EQ(NSTemporaryDirectory()->utf8(), "/tmp");
  }
  const ScopedVariable folder("TMPDIR", nullptr);
  EXPECT_EQ(NSTemporaryDirectory()->utf8(), "/tmp");
}

}  // namespace
}  // namespace qx

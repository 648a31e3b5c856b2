// Extended attributes: the names and URLs that are refused, and those that are taken.

#include <gtest/gtest.h>

#include <cerrno>

#include <QXFoundation/exception.h>
#include <QXFoundation/extended_attributes.h>

#include "tests/files/attribute_checks.h"
#include "tests/frame/raises.h"
#include "tests/support/raw_attributes.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::bytesOf;
using test_support::storedAttribute;
using test_support::TemporaryFolder;
using test_support::urlOf;

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
  EXPECT_EQ(storedAttribute(folder / "a b", "user.a"), "1");
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

}  // namespace
}  // namespace qx

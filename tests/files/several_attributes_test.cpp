// Extended attributes written in one call: what fails, and what is written all the same.

#include <gtest/gtest.h>

#include <cerrno>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/extended_attributes.h>
#include <QXFoundation/localized_text.h>

#include "files/attribute_errors.h"
#include "tests/files/attribute_checks.h"
#include "tests/frame/raises.h"
#include "tests/support/raw_attributes.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::expectError;
using test_support::storedAttribute;
using test_support::TemporaryFolder;
using test_support::urlOf;

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
            "extended attribute name cannot be empty");
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
    EXPECT_EQ(storedAttribute(folder_ / "f", "user.a"), bytes);
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

}  // namespace
}  // namespace qx

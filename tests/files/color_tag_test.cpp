// Tags: the class, its formatter, their stored form, and files that carry them.

#include <gtest/gtest.h>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/color_tag.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/extended_attributes.h>

#include "files/color_tag_text.h"
#include "tests/frame/raises.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

Ref<QXColorTag> tag(StringArg name, std::int32_t color) {
  return QXColorTag::colorTagWithName(name, color);
}

std::string text(const Ref<Array>& tags) {
  if (tags == nullptr) return "nil";
  std::string out;
  for (const PropertyValue& t : *tags) out += t.description() + ";";
  return out;
}

TEST(ColorTag, KeepsTheNameAsGivenUnlessItIsSet) {
  const auto name = String::from("\xC3\xA4");
  const auto t = QXColorTag::initWithName(name, 3);
  EXPECT_TRUE(isSame(PropertyValue(t->name()), PropertyValue(name)));
  EXPECT_EQ(t->color(), 3);
  t->setName(name);
  EXPECT_EQ(t->name()->utf8(), "a\xCC\x88");
  t->setColor(-1);
  EXPECT_EQ(t->color(), -1);
  t->setName(nullptr);
  EXPECT_TRUE(t->name() == nullptr);
}

TEST(ColorTag, IsReachedByKey) {
  const PropertyValue t = tag("Work", 2);
  EXPECT_TRUE(t["name"] == "Work");
  EXPECT_TRUE(t["color"] == 2);
  t.setValue("\xC3\xA4", "name");
  t.setValue(6, "color");
  EXPECT_TRUE(t["name"] == "a\xCC\x88");
  EXPECT_TRUE(t["color"] == 6);
  EXPECT_STREQ(t.cls()->name(), "QXColorTag");
  EXPECT_TRUE(classNamed("QXColorTag") == t.cls());
}

TEST(ColorTag, IsMadeAndChangedBySelector) {
  const PropertyValue t =
      performSelector(classOf<QXColorTag>(), "colorTagWithName:andColor:", "\xC3\xA4", -3);
  EXPECT_TRUE(t == tag("\xC3\xA4", -3));
  EXPECT_TRUE(performSelector(t, "name") == "\xC3\xA4");
  performSelector(t, "setName:", "\xC3\xA4");
  EXPECT_TRUE(performSelector(t, "name") == "a\xCC\x88");
  performSelector(t, "setColor:", 5);
  EXPECT_TRUE(performSelector(t, "color") == 5);
  EXPECT_TRUE(performSelector(t, "isEqual:", tag("A\xCC\x88", 5)) == true);
}

struct EqualityCase {
  PropertyValue a, b;
  bool isEqual;
};

class ColorTagEquality : public testing::TestWithParam<EqualityCase> {};

TEST_P(ColorTagEquality, LooksAtNamesInLowerCaseAndColours) {
  EXPECT_EQ(GetParam().a == GetParam().b, GetParam().isEqual);
}

INSTANTIATE_TEST_SUITE_P(Table, ColorTagEquality,
                         testing::Values(EqualityCase{tag("Red", 6), tag("red", 6), true},
                                         EqualityCase{tag("Red", 6), tag("Red", 5), false},
                                         EqualityCase{tag("Red", 6), tag("Rad", 6), false},
                                         EqualityCase{tag("\xC3\x84", 6), tag("\xC3\xA4", 6), true},
                                         EqualityCase{tag("\xC3\xA4", 6), tag("a\xCC\x88", 6),
                                                      false},
                                         EqualityCase{tag("Red", 6), nullptr, false},
                                         EqualityCase{tag("Red", 6), "Red", false},
                                         EqualityCase{tag(nullptr, 6), tag(nullptr, 6), false},
                                         EqualityCase{tag(nullptr, 6), tag("Red", 6), false}));

TEST(ColorTag, IsEqualToItself) {
  const PropertyValue t = tag(nullptr, 1);
  EXPECT_TRUE(t == t);
  EXPECT_TRUE(array(tag("A", 1))->containsObject(tag("a", 1)));
}

TEST(ColorTag, HasTheHashOfTheObject) {
  const auto a = tag("Red", 6);
  const auto b = tag("red", 6);
  EXPECT_TRUE(a->isEqual(b));
  EXPECT_NE(a->hash(), b->hash());
  EXPECT_EQ(a->hash(), a->hash());
}

class SpecialTag : public QXColorTag {
 public:
  SpecialTag() : QXColorTag("Special", 4) {}
};
void describe(ClassBuilder<SpecialTag>& c) { c.name("SpecialTag").inherits<QXColorTag>(); }

TEST(ColorTag, CopiesAreTagsOfTheBaseClass) {
  const PropertyValue special = make<SpecialTag>();
  const PropertyValue copy = special.copy();
  EXPECT_STREQ(copy.cls()->name(), "QXColorTag");
  EXPECT_FALSE(isSame(copy, special));
  EXPECT_TRUE(copy == special);
  EXPECT_TRUE(special == copy);
  EXPECT_TRUE(isSame(copy["name"], special["name"]));
  EXPECT_TRUE(copy["color"] == 4);
}

TEST(ColorTagFormatter, GivesNamesAndTagsWithoutColour) {
  const auto formatter = QXColorTagFormatter::init();
  EXPECT_TRUE(formatter->stringForObjectValue(tag("Urgent", 6)) == "Urgent");
  EXPECT_TRUE(formatter->stringForObjectValue(5) == 5);
  EXPECT_TRUE(formatter->stringForObjectValue(nullptr).isNil());
  const PropertyValue other = array(1);
  EXPECT_TRUE(isSame(formatter->stringForObjectValue(other), other));
  PropertyValue object;
  Ref<String> untouched;
  EXPECT_TRUE(formatter->getObjectValue(&object, "Urg\xC3\xA4nt", &untouched));
  EXPECT_EQ(object.description(), "Urg\xC3\xA4nt (0)");
  EXPECT_TRUE(untouched == nullptr);
  EXPECT_THROW(formatter->getObjectValue(nullptr, "x", nullptr), InvalidArgumentException);
  EXPECT_TRUE(performSelector(PropertyValue(formatter), "stringForObjectValue:", tag("A", 1)) ==
              "A");
}

// ---- stored

struct StoredCase {
  const char* stored;
  const char* name;
  std::int32_t color;
};

class StoredTag : public testing::TestWithParam<StoredCase> {};

TEST_P(StoredTag, IsReadLeniently) {
  const auto t = detail::tagFromStored(GetParam().stored);
  EXPECT_EQ(t->name()->utf8(), GetParam().name);
  EXPECT_EQ(t->color(), GetParam().color);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StoredTag,
    testing::Values(StoredCase{"Work", "Work", 0}, StoredCase{"Home\n6", "Home", 6},
                    StoredCase{"A\nB\n3", "A", 0}, StoredCase{"A\n2\n3", "A", 2},
                    StoredCase{"", "", 0}, StoredCase{"\n5", "", 5}, StoredCase{"A\n", "A", 0},
                    StoredCase{"A\n \t-7x", "A", -7}, StoredCase{"A\n+12", "A", 12},
                    StoredCase{"A\r\n3", "A\r", 3}, StoredCase{"A\n99999999999", "A", 2147483647}));

TEST(StoredTags, AreWrittenWithTheirColour) {
  EXPECT_EQ(detail::storedTag(tag("Work", 0))->utf8(), "Work");
  EXPECT_EQ(detail::storedTag(tag("Work", 6))->utf8(), "Work\n6");
  EXPECT_EQ(detail::storedTag(tag("Work", INT32_MIN))->utf8(), "Work\n-2147483648");
  EXPECT_EQ(detail::storedTag(tag(nullptr, 1))->utf8(), "(null)\n1");
  EXPECT_EQ(detail::storedTags(array(tag(nullptr, 0), tag("a", 0)))->count(), 1U);
  EXPECT_THROW((void)detail::storedTags(array("a")), InvalidArgumentException);
}

// ---- files

class TaggedFile : public testing::Test {
 protected:
  TaggedFile() { test_support::writeBytes(folder_ / "f", "content"); }
  PropertyValue stored() { return valueOfExtendedAttributeWithName(url_, kColorTagsAttribute); }
  void store(const PropertyValue& value) {
    ASSERT_TRUE(setExtendedAttributeValue(url_, value, kColorTagsAttribute, &error_));
  }
  test_support::TemporaryFolder folder_;
  Ref<URL> url_ = URL::fileURLWithPath(folder_ / "f");
  Ref<Error> error_;
};

TEST_F(TaggedFile, KeepsStringsAndTheirOrder) {
  const PropertyValue strings = array("Work", "Home\n6");
  store(strings);
  const auto tags = colorTagsWithError(url_);
  EXPECT_EQ(text(tags), "Work (0);Home (6);");
  store("something else");
  ASSERT_TRUE(setColorTags(url_, tags, &error_));
  EXPECT_TRUE(stored() == strings);
}

TEST_F(TaggedFile, WithoutTheAttributeHasNilAndNoError) {
  const auto before = Error::posixError(1);
  error_ = before;
  EXPECT_TRUE(colorTagsWithError(url_, &error_) == nullptr);
  EXPECT_EQ(error_.get(), before.get());
  EXPECT_TRUE(colorTagsWithError(URL::fileURLWithPath(folder_ / "absent"), &error_) == nullptr);
  EXPECT_EQ(error_.get(), before.get());
  ASSERT_TRUE(setExtendedAttributeData(url_, Data::from("garbage"), kColorTagsAttribute));
  EXPECT_TRUE(colorTagsWithError(url_, &error_) == nullptr);
  EXPECT_EQ(error_.get(), before.get());
}

TEST_F(TaggedFile, LosesTheAttributeWithNilAndKeepsAnEmptyArray) {
  ASSERT_TRUE(setColorTags(url_, array(tag("a", 1)), &error_));
  ASSERT_TRUE(setColorTags(url_, array(), &error_));
  EXPECT_TRUE(stored() == PropertyValue(array()));
  EXPECT_EQ(colorTagsWithError(url_)->count(), 0U);
  ASSERT_TRUE(setColorTags(url_, nullptr, &error_));
  EXPECT_TRUE(stored().isNil());
  ASSERT_TRUE(setColorTags(url_, nullptr, &error_));
  EXPECT_TRUE(error_ == nullptr);
}

TEST_F(TaggedFile, WithEntriesOfOthersFailsAndIsNotDamaged) {
  const std::pair<PropertyValue, const char*> cases[] = {
      {"text", "-[NSString qxFlatMap:]: the receiver has no such operation"},
      {dict({{"a", "b"}}), "-[NSDictionary qxFlatMap:]: the receiver has no such operation"},
      {7, "-[NSNumber qxFlatMap:]: the receiver has no such operation"},
      {array("a", 5),
       "-[NSNumber componentsSeparatedByString:]: the receiver has no such "
       "operation"},
      {array(array("a")),
       "-[NSArray componentsSeparatedByString:]: the receiver has no such "
       "operation"}};
  for (const auto& [value, reason] : cases) {
    store(value);
    const auto before = dataForExtendedAttribute(url_, kColorTagsAttribute);
    EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)colorTagsWithError(url_); }), reason);
    EXPECT_TRUE(PropertyValue(dataForExtendedAttribute(url_, kColorTagsAttribute)) ==
                PropertyValue(before));
    EXPECT_EQ(test_support::readBytes(folder_ / "f"), "content");
  }
}

TEST_F(TaggedFile, ReportsWhatWritingReports) {
  EXPECT_FALSE(setColorTags(URL::fileURLWithPath(folder_ / "absent"), array(tag("a", 1)), &error_));
  EXPECT_EQ(error_->code(), ENOENT);
  EXPECT_TRUE(setColorTags(URL::fileURLWithPath(folder_ / "absent"), array(tag("a", 1))));
  const auto page = URL::URLWithString("http://h/");
  EXPECT_THROW((void)colorTagsWithError(page), InternalInconsistencyException);
  EXPECT_THROW(setColorTags(page, array()), InternalInconsistencyException);
  EXPECT_TRUE(colorTagsWithError(nullptr) == nullptr);
  EXPECT_FALSE(setColorTags(nullptr, array()));
}

TEST_F(TaggedFile, TakesNoStrangersAmongTheTags) {
  store(array("kept"));
  EXPECT_THROW(setColorTags(url_, array(tag("a", 1), "b"), &error_), InvalidArgumentException);
  EXPECT_TRUE(stored() == PropertyValue(array("kept")));
}

}  // namespace
}  // namespace qx

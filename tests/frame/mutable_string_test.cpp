#include <gtest/gtest.h>

#include <random>

#include <QXFoundation/QXFoundation.h>

#include "frame/string_storage.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

TEST(MutableStrings, Change) {
  const auto s = MutableString::from("abc");
  s->appendString("def");
  EXPECT_EQ(s->utf8(), "abcdef");
  s->insertString("X", 0);
  s->insertString("Y", 7);
  s->insertString("Z", 4);
  EXPECT_EQ(s->utf8(), "XabcZdefY");
  s->deleteCharactersInRange({4, 1});
  s->deleteCharactersInRange({0, 0});
  EXPECT_EQ(s->utf8(), "XabcdefY");
  s->replaceCharactersInRange({1, 3}, "-");
  EXPECT_EQ(s->utf8(), "X-defY");
  s->replaceCharactersInRange({1, 1}, "longer than it was");
  EXPECT_EQ(s->utf8(), "Xlonger than it wasdefY");
  s->setString("");
  EXPECT_EQ(s->length(), 0U);
  s->setString("again");
  EXPECT_EQ(s->utf8(), "again");
}

TEST(MutableStrings, WidenWhereTheyMust) {
  const auto s = MutableString::from("ab");
  EXPECT_FALSE(detail::StringStorage::isWide(*s));
  s->appendString("\xC3\xBF");
  EXPECT_FALSE(detail::StringStorage::isWide(*s));
  s->insertString("\xC4\x80", 1);
  EXPECT_TRUE(detail::StringStorage::isWide(*s));
  EXPECT_EQ(s->utf16(), u"a\u0100b\u00FF");
  s->appendString("c");
  EXPECT_EQ(s->utf16(), u"a\u0100b\u00FFc");
}

// Once wide they may stay wide; what is made of them has the narrowest form again.
TEST(MutableStrings, AreTheSameTextWhenTheyNeedNoLongerBeWide) {
  const auto s = MutableString::from(
      "a\xE6\xBC\xA2"
      "b");
  s->deleteCharactersInRange({1, 1});
  const auto narrow = String::from("ab");
  EXPECT_TRUE(s->isEqualToString("ab"));
  EXPECT_TRUE(PropertyValue(s) == PropertyValue(narrow));
  EXPECT_TRUE(PropertyValue(narrow) == PropertyValue(s));
  EXPECT_EQ(s->hash(), narrow->hash());
  EXPECT_EQ(s->compare("ab"), ComparisonResult::same);
  const auto copy = String::from(s);
  EXPECT_FALSE(detail::StringStorage::isWide(*copy));

  const auto d = dict({{"ab", 1}});
  EXPECT_EQ(d->objectForKey(s), PropertyValue(1));
  const auto m = MutableDictionary::init();
  m->setObject(2, s);
  EXPECT_EQ(m->objectForKey("ab"), PropertyValue(2));
  EXPECT_TRUE(Set::from(array(s))->containsObject("ab"));
  EXPECT_TRUE(Set::from(array("ab"))->containsObject(s));
}

TEST(MutableStrings, TakePartsOfThemselves) {
  for (const char* text : {"abcdef",
                           "ab\xE6\xBC\xA2"
                           "def"}) {
    const auto s = MutableString::from(text);
    const std::u16string start = s->utf16();
    s->appendString(s);
    EXPECT_EQ(s->utf16(), start + start);
    s->setString(text);
    s->insertString(s, 3);
    EXPECT_EQ(s->utf16(), start.substr(0, 3) + start + start.substr(3));
    s->setString(text);
    s->replaceCharactersInRange({1, 4}, s);
    EXPECT_EQ(s->utf16(), start.substr(0, 1) + start + start.substr(5));
    s->setString(text);
    s->setString(s);
    EXPECT_EQ(s->utf16(), start);
    for (int i = 0; i < 5; ++i) s->appendString(*s);
    EXPECT_EQ(s->length(), start.size() * 32);
  }
}

TEST(MutableStrings, LeaveTheirCopiesAlone) {
  const auto s = MutableString::from("text");
  const PropertyValue fixed = PropertyValue(s).copy();
  const PropertyValue changing = PropertyValue(s).mutableCopy();
  s->appendString("!");
  EXPECT_EQ(fixed, PropertyValue("text"));
  EXPECT_EQ(changing, PropertyValue("text"));
  EXPECT_STREQ(fixed.cls()->name(), "NSString");
  EXPECT_STREQ(changing.cls()->name(), "NSMutableString");
  EXPECT_STREQ(PropertyValue("x").mutableCopy().cls()->name(), "NSMutableString");
}

TEST(MutableStrings, HashWhatTheyHoldNow) {
  const auto s = MutableString::from("a");
  const std::size_t before = s->hash();
  s->setString("b");
  EXPECT_EQ(s->hash(), String::from("b")->hash());
  s->setString("a");
  EXPECT_EQ(s->hash(), before);
  EXPECT_EQ(MutableString::init()->hash(), String::empty()->hash());
}

TEST(MutableStrings, RaiseForRangesOutsideThem) {
  const auto s = MutableString::from("abcd");
  const std::size_t most = ~std::size_t{0};
  for (const Range r : {Range{5, 0}, Range{4, 1}, Range{0, 5}, Range{1, most}, Range{most, 2}}) {
    EXPECT_THROW(s->replaceCharactersInRange(r, "x"), RangeException);
    EXPECT_THROW(s->deleteCharactersInRange(r), RangeException);
  }
  EXPECT_THROW(s->insertString("x", 5), RangeException);
  EXPECT_EQ(s->utf8(), "abcd");
}

TEST(MutableStrings, NameTheOperationThatRaises) {
  using Change = void (*)(MutableString&);
  const auto s = MutableString::from("abcd");
  const struct {
    Change change;
    const char* operation;
  } withNil[] = {
      {[](MutableString& m) { m.setString(nullptr); }, "setString:"},
      {[](MutableString& m) { m.appendString(nullptr); }, "appendString:"},
      {[](MutableString& m) { m.insertString(nullptr, 0); }, "insertString:atIndex:"},
      {[](MutableString& m) { m.replaceCharactersInRange({0, 0}, nullptr); },
       "replaceCharactersInRange:withString:"},
      {[](MutableString& m) { performSelector(&m, "appendString:", nullptr); }, "appendString:"},
  };
  for (const auto& c : withNil) {
    EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { c.change(*s); }),
              std::string("nil was used as an object in -[NSMutableString ") + c.operation + "]");
  }
  const struct {
    Change change;
    const char* reason;
  } outside[] = {
      {[](MutableString& m) { m.insertString("x", 5); },
       "insertString:atIndex:]: the range of 0 from 5 leaves the length 4"},
      {[](MutableString& m) { m.deleteCharactersInRange({2, 3}); },
       "deleteCharactersInRange:]: the range of 3 from 2 leaves the length 4"},
      {[](MutableString& m) { m.replaceCharactersInRange({5, 0}, "x"); },
       "replaceCharactersInRange:withString:]: the range of 0 from 5 leaves the length 4"},
  };
  for (const auto& c : outside) {
    EXPECT_EQ(reasonOf<RangeException>([&] { c.change(*s); }),
              std::string("-[NSMutableString ") + c.reason);
  }
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { (void)MutableString::from(nullptr); }),
            "a string can not be made from nil");
  EXPECT_EQ(s->utf8(), "abcd");
}

// Random edits against std::u16string, with units of both forms and texts of all kinds.
TEST(MutableStrings, FollowAModel) {
  std::mt19937 random(20240607);
  const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  const std::u16string pieces[] = {
      u"", u"a", u"bc", u"\u00E9\u00E9", u"\u6F22", u"\U0001F600", std::u16string(40, u'z')};
  const auto s = MutableString::init();
  std::u16string model;
  for (int step = 0; step < 20000; ++step) {
    const std::size_t at = below(model.size() + 1);
    const std::size_t length = below(std::min<std::size_t>(model.size() - at, 60) + 1);
    std::u16string with = pieces[below(std::size(pieces))];
    switch (below(4)) {
      case 0:  // a part of itself
        with = model.substr(at, length);
        s->replaceCharactersInRange({at, length}, s->substringWithRange({at, length}));
        break;
      case 1:
        s->replaceCharactersInRange({at, length}, MutableString::from(String::fromUtf16(with)));
        break;
      default:
        s->replaceCharactersInRange({at, length}, String::fromUtf16(with));
    }
    model.replace(at, length, with);
    ASSERT_EQ(s->length(), model.size());
    if (step % 50 == 0) {
      ASSERT_EQ(s->utf16(), model) << step;
      ASSERT_EQ(s->hash(), String::fromUtf16(model)->hash());
    }
    if (model.size() > 2000) {
      s->deleteCharactersInRange({100, model.size() - 100});
      model.resize(100);
    }
  }
  EXPECT_EQ(s->utf16(), model);
}

}  // namespace
}  // namespace qx

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/attributed_string.h>

#include "tests/frame/raises.h"

namespace qx {
namespace {

const auto kRed = [] { return dict({{"color", "red"}}); };
const auto kBlue = [] { return dict({{"color", "blue"}, {"size", 12}}); };

Ref<AttributedString> plain(StringArg text) { return AttributedString::initWithString(text); }
Ref<AttributedString> text(StringArg s, const Ref<Dictionary>& attributes) {
  return AttributedString::initWithString(s, attributes);
}
Ref<AttributedString> joined(const Ref<AttributedString>& a, const Ref<AttributedString>& b) {
  return a->attributedStringByAppendingAttributedString(b);
}

TEST(AttributedString, HasOneRunWhenMade) {
  const auto s = text("na\u00EFve", kRed());
  EXPECT_EQ(s->string()->utf8(), "na\u00EFve");
  EXPECT_EQ(s->length(), 5U);
  EXPECT_EQ(s->runCount(), 1U);
  Range run;
  EXPECT_TRUE(s->attributesAtIndex(4, &run)->isEqualToDictionary(kRed()));
  EXPECT_EQ(run, (Range{0, 5}));
  EXPECT_EQ(s->attribute("color", 0, nullptr), "red");
  EXPECT_TRUE(s->attribute("size", 0, nullptr).isNil());
}

TEST(AttributedString, HasNoAttributesUnlessGiven) {
  for (const auto& s : {plain("ab"), text("ab", nullptr), text("ab", dict())}) {
    EXPECT_EQ(s->attributesAtIndex(0, nullptr)->count(), 0U);
  }
}

TEST(AttributedString, OfNoTextHasNoRun) {
  const auto s = text("", kRed());
  EXPECT_EQ(s->runCount(), 0U);
  EXPECT_EQ(s->length(), 0U);
  EXPECT_TRUE(s->isEqualToAttributedString(plain("")));
}

TEST(AttributedString, CopiesTheAttributes) {
  const auto attributes = MutableDictionary::init();
  attributes->setObject("red", "color");
  const auto s = text("ab", attributes);
  attributes->setObject("blue", "color");
  EXPECT_EQ(s->attribute("color", 0, nullptr), "red");
}

TEST(AttributedString, CopiesMutableText) {
  const auto mutableText = MutableString::from("ab");
  const auto s = plain(mutableText);
  mutableText->setString("changed");
  EXPECT_EQ(s->string()->utf8(), "ab");
}

TEST(AttributedString, JoinsRunsOfEqualAttributes) {
  const auto s = joined(joined(text("ab", kRed()), text("cd", kRed())), text("ef", kBlue()));
  EXPECT_EQ(s->string()->utf8(), "abcdef");
  EXPECT_EQ(s->runCount(), 2U);
  Range run;
  EXPECT_EQ(s->attribute("color", 3, &run), "red");
  EXPECT_EQ(run, (Range{0, 4}));
  EXPECT_EQ(s->attribute("size", 4, &run), 12);
  EXPECT_EQ(run, (Range{4, 2}));
  EXPECT_TRUE(joined(s, plain(""))->isEqualToAttributedString(s));
  EXPECT_TRUE(joined(plain(""), s)->isEqualToAttributedString(s));
}

TEST(AttributedString, CutsRunsWithTheText) {
  const auto s = joined(joined(text("aaa", kRed()), text("bbb", kBlue())), plain("ccc"));
  ASSERT_EQ(s->runCount(), 3U);
  struct Case {
    Range range;
    const char* text;
    std::size_t runs;
  };
  const Case cases[] = {
      {{0, 9}, "aaabbbccc", 3}, {{0, 3}, "aaa", 1}, {{0, 4}, "aaab", 2},
      {{2, 5}, "abbbc", 3},     {{3, 3}, "bbb", 1}, {{4, 1}, "b", 1},
      {{6, 3}, "ccc", 1},       {{4, 0}, "", 0},    {{9, 0}, "", 0},
  };
  for (const Case& c : cases) {
    const auto part = s->attributedSubstringFromRange(c.range);
    EXPECT_EQ(part->string()->utf8(), c.text);
    EXPECT_EQ(part->runCount(), c.runs) << c.text;
    for (std::size_t i = 0; i < part->length(); ++i) {
      EXPECT_TRUE(part->attributesAtIndex(i, nullptr)
                      ->isEqualToDictionary(s->attributesAtIndex(c.range.location + i, nullptr)));
    }
  }
  EXPECT_TRUE(
      joined(s->attributedSubstringFromRange({0, 4}), s->attributedSubstringFromRange({4, 5}))
          ->isEqualToAttributedString(s));
}

TEST(AttributedString, IsEqualWhenTextAndAttributesAre) {
  const auto s = joined(text("ab", kRed()), plain("cd"));
  EXPECT_EQ(PropertyValue(s),
            PropertyValue(joined(text("a", kRed()), joined(text("b", kRed()), plain("cd")))));
  EXPECT_EQ(s->hash(), joined(text("a", kRed()), joined(text("b", kRed()), plain("cd")))->hash());
  EXPECT_NE(PropertyValue(s), PropertyValue(joined(text("a", kRed()), plain("bcd"))));
  EXPECT_NE(PropertyValue(s), PropertyValue(joined(text("ab", kBlue()), plain("cd"))));
  EXPECT_NE(PropertyValue(s), PropertyValue(joined(text("ab", kRed()), plain("ce"))));
  EXPECT_NE(PropertyValue(s), PropertyValue("abcd"));
  EXPECT_FALSE(s->isEqualToAttributedString(nullptr));
  EXPECT_TRUE(isSame(PropertyValue(s).copy(), s));
}

TEST(AttributedString, DescribesItsRuns) {
  const auto s = joined(text("ab", kRed()), plain("cd"));
  EXPECT_EQ(s->description(), "ab" + kRed()->description() + "cd" + dict()->description());
}

TEST(AttributedString, RaisesOutsideTheText) {
  const auto s = plain("ab");
  EXPECT_EQ(
      reasonOf<RangeException>([&] { (void)s->attributesAtIndex(2, nullptr); }),
      "-[NSAttributedString attributesAtIndex:effectiveRange:]: index 2 is beyond the count 2");
  EXPECT_THROW((void)s->attribute("color", 7, nullptr), RangeException);
  EXPECT_THROW((void)s->attributedSubstringFromRange({1, 2}), RangeException);
  EXPECT_THROW((void)s->attributedSubstringFromRange({3, 0}), RangeException);
  EXPECT_THROW((void)AttributedString::initWithString(nullptr), InvalidArgumentException);
  EXPECT_THROW((void)s->attributedStringByAppendingAttributedString(nullptr),
               InvalidArgumentException);
}

TEST(AttributedString, IsAnObjectOfItsClass) {
  const PropertyValue s = plain("ab");
  EXPECT_EQ(s.cls(), classNamed("NSAttributedString"));
  EXPECT_EQ(s["string"], "ab");
  EXPECT_EQ(s["length"], 2);
  EXPECT_EQ(performSelector(s, "isEqualToAttributedString:", plain("ab")), true);
}

}  // namespace
}  // namespace qx

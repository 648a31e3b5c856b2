#include <gtest/gtest.h>

#include <QXFoundation/exception.h>
#include <QXFoundation/string_search.h>

namespace {

using qx::CharacterSet;
using qx::kNotFound;
using qx::Range;
using qx::Ref;
using qx::String;
using enum qx::StringCompareOptions;

constexpr Range kNone{kNotFound, 0};

struct Case {
  std::u16string text;
  std::u16string other;
  qx::StringCompareOptions options;
  Range found;
};

TEST(StringSearch, FindsByOptions) {
  const Case cases[] = {
      {u"abcabc", u"bc", none, {1, 2}},
      {u"abcabc", u"bc", literal, {1, 2}},
      {u"abcabc", u"bc", numeric | forcedOrdering, {1, 2}},
      {u"abcabc", u"bc", backwards, {4, 2}},
      {u"aaa", u"aa", backwards, {1, 2}},
      {u"abcabc", u"bc", anchored, kNone},
      {u"abcabc", u"ab", anchored, {0, 2}},
      {u"abcabc", u"bc", anchored | backwards, {4, 2}},
      {u"abcabc", u"ab", anchored | backwards, kNone},
      {u"ab", u"abc", anchored, kNone},
      {u"abc", u"", none, kNone},
      {u"abc", u"", caseInsensitive, kNone},
      {u"", u"a", backwards, kNone},

      {u"xABx", u"aB", caseInsensitive, {1, 2}},
      {u"xABx", u"aB", literal, kNone},
      {u"ÄÖ", u"äö", caseInsensitive, {0, 2}},
      {u"xSTRASSE", u"straße", caseInsensitive, {1, 7}},
      {u"Straße", u"SS", caseInsensitive, {4, 1}},
      {u"Straße", u"sE", caseInsensitive, kNone},  // half of the folded ß
      {u"ßs", u"ss", caseInsensitive, {0, 1}},
      {u"sß", u"ss", caseInsensitive, {1, 1}},
      {u"ßß", u"sss", caseInsensitive, kNone},
      {u"aAa", u"A", caseInsensitive | backwards, {2, 1}},
      {u"Abc", u"aB", caseInsensitive | anchored, {0, 2}},
      {u"xAbc", u"aB", caseInsensitive | anchored, kNone},
      {u"abC", u"Bc", caseInsensitive | anchored | backwards, {1, 2}},
      {u"𐐀x", u"𐐨", caseInsensitive, {0, 2}},  // beyond the basic plane
      {u"ΣΑΣ", u"ς", caseInsensitive, {0, 1}},

      {u"café", u"E", none, kNone},
      {u"café", u"e", diacriticInsensitive, {3, 1}},
      {u"cafe\u0301s", u"e", diacriticInsensitive, {3, 2}},  // the mark behind it belongs to it
      {u"cafe\u0301s", u"és", diacriticInsensitive, {3, 3}},
      {u"cafe\u0301", u"é", none, kNone},
      {u"CAFÉ", u"cafe", diacriticInsensitive | caseInsensitive, {0, 4}},
      {u"\u0301a", u"a", diacriticInsensitive | anchored, {1, 1}},
      {u"a\u0301", u"\u0301", diacriticInsensitive, kNone},

      {u"ＡＢ１", u"AB1", widthInsensitive, {0, 3}},
      {u"ＡＢ１", u"ab1", widthInsensitive, kNone},
      {u"ＡＢ１", u"b", widthInsensitive | caseInsensitive, {1, 1}},
      {u"a\u3000b", u" ", widthInsensitive, {1, 1}},
      {u"ｱ", u"ア", widthInsensitive, {0, 1}},
      {u"①", u"1", widthInsensitive, kNone},

      {u"a😀b", u"😀", none, {1, 2}},
      {u"a😀b", u"\xDE00", none, {2, 1}},
      {u"a😀b", u"\xDE00", caseInsensitive, {2, 1}},
      {u"𐐀", u"\xDC28", caseInsensitive, kNone},  // half of the folded 𐐨
      {u"\xD800x\xD800", u"\xD800", backwards, {2, 1}},
  };
  for (const Case& c : cases) {
    const auto text = String::fromUtf16(c.text);
    const auto other = String::fromUtf16(c.other);
    EXPECT_EQ(rangeOfString(text, other, c.options), c.found)
        << text->utf8() << " / " << other->utf8();
  }
}

TEST(StringSearch, KeepsToItsRange) {
  const auto text = String::from("abcabc");
  EXPECT_EQ(rangeOfString(text, "abc", none, {1, 5}), (Range{3, 3}));
  EXPECT_EQ(rangeOfString(text, "abc", none, {1, 4}), kNone);
  EXPECT_EQ(rangeOfString(text, "C", caseInsensitive | backwards, {0, 5}), (Range{2, 1}));
  EXPECT_EQ(rangeOfString(text, "b", anchored, {4, 2}), (Range{4, 1}));
  EXPECT_EQ(rangeOfString(text, "a", none, {6, 0}), kNone);
  EXPECT_THROW((void)rangeOfString(text, "a", none, {7, 0}), qx::RangeException);
  EXPECT_THROW((void)rangeOfString(text, "a", none, {2, 5}), qx::RangeException);
  EXPECT_THROW((void)rangeOfString(text, nullptr, none), qx::InvalidArgumentException);
  EXPECT_EQ(rangeOfString(Ref<String>(), "a", none), kNone);
}

TEST(StringSearch, FindsCharactersOfSets) {
  const auto text = String::fromUtf16(u"a-😀-b\xD83D");
  const auto dash = CharacterSet::characterSetWithCharactersInString("-");
  const auto smile = CharacterSet::characterSetWithCharactersInString("😀");
  const auto high = CharacterSet::characterSetWithRange({0xD83D, 1});
  const Range all{0, text->length()};
  EXPECT_EQ(rangeOfCharacterFromSet(text, dash, none, all), (Range{1, 1}));
  EXPECT_EQ(rangeOfCharacterFromSet(text, dash, backwards, all), (Range{4, 1}));
  EXPECT_EQ(rangeOfCharacterFromSet(text, dash, none, {2, 2}), kNone);
  EXPECT_EQ(rangeOfCharacterFromSet(text, smile, literal, all), (Range{2, 2}));
  EXPECT_EQ(rangeOfCharacterFromSet(text, smile, backwards, all), (Range{2, 2}));
  EXPECT_EQ(rangeOfCharacterFromSet(text, smile, none, {3, 2}), kNone);
  EXPECT_EQ(rangeOfCharacterFromSet(text, high, none, all), (Range{6, 1}));
  EXPECT_EQ(rangeOfCharacterFromSet(text, high, none, {0, 3}), (Range{2, 1}));
  EXPECT_EQ(rangeOfCharacterFromSet(text, dash, anchored, all), kNone);
  EXPECT_EQ(rangeOfCharacterFromSet(text, dash, anchored, {1, 3}), (Range{1, 1}));
  EXPECT_EQ(rangeOfCharacterFromSet(text, high, anchored | backwards, all), (Range{6, 1}));
  EXPECT_THROW((void)rangeOfCharacterFromSet(text, dash, none, {3, 9}), qx::RangeException);
  EXPECT_THROW((void)rangeOfCharacterFromSet(text, nullptr, none, all),
               qx::InvalidArgumentException);
  EXPECT_EQ(rangeOfCharacterFromSet(Ref<String>(), dash, none, {0, 0}), kNone);
}

TEST(StringSearch, HostileTextsTakeNoProductOfTheLengths) {
  const auto text = String::from(std::string(1 << 20, 'a'));
  const auto near = String::from(std::string(1 << 19, 'A') + "b" + std::string(1 << 18, 'A'));
  for (const auto options : {none, caseInsensitive, backwards, caseInsensitive | backwards})
    EXPECT_EQ(rangeOfString(text, near, options), kNone);
  const auto marks = String::fromUtf16(u"a" + std::u16string(1 << 20, u'\u0301'));
  EXPECT_EQ(rangeOfString(marks, "a", diacriticInsensitive), (Range{0, (1 << 20) + 1}));
}

}  // namespace

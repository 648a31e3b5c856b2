#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/string.h>

#include "frame/string_storage.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

bool isWide(const String& s) { return detail::StringStorage::isWide(s); }

// One text in every form that a string can have: the tests below run over all pairs of forms.
std::vector<Ref<String>> forms(std::u16string_view text) {
  std::vector<Ref<String>> all = {String::fromUtf16(text)};
  all.push_back(MutableString::from(all[0]));
  const auto wide = MutableString::from("\xE6\xBC\xA2");
  wide->setString(all[0]);
  all.push_back(wide);
  return all;
}

TEST(Strings, KeepTextInTheNarrowestForm) {
  const struct {
    const char* utf8;
    std::u16string_view units;
    bool wide;
  } cases[] = {
      {"", u"", false},
      {"ascii", u"ascii", false},
      {"\xC3\xBF", u"\u00FF", false},
      {"na\xC3\xAFve", u"na\u00EFve", false},
      {"\xC4\x80", u"\u0100", true},
      {"a\xE6\xBC\xA2", u"a\u6F22", true},
      {"\xF0\x9F\x98\x80", u"\U0001F600", true},
      {"\xFF", u"\uFFFD", true},
      {"a\xC3", u"a\uFFFD", true},
      {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD", true},
  };
  for (const auto& c : cases) {
    const auto s = String::from(c.utf8);
    EXPECT_EQ(s->utf16(), c.units) << c.utf8;
    EXPECT_EQ(s->length(), c.units.size());
    EXPECT_EQ(isWide(*s), c.wide) << c.utf8;
    EXPECT_EQ(isWide(*String::fromUtf16(c.units)), c.wide) << c.utf8;
    EXPECT_TRUE(s->isEqualToString(String::fromUtf16(c.units)));
  }
}

TEST(Strings, AreMadeFromUtf8Utf16AndLatin1) {
  EXPECT_EQ(String::fromLatin1("\xE4\xFF")->utf8(), "\xC3\xA4\xC3\xBF");
  EXPECT_EQ(String::fromLatin1("")->length(), 0U);
  EXPECT_EQ(String::fromStrictUtf8("t\xC3\xA4")->utf8(), "t\xC3\xA4");
  EXPECT_EQ(String::fromStrictUtf8("t\xC3"), nullptr);
  EXPECT_EQ(String::fromStrictUtf8("\xED\xA0\x80"), nullptr);
  EXPECT_EQ(String::from(std::string("a\0b", 3))->length(), 3U);
  EXPECT_EQ(String::from(std::string("a\0b", 3))->utf8(), std::string("a\0b", 3));
  EXPECT_EQ(String::from(std::string_view())->length(), 0U);
  EXPECT_EQ(String::empty()->length(), 0U);
  EXPECT_EQ(String::empty().get(), String::empty().get());
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { (void)String::from(nullptr); }),
            "a string can not be made from nil");
}

TEST(Strings, GiveThemselvesWhereTheyAreImmutable) {
  const auto s = String::from("text");
  EXPECT_EQ(String::from(s).get(), s.get());
  EXPECT_EQ(StringArg(s).string().get(), s.get());
  EXPECT_EQ(s->copy().get(), static_cast<Object*>(s.get()));
  const auto m = MutableString::from(s);
  const auto fixed = String::from(m);
  m->appendString("!");
  EXPECT_EQ(fixed->utf8(), "text");
  EXPECT_STREQ(fixed->cls().name(), "NSString");
}

TEST(Strings, KeepLoneSurrogates) {
  const char16_t units[] = {u'a', 0xDC00, 0xD800, u'b', 0xD83D, 0xDE00, 0xD800};
  const auto s = String::fromUtf16({units, 7});
  EXPECT_EQ(s->utf16(), std::u16string_view(units, 7));
  EXPECT_EQ(s->utf8(),
            "a\xEF\xBF\xBD\xEF\xBF\xBD"
            "b\xF0\x9F\x98\x80\xEF\xBF\xBD");
  EXPECT_EQ(s->characterAtIndex(1), 0xDC00);
  EXPECT_EQ(s->substringWithRange({4, 1})->utf16(), std::u16string(1, char16_t{0xD83D}));
  EXPECT_TRUE(s->substringToIndex(4)
                  ->stringByAppendingString(s->substringFromIndex(4))
                  ->isEqualToString(s));
}

TEST(Strings, ReplaceIllFormedUtf8InParameters) {
  EXPECT_EQ(StringArg("a\xFF").utf8(), "a\xEF\xBF\xBD");
  EXPECT_EQ(StringArg("a\xFF").string()->utf8(), "a\xEF\xBF\xBD");
  EXPECT_EQ(StringArg(nullptr).utf8(), "");
  EXPECT_EQ(StringArg(nullptr).string(), nullptr);
  EXPECT_EQ(StringArg("plain").utf8(), "plain");
  EXPECT_EQ(String::from("n\xC3\xA4h")->UTF8String(), "n\xC3\xA4h");
  EXPECT_EQ(StringArg(*String::from("s")).utf8(), "s");
}

TEST(Strings, GiveTheirUnits) {
  for (const auto& s : forms(u"a\u00E9")) {
    EXPECT_EQ(s->characterAtIndex(0), u'a');
    EXPECT_EQ(s->characterAtIndex(1), u'\u00E9');
    EXPECT_EQ(reasonOf<RangeException>([&] { (void)s->characterAtIndex(2); }),
              "-[NSString characterAtIndex:]: index 2 is beyond the count 2");
    EXPECT_THROW((void)s->characterAtIndex(~std::size_t{0}), RangeException);
  }
}

struct SearchCase {
  std::u16string_view text;
  std::u16string_view part;
  std::size_t from;
  std::size_t at;
};

TEST(Strings, AreSearchedByCodeUnit) {
  const SearchCase cases[] = {
      {u"hello", u"l", 0, 2},
      {u"hello", u"l", 3, 3},
      {u"hello", u"l", 4, kNotFound},
      {u"hello", u"lo", 0, 3},
      {u"hello", u"hello", 0, 0},
      {u"hello", u"hello!", 0, kNotFound},
      {u"hello", u"", 0, kNotFound},
      {u"", u"", 0, kNotFound},
      {u"", u"a", 0, kNotFound},
      {u"hello", u"h", 5, kNotFound},
      {u"hello", u"h", 6, kNotFound},
      {u"hello", u"h", ~std::size_t{0}, kNotFound},
      {u"aaa", u"aa", 1, 1},
      {u"caf\u00E9", u"\u00E9", 0, 3},
      {u"cafe\u0301", u"\u00E9", 0, kNotFound},
      {u"a\u6F22b", u"b", 0, 2},
      {u"a\u6F22b", u"\u6F22", 0, 1},
      {u"abc", u"\u6F22", 0, kNotFound},
      {u"\U0001F600", std::u16string_view(u"\U0001F600").substr(1), 0, 1},
  };
  for (const SearchCase& c : cases) {
    for (const auto& text : forms(c.text)) {
      for (const auto& part : forms(c.part)) {
        const Range found = text->rangeOfString(part, c.from);
        EXPECT_EQ(found.location, c.at) << text->utf8() << " / " << part->utf8();
        EXPECT_EQ(found.length, c.at == kNotFound ? 0 : c.part.size());
      }
    }
  }
  EXPECT_EQ(String::from("a")->rangeOfString(nullptr), (Range{kNotFound, 0}));
  EXPECT_EQ(String::from("aba")->rangeOfString("a"), (Range{0, 1}));
  EXPECT_EQ(String::from("aba")->rangeOfString("a", 1), (Range{2, 1}));
}

TEST(Strings, TellPrefixesAndSuffixes) {
  const struct {
    std::u16string_view text;
    std::u16string_view part;
    bool prefix;
    bool suffix;
  } cases[] = {
      {u"hello", u"he", true, false},
      {u"hello", u"lo", false, true},
      {u"hello", u"hello", true, true},
      {u"hello", u"hello!", false, false},
      {u"hello", u"", true, true},
      {u"", u"", true, true},
      {u"", u"a", false, false},
      {u"\u00E9a\u00E9", u"\u00E9", true, true},
      {u"\u6F22a", u"\u6F22", true, false},
      {u"abc", u"B", false, false},
  };
  for (const auto& c : cases) {
    for (const auto& text : forms(c.text)) {
      for (const auto& part : forms(c.part)) {
        EXPECT_EQ(text->hasPrefix(part), c.prefix) << text->utf8() << " / " << part->utf8();
        EXPECT_EQ(text->hasSuffix(part), c.suffix) << text->utf8() << " / " << part->utf8();
      }
    }
  }
  EXPECT_FALSE(String::from("a")->hasPrefix(nullptr));
  EXPECT_FALSE(String::from("a")->hasSuffix(nullptr));
}

TEST(Strings, GiveSubstrings) {
  for (const auto& s : forms(u"caf\u00E9")) {
    EXPECT_EQ(s->substringWithRange({1, 2})->utf8(), "af");
    EXPECT_EQ(s->substringWithRange({0, 4})->utf8(), "caf\xC3\xA9");
    EXPECT_EQ(s->substringWithRange({4, 0})->utf8(), "");
    EXPECT_EQ(s->substringFromIndex(3)->utf8(), "\xC3\xA9");
    EXPECT_EQ(s->substringFromIndex(4)->utf8(), "");
    EXPECT_EQ(s->substringToIndex(0)->utf8(), "");
    EXPECT_EQ(s->substringToIndex(3)->utf8(), "caf");
    EXPECT_FALSE(isWide(*s->substringWithRange({0, 4})));
  }
  EXPECT_FALSE(isWide(*String::from("\xE6\xBC\xA2"
                                    "ab")
                           ->substringFromIndex(1)));
}

TEST(Strings, RaiseForRangesOutsideThem) {
  const auto s = String::from("abcd");
  const std::size_t most = ~std::size_t{0};
  for (const Range r : {Range{5, 0}, Range{4, 1}, Range{0, 5}, Range{2, 3}, Range{1, most},
                        Range{most, 0}, Range{most, 1}, Range{most, most}}) {
    EXPECT_THROW((void)s->substringWithRange(r), RangeException) << r.location << ' ' << r.length;
  }
  EXPECT_EQ(reasonOf<RangeException>([&] { (void)s->substringWithRange({2, 3}); }),
            "-[NSString substringWithRange:]: the range of 3 from 2 leaves the length 4");
  EXPECT_EQ(reasonOf<RangeException>([&] { (void)s->substringFromIndex(5); }),
            "-[NSString substringFromIndex:]: index 5 is beyond the count 4");
  EXPECT_EQ(reasonOf<RangeException>([&] { (void)s->substringToIndex(5); }),
            "-[NSString substringToIndex:]: the range of 5 from 0 leaves the length 4");
}

TEST(Strings, AreJoinedSplitAndReplacedIn) {
  for (const auto& s : forms(u"a,b,,c")) {
    EXPECT_EQ(PropertyValue(s->componentsSeparatedByString(",")),
              PropertyValue(array("a", "b", "", "c")));
    EXPECT_EQ(PropertyValue(s->componentsSeparatedByString(",,")),
              PropertyValue(array("a,b", "c")));
    EXPECT_EQ(PropertyValue(s->componentsSeparatedByString("x")), PropertyValue(array("a,b,,c")));
    EXPECT_EQ(PropertyValue(s->componentsSeparatedByString("")), PropertyValue(array("a,b,,c")));
    EXPECT_EQ(PropertyValue(s->componentsSeparatedByString("\xE6\xBC\xA2")),
              PropertyValue(array("a,b,,c")));
    EXPECT_EQ(s->stringByReplacingOccurrencesOfString(",", "; ")->utf8(), "a; b; ; c");
    EXPECT_EQ(s->stringByReplacingOccurrencesOfString(",", "")->utf8(), "abc");
    EXPECT_EQ(s->stringByReplacingOccurrencesOfString(",,", ",")->utf8(), "a,b,c");
    EXPECT_EQ(s->stringByReplacingOccurrencesOfString("", "x")->utf8(), "a,b,,c");
    EXPECT_EQ(s->stringByReplacingOccurrencesOfString("b", "\xE6\xBC\xA2")->utf8(),
              "a,\xE6\xBC\xA2,,c");
    EXPECT_EQ(s->stringByAppendingString("!")->utf8(), "a,b,,c!");
    EXPECT_EQ(s->stringByAppendingString("\xE6\xBC\xA2")->utf8(), "a,b,,c\xE6\xBC\xA2");
    EXPECT_EQ(s->stringByAppendingString(s)->utf8(), "a,b,,ca,b,,c");
  }
  EXPECT_EQ(PropertyValue(String::empty()->componentsSeparatedByString(",")),
            PropertyValue(array("")));
  EXPECT_EQ(PropertyValue(String::from(",")->componentsSeparatedByString(",")),
            PropertyValue(array("", "")));
  const auto same = String::from("same");
  EXPECT_EQ(same->stringByReplacingOccurrencesOfString("x", "y").get(), same.get());
  EXPECT_EQ(String::from("aaaa")->stringByReplacingOccurrencesOfString("aa", "a")->utf8(), "aa");
  EXPECT_FALSE(isWide(*String::from("\xE6\xBC\xA2"
                                    "b")
                           ->stringByReplacingOccurrencesOfString("\xE6\xBC\xA2", "a")));
}

TEST(Strings, RaiseForNilWhereTextIsNeeded) {
  const auto s = String::from("a");
  EXPECT_THROW((void)s->compare(nullptr), InvalidArgumentException);
  EXPECT_THROW((void)s->caseInsensitiveCompare(nullptr), InvalidArgumentException);
  EXPECT_THROW((void)s->componentsSeparatedByString(nullptr), InvalidArgumentException);
  EXPECT_THROW((void)s->stringByReplacingOccurrencesOfString(nullptr, ""),
               InvalidArgumentException);
  EXPECT_THROW((void)s->stringByReplacingOccurrencesOfString("", nullptr),
               InvalidArgumentException);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)s->stringByAppendingString(nullptr); }),
            "nil was used as an object in -[NSString stringByAppendingString:]");
  EXPECT_FALSE(s->isEqualToString(nullptr));
  EXPECT_FALSE(s->matchesPattern(nullptr, true));
}

TEST(Strings, AreMappedByUnicodeRules) {
  const struct {
    const char* text;
    const char* lower;
    const char* upper;
    const char* capitalized;
    const char* folded;
  } cases[] = {
      {"", "", "", "", ""},
      {"hello wORLD", "hello world", "HELLO WORLD", "Hello World", "hello world"},
      {"stra\xC3\x9F"
       "e",
       "stra\xC3\x9F"
       "e",
       "STRASSE",
       "Stra\xC3\x9F"
       "e",
       "strasse"},
      {"\xCE\x91\xCE\xA3", "\xCE\xB1\xCF\x82", "\xCE\x91\xCE\xA3", "\xCE\x91\xCF\x82",
       "\xCE\xB1\xCF\x83"},
      {"\xC4\xB0", "i\xCC\x87", "\xC4\xB0", "\xC4\xB0", "i\xCC\x87"},
  };
  for (const auto& c : cases) {
    const auto s = String::from(c.text);
    EXPECT_EQ(s->lowercaseString()->utf8(), c.lower);
    EXPECT_EQ(s->uppercaseString()->utf8(), c.upper);
    EXPECT_EQ(s->capitalizedString()->utf8(), c.capitalized);
    EXPECT_EQ(s->caseFoldedString()->utf8(), c.folded);
  }
  EXPECT_EQ(String::from("e\xCC\x81")->normalizedString(NormalForm::c)->utf8(), "\xC3\xA9");
  EXPECT_EQ(String::from("\xC3\xA9")->normalizedString(NormalForm::d)->utf8(), "e\xCC\x81");
  EXPECT_EQ(String::from("\xEF\xAC\x81")->normalizedString(NormalForm::kc)->utf8(), "fi");
  EXPECT_EQ(String::from("\xC2\xBD")->normalizedString(NormalForm::kd)->utf8(),
            "1\xE2\x81\x84"
            "2");
}

TEST(Strings, HashAlikeInEveryForm) {
  for (const std::u16string_view text :
       {std::u16string_view(u""), std::u16string_view(u"a"), std::u16string_view(u"caf\u00E9"),
        std::u16string_view(u"\u6F22"), std::u16string_view(u"a longer text with \u00E9 in it")}) {
    const auto all = forms(text);
    for (const auto& a : all) {
      for (const auto& b : all) {
        EXPECT_EQ(a->hash(), b->hash()) << a->utf8();
        EXPECT_TRUE(a->isEqual(b));
        EXPECT_TRUE(a->isEqualToString(b));
      }
      EXPECT_NE(a->hash(), 0U);
    }
  }
  EXPECT_NE(String::from("a")->hash(), String::from("b")->hash());
}

TEST(Strings, MatchPatterns) {
  EXPECT_TRUE(String::from("Jim")->matchesPattern("J*", false));
  EXPECT_FALSE(String::from("Jim")->matchesPattern("j*", false));
  EXPECT_TRUE(String::from("Jim")->matchesPattern("j*", true));
  EXPECT_TRUE(MutableString::from("Jim")->matchesPattern(MutableString::from("?im"), false));
}

TEST(Strings, DescribeThemselvesAsTheyAre) {
  EXPECT_EQ(String::from("a \"b\"\n")->description(), "a \"b\"\n");
  const PropertyValue m = MutableString::from("x");
  const PropertyValue described = performSelector(m, "description");
  m.as<MutableString>()->appendString("y");
  EXPECT_EQ(described, PropertyValue("x"));
}

}  // namespace
}  // namespace qx

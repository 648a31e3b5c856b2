#include <gtest/gtest.h>

#include <random>

#include <QXFoundation/string_operations.h>

#include "tests/collections/sample_objects.h"

namespace {

using qx::CharacterSet;
using qx::MutableString;
using qx::PropertyValue;
using qx::Ref;
using qx::String;

Ref<String> wide(std::u16string_view units) { return String::fromUtf16(units); }
Ref<CharacterSet> setOf(qx::StringArg text) {
  return CharacterSet::characterSetWithCharactersInString(text);
}
std::u16string replaced(std::u16string_view text, std::u16string_view target,
                        std::u16string_view with) {
  return stringByReplacingAllOccurrencesOfString(wide(text), wide(target), wide(with))->utf16();
}
std::u16string replacedMembers(std::u16string_view text, const Ref<CharacterSet>& set,
                               std::u16string_view with) {
  const auto s = MutableString::from(wide(text));
  replaceAllOccurrencesOfCharactersInSet(s, set, wide(with));
  return s->utf16();
}

TEST(StringOperations, LocalPathDropsTheFirstCharacterOfAbsolutePaths) {
  const std::pair<const char*, const char*> cases[] = {
      {"/Users/a", "Users/a"},
      {"~/a", "/a"},
      {"a/b", "a/b"},
      {"", ""},
      {"/", ""},
      {"~", ""},
      {"//", "/"},
      {" /a", " /a"},
  };
  for (const auto& [path, local] : cases) EXPECT_EQ(localPath(String::from(path))->utf8(), local);
  const auto relative = MutableString::from("a/b");
  EXPECT_EQ(localPath(relative).get(), relative.get());
}

TEST(StringOperations, FourTextsAreYes) {
  for (const char* yes : {"YES", "Y", "yes", "y"}) EXPECT_TRUE(qxBoolValue(String::from(yes)));
  for (const char* no : {"Yes", "", "1", "TRUE", "true", "yES", "yes ", "N", "YE"})
    EXPECT_FALSE(qxBoolValue(String::from(no))) << no;
}

TEST(StringOperations, UnsignedIntWraps) {
  EXPECT_EQ(unsignedIntValue(String::from("-1")), 4294967295U);
  EXPECT_EQ(unsignedIntValue(String::from(" 42x")), 42U);
  EXPECT_EQ(unsignedIntValue(String::from("4294967295")), 2147483647U);
  EXPECT_EQ(unsignedIntValue(String::from("-9999999999")), 2147483648U);
  EXPECT_EQ(unsignedIntValue(String::from("")), 0U);
}

TEST(StringOperations, NilOrEmptyTextIsContainedInEverything) {
  const auto empty = String::from("");
  EXPECT_TRUE(containsString(empty, ""));
  EXPECT_TRUE(containsString(empty, nullptr));
  EXPECT_FALSE(containsString(empty, "a"));
  EXPECT_TRUE(containsString(String::from("abc"), "bc"));
  EXPECT_FALSE(containsString(String::from("abc"), "cb"));
  EXPECT_TRUE(
      containsString(String::from("aBc"), "AbC", qx::StringCompareOptions::caseInsensitive));
  EXPECT_FALSE(containsString(String::from("aBc"), "AbC", qx::StringCompareOptions::literal));
  EXPECT_TRUE(containsString(empty, nullptr, qx::StringCompareOptions::anchored));
}

TEST(StringOperations, NilStringsGiveNothing) {
  const Ref<String> nil;
  EXPECT_EQ(localPath(nil), nullptr);
  EXPECT_FALSE(qxBoolValue(nil));
  EXPECT_EQ(unsignedIntValue(nil), 0U);
  EXPECT_FALSE(containsString(nil, ""));
  EXPECT_FALSE(containsCharacterInSet(nil, setOf("a")));
  EXPECT_EQ(stringByReplacingAllOccurrencesOfString(nil, "a", "b"), nullptr);
  EXPECT_EQ(stringByReplacingCharactersInSet(nil, setOf("a"), "b"), nullptr);
  EXPECT_EQ(hfsPathFromPOSIXPath(nil), nullptr);
  replaceAllOccurrencesOfCharactersInSet(Ref<MutableString>(), setOf("a"), "b");
}

TEST(StringOperations, NilArgumentsRaise) {
  const auto s = MutableString::from("abc");
  EXPECT_THROW(containsCharacterInSet(s, nullptr), qx::InvalidArgumentException);
  EXPECT_THROW(stringByReplacingAllOccurrencesOfString(s, nullptr, "x"),
               qx::InvalidArgumentException);
  EXPECT_THROW(stringByReplacingAllOccurrencesOfString(s, "a", nullptr),
               qx::InvalidArgumentException);
  EXPECT_EQ(stringByReplacingAllOccurrencesOfString(s, "x", nullptr)->utf8(), "abc");
  EXPECT_THROW(stringByReplacingCharactersInSet(s, nullptr, "x"), qx::InvalidArgumentException);
  EXPECT_THROW(stringByReplacingCharactersInSet(s, setOf("a"), nullptr),
               qx::InvalidArgumentException);
  EXPECT_THROW(replaceAllOccurrencesOfCharactersInSet(s, setOf("a"), nullptr),
               qx::InvalidArgumentException);
  EXPECT_EQ(s->utf8(), "abc");
}

TEST(StringOperations, ReplacingTexts) {
  struct Case {
    std::u16string text, target, with, result;
  };
  const Case cases[] = {
      {u"a.b.c", u".", u"..", u"a..b..c"},
      {u"aaa", u"aa", u"b", u"ba"},
      {u"aaaa", u"aa", u"", u""},
      {u"aaaa", u"a", u"aa", u"aaaaaaaa"},
      {u"abc", u"", u"x", u"abc"},
      {u"", u"a", u"x", u""},
      {u"", u"", u"x", u""},
      {u"abc", u"abc", u"x", u"x"},
      {u"abc", u"abcd", u"x", u"abc"},
      {u"aXbX", u"X", u"☃", u"a☃b☃"},
      {u"a☃b☃", u"☃", u"X", u"aXbX"},
      {u"a☃b☃é", u"☃", u"", u"abé"},
      {u"é☃é", u"é", u"e", u"e☃e"},
      {u"abc", u"☃", u"x", u"abc"},
      {u"e\u0301é", u"é", u"x", u"e\u0301x"},  // composed differently
      {u"e\u0301", u"e", u"x", u"x\u0301"},    // a combining mark is left alone
      {u"😀x😀", u"😀", u"☺", u"☺x☺"},
      {u"😀", u"\xDE00", u"x", u"\xD83Dx"},  // half of a pair
      {u"a\xD83D"
       u"b",
       u"\xD83D", u"x", u"axb"},  // a lone surrogate
      {u"\xD83D-\xDE00", u"-", u"", u"😀"},
  };
  for (const Case& c : cases) EXPECT_EQ(replaced(c.text, c.target, c.with), c.result);
}

TEST(StringOperations, ReplacingTextsGivesImmutableStrings) {
  const auto s = MutableString::from("abc");
  for (const char* target : {"b", "x"}) {
    const auto result = stringByReplacingAllOccurrencesOfString(s, target, "y");
    EXPECT_EQ(result->cls().name(), std::string("NSString"));
    EXPECT_NE(static_cast<const String*>(result.get()), s.get());
  }
  const auto fixed = String::from("abc");
  EXPECT_EQ(stringByReplacingAllOccurrencesOfString(fixed, "x", "y").get(), fixed.get());
}

TEST(StringOperations, ReplacingCharactersOneByOne) {
  struct Case {
    std::u16string text, set, with, result;
  };
  const Case cases[] = {
      {u"a--b", u"-", u"_", u"a__b"},
      {u"---", u"-", u"ab", u"ababab"},
      {u"", u"-", u"_", u""},
      {u"a-b", u"", u"_", u"a-b"},
      {u"a-b+c", u"+-", u"", u"abc"},
      {u"a-b", u"-", u"--", u"a--b"},
      {u"-", u"-", u"", u""},
      {u"a😀b", u"😀", u"x", u"axb"},       // two units are one character
      {u"a😀b", u"\xDE00", u"x", u"a😀b"},  // half of a pair is no character
      {u"a\xDE00"
       u"b",
       u"\xDE00", u"x", u"axb"},
      {u"e\u0301", u"\u0301", u"", u"e"},  // marks are characters
      {u"é", u"e", u"x", u"é"},
      {u"a☃b", u"☃", u"ü", u"aüb"},
      {u"aüb", u"ü", u"☃", u"a☃b"},
      {u"\xD83D-\xDE00", u"-\xDE00", u"", u"\xD83D"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(replacedMembers(c.text, setOf(wide(c.set)), c.with), c.result);
    const auto s = wide(c.text);
    const auto copy = stringByReplacingCharactersInSet(s, setOf(wide(c.set)), wide(c.with));
    EXPECT_EQ(copy->utf16(), c.result);
    EXPECT_EQ(copy.get() == s.get(), c.text == c.result);
    EXPECT_EQ(copy.get() == s.get() || PropertyValue(copy).as<MutableString>() != nullptr, true);
  }
}

TEST(StringOperations, ReplacedCharactersAreThoseOfInvertedSetsToo) {
  const auto others = CharacterSet::letterCharacterSet()->invertedSet();
  EXPECT_EQ(replacedMembers(u"a1ü☃b😀\xD800z", others, u"_"), u"a_ü_b__z");
  EXPECT_TRUE(containsCharacterInSet(wide(u"a☃"), others));
  EXPECT_FALSE(containsCharacterInSet(wide(u"aü"), others));
}

TEST(StringOperations, ArgumentsMayBeTheStringItself) {
  const auto s = MutableString::from("ab");
  EXPECT_EQ(stringByReplacingAllOccurrencesOfString(s, s, s)->utf8(), "ab");
  replaceAllOccurrencesOfCharactersInSet(s, setOf("b"), s);
  EXPECT_EQ(s->utf8(), "aab");
  EXPECT_TRUE(containsString(s, s));
}

// The definition, step by step.
std::u16string replacedPlainly(std::u16string text, const std::u16string& target,
                               const std::u16string& with) {
  if (target.empty()) return text;
  for (std::size_t at = text.find(target); at != std::u16string::npos;
       at = text.find(target, at + with.size())) {
    text.replace(at, target.size(), with);
  }
  return text;
}
std::size_t memberAt(const std::u16string& text, const CharacterSet& set, std::size_t from,
                     std::size_t& length) {
  for (std::size_t at = from; at < text.size(); at += length) {
    const bool pair =
        (text[at] & 0xFC00) == 0xD800 && at + 1 < text.size() && (text[at + 1] & 0xFC00) == 0xDC00;
    length = pair ? 2 : 1;
    const char32_t c = pair ? 0x10000U + ((text[at] & 0x3FFU) << 10) + (text[at + 1] & 0x3FFU)
                            : char32_t{text[at]};
    if (set.longCharacterIsMember(c)) return at;
  }
  return std::u16string::npos;
}
std::u16string membersReplacedPlainly(std::u16string text, const CharacterSet& set,
                                      const std::u16string& with) {
  std::size_t length = 0;
  for (std::size_t from = 0; from != text.size();) {
    const std::size_t at = memberAt(text, set, from, length);
    if (at == std::u16string::npos) break;
    text.replace(at, length, with);
    from = at + with.size();
  }
  return text;
}

std::u16string randomText(std::mt19937& random, std::size_t longest) {
  constexpr char16_t kUnits[] = u"aaaab-é\u0301☃\xD83D\xDE00\xDBFF";
  std::u16string text(random() % longest, u' ');
  const std::size_t kinds = random() % 2 == 0 ? 7 : 12;  // Latin-1 alone, or all
  for (char16_t& unit : text) unit = kUnits[random() % kinds];
  return text;
}

TEST(StringOperations, AgreeWithTheirDefinitionOnRandomTexts) {
  std::mt19937 random(12);
  for (int i = 0; i < 20000; ++i) {
    const auto text = randomText(random, 70);
    const auto target = randomText(random, 4);
    const auto with = randomText(random, 5);
    ASSERT_EQ(replaced(text, target, with), replacedPlainly(text, target, with));
    auto set = setOf(wide(randomText(random, 6)));
    if (random() % 4 == 0) set = set->invertedSet();
    ASSERT_EQ(replacedMembers(text, set, with), membersReplacedPlainly(text, *set, with));
    std::size_t length = 0;
    ASSERT_EQ(containsCharacterInSet(wide(text), set),
              memberAt(text, *set, 0, length) != std::u16string::npos);
    ASSERT_EQ(containsString(wide(text), wide(target)), text.find(target) != std::u16string::npos);
  }
}

TEST(StringOperations, NearMissesTakeNoProductOfTheLengths) {
  const std::string text(1 << 20, 'a');
  const std::string target = std::string(1 << 19, 'a') + "b" + std::string(1 << 10, 'a');
  EXPECT_EQ(stringByReplacingAllOccurrencesOfString(String::from(text), target, "x")->length(),
            text.size());
}

TEST(StringOperations, AResultBeyondAllStringsRaises) {
  const auto text = String::from(std::string(70000, 'a'));
  EXPECT_THROW(stringByReplacingAllOccurrencesOfString(text, "a", text),
               qx::InvalidArgumentException);
}

}  // namespace

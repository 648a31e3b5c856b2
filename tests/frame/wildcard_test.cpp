#include "frame/wildcard.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "frame/unicode.h"
#include "tests/frame/storage_forms.h"
#include "tests/support/processor_time.h"

namespace qx::detail {
namespace {

struct WildcardCase {
  std::u16string text;
  std::u16string pattern;
  bool exact;
  bool ignoringCase;
};

template <std::size_t N>
void expectMatches(const WildcardCase (&cases)[N]) {
  for (const WildcardCase& c : cases) {
    const std::string name =
        testing::PrintToString(c.text) + " like " + testing::PrintToString(c.pattern);
    EXPECT_EQ(wildcardMatch(c.text, c.pattern, false), c.exact) << name;
    EXPECT_EQ(wildcardMatch(c.text, c.pattern, true), c.ignoringCase) << name;
    if (fitsLatin1(c.text)) {
      const std::string text = latin1Of(c.text);
      EXPECT_EQ(wildcardMatch(TextSpan::latin1(text), c.pattern, false), c.exact) << name;
      EXPECT_EQ(wildcardMatch(TextSpan::latin1(text), c.pattern, true), c.ignoringCase) << name;
    }
    if (fitsLatin1(c.pattern)) {
      const std::string pattern = latin1Of(c.pattern);
      EXPECT_EQ(wildcardMatch(c.text, TextSpan::latin1(pattern), false), c.exact) << name;
      EXPECT_EQ(wildcardMatch(c.text, TextSpan::latin1(pattern), true), c.ignoringCase) << name;
    }
  }
}

TEST(Wildcard, MatchesWholeTexts) {
  const WildcardCase cases[] = {
      {u"", u"", true, true},
      {u"", u"*", true, true},
      {u"", u"**", true, true},
      {u"", u"?", false, false},
      {u"a", u"", false, false},
      {u"Jim", u"J*", true, true},
      {u"Jim", u"j*", false, true},
      {u"Jim", u"*m", true, true},
      {u"Jim", u"*M", false, true},
      {u"Jim", u"*i*", true, true},
      {u"Jim", u"*I*", false, true},
      {u"Jim", u"J*m", true, true},
      {u"Jim", u"Jim", true, true},
      {u"Jim", u"jIM", false, true},
      {u"Jim", u"Ji", false, false},
      {u"Jim", u"im", false, false},
      {u"Jim", u"Jimm", false, false},
      {u"Jim", u"J?m", true, true},
      {u"Jiim", u"J?m", false, false},
      {u"Jim", u"???", true, true},
      {u"Jim", u"??", false, false},
      {u"Jim", u"????", false, false},
      {u"Jim", u"?*?", true, true},
      {u"J", u"?*?", false, false},
      {u"aba", u"ab*ba", false, false},  // head and tail must not overlap
      {u"abba", u"ab*ba", true, true},
      {u"abcabcabd", u"*abd", true, true},
      {u"abcabcabd", u"*ab?", true, true},
      {u"abcabcabd", u"*b*b*b?", true, true},
      {u"abcabcabd", u"*b*b*b*b*", false, false},
      {u"mississippi", u"m*iss*ip*i", true, true},
      {u"mississippi", u"m*iss*ix*i", false, false},
      // Backslash.
      {u"a*b", u"a\\*b", true, true},
      {u"axb", u"a\\*b", false, false},
      {u"a?b", u"a\\?b", true, true},
      {u"axb", u"a\\?b", false, false},
      {u"a\\b", u"a\\\\b", true, true},
      {u"ab", u"a\\b", true, true},
      {u"a\\", u"a\\", true, true},
      {u"a", u"a\\", false, false},
      {u"a\\bc", u"a\\\\*", true, true},
      {u"x*", u"*\\*", true, true},
      {u"x", u"*\\*", false, false},
  };
  expectMatches(cases);
}

TEST(Wildcard, MatchesTextsBeyondAscii) {
  const WildcardCase cases[] = {
      {u"\xE9t\xE9", u"\xE9*\xE9", true, true},
      {u"\xC9t\xE9", u"\xE9*\xE9", false, true},
      {u"\xC9t\xE9", u"\xE9?\xE9", false, true},
      {u"\xE9", u"\x20AC*", false, false},
      {u"\xE9\x20AC", u"*\x20AC", true, true},
      {u"ab\x20AC"
       u"cd",
       u"*\x20AC*", true, true},
      {u"Stra\xDF"
       u"e",
       u"STRASSE", false, true},
      {u"STRASSE",
       u"stra\xDF"
       u"e",
       false, true},
      {u"\xB5m", u"\x3BC*", false, true},
      {u"\xD7", u"\xF7", false, false},
      // One code point is one character; half of a pair is never found.
      {u"\xD83D\xDE00", u"?", true, true},
      {u"\xD83D\xDE00", u"??", false, false},
      {u"\xD83D", u"?", true, true},
      {u"\xDE00\xD83D", u"??", true, true},
      {u"\xD83D\xDE00", u"\xD83D*", false, false},
      {u"\xD83D\xDE00", u"*\xDE00", false, false},
      {u"\xD83D\xDE00", u"*?\xDE00", false, false},
      {u"\xD83D\xDE00", u"*\xD83D\xDE00*", true, true},
      {u"\xD83Dx", u"\xD83D*", true, true},
      {u"x\xDE00", u"*\xDE00", true, true},
      {u"\xD801\xDC00z", u"\xD801\xDC28*", false, true},
  };
  expectMatches(cases);
}

TEST(Wildcard, TakesACharacterThatFoldsToSeveralAsOne) {
  const WildcardCase cases[] = {
      {u"\xDF", u"?", true, true},
      {u"\xDF", u"??", false, false},
      {u"\xDF", u"s?", false, false},
      {u"\xDF", u"*?", true, true},
      {u"\xDF", u"*??", false, false},
      {u"\xDF", u"*s", false, true},
      {u"x\xDF", u"?*s", false, true},
      {u"x\xDF", u"?s*", false, true},
      {u"Stra\xDF"
       u"e",
       u"Stra?e", true, true},
      {u"Stra\xDF"
       u"e",
       u"stra?e", false, true},
      {u"Stra\xDF"
       u"e",
       u"stra??e", false, false},
      {u"Stra\xDF"
       u"e\x20AC",
       u"stra?e?", false, true},
      {u"STRASSE", u"stra??e", false, true},
      {u"\xFB01n", u"?n", true, true},
      {u"\xFB01n", u"f?n", false, false},
      {u"\xFB01n", u"FI?", false, true},
      {u"\xFB03", u"?", true, true},  // folds to three
      {u"\x130", u"?", true, true},
      {u"\x149", u"?", true, true},
      {u"\x1F0", u"?", true, true},
  };
  expectMatches(cases);
}

TEST(Wildcard, FoldsLongLatin1Texts) {
  const std::string text = std::string(1000, 'A') + "\xC9";
  EXPECT_TRUE(wildcardMatch(TextSpan::latin1(text), u"*a\xE9", true));
  EXPECT_FALSE(wildcardMatch(TextSpan::latin1(text), u"*a\xE9", false));
  EXPECT_FALSE(wildcardMatch(TextSpan::latin1(text), u"*b\xE9", true));
}

TEST(Wildcard, LatinFoldingAgreesWithFullFolding) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    const std::u16string folded = caseFold(TextSpan::latin1(text));
    std::u16string pattern;
    for (const char16_t unit : folded) pattern += {u'\\', unit};
    EXPECT_TRUE(wildcardMatch(TextSpan::latin1(text), pattern, true)) << byte;
    for (int other = 0; other < 256; ++other) {
      const std::u16string literal = {u'\\', static_cast<char16_t>(other)};
      const std::string otherText(1, static_cast<char>(other));
      EXPECT_EQ(wildcardMatch(TextSpan::latin1(text), literal, true),
                caseFold(TextSpan::latin1(otherText)) == folded)
          << byte << ' ' << other;
    }
  }
}

// The definition, by recursion over code points.
bool slowMatch(const std::u32string& text, std::size_t t, const std::u32string& pattern,
               std::size_t p) {
  if (p == pattern.size()) return t == text.size();
  if (pattern[p] == U'*') {
    return slowMatch(text, t, pattern, p + 1) ||
           (t < text.size() && slowMatch(text, t + 1, pattern, p));
  }
  if (t == text.size()) return false;
  if (pattern[p] == U'?') return slowMatch(text, t + 1, pattern, p + 1);
  if (pattern[p] == U'\\' && p + 1 < pattern.size()) ++p;
  return text[t] == pattern[p] && slowMatch(text, t + 1, pattern, p + 1);
}

// The same over a folded text, of which `?` takes what one character became.
struct FoldedUnit {
  char32_t codePoint;
  bool startsCharacter;
};

bool slowFoldedMatch(const std::vector<FoldedUnit>& text, std::size_t t,
                     const std::u32string& pattern, std::size_t p) {
  if (p == pattern.size()) return t == text.size();
  if (pattern[p] == U'*') {
    return slowFoldedMatch(text, t, pattern, p + 1) ||
           (t < text.size() && slowFoldedMatch(text, t + 1, pattern, p));
  }
  if (t == text.size()) return false;
  if (pattern[p] == U'?') {
    if (!text[t].startsCharacter) return false;
    do {
      ++t;
    } while (t < text.size() && !text[t].startsCharacter);
    return slowFoldedMatch(text, t, pattern, p + 1);
  }
  if (pattern[p] == U'\\' && p + 1 < pattern.size()) ++p;
  return text[t].codePoint == pattern[p] && slowFoldedMatch(text, t + 1, pattern, p + 1);
}

std::vector<FoldedUnit> foldedUnitsOf(const std::u16string& text) {
  std::vector<FoldedUnit> units;
  for (const char32_t c : TextSpan(text).codePoints()) {
    const FoldedCodePoint folded = foldCodePoint(c);
    for (int i = 0; i < folded.count; ++i) units.push_back({folded.points[i], i == 0});
  }
  return units;
}

std::u32string codePointsOf(const std::u16string& text) {
  std::u32string points;
  for (const char32_t c : TextSpan(text).codePoints()) points.push_back(c);
  return points;
}

std::u16string randomFrom(std::mt19937& random, const std::u16string& units, unsigned longest) {
  std::u16string text;
  const auto length = random() % (longest + 1);
  for (unsigned i = 0; i < length; ++i) text.push_back(units[random() % units.size()]);
  return text;
}

TEST(Wildcard, AgreesWithTheRecursiveDefinition) {
  std::mt19937 random(4);
  int matched = 0;
  for (int round = 0; round < 200000; ++round) {
    const bool wide = random() % 3 == 0;
    const std::u16string letters = wide                ? u"asS\xD83D\xDE00\xDF\xFB00"
                                   : random() % 2 == 0 ? u"aB"
                                                       : u"sS\xDF";
    const std::u16string text = randomFrom(random, letters + (wide ? u"" : u"*\\"), 8);
    const std::u16string pattern = randomFrom(random, letters + u"**?\\", 6);
    const bool expected = slowMatch(codePointsOf(text), 0, codePointsOf(pattern), 0);
    matched += expected;
    ASSERT_EQ(wildcardMatch(text, pattern, false), expected)
        << testing::PrintToString(text) << testing::PrintToString(pattern);
    const bool folded = slowFoldedMatch(foldedUnitsOf(text), 0, codePointsOf(caseFold(pattern)), 0);
    ASSERT_EQ(wildcardMatch(text, pattern, true), folded)
        << testing::PrintToString(text) << testing::PrintToString(pattern);
    ASSERT_TRUE(folded || !expected) << "what matches exactly matches ignoring case";
    if (!fitsLatin1(text)) continue;
    const std::string narrow = latin1Of(text);
    ASSERT_EQ(wildcardMatch(TextSpan::latin1(narrow), pattern, false), expected);
    ASSERT_EQ(wildcardMatch(TextSpan::latin1(narrow), pattern, true), folded);
  }
  EXPECT_GT(matched, 10000);
}

TEST(Wildcard, ManyStarsTakeNoExponentialTime) {
  const std::string text(5000, 'a');
  std::u16string pattern;
  for (int i = 0; i < 200; ++i) pattern += u"*a?";
  pattern += u"b";
  const double start = processorTime();
  EXPECT_FALSE(wildcardMatch(TextSpan::latin1(text), pattern, false));
  EXPECT_FALSE(wildcardMatch(TextSpan::latin1(text), pattern, true));
  EXPECT_LT(processorTime() - start, 5.0);
}

TEST(Wildcard, OnePatternMatchesManyTexts) {
  const WildcardPattern pattern(u"J*", false);
  EXPECT_TRUE(pattern.matches(TextSpan::latin1("Jim")));
  EXPECT_FALSE(pattern.matches(TextSpan::latin1("Tim")));
  EXPECT_TRUE(pattern.matches(u"J\x20AC"));
  EXPECT_FALSE(pattern.matches(TextSpan()));
  const WildcardPattern copy = pattern;
  EXPECT_TRUE(copy.matches(u"Jo"));
}

}  // namespace
}  // namespace qx::detail

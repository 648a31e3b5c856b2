#include "frame/unicode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "frame/casing_context.h"
#include "tests/frame/storage_forms.h"

namespace qx::detail {
namespace {

using Mapping = std::u16string (*)(TextSpan);

struct MappingCase {
  std::u16string text;
  std::u16string mapped;
};

// Both storage forms must map alike.
void expectMappings(Mapping mapping, const std::vector<MappingCase>& cases) {
  for (const MappingCase& c : cases) {
    EXPECT_EQ(mapping(c.text), c.mapped) << testing::PrintToString(c.text);
    if (!fitsLatin1(c.text)) continue;
    const std::string bytes = latin1Of(c.text);
    EXPECT_EQ(mapping(TextSpan::latin1(bytes)), c.mapped) << bytes;
  }
}

TEST(CaseFold, FoldsFully) {
  expectMappings(caseFold, {
                               {u"", u""},
                               {u"Hello, WORLD 09[]@`{", u"hello, world 09[]@`{"},
                               {u"Stra\xDF"
                                u"e",
                                u"strasse"},
                               {u"\x1E9E", u"ss"},
                               {u"\xC0\xD6\xD7\xD8\xDE\xE0\xFF", u"\xE0\xF6\xD7\xF8\xFE\xE0\xFF"},
                               {u"\xB5", u"\x3BC"},
                               {u"\x130", u"i\x307"},
                               {u"\x131", u"\x131"},
                               {u"\x3A3\x3C3\x3C2", u"\x3C3\x3C3\x3C3"},
                               {u"\xFB03", u"ffi"},
                               {u"\x1F80", u"\x1F00\x3B9"},
                               {u"\x13A0\xAB70", u"\x13A0\x13A0"},
                               {u"\xD801\xDC00", u"\xD801\xDC28"},
                               {u"\x212A", u"k"},
                               {u"A\xD800Z\xDC00", u"a\xD800z\xDC00"},
                           });
}

TEST(Lowercase, AppliesFullMappings) {
  expectMappings(lowercase, {
                                {u"", u""},
                                {u"ABC xyz 1", u"abc xyz 1"},
                                {u"\xC9\xD7\xDE\xDF", u"\xE9\xD7\xFE\xDF"},
                                {u"\x130X", u"i\x307x"},
                                {u"\x1E9E", u"\xDF"},
                                {u"\x1F88", u"\x1F80"},
                                {u"\x1C4\x1C5", u"\x1C6\x1C6"},
                                {u"\xD801\xDC00", u"\xD801\xDC28"},
                                {u"\xD800"
                                 u"A",
                                 u"\xD800"
                                 u"a"},
                            });
}

TEST(Lowercase, EndsWordsWithTheFinalSigma) {
  expectMappings(lowercase,
                 {
                     {u"\x3A3", u"\x3C3"},        // alone
                     {u"A\x3A3", u"a\x3C2"},      // ends a word
                     {u"A\x3A3 B", u"a\x3C2 b"},  // ends one of two words
                     {u"A\x3A3"
                      u"B",
                      u"a\x3C3"
                      u"b"},  // inside
                     {u"\x3A3"
                      u"A",
                      u"\x3C3"
                      u"a"},                            // starts a word
                     {u"A\x3A3\x3A3", u"a\x3C3\x3C2"},  // two: the last ends
                     {u"A.\x3A3", u"a.\x3C2"},          // ignorable before
                     {u"A\x3A3.B", u"a\x3C3.b"},        // ignorable, then cased
                     {u"A\x3A3'", u"a\x3C2'"},          // ignorable, then the end
                     {u"A\x3A3' 1", u"a\x3C2' 1"},
                     {u"1\x3A3", u"1\x3C3"},            // nothing cased before
                     {u"A1\x3A3", u"a1\x3C3"},          // a digit in between
                     {u"A\x301\x3A3", u"a\x301\x3C2"},  // a mark in between
                     {u"A\x3A3\x301"
                      u"B",
                      u"a\x3C3\x301"
                      u"b"},
                     {u"\x2B0\x3A3", u"\x2B0\x3C2"},  // cased and ignorable
                     {u"A\x3A3\x2B0", u"a\x3C3\x2B0"},
                     {u"\xD835\xDC00\x3A3", u"\xD835\xDC00\x3C2"},  // cased beyond the plane
                     {u"A\xD800\x3A3", u"a\xD800\x3C3"},            // a lone surrogate is neither
                     {u"A\x3A3\xDC00", u"a\x3C2\xDC00"},
                 });
}

TEST(Uppercase, AppliesFullMappings) {
  expectMappings(uppercase, {
                                {u"", u""},
                                {u"abc XYZ 1{", u"ABC XYZ 1{"},
                                {u"stra\xDF"
                                 u"e",
                                 u"STRASSE"},
                                {u"\xE9\xF7\xFE", u"\xC9\xF7\xDE"},
                                {u"\xFF\xB5", u"\x178\x39C"},
                                {u"\x149", u"\x2BCN"},
                                {u"\x1F0", u"J\x30C"},
                                {u"\x390\x3B0", u"\x399\x308\x301\x3A5\x308\x301"},
                                {u"\x587", u"\x535\x552"},
                                {u"\xFB00\xFB03\xFB06\xFB17", u"FFFFIST\x544\x53D"},
                                {u"\x1F80\x1F88\x1FB7\x1FF7",
                                 u"\x1F08\x399\x1F08\x399\x391\x342\x399\x3A9\x342\x399"},
                                {u"\x1E9E", u"\x1E9E"},
                                {u"i\x131", u"II"},
                                {u"\x3C3\x3C2", u"\x3A3\x3A3"},
                                {u"\x10D0", u"\x1C90"},
                                {u"\xD801\xDC28", u"\xD801\xDC00"},
                                {u"a\xDC00z\xD800", u"A\xDC00Z\xD800"},
                            });
}

TEST(Capitalized, TitlecasesTheFirstLetterOfEachWord) {
  expectMappings(capitalized, {
                                  {u"", u""},
                                  {u"hello wORLD", u"Hello World"},
                                  {u"  two\tthree\nfour\x85"
                                   u"five\xA0six",
                                   u"  Two\tThree\nFour\x85"
                                   u"Five\xA0Six"},
                                  {u"foo-bar it's", u"Foo-bar It's"},
                                  {u"(foo \"BAR", u"(Foo \"Bar"},
                                  {u"3rd 4TH", u"3rd 4th"},
                                  {u"\xDFX", u"Ssx"},
                                  {u"\x1C6X", u"\x1C5x"},
                                  {u"\xFB01N", u"Fin"},
                                  {u"\x1F80\x391", u"\x1F88\x3B1"},
                                  {u"\x1FB7", u"\x391\x342\x345"},
                                  {u"\x39F\x394\x3A5\x3A3\x3A3\x395\x3A5\x3A3 \x3A3",
                                   u"\x39F\x3B4\x3C5\x3C3\x3C3\x3B5\x3C5\x3C2 \x3A3"},
                                  {u"\x10D0", u"\x10D0"},
                                  {u"\x24D0\x24B7", u"\x24B6\x24D1"},
                                  {u"\xD800"
                                   u"AB",
                                   u"\xD800"
                                   u"Ab"},
                              });
}

TEST(Mappings, KeepLoneSurrogatesEverywhere) {
  for (char32_t unit = 0xD800; unit < 0xE000; unit += 0x3F) {
    const std::u16string text = {u'x', static_cast<char16_t>(unit), u'1'};
    for (const Mapping mapping : {caseFold, lowercase}) EXPECT_EQ(mapping(text), text);
    EXPECT_EQ(uppercase(text)[1], unit);
    EXPECT_EQ(capitalized(text)[1], unit);
    for (const NormalForm form : {NormalForm::c, NormalForm::d, NormalForm::kc, NormalForm::kd}) {
      EXPECT_EQ(normalize(text, form), text);
    }
  }
}

struct NormalCase {
  std::u16string text;
  std::u16string c, d, kc, kd;
};

TEST(Normalize, GivesTheFourForms) {
  const NormalCase cases[] = {
      {u"", u"", u"", u"", u""},
      {u"plain ascii", u"plain ascii", u"plain ascii", u"plain ascii", u"plain ascii"},
      {u"\xE9", u"\xE9", u"e\x301", u"\xE9", u"e\x301"},
      {u"e\x301", u"\xE9", u"e\x301", u"\xE9", u"e\x301"},
      {u"\x212B", u"\xC5", u"A\x30A", u"\xC5", u"A\x30A"},
      {u"\xFB01", u"\xFB01", u"\xFB01", u"fi", u"fi"},
      {u"\xBD\xA0\xB2", u"\xBD\xA0\xB2", u"\xBD\xA0\xB2",
       u"1\x2044"
       u"2 2",
       u"1\x2044"
       u"2 2"},
      {u"\x1E9B\x323", u"\x1E9B\x323", u"\x17F\x323\x307", u"\x1E69", u"s\x323\x307"},
      {u"q\x307\x323", u"q\x323\x307", u"q\x323\x307", u"q\x323\x307", u"q\x323\x307"},
      {u"a\x301\x300", u"\xE1\x300", u"a\x301\x300", u"\xE1\x300", u"a\x301\x300"},
      {u"\xD4DB", u"\xD4DB", u"\x1111\x1171\x11B6", u"\xD4DB", u"\x1111\x1171\x11B6"},
      {u"\x1100\x1161", u"\xAC00", u"\x1100\x1161", u"\xAC00", u"\x1100\x1161"},
      {u"\x958", u"\x915\x93C", u"\x915\x93C", u"\x915\x93C", u"\x915\x93C"},  // excluded
      {u"\x344", u"\x308\x301", u"\x308\x301", u"\x308\x301", u"\x308\x301"},
      {u"\xD834\xDD5E", u"\xD834\xDD57\xD834\xDD65", u"\xD834\xDD57\xD834\xDD65",
       u"\xD834\xDD57\xD834\xDD65", u"\xD834\xDD57\xD834\xDD65"},
      {u"\xD804\xDC99\xD804\xDCBA", u"\xD804\xDC9A", u"\xD804\xDC99\xD804\xDCBA", u"\xD804\xDC9A",
       u"\xD804\xDC99\xD804\xDCBA"},
  };
  for (const NormalCase& c : cases) {
    const std::string name = testing::PrintToString(c.text);
    EXPECT_EQ(normalize(c.text, NormalForm::c), c.c) << name;
    EXPECT_EQ(normalize(c.text, NormalForm::d), c.d) << name;
    EXPECT_EQ(normalize(c.text, NormalForm::kc), c.kc) << name;
    EXPECT_EQ(normalize(c.text, NormalForm::kd), c.kd) << name;
    if (!fitsLatin1(c.text)) continue;
    const std::string bytes = latin1Of(c.text);
    EXPECT_EQ(normalize(TextSpan::latin1(bytes), NormalForm::d), c.d) << name;
    EXPECT_EQ(normalize(TextSpan::latin1(bytes), NormalForm::c), c.c) << name;
    EXPECT_EQ(normalize(TextSpan::latin1(bytes), NormalForm::kc), c.kc) << name;
  }
}

TEST(Normalize, ExpandsTheLongestDecomposition) {
  EXPECT_EQ(normalize(u"\xFDFA", NormalForm::kc).size(), 18u);
}

TEST(Normalize, HangulSyllablesFollowTheArithmetic) {
  for (char32_t syllable = 0xAC00; syllable <= 0xD7A3; ++syllable) {
    const char32_t index = syllable - 0xAC00;
    std::u16string jamo = {static_cast<char16_t>(0x1100 + index / 588),
                           static_cast<char16_t>(0x1161 + index % 588 / 28)};
    if (index % 28 != 0) jamo.push_back(static_cast<char16_t>(0x11A7 + index % 28));
    const std::u16string composed(1, static_cast<char16_t>(syllable));
    ASSERT_EQ(normalize(composed, NormalForm::d), jamo);
    ASSERT_EQ(normalize(jamo, NormalForm::c), composed);
  }
}

TEST(Normalize, OrdersLongRunsOfMarksQuicklyAndStably) {
  // 232 acts before 230 here, so that every mark moves; the two of one class keep their order.
  constexpr std::size_t kPairs = 200000;
  std::u16string text = u"q";
  std::u16string expected = u"q";
  for (std::size_t i = 0; i < kPairs; ++i) text += u"\x315\x300\x302";
  for (std::size_t i = 0; i < kPairs; ++i) expected += u"\x300\x302";
  expected.append(kPairs, u'\x315');
  EXPECT_EQ(normalize(text, NormalForm::d), expected);
  EXPECT_EQ(normalize(text, NormalForm::c), expected);
}

std::u16string randomText(std::mt19937& random) {
  constexpr char32_t kBases[] = {'A',    'a',    's',    'z',    0xB5,   0xC0,    0xDF,    0x130,
                                 0x300,  0x323,  0x345,  0x3A3,  0x3B1,  0x1100,  0x1161,  0x1E9E,
                                 0x1F80, 0xAC00, 0xD83D, 0xDE00, 0xFB00, 0x10400, 0x1D15E, '1'};
  std::u16string text;
  const auto length = random() % 8;
  for (unsigned i = 0; i < length; ++i) {
    appendCodePoint(text,
                    kBases[random() % std::size(kBases)] + static_cast<char32_t>(random() % 3));
  }
  return text;
}

TEST(Normalize, FormsAgreeOnRandomTexts) {
  std::mt19937 random(2);
  for (int round = 0; round < 20000; ++round) {
    const std::u16string text = randomText(random);
    const std::u16string c = normalize(text, NormalForm::c);
    const std::u16string d = normalize(text, NormalForm::d);
    ASSERT_EQ(normalize(c, NormalForm::c), c);
    ASSERT_EQ(normalize(d, NormalForm::d), d);
    ASSERT_EQ(normalize(c, NormalForm::d), d);
    ASSERT_EQ(normalize(d, NormalForm::c), c);
    const std::u16string kd = normalize(text, NormalForm::kd);
    ASSERT_EQ(normalize(c, NormalForm::kd), kd);
    ASSERT_EQ(normalize(kd, NormalForm::kc), normalize(text, NormalForm::kc));
  }
}

int sign(int value) { return (value > 0) - (value < 0); }

TEST(CompareUnits, OrdersByCodeUnitInAnyForm) {
  const std::vector<std::u16string> ordered = {
      u"",       u"A",          u"Z",         u"a",
      u"ab",     u"abcdefghi",  u"abcdefghj", u"b",
      u"\x7F",   u"\x80",       u"\xFF",      u"\xFFz",
      u"\x100",  u"\x100\x100", u"\x20AC",    u"\xD83D\xDE00",
      u"\xDE00", u"\xFFFF"};
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    for (std::size_t j = 0; j < ordered.size(); ++j) {
      const int expected = sign(static_cast<int>(i) - static_cast<int>(j));
      EXPECT_EQ(compareUnits(ordered[i], ordered[j]), expected) << i << ' ' << j;
      EXPECT_EQ(equalUnits(ordered[i], ordered[j]), expected == 0) << i << ' ' << j;
      if (!fitsLatin1(ordered[i])) continue;
      const std::string left = latin1Of(ordered[i]);
      EXPECT_EQ(compareUnits(TextSpan::latin1(left), ordered[j]), expected) << i << ' ' << j;
      EXPECT_EQ(compareUnits(ordered[j], TextSpan::latin1(left)), -expected) << i << ' ' << j;
      EXPECT_EQ(equalUnits(TextSpan::latin1(left), ordered[j]), expected == 0) << i << ' ' << j;
      if (!fitsLatin1(ordered[j])) continue;
      const std::string right = latin1Of(ordered[j]);
      EXPECT_EQ(compareUnits(TextSpan::latin1(left), TextSpan::latin1(right)), expected);
      EXPECT_EQ(equalUnits(TextSpan::latin1(left), TextSpan::latin1(right)), expected == 0);
    }
  }
}

TEST(CaseInsensitiveCompare, ComparesFoldedTexts) {
  const struct {
    std::u16string left;
    std::u16string right;
    int order;
  } cases[] = {
      {u"", u"", 0},
      {u"", u"a", -1},
      {u"Hello", u"hELLO", 0},
      {u"hello", u"HELP", -1},
      {u"abc", u"AB", 1},
      {u"a", u"B", -1},
      {u"_", u"A", -1},  // between upper and lower case: the folded letter counts
      {u"Stra\xDF"
       u"e",
       u"STRASSE", 0},
      {u"\xDF", u"s", 1},
      {u"s\xDF", u"\xDFs", 0},
      {u"\xB5", u"\x39C", 0},
      {u"\xE9", u"\xC9", 0},
      {u"\xE9", u"z", 1},
      {u"\x3C2", u"\x3A3", 0},
      {u"\xFB01X", u"fix", 0},
      {u"\x130", u"i\x307", 0},
      {u"\x130", u"i", 1},
      {u"\xD801\xDC00", u"\xD801\xDC28", 0},
      {u"\xD801", u"\xD801\xDC28", -1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(caseInsensitiveCompare(c.left, c.right), c.order) << testing::PrintToString(c.left);
    EXPECT_EQ(caseInsensitiveCompare(c.right, c.left), -c.order) << testing::PrintToString(c.left);
    if (!fitsLatin1(c.left)) continue;
    const std::string narrow = latin1Of(c.left);
    EXPECT_EQ(caseInsensitiveCompare(TextSpan::latin1(narrow), c.right), c.order) << narrow;
    EXPECT_EQ(caseInsensitiveCompare(c.right, TextSpan::latin1(narrow)), -c.order) << narrow;
  }
}

TEST(CaseInsensitiveCompare, AgreesWithComparingWholeFoldings) {
  std::mt19937 random(3);
  for (int round = 0; round < 50000; ++round) {
    const std::u16string left = randomText(random);
    const std::u16string right = random() % 2 == 0 ? uppercase(left) : randomText(random);
    ASSERT_EQ(caseInsensitiveCompare(left, right), compareUnits(caseFold(left), caseFold(right)));
  }
}

TEST(CharacterProperties, FollowTheCategories) {
  struct Row {
    char32_t codePoint;
    std::string classes;  // w n l d a p U L
  };
  const Row rows[] = {
      {U' ', "w"},      {U'\t', "w"},     {U'\n', "n"},    {0x0B, "n"},    {0x0C, "n"},
      {U'\r', "n"},     {0x1C, ""},       {0x85, "n"},     {0xA0, "w"},    {0x1680, "w"},
      {0x2003, "w"},    {0x200B, ""},     {0x2028, "n"},   {0x2029, "n"},  {0x202F, "w"},
      {0x3000, "w"},    {0xFEFF, ""},     {U'A', "laU"},   {U'z', "laL"},  {U'0', "da"},
      {U'_', "p"},      {U'$', ""},       {U'+', ""},      {U'!', "p"},    {U'\\', "p"},
      {0xAA, "la"},     {0xB2, "a"},      {0xBD, "a"},     {0xAB, "p"},    {0xD7, ""},
      {0xDF, "laL"},    {0x1C5, "laU"},   {0x2B0, "la"},   {0x301, "la"},  {0x903, "la"},
      {0x20DD, "la"},   {0x660, "da"},    {0x2160, "a"},   {0x4E00, "la"}, {0x3007, "a"},
      {0x203F, "p"},    {0x10400, "laU"}, {0x1D7CE, "da"}, {0x1F600, ""},  {0xD800, ""},
      {0xDFFF, ""},     {0xE000, ""},     {0x378, ""},     {0x10FFFF, ""}, {0x110000, ""},
      {0xFFFFFFFF, ""},
  };
  for (const Row& row : rows) {
    std::string classes;
    if (isWhitespace(row.codePoint)) classes += 'w';
    if (isNewline(row.codePoint)) classes += 'n';
    if (isLetter(row.codePoint)) classes += 'l';
    if (isDecimalDigit(row.codePoint)) classes += 'd';
    if (isAlphanumeric(row.codePoint)) classes += 'a';
    if (isPunctuation(row.codePoint)) classes += 'p';
    if (isUppercase(row.codePoint)) classes += 'U';
    if (isLowercase(row.codePoint)) classes += 'L';
    EXPECT_EQ(classes, row.classes) << std::hex << static_cast<std::uint32_t>(row.codePoint);
  }
}

TEST(CasingContext, KnowsCasedAndIgnorableCharacters) {
  for (const char32_t c :
       {U'a', U'Z', char32_t{0xAA}, char32_t{0x2B0}, char32_t{0x345}, char32_t{0x2160},
        char32_t{0x24D0}, char32_t{0x1F149}, char32_t{0x1C5}}) {
    EXPECT_TRUE(isCased(c)) << std::hex << static_cast<std::uint32_t>(c);
  }
  for (const char32_t c : {U'1', U' ', char32_t{0x301}, char32_t{0x4E00}, char32_t{0x2C2},
                           char32_t{0x1F14A}, char32_t{0x110000}}) {
    EXPECT_FALSE(isCased(c)) << std::hex << static_cast<std::uint32_t>(c);
  }
  for (const char32_t c : {U'\'', U'.', U':', U'^', char32_t{0xAD}, char32_t{0xB7}, char32_t{0x301},
                           char32_t{0x2019}, char32_t{0x2B0}, char32_t{0xFF1A}}) {
    EXPECT_TRUE(isCaseIgnorable(c)) << std::hex << static_cast<std::uint32_t>(c);
  }
  for (const char32_t c : {U'a', U' ', U'1', U',', U'-', char32_t{0x903}}) {
    EXPECT_FALSE(isCaseIgnorable(c)) << std::hex << static_cast<std::uint32_t>(c);
  }
}

}  // namespace
}  // namespace qx::detail

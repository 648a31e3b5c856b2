#include "frame/utf.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "frame/text_span.h"

namespace qx::detail {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

struct Utf8Case {
  const char* name;
  std::string utf8;
  std::u16string units;
  bool ascii;
  bool wide;
  bool valid;
};

const std::vector<Utf8Case>& utf8Cases() {
  static const std::vector<Utf8Case> cases = {
      {"empty", "", u"", true, false, true},
      {"ascii", "abc", u"abc", true, false, true},
      {"ascii of several words", "0123456789abcdefXYZ", u"0123456789abcdefXYZ", true, false, true},
      {"embedded nul", "a\0b"s, u"a\0b"s, true, false, true},
      {"delete", "\x7F", u"\x7F", true, false, true},
      {"latin1 first", "\xC2\x80", u"\x80", false, false, true},
      {"latin1 last", "\xC3\xBF", u"\xFF", false, false, true},
      {"first wide", "\xC4\x80", u"\x100", false, true, true},
      {"latin1 after ascii word", "12345678\xC3\xA9z", u"12345678\xE9z", false, false, true},
      {"two byte last", "\xDF\xBF", u"\x7FF", false, true, true},
      {"three byte first", "\xE0\xA0\x80", u"\x800", false, true, true},
      {"below surrogates", "\xED\x9F\xBF", u"\xD7FF", false, true, true},
      {"above surrogates", "\xEE\x80\x80", u"\xE000", false, true, true},
      {"three byte last", "\xEF\xBF\xBF", u"\xFFFF", false, true, true},
      {"four byte first", "\xF0\x90\x80\x80", u"\xD800\xDC00", false, true, true},
      {"four byte last", "\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF", false, true, true},
      {"real replacement character", "\xEF\xBF\xBD", u"\xFFFD", false, true, true},
      // Ill-formed: one replacement for each maximal subpart.
      {"lone continuation", "a\x80z", u"a\xFFFDz", false, true, false},
      {"two continuations", "\x80\xBF", u"\xFFFD\xFFFD", false, true, false},
      {"overlong two bytes", "\xC0\x80", u"\xFFFD\xFFFD", false, true, false},
      {"overlong C1", "\xC1\xBF", u"\xFFFD\xFFFD", false, true, false},
      {"overlong three bytes", "\xE0\x80\x80", u"\xFFFD\xFFFD\xFFFD", false, true, false},
      {"overlong four bytes", "\xF0\x80\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD", false, true, false},
      {"encoded surrogate", "\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD", false, true, false},
      {"encoded surrogate pair", "\xED\xA0\x80\xED\xB0\x80",
       u"\xFFFD\xFFFD\xFFFD\xFFFD\xFFFD\xFFFD", false, true, false},
      {"above the range", "\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD", false, true, false},
      {"no lead byte", "\xF5\x80\xFF", u"\xFFFD\xFFFD\xFFFD", false, true, false},
      {"truncated two", "\xC3", u"\xFFFD", false, true, false},
      {"truncated three", "\xE2\x82", u"\xFFFD", false, true, false},
      {"truncated four", "\xF0\x9F\x98", u"\xFFFD", false, true, false},
      {"truncated before ascii", "\xF0\x9F\x98q", u"\xFFFDq", false, true, false},
      {"truncated before a lead", "\xE2\x82\xC3\xA9", u"\xFFFD\xE9", false, true, false},
      {"the example of the standard", "\x61\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63\x80\xBF\x64",
       u"a\xFFFD\xFFFD\xFFFD"
       u"b\xFFFD"
       u"c\xFFFD\xFFFD"
       u"d",
       false, true, false},
  };
  return cases;
}

TEST(Utf8Scan, ClassifiesAndCountsExactly) {
  for (const Utf8Case& c : utf8Cases()) {
    const Utf8Shape shape = scanUtf8(c.utf8);
    EXPECT_EQ(shape.units, c.units.size()) << c.name;
    EXPECT_EQ(shape.ascii, c.ascii) << c.name;
    EXPECT_EQ(shape.wide, c.wide) << c.name;
    EXPECT_EQ(shape.valid, c.valid) << c.name;
    EXPECT_EQ(isValidUtf8(c.utf8), c.valid) << c.name;
  }
}

TEST(Utf8Convert, GivesTheUnits) {
  for (const Utf8Case& c : utf8Cases()) EXPECT_EQ(utf16FromUtf8(c.utf8), c.units) << c.name;
}

TEST(Utf8Convert, FillsLatin1WhereItFits) {
  for (const Utf8Case& c : utf8Cases()) {
    if (c.wide) continue;
    std::vector<unsigned char> bytes(c.units.size());
    utf8ToLatin1(c.utf8, bytes.data());
    EXPECT_EQ(std::u16string(bytes.begin(), bytes.end()), c.units) << c.name;
  }
}

TEST(Utf8Convert, ComesBackTheSame) {
  for (const Utf8Case& c : utf8Cases()) {
    if (!c.valid) continue;
    EXPECT_EQ(toUtf8(c.units), c.utf8) << c.name;
    EXPECT_EQ(utf8Size(c.units), c.utf8.size()) << c.name;
    if (c.wide) continue;
    const std::string latin1(c.units.begin(), c.units.end());
    EXPECT_EQ(toUtf8(TextSpan::latin1(latin1)), c.utf8) << c.name;
    EXPECT_EQ(utf8Size(TextSpan::latin1(latin1)), c.utf8.size()) << c.name;
  }
}

TEST(Utf8Convert, ReplacesLoneSurrogates) {
  const struct {
    std::u16string units;
    std::string utf8;
  } cases[] = {
      {u"\xD800", "\xEF\xBF\xBD"},
      {u"\xDC00", "\xEF\xBF\xBD"},
      {u"a\xD83Dz", "a\xEF\xBF\xBDz"},
      {u"\xDE00\xD83D", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {u"\xD83D\xD83D\xDE00", "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(toUtf8(c.units), c.utf8);
    EXPECT_EQ(utf8Size(c.units), c.utf8.size());
  }
}

TEST(Utf8Convert, AppendsBehindWhatIsThere) {
  std::string out = "x";
  appendUtf8(out, TextSpan());
  appendUtf8(out, TextSpan::latin1("ab"));
  appendUtf8(out, u"\x20AC");
  EXPECT_EQ(out, "xab\xE2\x82\xAC");
}

TEST(Utf8Scan, FindsTheAsciiPrefix) {
  EXPECT_EQ(asciiPrefix(""), 0u);
  EXPECT_EQ(asciiPrefix("0123456789"), 10u);
  for (std::size_t at = 0; at < 20; ++at) {
    std::string text(20, 'a');
    text[at] = '\x80';
    EXPECT_EQ(asciiPrefix(text), at);
  }
}

// The table of well-formed byte sequences, written down row by row.
bool wellFormedAt(const std::string& text, std::size_t at, std::size_t length) {
  const auto in = [&](std::size_t i, int low, int high) {
    const int byte = static_cast<unsigned char>(text[at + i]);
    return byte >= low && byte <= high;
  };
  if (at + length > text.size()) return false;
  switch (length) {
    case 1:
      return in(0, 0, 0x7F);
    case 2:
      return in(0, 0xC2, 0xDF) && in(1, 0x80, 0xBF);
    case 3:
      return in(2, 0x80, 0xBF) &&
             ((in(0, 0xE0, 0xE0) && in(1, 0xA0, 0xBF)) ||
              (in(0, 0xE1, 0xEC) && in(1, 0x80, 0xBF)) ||
              (in(0, 0xED, 0xED) && in(1, 0x80, 0x9F)) || (in(0, 0xEE, 0xEF) && in(1, 0x80, 0xBF)));
    default:
      return in(2, 0x80, 0xBF) && in(3, 0x80, 0xBF) &&
             ((in(0, 0xF0, 0xF0) && in(1, 0x90, 0xBF)) ||
              (in(0, 0xF1, 0xF3) && in(1, 0x80, 0xBF)) || (in(0, 0xF4, 0xF4) && in(1, 0x80, 0x8F)));
  }
}

bool wellFormed(const std::string& text) {
  for (std::size_t at = 0; at < text.size();) {
    std::size_t length = 1;
    while (length <= 4 && !wellFormedAt(text, at, length)) ++length;
    if (length > 4) return false;
    at += length;
  }
  return true;
}

TEST(Utf8Scan, AgreesWithTheTableOfWellFormedSequences) {
  // Bytes at the edges of every class, in all sequences of three behind all first ones.
  const std::string bytes =
      "a\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5"
      "\xFF";
  for (const char a : bytes) {
    for (const char b : bytes) {
      for (const char c : bytes) {
        for (const char d : bytes) {
          const std::string text = {a, b, c, d};
          ASSERT_EQ(isValidUtf8(text), wellFormed(text));
          const Utf8Shape shape = scanUtf8(text);
          ASSERT_EQ(shape.valid, wellFormed(text));
          ASSERT_EQ(utf16FromUtf8(text).find(u'\xFFFD') == std::u16string::npos, shape.valid);
        }
      }
    }
  }
}

TEST(Utf8Convert, RandomTextsRoundTrip) {
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round) {
    std::u16string units;
    const auto length = random() % 40;
    for (unsigned i = 0; i < length; ++i) {
      constexpr char32_t kLimits[] = {0x80, 0x100, 0x10000, 0x110000};
      const auto codePoint = static_cast<char32_t>(random() % kLimits[random() % 4]);
      if (!isSurrogate(codePoint)) appendCodePoint(units, codePoint);
    }
    ASSERT_EQ(utf16FromUtf8(toUtf8(units)), units);
  }
}

TEST(TextSpan, ReadsBothForms) {
  const TextSpan narrow = TextSpan::latin1("a\xE9");
  const TextSpan wide = u"a\x20AC";
  EXPECT_FALSE(narrow.wide);
  EXPECT_TRUE(wide.wide);
  EXPECT_EQ(narrow[1], u'\xE9');
  EXPECT_EQ(wide[1], u'\x20AC');
  EXPECT_EQ(narrow.toUtf16(), u"a\xE9");
  EXPECT_EQ(wide.toUtf16(), u"a\x20AC");
  EXPECT_TRUE(TextSpan().empty());
  EXPECT_EQ(TextSpan().toUtf16(), u"");
}

TEST(TextSpan, SubstringsAreCutToTheText) {
  const TextSpan wide = u"abc";
  EXPECT_EQ(wide.substr(1).toUtf16(), u"bc");
  EXPECT_EQ(wide.substr(1, 1).toUtf16(), u"b");
  EXPECT_EQ(wide.substr(3, 5).toUtf16(), u"");
  EXPECT_EQ(wide.substr(9).toUtf16(), u"");
  EXPECT_EQ(TextSpan::latin1("abc").substr(2, 9).toUtf16(), u"c");
}

TEST(TextSpan, IteratesCodePointsInBothDirections) {
  const std::u16string units = u"a\xD83D\xDE00\xDE00z\xD83D\xD83D\xDE00\xD83D";
  const std::u32string expected = {U'a', 0x1F600, 0xDE00, U'z', 0xD83D, 0x1F600, 0xD83D};
  std::u32string forward;
  for (const char32_t c : TextSpan(units).codePoints()) forward.push_back(c);
  EXPECT_EQ(forward, expected);
  std::u32string backward;
  for (std::size_t at = units.size(); at > 0;) backward.push_back(TextSpan(units).previous(at));
  EXPECT_EQ(std::u32string(backward.rbegin(), backward.rend()), expected);
  std::u32string narrow;
  for (const char32_t c : TextSpan::latin1("a\xFF").codePoints()) narrow.push_back(c);
  EXPECT_EQ(narrow, U"a\xFF");
}

TEST(TextSpan, IteratorTellsThePosition) {
  const TextSpan text = u"\xD83D\xDE00z";
  auto at = text.codePoints().begin();
  EXPECT_EQ(at.position(), 0u);
  ++at;
  EXPECT_EQ(at.position(), 2u);
  EXPECT_EQ(*at, U'z');
}

}  // namespace
}  // namespace qx::detail

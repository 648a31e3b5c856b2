#include "platform/text_finder.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "frame/text_span.h"
#include "platform/member_finder.h"
#include "tests/frame/storage_forms.h"

namespace qx::detail {
namespace {

std::vector<std::size_t> places(TextSpan text, TextSpan part, std::size_t step) {
  std::vector<std::size_t> found;
  TextFinder finder(text, part);
  for (std::size_t at = finder.find(0); at != kNotFound; at = finder.find(at + step))
    found.push_back(at);
  return found;
}

std::vector<std::size_t> placesPlainly(const std::u16string& text, const std::u16string& part,
                                       std::size_t step) {
  std::vector<std::size_t> found;
  if (part.empty()) return found;
  for (std::size_t at = text.find(part); at != std::u16string::npos;
       at = text.find(part, at + step))
    found.push_back(at);
  return found;
}

std::u16string randomText(std::mt19937& random, const std::u16string& units, std::size_t longest) {
  std::u16string text(random() % longest, u' ');
  for (char16_t& unit : text) unit = units[random() % units.size()];
  return text;
}

TEST(TextFinder, FindsWhatAPlainSearchFindsInEveryForm) {
  std::mt19937 random(5);
  for (int i = 0; i < 20000; ++i) {
    const std::u16string units = i % 2 == 0 ? u"ab" : u"aé\u2603\xD83D";
    const auto text = randomText(random, units, 90);
    const auto part = randomText(random, units, 2 + random() % 6);
    for (const std::size_t step : {std::size_t{1}, std::max<std::size_t>(part.size(), 1)}) {
      const auto expected = placesPlainly(text, part, step);
      ASSERT_EQ(places(text, part, step), expected);
      if (fitsLatin1(text)) {
        const std::string narrow = latin1Of(text);
        ASSERT_EQ(places(TextSpan::latin1(narrow), part, step), expected);
      }
      if (fitsLatin1(part)) {
        const std::string narrow = latin1Of(part);
        ASSERT_EQ(places(text, TextSpan::latin1(narrow), step), expected);
      }
    }
  }
}

TEST(TextFinder, FindsOnTheEdgesOfBlocks) {
  for (std::size_t size = 1; size < 70; ++size) {
    for (std::size_t at = 0; at + 3 <= size; ++at) {
      std::u16string text(size, u'x');
      text.replace(at, 3, u"abc");
      ASSERT_EQ(places(text, u"abc", 3), std::vector<std::size_t>{at});
      ASSERT_EQ(places(text, u"b", 1), std::vector<std::size_t>{at + 1});
    }
  }
}

TEST(TextFinder, GoesOnRightlyWhenNearMissesHaveUsedUpItsCredit) {
  std::string text(60000, 'a');
  const std::string part = std::string(500, 'a') + "b" + std::string(499, 'a');
  for (const std::size_t at : {20000U, 20400U, 41000U, 42000U, 59499U}) text[at] = 'b';
  const auto expected = placesPlainly({text.begin(), text.end()}, {part.begin(), part.end()}, 1);
  ASSERT_GE(expected.size(), 2U);
  EXPECT_EQ(places(TextSpan::latin1(text), TextSpan::latin1(part), 1), expected);
  const std::u16string wideText(text.begin(), text.end());
  EXPECT_EQ(places(wideText, TextSpan::latin1(part), 1), expected);
}

TEST(TextFinder, NothingIsFoundBeyondTheEnd) {
  TextFinder finder(u"abab", u"ab");
  EXPECT_EQ(finder.find(2), 2U);
  EXPECT_EQ(finder.find(3), kNotFound);
  EXPECT_EQ(finder.find(4), kNotFound);
  EXPECT_EQ(finder.find(400), kNotFound);
  EXPECT_EQ(TextFinder(u"ab", u"abc").find(0), kNotFound);
  EXPECT_EQ(TextFinder(u"", u"").find(0), kNotFound);
}

TEST(MemberFinder, FindsWhatAWalkByCharacterFinds) {
  std::mt19937 random(6);
  for (int i = 0; i < 20000; ++i) {
    const std::u16string units = i % 2 == 0 ? u"abcde-é" : u"abcde-é\u2603\u4E00\xD83D\xDE00\xDBFF";
    const auto text = randomText(random, units, 60);
    auto set = CharacterSet::characterSetWithCharactersInString(
        String::fromUtf16(randomText(random, units, 8)));
    if (random() % 4 == 0) set = set->invertedSet();
    const auto check = [&](TextSpan span) {
      const MemberFinder finder(span, *set);
      for (std::size_t from = 0; from <= span.size;) {
        Range expected{kNotFound, 0};
        for (std::size_t at = from; at < span.size;) {
          const std::size_t start = at;
          if (!set->longCharacterIsMember(span.next(at))) continue;
          expected = {start, at - start};
          break;
        }
        ASSERT_EQ(finder.find(from), expected);
        if (expected.location == kNotFound) break;
        from = expected.location + expected.length;
      }
    };
    check(text);
    const std::string narrow = fitsLatin1(text) ? latin1Of(text) : std::string();
    check(TextSpan::latin1(narrow));
  }
}

}  // namespace
}  // namespace qx::detail

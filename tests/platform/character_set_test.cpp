#include "platform/character_set.h"

#include <gtest/gtest.h>

#include <random>

#include <QXFoundation/character_set.h>
#include <QXFoundation/class.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/selector.h>

#include "frame/unicode.h"

namespace {

using qx::CharacterSet;
using qx::Ref;
using qx::String;

constexpr char32_t kBeyond = 0x110000;

TEST(CharacterSet, HoldsTheCharactersOfAString) {
  const auto set =
      CharacterSet::characterSetWithCharactersInString(String::fromUtf16(u"ab\u2014😀\xD800"));
  for (const char32_t c : {U'a', U'b', U'\u2014', U'😀', char32_t{0xD800}})
    EXPECT_TRUE(set->longCharacterIsMember(c));
  // The halves of a pair are no characters of the string.
  for (const char32_t c : {U'c', U'\0', char32_t{0xD83D}, char32_t{0xDE00}, kBeyond})
    EXPECT_FALSE(set->longCharacterIsMember(c));
  EXPECT_TRUE(set->characterIsMember(u'a'));
  EXPECT_THROW(CharacterSet::characterSetWithCharactersInString(nullptr),
               qx::InvalidArgumentException);
}

TEST(CharacterSet, RangesAreOfCodePoints) {
  const auto set = CharacterSet::characterSetWithRange({'a', 3});
  EXPECT_TRUE(set->longCharacterIsMember(U'c'));
  EXPECT_FALSE(set->longCharacterIsMember(U'd'));
  EXPECT_FALSE(CharacterSet::characterSetWithRange({5, 0})->longCharacterIsMember(5));
  const auto all = CharacterSet::characterSetWithRange({0, 0x110000});
  EXPECT_TRUE(all->longCharacterIsMember(0x10FFFF));
  EXPECT_FALSE(all->longCharacterIsMember(kBeyond));
  EXPECT_EQ(all->invertedSet()->isEqual(CharacterSet::init()), true);
  EXPECT_THROW(CharacterSet::characterSetWithRange({0x110000, 1}), qx::InvalidArgumentException);
  EXPECT_THROW(CharacterSet::characterSetWithRange({1, ~std::size_t{0}}),
               qx::InvalidArgumentException);
}

TEST(CharacterSet, NamedSetsFollowTheCategoriesOfUnicode) {
  const std::pair<Ref<CharacterSet>, bool (*)(char32_t) noexcept> named[] = {
      {CharacterSet::whitespaceCharacterSet(), &qx::detail::isWhitespace},
      {CharacterSet::newlineCharacterSet(), &qx::detail::isNewline},
      {CharacterSet::letterCharacterSet(), &qx::detail::isLetter},
      {CharacterSet::uppercaseLetterCharacterSet(), &qx::detail::isUppercase},
      {CharacterSet::lowercaseLetterCharacterSet(), &qx::detail::isLowercase},
      {CharacterSet::decimalDigitCharacterSet(), &qx::detail::isDecimalDigit},
      {CharacterSet::alphanumericCharacterSet(), &qx::detail::isAlphanumeric},
      {CharacterSet::punctuationCharacterSet(), &qx::detail::isPunctuation},
  };
  for (const auto& [set, test] : named) {
    const auto others = set->invertedSet();
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
      ASSERT_EQ(set->longCharacterIsMember(c), test(c)) << std::uint32_t{c};
      ASSERT_NE(others->longCharacterIsMember(c), test(c)) << std::uint32_t{c};
    }
  }
  const auto blank = CharacterSet::whitespaceAndNewlineCharacterSet();
  EXPECT_TRUE(blank->characterIsMember(u' ') && blank->characterIsMember(u'\n'));
  EXPECT_TRUE(blank->isEqual(CharacterSet::newlineCharacterSet()->setByUnitingWithCharacterSet(
      CharacterSet::whitespaceCharacterSet())));
  EXPECT_EQ(CharacterSet::letterCharacterSet().get(), CharacterSet::letterCharacterSet().get());
}

TEST(CharacterSet, UnitesAndInvertsRandomSets) {
  std::mt19937 random(3);
  const auto randomSet = [&] {
    auto set = CharacterSet::init();
    for (auto n = random() % 9; n > 0; --n) {
      const std::size_t first = random() % 3 == 0 ? random() % 0x10FF00 : random() % 0x300;
      set = set->setByUnitingWithCharacterSet(
          CharacterSet::characterSetWithRange({first, random() % 0x60}));
    }
    return set;
  };
  for (int i = 0; i < 300; ++i) {
    const auto a = randomSet();
    const auto b = randomSet();
    const auto both = a->setByUnitingWithCharacterSet(b);
    const auto others = a->invertedSet();
    for (char32_t c = 0; c <= 0x10FFFF;
         c += c < 0x400 ? 1 : 1 + static_cast<char32_t>(random() % 999)) {
      ASSERT_EQ(both->longCharacterIsMember(c),
                a->longCharacterIsMember(c) || b->longCharacterIsMember(c));
      ASSERT_NE(others->longCharacterIsMember(c), a->longCharacterIsMember(c));
    }
    ASSERT_TRUE(others->invertedSet()->isEqual(a));
    ASSERT_EQ(others->invertedSet()->hash(), a->hash());
    ASSERT_TRUE(both->isEqual(b->setByUnitingWithCharacterSet(a)));
    ASSERT_TRUE(a->setByUnitingWithCharacterSet(nullptr)->isEqual(a));
  }
}

TEST(CharacterSet, EqualityIsByMembers) {
  const auto ab = CharacterSet::characterSetWithCharactersInString("ab");
  EXPECT_TRUE(ab->isEqual(CharacterSet::characterSetWithCharactersInString("baab")));
  EXPECT_TRUE(ab->isEqual(CharacterSet::characterSetWithRange({'a', 2})));
  EXPECT_FALSE(ab->isEqual(CharacterSet::characterSetWithCharactersInString("abc")));
  EXPECT_FALSE(ab->isEqual("ab"));
  EXPECT_EQ(ab->copy().get(), ab.get());
  EXPECT_EQ(ab->cls().name(), std::string("NSCharacterSet"));
}

TEST(CharacterSet, IsReachedBySelector) {
  const qx::PropertyValue set = CharacterSet::characterSetWithCharactersInString("a");
  EXPECT_EQ(performSelector(set, "longCharacterIsMember:", int{'a'}), true);
  EXPECT_EQ(performSelector(set, "characterIsMember:", int{'b'}), false);
  const qx::PropertyValue others = performSelector(set, "invertedSet");
  EXPECT_EQ(performSelector(others, "longCharacterIsMember:", int{'b'}), true);
}

}  // namespace

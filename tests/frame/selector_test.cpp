#include <gtest/gtest.h>

#include <QXFoundation/selector.h>
#include <QXFoundation/string.h>

namespace qx {
namespace {

TEST(SelectorNames, AreEqualByText) {
  constexpr Selector literal = "isLessThan:";
  EXPECT_EQ(literal.text(), "isLessThan:");
  EXPECT_EQ(literal, Selector::named("isLessThan:"));
  EXPECT_EQ(literal, Selector::named(std::string("isLess") + "Than:"));
  EXPECT_EQ(literal, Selector::named(String::from("isLessThan:")));
  EXPECT_EQ(literal.hash(), Selector::named("isLessThan:").hash());
  EXPECT_FALSE(literal == Selector("isLessThan"));
  EXPECT_FALSE(literal == Selector());
}

TEST(SelectorNames, CountTheirColons) {
  const struct {
    Selector selector;
    std::size_t count;
  } cases[] = {{"", 0}, {"count", 0}, {"isEqual:", 1}, {"setValue:forKey:", 2}, {":::", 3}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.selector.argumentCount(), c.count) << c.selector.text();
    EXPECT_EQ(Selector::named(c.selector.text()).argumentCount(), c.count);
  }
}

TEST(SelectorNames, AreNullWithoutText) {
  for (const Selector s : {Selector(), Selector(nullptr), Selector(""), Selector::named(nullptr),
                           Selector::named(""), Selector::named(std::string())}) {
    EXPECT_TRUE(s.isNull());
    EXPECT_EQ(s, Selector());
    EXPECT_EQ(s.text(), "");
    EXPECT_EQ(s.hash(), Selector().hash());
    EXPECT_EQ(s.argumentCount(), 0U);
  }
  EXPECT_FALSE(Selector("a").isNull());
}

TEST(SelectorNames, MadeAtRunTimeKeepOneText) {
  const Selector first = Selector::named(std::string("madeAtRunTime:"));
  const Selector second = Selector::named(MutableString::from("madeAtRunTime:"));
  EXPECT_EQ(first.text().data(), second.text().data());
  EXPECT_EQ(first.text().data()[first.text().size()], '\0');
}

TEST(SelectorNames, HoldAnyText) {
  EXPECT_EQ(Selector::named("gr\xC3\xBC\xC3\x9F:").text(), "gr\xC3\xBC\xC3\x9F:");
  EXPECT_EQ(Selector::named("\xFF:").text(), "\xEF\xBF\xBD:");
  EXPECT_EQ(Selector::named(std::string("a\0b", 3)).text(), std::string_view("a\0b", 3));
}

}  // namespace
}  // namespace qx

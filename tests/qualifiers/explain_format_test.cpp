#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QXFoundation/exception.h>
#include <QXFoundation/qualifier_explanation.h>

#include "tests/qualifiers/tree_text.h"

namespace qx {
namespace {

using Kind = FormatRemark::Kind;

const char* name(Kind kind) {
  switch (kind) {
    case Kind::comparisonDropped:
      return "dropped";
    case Kind::comparisonRepeated:
      return "repeated";
    case Kind::textIgnored:
      return "ignored";
    case Kind::quotedTextEndsFormat:
      return "quoteEnds";
    case Kind::unknownOperator:
      return "operator";
    case Kind::bareWordIsKey:
      return "isKey";
    case Kind::bareWordIsConstant:
      return "isConstant";
    case Kind::emptyKey:
      return "emptyKey";
    case Kind::nilValue:
      return "nil";
    case Kind::textDropped:
      return "textDropped";
    case Kind::unknownClass:
      return "class";
    case Kind::classWithoutText:
      return "noText";
    case Kind::unbalanced:
      return "unbalanced";
    case Kind::argumentsUnused:
      return "unused";
    case Kind::more:
      return "more";
  }
  return "?";
}

FormatExplanation explained(StringArg format, const std::vector<PropertyValue>& arguments = {}) {
  return detail::explainFormat(format, arguments.data(), arguments.size());
}

std::string remarks(StringArg format, const std::vector<PropertyValue>& arguments = {}) {
  std::string text;
  for (const FormatRemark& r : explained(format, arguments).remarks) {
    text += (text.empty() ? "" : " ") + std::to_string(r.column) + ":" + name(r.kind);
  }
  return text;
}

struct Case {
  const char* format;
  std::vector<PropertyValue> arguments;
  const char* remarks;
};

TEST(ExplainFormat, RemarksOnWhatMayNotBeMeant) {
  const Case cases[] = {
      {"age > %d and name like %@", {21, "J*"}, ""},
      {"name = 'Bob'", {}, ""},
      {"name = 'Bob'  ", {}, ""},
      {"a = %d  ", {1}, ""},
      {"a = 50%%", {}, ""},
      {"a = %d and p = nil", {1}, "16:nil"},
      {"v = (NSDecimalNumber)'1.5'", {}, ""},
      {"a = %d and v = (NSDecimalNumber)7", {1}, ""},
      {"size < limit", {}, "8:isKey"},
      {"age > 21", {}, "7:isKey"},
      {"a = %d and b = 21", {1}, "16:isConstant"},
      {"a = %d and b = ", {1}, "16:isConstant"},
      {"a = %d and b = %d or c = %d", {1, 2, 3}, "12:dropped"},
      {"a = %d and not b = %d or c = %d", {1, 2, 3}, "16:dropped"},
      {"a = %d or b = %d and c = %d or d = %d", {1, 2, 3, 4}, "11:dropped 22:dropped"},
      {"a = %d and", {1}, "8:repeated"},
      {"a = %d or b = %d and", {1, 2}, ""},  // the last one comes in by the end
      {"name = 'Bob' and age > 3", {}, "13:quoteEnds"},
      {"name = 'Bob", {}, "8:unbalanced"},
      {"a = %d garbage", {1}, "8:ignored"},
      {"a = %d)", {1}, "7:ignored"},
      {"a is %d", {1}, "3:operator"},
      {"a =%d", {}, "3:operator 5:isKey"},
      {"a = b = c", {}, "5:isKey 7:ignored"},
      {"a.b = %d", {}, "2:operator 3:isKey 5:ignored"},
      {"'a' = %d", {1}, "3:operator 5:emptyKey 5:ignored 9:unused"},
      {"= %d", {1}, "1:emptyKey"},
      {"a =", {}, "4:emptyKey"},
      {"   ", {}, "4:emptyKey 4:operator 4:emptyKey"},
      {"p = nil", {}, "5:nil"},
      {"a = abc%d", {1}, "5:textDropped"},
      {"a = abc%%%d", {1}, "5:textDropped"},
      {"a = %dabc", {1}, "7:ignored"},
      {"a%d = %d", {1, 2}, ""},
      {"a = (Nope)'x'", {}, "6:class"},
      {"a = (NSArray)'x'", {}, "5:noText"},
      {"a = (NSString", {}, "5:unbalanced 5:emptyKey"},
      {"a = (NSString)b", {}, "5:isKey"},
      {"a = %d", {1, 2, 3}, "7:unused"},
      {"a = 'x' and b = %d", {1}, "8:quoteEnds 19:unused"},
      {"a \xC3\xA4 %d x", {1}, "3:operator 8:ignored"},  // columns count characters
  };
  for (const Case& c : cases) EXPECT_EQ(remarks(c.format, c.arguments), c.remarks) << c.format;
}

TEST(ExplainFormat, SaysItInSentences) {
  const auto text = [](StringArg format, std::size_t i = 0) {
    return explained(format).remarks.at(i).text;
  };
  EXPECT_EQ(text("age > 21"),
            "\"21\" is taken as a key; constants are given as arguments or in quotes");
  EXPECT_EQ(text("a = 'x' and b = c"), "quoted text ends the format: \" and b = c\" is ignored");
  EXPECT_EQ(text("a = b, c", 1), "\", c\" is ignored: neither and nor or stands here");
  EXPECT_EQ(text("a = (Nope)'x'"), "\"Nope\" is the name of no class: the value is nil");
  const std::string noOperator = "is no operator: the comparison is false for every object; ";
  EXPECT_EQ(text("a is b"), "\"is\" " + noOperator + "operators stand between blanks");
  EXPECT_EQ(text("a LIKE b"), "\"LIKE\" " + noOperator + "this one is written like");
  EXPECT_EQ(text("a CaseInsensitivelike b"),
            "\"CaseInsensitivelike\" " + noOperator + "this one is written caseInsensitiveLike");
  EXPECT_EQ(text("a.b = c"), "\".\" " + noOperator + "a key path is given as an argument, for %s");
  EXPECT_EQ(text("'a' = c"), "\"'\" " + noOperator + "a key is not quoted");
  EXPECT_EQ(text("a = nil"),
            "nothing equals nil, not even what is missing; to test for absence compare with %@ and "
            "null");
  const auto dropped = explained("a = abc%d", {1}).remarks;
  ASSERT_EQ(dropped.size(), 1U);
  EXPECT_EQ(dropped[0].text, "\"abc\" is dropped: the argument alone is the value");
}

TEST(ExplainFormat, QuotesAreCutAndValid) {
  const std::string longText(500, 'x');
  EXPECT_LT(explained("a = b " + longText).remarks.at(1).text.size(), 200U);
  EXPECT_EQ(explained("a = b \xFF").remarks.at(1).text,
            "\"\xEF\xBF\xBD\" is ignored: neither and nor or stands here");
}

TEST(ExplainFormat, GivesTheSameTree) {
  const auto e = QXQualifier::explainQualifierFormat("a = %d and b = %d or c = %d", 1, 2, 3);
  EXPECT_EQ(treeText(e.qualifier), "or(and(kv(a = 1)), kv(c = 3))");
  EXPECT_EQ(e.remarks.size(), 1U);
}

TEST(ExplainFormat, AnEmptyFormatHasNoRemarks) {
  EXPECT_TRUE(explained("").qualifier == nullptr);
  EXPECT_TRUE(explained("").remarks.empty());
  EXPECT_TRUE(explained(nullptr).remarks.empty());
  EXPECT_TRUE(QXQualifier::explainQualifierFormat(nullptr).qualifier == nullptr);
}

TEST(ExplainFormat, RaisesAsTheParserDoes) {
  EXPECT_THROW((void)explained("a = %x"), InvalidArgumentException);
  EXPECT_THROW((void)explained("a = %d"), InvalidArgumentException);
}

TEST(ExplainFormat, RemarksAreBounded) {
  std::string format = "a = b";
  for (int i = 0; i < 5000; ++i) format += " and a = b";
  const auto all = explained(format).remarks;
  ASSERT_EQ(all.size(), 1001U);
  EXPECT_EQ(all.back().kind, Kind::more);
}

}  // namespace
}  // namespace qx

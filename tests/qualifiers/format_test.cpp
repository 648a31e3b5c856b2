// The run-time parser, as a table over printed trees.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include <QXFoundation/exception.h>
#include <QXFoundation/number.h>
#include <QXFoundation/qualifier.h>

#include "tests/qualifiers/parse.h"
#include "tests/qualifiers/tree_text.h"

namespace qx {
namespace {

struct Case {
  const char* format;
  std::vector<PropertyValue> arguments;
  const char* tree;
};

void expectTrees(const std::vector<Case>& cases) {
  for (const Case& c : cases) EXPECT_EQ(treeText(parse(c.format, c.arguments)), c.tree) << c.format;
}

TEST(Format, ComparesKeysWithConstants) {
  expectTrees({
      {"name = %@", {"Bob"}, "kv(name = \"Bob\")"},
      {"age >= %d", {21}, "kv(age >= 21)"},
      {"size < limit", {}, "kc(size < limit)"},
      {"not name like %@ or age > %d", {"J*", 30}, "or(not(kv(name like \"J*\")), kv(age > 30))"},
      {"a = %d and b = %d and c = %d", {1, 2, 3}, "and(kv(a = 1), kv(b = 2), kv(c = 3))"},
      {"x == 'text'", {}, "kv(x = \"text\")"},
      {"x == \"it's\"", {}, "kv(x = \"it's\")"},
      {"x <> %@ and y = z", {7}, "and(kv(x != 7), kv(y = \"z\"))"},
      {"p = nil", {}, "kc(p = nil)"},
      {"a = %d and p = nil", {1}, "and(kv(a = 1), kv(p = nil))"},
      {"v = (NSDecimalNumber)'1.5'", {}, "kv(v = <NSDecimalNumber 1.5>)"},
      {"tags contains %@", {array(1, 2)}, "kv(tags contains <NSArray (1, 2)>)"},
      {"a caseInsensitiveLike %s", {"x"}, "kv(a caseInsensitiveLike \"x\")"},
  });
}

TEST(Format, AnEmptyFormatIsNoQualifier) {
  EXPECT_TRUE(parse("") == nullptr);
  EXPECT_TRUE(parse(nullptr) == nullptr);
  EXPECT_TRUE(parse(String::empty()) == nullptr);
  EXPECT_TRUE(qualifierWithQualifierFormat("") == nullptr);
  EXPECT_TRUE(qualifierWithQualifierFormat(nullptr) == nullptr);
  EXPECT_TRUE(qualifierWithQualifierFormat(nullptr, 1, "x") == nullptr);
  EXPECT_TRUE(QXQualifier::qualifierWithQualifierFormat(runtimeFormat(nullptr)) == nullptr);
  expectTrees({{" ", {}, "kc( ? )"}, {" \t\n ", {}, "kc( ? )"}});
}

TEST(Format, Operators) {
  expectTrees({
      {"a=b", {}, "kc(a = b)"},
      {"a==b", {}, "kc(a = b)"},
      {"a='b'", {}, "kc(a ? b)"},  // the operator is ='
      {"a =%@", {}, "kc(a ? )"},
      {"a= %@", {1}, "kv(a = 1)"},
      {"a.b = 1", {}, "kc(a ? b)"},
      {"a LIKE %@", {"x"}, "kv(a ? \"x\")"},
      {"a likes %@", {"x"}, "kv(a ? \"x\")"},
      {"a like%@", {"x"}, "kc(a ? )"},
      {"a <=> b", {}, "kc(a ? b)"},
      {"a ! = b", {}, "kc(a ? )"},
      {"a\t=\nb", {}, "kc(a = b)"},
      {"a\v=\fb", {}, "kc(a = b)"},
      {"a", {}, "kc(a ? )"},
      {"a =", {}, "kc(a = )"},
      {"= b", {}, "kc( = b)"},
      {"a \xC3\xA4 b", {}, "kc(a ? b)"},
      {"\xC3\xA4 = b", {}, "kc( ? )"},  // no word begins with a byte beyond ASCII
  });
}

TEST(Format, Keywords) {
  expectTrees({
      {"NOT x = %d", {4}, "not(kv(x = 4))"},
      {"nOt x = %d", {4}, "not(kv(x = 4))"},
      {"a = %d AND b = %d", {1, 2}, "and(kv(a = 1), kv(b = 2))"},
      {"a = %d Or b = %d", {1, 2}, "or(kv(a = 1), kv(b = 2))"},
      {"nothing = 1", {}, "kc(nothing = 1)"},
      {"not\tx = 1", {}, "kc(not ? )"},  // only a blank ends the word
      {"not", {}, "not(kc( ? ))"},
      {"not(x = 1", {}, "not(kc( ? x))"},
      {"not not x = 1", {}, "not(kc(not ? ))"},
      {"a = b and(c = d", {}, "and(kc(a = b), kc( ? c))"},
      {"a = b android = c", {}, "kc(a = b)"},
      {"a = b nor c = d", {}, "kc(a = b)"},
      {"a = b\tand c = d", {}, "and(kc(a = b), kc(c = d))"},
      {"a = b and\tc = d", {}, "kc(a = b)"},
      {"and = or", {}, "kc(and = or)"},
      {"a = b and and = or", {}, "and(kc(a = b), kc(and = or))"},
  });
}

TEST(Format, TheListAsBuilt) {
  expectTrees({
      {"a = %d and b = %d or c = %d", {1, 2, 3}, "or(and(kv(a = 1)), kv(c = 3))"},
      {"a = %d or b = %d and c = %d", {1, 2, 3}, "and(or(kv(a = 1)), kv(c = 3))"},
      {"a = b and c = d and e = f or g = h or i = j",
       {},
       "or(and(kc(a = b), kc(c = d)), kc(g = h), kc(i = j))"},
      {"a = b and c = d or e = f and g = h", {}, "and(or(and(kc(a = b))), kc(g = h))"},
      {"a = %d and", {1}, "and(kv(a = 1), kv(a = 1))"},
      {"a = %d or", {1}, "or(kv(a = 1), kv(a = 1))"},
      {"a = b and c = d and", {}, "and(kc(a = b), kc(c = d), kc(c = d))"},
      {"a = b and c = d or",
       {},
       "or(and(kc(a = b)), kc(c = d))"},  // the last one comes in by the end of the text
      {"not a = b and", {}, "and(not(kc(a = b)), not(kc(a = b)))"},
      {"a = %d and ", {1}, "and(kv(a = 1), kv( ? \"\"))"},
  });
}

TEST(Format, TheRepeatedComparisonIsOneObject) {
  const auto q = PropertyValue(parse("a = %d and", {1})).as<QXAndQualifier>();
  EXPECT_TRUE(isSame(q->qualifiers()->objectAtIndex(0), q->qualifiers()->objectAtIndex(1)));
}

TEST(Format, AConstantMakesAllLaterComparisonsConstant) {
  expectTrees({
      {"a = b and c = %d and d = e", {1}, "and(kc(a = b), kv(c = 1), kv(d = \"e\"))"},
      {"a = %d and b = 21", {1}, "and(kv(a = 1), kv(b = \"21\"))"},
      {"%s = b and c = d",
       {"k"},
       "and(kc(k = b), kc(c = d))"},  // a conversion in a key is no constant
      {"age > 21", {}, "kc(age > 21)"},
      {"a = b and c = '' and d = e", {}, "and(kc(a = b), kv(c = \"\"))"},
  });
}

TEST(Format, TextAfterAComparisonIsIgnored) {
  expectTrees({
      {"name = 'Bob' and age > 3", {}, "kv(name = \"Bob\")"},
      {"name = \"Bob\"", {}, "kv(name = \"Bob\")"},
      {"name = 'Bob", {}, "kv(name = \"Bob\")"},
      {"a = b) and c = d", {}, "kc(a = b)"},
      {"a = b, c = d", {}, "kc(a = b)"},
      {"(a = b)", {}, "kc( ? a)"},
      {"p = nil)", {}, "kc(p = nil)"},  // the bare word, as it happens
      {"p = nil and q = nil", {}, "and(kc(p = nil), kc(q = nil))"},
      {"a = %d garbage", {1}, "kv(a = 1)"},
  });
  // The word nil and the absent key print alike; they differ.
  EXPECT_TRUE(PropertyValue(parse("p = nil")).as<QXKeyComparisonQualifier>()->rightKey() ==
              nullptr);
  EXPECT_EQ(PropertyValue(parse("p = nil)")).as<QXKeyComparisonQualifier>()->rightKey()->utf8(),
            "nil");
  EXPECT_EQ(PropertyValue(parse("p = NIL")).as<QXKeyComparisonQualifier>()->rightKey()->utf8(),
            "NIL");
  EXPECT_EQ(PropertyValue(parse("p = nil\t")).as<QXKeyComparisonQualifier>()->rightKey()->utf8(),
            "nil");
  EXPECT_EQ(PropertyValue(parse("p = nils")).as<QXKeyComparisonQualifier>()->rightKey()->utf8(),
            "nils");
}

TEST(Format, QuotedKeys) {
  expectTrees({
      {"'a' = 3", {}, "kc(a ? )"},  // the closing quote is the operator
      {"'a b'= 3", {}, "kc(a b ? 3)"},
      {"'a", {}, "kc(a ? )"},
      {"'a'", {}, "kc(a ? )"},
      {"\"a'b\" = c", {}, "kc(a'b ? )"},
  });
}

TEST(Format, ConversionsBuildKeys) {
  expectTrees({
      {"%s = 3", {"age"}, "kc(age = 3)"},
      {"a%sb = 3", {"X"}, "kc(aXb = 3)"},
      {"k%d = 3", {-7}, "kc(k-7 = 3)"},
      {"k%f = 3", {0.1}, "kc(k0.100000 = 3)"},
      {"k%@ = 3", {42}, "kc(k42 = 3)"},
      {"k%@ = 3", {nullptr}, "kc(k = 3)"},
      {"%@%@ = %@", {"a.b", ".c", 1}, "kv(a.b.c = 1)"},
      {"a%%b = 3", {}, "kc(a%b = 3)"},
      {"#n$v@_1 = x", {}, "kc(#n$v@_1 = x)"},
  });
}

TEST(Format, ValuesAreTheArgumentsThemselves) {
  expectTrees({
      {"a = abc%@", {5}, "kv(a = 5)"},  // the text before it is dropped
      {"a = abc%d", {5}, "kv(a = 5)"},
      {"a = abc%f", {0.5}, "kv(a = 0.5f)"},
      {"a = abc%s", {"x"}, "kv(a = \"x\")"},
      {"a = %@xyz", {5}, "kv(a = 5)"},  // what follows is ignored
      {"a = %dand b = %d", {1, 2}, "and(kv(a = 1), kv(b = 2))"},
      {"a = %d%d", {1, 2}, "kv(a = 1)"},
      {"a = %@", {nullptr}, "kv(a = nil)"},
      {"a = %@", {null}, "kv(a = null)"},
      {"a = %@", {true}, "kv(a = true)"},
      {"a = %@", {2.5}, "kv(a = 2.5r)"},
      {"a = %@", {3U}, "kv(a = 3u)"},
  });
  const auto list = MutableArray::init();
  EXPECT_TRUE(isSame(PropertyValue(parse("a = %@", {list}))["value"], list));
}

TEST(Format, PercentSigns) {
  expectTrees({
      {"a = 50%%", {}, "kv(a = \"50%\")"},
      {"a = %%%%", {}, "kv(a = \"%%\")"},
      {"a = %%%d", {7}, "kv(a = 7)"},
      {"a = (NSString)x%%%d", {7}, "kv(a = \"x%7\")"},
      {"a = '50%d'", {}, "kv(a = \"50%d\")"},
      {"a = 50%% and b = c", {}, "and(kv(a = \"50%\"), kv(b = \"c\"))"},
  });
}

TEST(Format, IntegersAreOf32Bits) {
  expectTrees({
      {"a = %d", {2147483647}, "kv(a = 2147483647)"},
      {"a = %d", {-2147483647 - 1}, "kv(a = -2147483648)"},
      {"a = %d", {std::int64_t{5}}, "kv(a = 5)"},
      {"a = %d", {std::uint64_t{5}}, "kv(a = 5)"},
      {"a = %d", {std::uint8_t{200}}, "kv(a = 200)"},
  });
}

TEST(Format, FloatingArgumentsAreNarrowed) {
  const PropertyValue v = PropertyValue(parse("a = %f", {0.1}))["value"];
  EXPECT_TRUE(isSame(v, PropertyValue(0.1F)));
  EXPECT_FALSE(v == 0.1);
  EXPECT_TRUE(isSame(PropertyValue(parse("a = %f", {0.1F}))["value"], PropertyValue(0.1F)));
}

TEST(Format, Casts) {
  expectTrees({
      {"a = (NSDecimalNumber)12%d", {7}, "kv(a = <NSDecimalNumber 127>)"},
      {"a = (NSDecimalNumber)%f", {1.5}, "kv(a = <NSDecimalNumber 1.5>)"},
      {"a = (NSDecimalNumber)%@", {"0.25"}, "kv(a = <NSDecimalNumber 0.25>)"},
      {"a = (NSDecimalNumber)%s%s", {"1", "2"}, "kv(a = <NSDecimalNumber 12>)"},
      {"a = (NSString)'x'", {}, "kv(a = \"x\")"},
      {"a = (NSString)nil", {}, "kc(a = nil)"},
      {"a = (NSString) nil", {}, "kc(a = )"},  // no blank is skipped behind the cast
      {"a = (NSString)'x", {}, "kv(a = \"x\")"},
      {"a = (NoSuchClass)'x'", {}, "kv(a = nil)"},
      {"a = (NSArray)'x'", {}, "kv(a = nil)"},  // makes nothing of text
      {"a = ()'x'", {}, "kv(a = nil)"},
      {"a = (NSString", {}, "kc(a = )"},
      {"a = (NoSuchClass", {}, "kc(a = nil)"},
      {"a = (", {}, "kc(a = nil)"},
      {"a = (NSString)limit", {}, "kc(a = limit)"},
      {"a = (NSDecimalNumber)007", {}, "kc(a = 007)"},
      {"a = %d and b = (NSDecimalNumber)007", {1}, "and(kv(a = 1), kv(b = <NSDecimalNumber 7>))"},
      {"a = (NSString)b and c = d", {}, "and(kc(a = b), kc(c = d))"},
  });
}

TEST(Format, TextIsUtf8) {
  expectTrees({
      {"a = 'na\xC3\xAFve'", {}, "kv(a = \"na\xC3\xAFve\")"},
      {"a = 'x\xFFy'", {}, "kv(a = \"x\xEF\xBF\xBDy\")"},
      {"a = %s", {"\xF0\x9F\x98\x80"}, "kv(a = \"\xF0\x9F\x98\x80\")"},
  });
  EXPECT_EQ(treeText(parse(String::from("a = '\xC3\xA4'"))), "kv(a = \"\xC3\xA4\")");
  EXPECT_EQ(treeText(parse(MutableString::from("a = b"))), "kc(a = b)");
}

TEST(Format, ANulIsAByteOfNoClass) {
  EXPECT_EQ(treeText(parse(std::string("a = b\0 and c = d", 16))), "kc(a = b)");
  EXPECT_EQ(treeText(parse(std::string("\0", 1))), "kc( ? )");
}

TEST(Format, TextArgumentsOfConversionSAreCopied) {
  const auto text = MutableString::from("x");
  const auto q = parse("a = %s and b = %@", {text, text});
  text->setString("y");
  EXPECT_EQ(treeText(q), "and(kv(a = \"x\"), kv(b = \"y\"))");
}

TEST(Format, ArgumentsThatAreLeftOverAreIgnored) {
  expectTrees({{"a = %d", {1, 2, 3}, "kv(a = 1)"}, {"a = 'x' and b = %d", {1}, "kv(a = \"x\")"}});
}

// Made from text that starts with a digit; raises for empty text.
class Counted : public Object {
 public:
  static Ref<Counted> fromText(StringArg text) {
    const std::string t = text.utf8();
    if (t.empty()) throw RangeException("nothing to count");
    return t[0] >= '0' && t[0] <= '9' ? make<Counted>() : nullptr;
  }
};
void describe(ClassBuilder<Counted>& c) {
  c.name("Counted").initialisedFromText<&Counted::fromText>();
}

TEST(Format, CastsToTheApplicationsClasses) {
  registerClass<Counted>();
  EXPECT_STREQ(PropertyValue(parse("a = (Counted)'3'"))["value"].cls()->name(), "Counted");
  EXPECT_EQ(PropertyValue(parse("a = (Counted)'x'"))["value"], nullptr);
  EXPECT_THROW((void)parse("a = (Counted)''"), RangeException);
}

}  // namespace
}  // namespace qx

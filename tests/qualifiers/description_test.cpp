#include <gtest/gtest.h>

#include <string>

#include <QXFoundation/qualifier.h>
#include <QXFoundation/qualifier_key.h>

namespace qx {
namespace {

std::string text(const Ref<QXQualifier>& q) { return PropertyValue(q).description(); }

TEST(QualifierDescription, ResemblesAFormat) {
  const auto a = key("a") == 1;
  const auto b = key("b").like("x\"y\\");
  EXPECT_EQ(text(a), "a = 1");
  EXPECT_EQ(text(b), "b like \"x\\\"y\\\\\"");
  EXPECT_EQ(text(key("a.b") >= key("c")), "a.b >= c");
  EXPECT_EQ(text(key("a") == nullptr), "a = nil");
  EXPECT_EQ(text(key("a") == null), "a = null");
  EXPECT_EQ(text(key("a").contains(array(1, "x"))), "a contains (1, x)");
  EXPECT_EQ(text(key("a").with(Selector(), 1)), "a ? 1");
  EXPECT_EQ(text(key("a").with("hasPrefix:", "x")), "a hasPrefix: \"x\"");
  EXPECT_EQ(text(QXKeyValueQualifier::initWithKey(
                "a", "isEqualTo:", QXQualifierVariable::variableWithKey("v"))),
            "a = $v");
  EXPECT_EQ(text(QXKeyComparisonQualifier::init()), "nil ? nil");
}

TEST(QualifierDescription, ShowsTheStructure) {
  const auto a = key("a") == 1;
  const auto b = key("b") == 2;
  EXPECT_EQ(text(a && b), "a = 1 and b = 2");
  EXPECT_EQ(text((a && b) || a), "(a = 1 and b = 2) or a = 1");
  EXPECT_EQ(text(!a && b), "not a = 1 and b = 2");
  EXPECT_EQ(text(!(a || b)), "not (a = 1 or b = 2)");
  EXPECT_EQ(text(!!a), "not not a = 1");
  EXPECT_EQ(text(QXAndQualifier::init()), "and()");
  EXPECT_EQ(text(QXOrQualifier::init()), "or()");
  EXPECT_EQ(text(QXNotQualifier::init()), "not nil");
  EXPECT_EQ(text(QXAndQualifier::initWithQualifiers(a)), "and(a = 1)");
  EXPECT_EQ(text(QXOrQualifier::initWithQualifierArray(array(3, Ref<QXQualifier>(a)))),
            "3 or a = 1");
}

TEST(QualifierDescription, OtherClassesDescribeThemselves) {
  EXPECT_EQ(text(QXQualifier::init()).substr(0, 16), "<QXQualifier: 0x");
  EXPECT_EQ(text(QXNotQualifier::initWithQualifier(QXQualifier::init())).substr(0, 20),
            "not <QXQualifier: 0x");
}

TEST(QualifierDescription, IsBounded) {
  Ref<QXQualifier> deep = key("a") == 1;
  for (int i = 0; i < 1000; ++i) deep = (QualifierExpr(deep) && QualifierExpr(deep));
  EXPECT_EQ(text(deep).size(), 4096U);
  EXPECT_EQ(text(deep).substr(4093), "...");
  EXPECT_LT(text(key(std::string(10000, 'k')) == std::string(10000, 'v')).size(), 500U);
}

TEST(QualifierDescription, EndsForAQualifierThatHoldsItself) {
  const auto members = MutableArray::init();
  const auto q = QXAndQualifier::initWithQualifierArray(members);
  members->addObject(QXKeyValueQualifier::initWithKey("a", "isEqualTo:", members));
  EXPECT_LT(text(q).size(), 5000U);
  members->addObject(q);
  EXPECT_LE(text(q).size(), 4096U);
  members->removeAllObjects();
}

}  // namespace
}  // namespace qx

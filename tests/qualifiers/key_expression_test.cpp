#include <gtest/gtest.h>

#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier_key.h>

#include "tests/qualifiers/tree_text.h"

namespace qx {
namespace {

std::string tree(const Ref<QXQualifier>& q) { return treeText(q); }

TEST(KeyExpression, ComparesWithConstants) {
  EXPECT_EQ(tree(key("a") == 1), "kv(a = 1)");
  EXPECT_EQ(tree(key("a") != "x"), "kv(a != \"x\")");
  EXPECT_EQ(tree(key("a") < 1.5), "kv(a < 1.5r)");
  EXPECT_EQ(tree(key("a") <= 1U), "kv(a <= 1u)");
  EXPECT_EQ(tree(key("a") > true), "kv(a > true)");
  EXPECT_EQ(tree(key("a") >= null), "kv(a >= null)");
  EXPECT_EQ(tree(key("a") == nullptr), "kv(a = nil)");
  EXPECT_EQ(tree(key("a.b").like("J*")), "kv(a.b like \"J*\")");
  EXPECT_EQ(tree(key("a").caseInsensitiveLike("j*")), "kv(a caseInsensitiveLike \"j*\")");
  EXPECT_EQ(tree(key("a").contains(3)), "kv(a contains 3)");
  EXPECT_EQ(tree(key("a").with("hasPrefix:", "x")), "kv(a hasPrefix: \"x\")");
  EXPECT_EQ(tree(key(nullptr) == 1), "kv(nil = 1)");
}

TEST(KeyExpression, ComparesTwoKeys) {
  EXPECT_EQ(tree(key("a") == key("b")), "kc(a = b)");
  EXPECT_EQ(tree(key("a") != key("b")), "kc(a != b)");
  EXPECT_EQ(tree(key("a") < key("b")), "kc(a < b)");
  EXPECT_EQ(tree(key("a") <= key("b")), "kc(a <= b)");
  EXPECT_EQ(tree(key("a") > key("b")), "kc(a > b)");
  EXPECT_EQ(tree(key("a") >= key("b")), "kc(a >= b)");
  EXPECT_EQ(tree(key("a").with("isLike:", key("b"))), "kc(a like b)");
}

TEST(KeyExpression, Combines) {
  const auto a = key("a") == 1;
  const auto b = key("b") == 2;
  EXPECT_EQ(tree(a && b && a), "and(and(kv(a = 1), kv(b = 2)), kv(a = 1))");
  EXPECT_EQ(tree((a && b) || !a), "or(and(kv(a = 1), kv(b = 2)), not(kv(a = 1)))");
  EXPECT_EQ(tree(key("age") > 30 && !key("name").like("J*")),
            "and(kv(age > 30), not(kv(name like \"J*\")))");
  const QualifierExpr other(qualifierWithQualifierFormat("c = d"));
  EXPECT_EQ(tree(a || other), "or(kv(a = 1), kc(c = d))");
}

TEST(KeyExpression, GoesWhereQualifiersGo) {
  const auto object = dict({{"age", 40}});
  EXPECT_TRUE((key("age") > 30).evaluateWithObject(object));
  EXPECT_EQ(filteredArrayUsingQualifier(array(object, dict()), key("age") > 30)->count(), 1U);
  EXPECT_EQ(tree(QXNotQualifier::initWithQualifier(key("a") == 1)), "not(kv(a = 1))");
  EXPECT_EQ(tree(QXAndQualifier::initWithQualifiers(key("a") == 1, key("b") == 2)),
            "and(kv(a = 1), kv(b = 2))");
}

}  // namespace
}  // namespace qx

#include <gtest/gtest.h>

#include <string>

#include <QXFoundation/qualifier_explanation.h>
#include <QXFoundation/qualifier_key.h>

namespace qx {
namespace {

std::string why(const Ref<QXQualifier>& q, const PropertyValue& object) {
  return explain(q, object).text();
}

TEST(Explain, TellsTheValues) {
  const auto q = qualifierWithQualifierFormat("age > %d and name like %@", 21, "J*");
  EXPECT_EQ(why(q, dict({{"age", 42}, {"name", "Bob"}})),
            "false: and\n"
            "  true: age > 21 (age is 42)\n"
            "  false: name like \"J*\" (name is \"Bob\")\n");
  EXPECT_EQ(why(q, dict({{"age", 3}})),
            "false: and (1 more not evaluated)\n"
            "  false: age > 21 (age is 3)\n");
  EXPECT_EQ(why(q, nullptr), "false: and (the object is nil)\n");
}

TEST(Explain, TellsBothSidesOfAKeyComparison) {
  EXPECT_EQ(why(qualifierWithQualifierFormat("size < limit"), dict({{"size", 3}})),
            "false: size < limit (size is 3, limit is nil)\n");
  EXPECT_EQ(why(qualifierWithQualifierFormat("p = nil"), dict({{"p", 3}})),
            "false: p = nil (p is 3, the absent key is nil)\n");
}

TEST(Explain, TellsWhatDoesNotRespond) {
  EXPECT_EQ(why(qualifierWithQualifierFormat("a like %@", "x"), dict({{"a", 3}})),
            "false: a like \"x\" (a is 3, which has no such operation)\n");
  EXPECT_EQ(why(qualifierWithQualifierFormat("a ? %@", "x"), dict({{"a", 3}})),
            "false: a ? \"x\" (a is 3, which has no such operation)\n");
  EXPECT_EQ(why(qualifierWithQualifierFormat("a like b"), dict({{"a", 3}})),
            "false: a like b (a is 3, which has no such operation, b is nil)\n");
}

TEST(Explain, Negations) {
  const auto q = qx::key("a") == 1;
  EXPECT_EQ(why(!q || q, dict({{"a", 1}})),
            "true: or\n"
            "  false: not\n"
            "    true: a = 1 (a is 1)\n"
            "  true: a = 1 (a is 1)\n");
  EXPECT_EQ(why(QXNotQualifier::init(), dict()), "false: not (of nothing)\n");
  EXPECT_EQ(why(QXAndQualifier::init(), dict()), "true: and (of nothing)\n");
  EXPECT_EQ(why(QXOrQualifier::init(), dict()), "false: or (of nothing)\n");
  EXPECT_EQ(why(!q, nullptr),
            "true: not\n"
            "  false: a = 1 (the object is nil)\n");
}

TEST(Explain, ANilQualifierAcceptsNothing) {
  EXPECT_FALSE(explain(nullptr, dict()).result());
  EXPECT_EQ(explain(nullptr, dict()).text(), "false: no qualifier\n");
}

class OwnQualifier : public QXQualifier {
 public:
  bool evaluateWithObject(const PropertyValue&) const override { return true; }
  std::string description() const override { return "my own rule"; }
};
void describe(ClassBuilder<OwnQualifier>& c) { c.name("OwnQualifier").inherits<QXQualifier>(); }

class OwnObject : public Object, public QXKeyValueQualifierEvaluation {
 public:
  bool evaluateWithKey(StringArg, Selector, const PropertyValue&) const override { return true; }
};
void describe(ClassBuilder<OwnObject>& c) {
  c.name("OwnObject").conforms<QXKeyValueQualifierEvaluation>();
}

TEST(Explain, CustomEvaluation) {
  EXPECT_EQ(why(make<OwnQualifier>(), dict()), "true: my own rule\n");
  EXPECT_EQ(why(qx::key("a") == 1, make<OwnObject>()), "true: a = 1 (the object's own answer)\n");
}

TEST(Explain, IsBounded) {
  Ref<QXQualifier> deep = qx::key("a") == 1;
  for (int i = 0; i < 100000; ++i) deep = QXNotQualifier::initWithQualifier(deep);
  const auto e = explain(deep, dict({{"a", 1}}));
  EXPECT_TRUE(e.result());
  EXPECT_LT(e.text().size(), 10000U);
  const auto members = MutableArray::init();
  for (int i = 0; i < 100000; ++i) members->addObject(Ref<QXQualifier>(qx::key("a") == 1));
  const auto wide = explain(QXAndQualifier::initWithQualifierArray(members), dict({{"a", 1}}));
  EXPECT_TRUE(wide.result());
  EXPECT_LT(wide.text().size(), 10000U);
  const auto large =
      explain(qx::key("a") == std::string(100000, 'x'), dict({{"a", std::string(100000, 'y')}}));
  EXPECT_LT(large.text().size(), 1000U);
}

}  // namespace
}  // namespace qx

// How qualifiers are made, copied, and what they answer about themselves.

#include <gtest/gtest.h>

#include <string>

#include <QXFoundation/exception.h>
#include <QXFoundation/qualifier.h>

#include "tests/qualifiers/tree_text.h"

namespace qx {
namespace {

Ref<QXKeyValueQualifier> equals(StringArg key, const PropertyValue& value) {
  return QXKeyValueQualifier::initWithKey(key, "isEqualTo:", value);
}

class CustomAnd : public QXAndQualifier {};
class CustomNot : public QXNotQualifier {};
class CustomKeyValue : public QXKeyValueQualifier {
 public:
  CustomKeyValue() : QXKeyValueQualifier("a", "isEqualTo:", 1) {}
};
class CustomOr : public QXOrQualifier {
 public:
  explicit CustomOr(In<Array> members) : QXOrQualifier(members) {}
};
class CustomKeyComparison : public QXKeyComparisonQualifier {
 public:
  CustomKeyComparison() : QXKeyComparisonQualifier("l", "isLike:", "r") {}
};
void describe(ClassBuilder<CustomAnd>& c) { c.name("CustomAnd").inherits<QXAndQualifier>(); }
void describe(ClassBuilder<CustomNot>& c) { c.name("CustomNot").inherits<QXNotQualifier>(); }
void describe(ClassBuilder<CustomKeyValue>& c) {
  c.name("CustomKeyValue").inherits<QXKeyValueQualifier>();
}
void describe(ClassBuilder<CustomOr>& c) { c.name("CustomOr").inherits<QXOrQualifier>(); }
void describe(ClassBuilder<CustomKeyComparison>& c) {
  c.name("CustomKeyComparison").inherits<QXKeyComparisonQualifier>();
}

TEST(QualifierConstruction, KeepsTheVeryArrayAndValue) {
  const auto members = MutableArray::init();
  const auto both = QXAndQualifier::initWithQualifierArray(members);
  EXPECT_TRUE(isSame(both->qualifiers(), members));
  EXPECT_TRUE(isSame(QXOrQualifier::initWithQualifierArray(members)->qualifiers(), members));
  const auto value = MutableArray::init();
  EXPECT_TRUE(isSame(equals("a", value)->value(), value));
}

TEST(QualifierConstruction, ALaterChangeOfTheArrayChangesTheQualifier) {
  const auto members = MutableArray::init();
  const auto any = QXOrQualifier::initWithQualifierArray(members);
  const auto object = dict({{"a", 1}});
  EXPECT_FALSE(any->evaluateWithObject(object));
  members->addObject(equals("a", 1));
  EXPECT_TRUE(any->evaluateWithObject(object));
}

TEST(QualifierConstruction, AMutableKeyIsCopied) {
  const auto key = MutableString::from("a");
  const auto q = equals(key, 1);
  key->setString("b");
  EXPECT_EQ(q->key()->utf8(), "a");
}

TEST(QualifierConstruction, AndTakesTheListUpToTheFirstNil) {
  const auto a = equals("a", 1);
  const auto b = equals("b", 1);
  EXPECT_EQ(treeText(QXAndQualifier::initWithQualifiers()), "and()");
  EXPECT_EQ(treeText(QXAndQualifier::initWithQualifiers(a)), "and(kv(a = 1))");
  EXPECT_EQ(treeText(QXAndQualifier::initWithQualifiers(a, b, a)),
            "and(kv(a = 1), kv(b = 1), kv(a = 1))");
  EXPECT_EQ(treeText(QXAndQualifier::initWithQualifiers(a, nullptr, b)), "and(kv(a = 1))");
  EXPECT_EQ(treeText(QXAndQualifier::initWithQualifiers(nullptr, b)), "and()");
}

TEST(QualifierConstruction, OrTakesEveryOtherOne) {
  const auto a = equals("a", 1);
  const auto b = equals("b", 1);
  const auto c = equals("c", 1);
  EXPECT_EQ(treeText(QXOrQualifier::initWithQualifiers(a)), "or(kv(a = 1))");
  EXPECT_EQ(treeText(QXOrQualifier::initWithQualifiers(a, b, c)), "or(kv(a = 1), kv(c = 1))");
  EXPECT_EQ(treeText(QXOrQualifier::initWithQualifiers(a, b, c, a, b)),
            "or(kv(a = 1), kv(c = 1), kv(b = 1))");
  EXPECT_EQ(treeText(QXOrQualifier::initWithQualifiers(a, nullptr, c)), "or(kv(a = 1))");
  EXPECT_EQ(treeText(QXOrQualifier::initWithQualifiers(a, b, c, nullptr, b, b)),
            "or(kv(a = 1), kv(c = 1))");
}

TEST(QualifierConstruction, OrOfAnEvenNumberInsertsNil) {
  const auto a = equals("a", 1);
  EXPECT_THROW((void)QXOrQualifier::initWithQualifiers(), InvalidArgumentException);
  EXPECT_THROW((void)QXOrQualifier::initWithQualifiers(nullptr), InvalidArgumentException);
  EXPECT_THROW((void)QXOrQualifier::initWithQualifiers(a, a), InvalidArgumentException);
  EXPECT_THROW((void)QXOrQualifier::initWithQualifiers(a, a, nullptr, a), InvalidArgumentException);
  EXPECT_THROW((void)QXOrQualifier::initWithQualifiers(a, a, a, a), InvalidArgumentException);
}

TEST(QualifierConstruction, ValueSetsBecomeComparisonsInOrder) {
  const auto values = dict({{"b", 1}, {"a", null}, {"c.d", "x"}});
  EXPECT_EQ(treeText(QXQualifier::qualifierToMatchAllValues(values)),
            "and(kv(b = 1), kv(a = null), kv(c.d = \"x\"))");
  EXPECT_EQ(treeText(QXQualifier::qualifierToMatchAnyValue(values)),
            "or(kv(b = 1), kv(a = null), kv(c.d = \"x\"))");
}

TEST(QualifierConstruction, AValueSetOfOneIsTheComparisonItself) {
  EXPECT_EQ(treeText(QXQualifier::qualifierToMatchAllValues(dict({{"a", 1}}))), "kv(a = 1)");
  EXPECT_EQ(treeText(QXQualifier::qualifierToMatchAnyValue(dict({{"a", 1}}))), "kv(a = 1)");
}

TEST(QualifierConstruction, AnEmptyValueSetHasNoMembers) {
  EXPECT_EQ(treeText(QXQualifier::qualifierToMatchAllValues(dict())), "and()");
  EXPECT_EQ(treeText(QXQualifier::qualifierToMatchAnyValue(dict())), "or()");
  EXPECT_EQ(treeText(QXQualifier::qualifierToMatchAllValues(nullptr)), "and()");
  EXPECT_TRUE(QXQualifier::qualifierToMatchAllValues(dict())->evaluateWithObject(dict()));
  EXPECT_FALSE(QXQualifier::qualifierToMatchAllValues(dict())->evaluateWithObject(nullptr));
  EXPECT_FALSE(QXQualifier::qualifierToMatchAnyValue(dict())->evaluateWithObject(dict()));
}

TEST(QualifierCopy, OfTheBaseClassIsTheObjectItself) {
  const auto q = QXQualifier::init();
  EXPECT_TRUE(isSame(q->copy(), q));
}

TEST(QualifierCopy, OfAndAndOrSharesTheMembers) {
  const auto a = equals("a", 1);
  const auto members = MutableArray::init();
  members->addObject(a);
  for (const Ref<QXQualifier>& q :
       {Ref<QXQualifier>(QXAndQualifier::initWithQualifierArray(members)),
        Ref<QXQualifier>(QXOrQualifier::initWithQualifierArray(members))}) {
    const PropertyValue copy = q->copy();
    EXPECT_FALSE(isSame(copy, q));
    EXPECT_EQ(treeText(copy), treeText(q));
    const PropertyValue list = copy["qualifiers"];
    EXPECT_FALSE(isSame(list, members));
    EXPECT_TRUE(isSame(list.as<Array>()->objectAtIndex(0), a));
  }
  const auto before = PropertyValue(QXAndQualifier::initWithQualifierArray(members)->copy());
  members->addObject(a);
  EXPECT_EQ(treeText(before), "and(kv(a = 1))");
}

TEST(QualifierCopy, OfNotCopiesItsQualifier) {
  const auto a = equals("a", 1);
  const auto q = QXNotQualifier::initWithQualifier(QXNotQualifier::initWithQualifier(a));
  const auto copy = PropertyValue(q->copy()).as<QXNotQualifier>();
  EXPECT_EQ(treeText(copy), "not(not(kv(a = 1)))");
  EXPECT_FALSE(isSame(copy->qualifier(), q->qualifier()));
  EXPECT_FALSE(isSame(PropertyValue(copy).valueForKeyPath("qualifier.qualifier"), a));
}

TEST(QualifierCopy, OfComparisonsSharesTheValue) {
  const auto value = MutableArray::init();
  const auto kv = QXKeyValueQualifier::initWithKey("a", "isLessThan:", value);
  const PropertyValue copy = kv->copy();
  EXPECT_FALSE(isSame(copy, kv));
  EXPECT_EQ(treeText(copy), treeText(kv));
  EXPECT_TRUE(isSame(copy["value"], value));
  const auto kc = QXKeyComparisonQualifier::initWithLeftKey("a", "isLike:", nullptr);
  EXPECT_FALSE(isSame(kc->copy(), kc));
  EXPECT_EQ(treeText(kc->copy()), "kc(a like nil)");
}

TEST(QualifierCopy, OfASubclassIsOfTheLibrarysClass) {
  EXPECT_STREQ(make<CustomAnd>()->copy()->cls().name(), "QXAndQualifier");
  EXPECT_STREQ(make<CustomNot>()->copy()->cls().name(), "QXNotQualifier");
  EXPECT_STREQ(make<CustomKeyValue>()->copy()->cls().name(), "QXKeyValueQualifier");
  EXPECT_EQ(treeText(make<CustomKeyValue>()->copy()), "kv(a = 1)");
  EXPECT_EQ(make<CustomOr>(array())->copy()->cls().name(), std::string("QXOrQualifier"));
  EXPECT_EQ(make<CustomKeyComparison>()->copy()->cls().name(),
            std::string("QXKeyComparisonQualifier"));
}

TEST(QualifierCopy, OfASubclassKeepsTheContents) {
  const auto a = equals("a", 1);
  const auto b = equals("b", 2);
  const auto members = MutableArray::init();
  members->addObject(a);
  members->addObject(b);
  const auto any = make<CustomOr>(members);
  const PropertyValue copyOfAny = any->copy();
  members->removeAllObjects();
  EXPECT_EQ(treeText(copyOfAny), "or(kv(a = 1), kv(b = 2))");
  const auto kept = copyOfAny.as<QXOrQualifier>()->qualifiers();
  EXPECT_TRUE(isSame(kept->objectAtIndex(0), a));
  EXPECT_TRUE(isSame(kept->objectAtIndex(1), b));
  const auto two = make<CustomKeyComparison>();
  const auto copy = PropertyValue(two->copy()).as<QXKeyComparisonQualifier>();
  EXPECT_EQ(treeText(copy), "kc(l like r)");
  EXPECT_FALSE(isSame(copy, two));
  EXPECT_TRUE(copy->evaluateWithObject(dict({{"l", "Jim"}, {"r", "J*"}})));
  EXPECT_FALSE(copy->evaluateWithObject(dict({{"l", "Tim"}, {"r", "J*"}})));
}

TEST(QualifierCopy, OfWhatWasMadeEmpty) {
  EXPECT_EQ(treeText(QXAndQualifier::init()->copy()), "and()");
  EXPECT_TRUE(PropertyValue(QXAndQualifier::init()->copy())["qualifiers"] == nullptr);
  EXPECT_EQ(treeText(QXNotQualifier::init()->copy()), "not(nil)");
  EXPECT_EQ(treeText(QXKeyValueQualifier::init()->copy()), "kv(nil ? nil)");
  EXPECT_EQ(treeText(QXKeyComparisonQualifier::init()->copy()), "kc(nil ? nil)");
}

TEST(QualifierBindings, GiveTheQualifierItself) {
  const auto q = QXKeyValueQualifier::initWithKey(
      "a", "isEqualTo:", QXQualifierVariable::variableWithKey("x"));
  const auto bindings = dict({{"x", 1}});
  EXPECT_TRUE(isSame(q->qualifierWithBindings(bindings, true), q));
  EXPECT_TRUE(isSame(q->qualifierWithBindings(nullptr, false), q));
  EXPECT_TRUE(isSame(q->qualifierByApplyingBindings(bindings), q));
  EXPECT_TRUE(isSame(q->qualifierByApplyingBindingsAllVariablesRequired(dict()), q));
  EXPECT_EQ(q->bindingKeys()->count(), 0U);
  EXPECT_FALSE(isSame(q->bindingKeys(), q->bindingKeys()));
  EXPECT_TRUE(q->keyPathForBindingKey("x") == nullptr);
  EXPECT_FALSE(q->evaluateWithObject(dict({{"a", 1}})));
}

TEST(QualifierBindings, VariablesHaveAKey) {
  EXPECT_EQ(QXQualifierVariable::variableWithKey("x")->key()->utf8(), "x");
  EXPECT_EQ(QXQualifierVariable::initWithKey("x")->description(), "$x");
  EXPECT_EQ(PropertyValue(QXQualifierVariable::initWithKey("x"))["key"], "x");
  const PropertyValue cls = const_cast<Class*>(&classOf<QXQualifierVariable>());
  EXPECT_EQ(performSelector(cls, "variableWithKey:", "y")["key"], "y");
}

TEST(QualifierProperties, AreReadByKey) {
  const PropertyValue kv = QXKeyValueQualifier::initWithKey("a", "isLessThan:", 3);
  EXPECT_EQ(kv["key"], "a");
  EXPECT_EQ(kv["selector"], "isLessThan:");
  EXPECT_EQ(kv["value"], 3);
  const PropertyValue kc = QXKeyComparisonQualifier::initWithLeftKey("a", "isLike:", "b");
  EXPECT_EQ(kc["leftKey"], "a");
  EXPECT_EQ(kc["selector"], "isLike:");
  EXPECT_EQ(kc["rightKey"], "b");
  const PropertyValue none = QXKeyValueQualifier::initWithKey("a", Selector(), nullptr);
  EXPECT_EQ(none["selector"], nullptr);
  EXPECT_EQ(none["value"], nullptr);
  const PropertyValue negation = QXNotQualifier::initWithQualifier(kv.as<QXQualifier>());
  EXPECT_TRUE(isSame(negation["qualifier"], kv));
  EXPECT_EQ(negation.valueForKeyPath("qualifier.key"), "a");
  EXPECT_EQ(PropertyValue(QXAndQualifier::initWithQualifiers(kv.as<QXQualifier>()))["qualifiers"]
                .as<Array>()
                ->count(),
            1U);
}

TEST(QualifierProperties, QualifiersCanBeFilteredByQualifiers) {
  const PropertyValue kv = QXKeyValueQualifier::initWithKey("a", "isLessThan:", 3);
  EXPECT_TRUE(qualifierWithQualifierFormat("selector = %@", "isLessThan:")->evaluateWithObject(kv));
  EXPECT_TRUE(qualifierWithQualifierFormat("value = %d", 3)->evaluateWithObject(kv));
}

TEST(QualifierOperations, CanBePerformedBySelector) {
  const PropertyValue q = equals("a", 1);
  EXPECT_EQ(performSelector(q, "evaluateWithObject:", dict({{"a", 1}})), true);
  EXPECT_EQ(performSelector(q, "evaluateWithObject:", nullptr), false);
  EXPECT_TRUE(
      isSame(performSelector(q, "qualifierWithBindings:requiresAllVariables:", dict(), true), q));
  EXPECT_TRUE(isSame(
      performSelector(q, "qualifierWithBindings:requiresAllVariables:", nullptr, nullptr), q));
  EXPECT_TRUE(isSame(performSelector(q, "qualifierByApplyingBindings:", nullptr), q));
  EXPECT_TRUE(
      isSame(performSelector(q, "qualifierByApplyingBindingsAllVariablesRequired:", nullptr), q));
  EXPECT_EQ(performSelector(q, "bindingKeys").as<Array>()->count(), 0U);
  EXPECT_EQ(performSelector(q, "keyPathForBindingKey:", "x"), nullptr);
  EXPECT_EQ(performSelector(q, "key"), "a");
  const PropertyValue cls = const_cast<Class*>(&classOf<QXQualifier>());
  EXPECT_EQ(treeText(performSelector(cls, "qualifierToMatchAllValues:", dict({{"a", 1}}))),
            "kv(a = 1)");
  EXPECT_EQ(treeText(performSelector(cls, "qualifierToMatchAnyValue:", dict())), "or()");
  EXPECT_EQ(treeText(performSelector(cls, "qualifierWithQualifierFormat:", "a = b")), "kc(a = b)");
}

TEST(QualifierClasses, AreFoundByNameAndDeclareTheirProtocol) {
  for (const char* name : {"QXQualifier", "QXAndQualifier", "QXOrQualifier", "QXNotQualifier",
                           "QXKeyValueQualifier", "QXKeyComparisonQualifier"}) {
    const Class* cls = classNamed(name);
    ASSERT_NE(cls, nullptr) << name;
    EXPECT_TRUE(cls->isSubclassOf(classOf<QXQualifier>())) << name;
    EXPECT_TRUE(cls->conformsToProtocol(QXQualifierEvaluation::protocol())) << name;
    EXPECT_FALSE(cls->conformsToProtocol(QXKeyValueQualifierEvaluation::protocol())) << name;
  }
  ASSERT_NE(classNamed("QXQualifierVariable"), nullptr);
  EXPECT_FALSE(classNamed("QXQualifierVariable")->isSubclassOf(classOf<QXQualifier>()));
}

TEST(QualifierClasses, EqualityIsIdentity) {
  const auto a = equals("a", 1);
  EXPECT_TRUE(a->isEqual(a));
  EXPECT_FALSE(a->isEqual(equals("a", 1)));
}

}  // namespace
}  // namespace qx

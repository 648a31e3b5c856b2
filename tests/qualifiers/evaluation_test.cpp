#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <QXFoundation/exception.h>
#include <QXFoundation/number.h>
#include <QXFoundation/qualifier.h>
#include <QXFoundation/set.h>

namespace qx {
namespace {

Ref<QXQualifier> kv(StringArg key, Selector selector, const PropertyValue& value) {
  return QXKeyValueQualifier::initWithKey(key, selector, value);
}
Ref<QXQualifier> kc(StringArg left, Selector selector, StringArg right) {
  return QXKeyComparisonQualifier::initWithLeftKey(left, selector, right);
}
Ref<QXQualifier> no(const Ref<QXQualifier>& q) { return QXNotQualifier::initWithQualifier(q); }

constexpr Selector kAll[] = {"isEqualTo:",           "isNotEqualTo:",  "isLessThan:",
                             "isLessThanOrEqualTo:", "isGreaterThan:", "isGreaterThanOrEqualTo:",
                             "doesContain:",         "isLike:",        "isCaseInsensitiveLike:"};

// Counts how often it is asked, and answers as told.
class Probe : public QXQualifier {
 public:
  explicit Probe(bool answer) : answer_(answer) {}
  bool evaluateWithObject(const PropertyValue&) const override {
    ++asked;
    return answer_;
  }
  mutable int asked = 0;

 private:
  bool answer_;
};
void describe(ClassBuilder<Probe>& c) { c.name("EvaluationProbe").inherits<QXQualifier>(); }

TEST(KeyValueEvaluation, ANilValueKnowsTwoRules) {
  const auto object = dict({{"other", 1}});
  EXPECT_TRUE(kv("name", "isEqualTo:", null)->evaluateWithObject(object));
  EXPECT_FALSE(kv("name", "isNotEqualTo:", null)->evaluateWithObject(object));
  EXPECT_FALSE(kv("name", "isEqualTo:", nullptr)->evaluateWithObject(object));
  EXPECT_TRUE(kv("name", "isNotEqualTo:", nullptr)->evaluateWithObject(object));
  EXPECT_FALSE(kv("name", "isEqualTo:", "x")->evaluateWithObject(object));
  EXPECT_TRUE(kv("name", "isNotEqualTo:", "x")->evaluateWithObject(object));
  for (std::size_t i = 2; i < std::size(kAll); ++i) {
    for (const PropertyValue& value : {PropertyValue(), PropertyValue(null), PropertyValue("x")}) {
      EXPECT_FALSE(kv("name", kAll[i], value)->evaluateWithObject(object)) << kAll[i].text();
    }
  }
  EXPECT_FALSE(kv("name", Selector(), null)->evaluateWithObject(object));
  EXPECT_FALSE(kv("name", "length", null)->evaluateWithObject(object));
}

TEST(KeyValueEvaluation, AStoredNullIsAValue) {
  const auto object = dict({{"name", null}});
  EXPECT_TRUE(kv("name", "isEqualTo:", null)->evaluateWithObject(object));
  EXPECT_FALSE(kv("name", "isNotEqualTo:", null)->evaluateWithObject(object));
  EXPECT_FALSE(kv("name", "isEqualTo:", nullptr)->evaluateWithObject(object));
  EXPECT_TRUE(kv("name", "isNotEqualTo:", nullptr)->evaluateWithObject(object));
  EXPECT_FALSE(kv("name", "isLessThan:", 3)->evaluateWithObject(object));
  EXPECT_FALSE(kv("name", "isLike:", "*")->evaluateWithObject(object));
}

struct Comparison {
  PropertyValue left;
  Selector selector;
  PropertyValue right;
  bool result;
};

TEST(KeyValueEvaluation, AppliesTheOperation) {
  const Comparison cases[] = {
      {1, "isEqualTo:", 1, true},
      {1, "isEqualTo:", 1.0, true},
      {1, "isEqualTo:", true, true},
      {1, "isEqualTo:", "1", false},  // nothing is converted
      {"1", "isEqualTo:", 1, false},
      {"1", "isNotEqualTo:", 1, true},
      {1, "isEqualTo:", nullptr, false},
      {1, "isNotEqualTo:", nullptr, true},
      {1, "isLessThan:", nullptr, false},
      {"a", "isLike:", nullptr, false},
      {1, "isLessThan:", 2, true},
      {2, "isLessThan:", 2, false},
      {2, "isLessThanOrEqualTo:", 2, true},
      {3, "isLessThanOrEqualTo:", 2, false},
      {2, "isGreaterThan:", 1.5, true},
      {2, "isGreaterThan:", 2, false},
      {2, "isGreaterThanOrEqualTo:", 2, true},
      {1, "isGreaterThanOrEqualTo:", 2, false},
      {2, "isLessThan:", "3", false},  // kinds that do not compare
      {2, "isGreaterThanOrEqualTo:", "1", false},
      {"b", "isGreaterThan:", "a", true},
      {"B", "isGreaterThan:", "a", false},
      {"Jim", "isLike:", "J*", true},
      {"Jim", "isLike:", "j*", false},
      {"Jim", "isCaseInsensitiveLike:", "j*", true},
      {"Jim", "isLike:", 3, false},
      {3, "isLike:", "3", false},
      {3, "doesContain:", 3, false},
      {"Jim", "doesContain:", "im", true},
      {array("a", 1), "doesContain:", 1, true},
      {array("a", 1), "doesContain:", 2, false},
      {array("a", 1), "isEqualTo:", array("a", 1.0), true},
      {dict({{"k", 5}}), "doesContain:", 5, true},
      {dict({{"k", 5}}), "doesContain:", "k", false},
      {Set::from(array(1, 2)), "doesContain:", 2, true},
      {DecimalNumber::initWithString("0.5"), "isEqualTo:", 0.5, true},
      {0.5, "isEqualTo:", DecimalNumber::initWithString("0.5"), true},
      {true, "isGreaterThan:", 0, true},
      {"abc", "hasPrefix:", "ab", true},  // any operation of one argument will do
      {"abc", "hasPrefix:", "b", false},
      {3, "hasPrefix:", "3", false},
      {1, Selector(), 1, false},
  };
  for (const Comparison& c : cases) {
    EXPECT_EQ(kv("k", c.selector, c.right)->evaluateWithObject(dict({{"k", c.left}})), c.result)
        << c.left.description() << " " << c.selector.text() << " " << c.right.description();
  }
}

TEST(KeyValueEvaluation, FollowsKeyPaths) {
  const auto object =
      dict({{"a", dict({{"b", dict({{"c", 3}})}})}, {"list", array(dict({{"n", 1}}), dict())}});
  EXPECT_TRUE(kv("a.b.c", "isEqualTo:", 3)->evaluateWithObject(object));
  EXPECT_TRUE(kv("a.x.c", "isEqualTo:", null)->evaluateWithObject(object));
  EXPECT_TRUE(kv("list.n", "isEqualTo:", array(1, null))->evaluateWithObject(object));
  EXPECT_TRUE(kv("", "isEqualTo:", null)->evaluateWithObject(object));
  EXPECT_TRUE(kv("a..b", "isEqualTo:", null)->evaluateWithObject(object));
  EXPECT_TRUE(kv(nullptr, "isEqualTo:", null)->evaluateWithObject(object));
  EXPECT_TRUE(kv("k", "isEqualTo:", null)->evaluateWithObject(5));
  EXPECT_TRUE(kv("a.length", "isEqualTo:", 5)->evaluateWithObject(dict({{"a", "12345"}})));
}

TEST(KeyValueEvaluation, EveryOperationIsFalseForANilObject) {
  for (const Selector s : kAll) {
    EXPECT_FALSE(kv("k", s, null)->evaluateWithObject(nullptr));
    EXPECT_FALSE(kc("k", s, "k")->evaluateWithObject(nullptr));
  }
}

TEST(KeyComparisonEvaluation, ComparesTheTwoValues) {
  const auto object = dict({{"a", 1}, {"b", 2}, {"s", "Jim"}, {"p", "J*"}, {"n", null}});
  EXPECT_TRUE(kc("a", "isLessThan:", "b")->evaluateWithObject(object));
  EXPECT_FALSE(kc("b", "isLessThan:", "a")->evaluateWithObject(object));
  EXPECT_TRUE(kc("s", "isLike:", "p")->evaluateWithObject(object));
  EXPECT_TRUE(kc("n", "isEqualTo:", "n")->evaluateWithObject(object));
  EXPECT_FALSE(kc("a", "isEqualTo:", "missing")->evaluateWithObject(object));
  EXPECT_TRUE(kc("a", "isNotEqualTo:", "missing")->evaluateWithObject(object));
  EXPECT_FALSE(kc("a", "isEqualTo:", nullptr)->evaluateWithObject(object));
  EXPECT_TRUE(kc("a", "isNotEqualTo:", nullptr)->evaluateWithObject(object));
  EXPECT_FALSE(kc("a", Selector(), "a")->evaluateWithObject(object));
  EXPECT_FALSE(kc("a", "isLike:", "p")->evaluateWithObject(object));
}

TEST(KeyComparisonEvaluation, HasNoRuleForNil) {
  const auto object = dict({{"a", 1}, {"n", null}});
  for (const Selector s : kAll) {
    EXPECT_FALSE(kc("missing", s, "n")->evaluateWithObject(object));
    EXPECT_FALSE(kc("missing", s, "missing")->evaluateWithObject(object));
    EXPECT_FALSE(kc("missing", s, "a")->evaluateWithObject(object));
  }
}

TEST(CompoundEvaluation, EmptyOnes) {
  for (const auto& members : {array(), Ref<Array>()}) {
    EXPECT_TRUE(QXAndQualifier::initWithQualifierArray(members)->evaluateWithObject(dict()));
    EXPECT_TRUE(QXAndQualifier::initWithQualifierArray(members)->evaluateWithObject(3));
    EXPECT_FALSE(QXAndQualifier::initWithQualifierArray(members)->evaluateWithObject(nullptr));
    EXPECT_FALSE(QXOrQualifier::initWithQualifierArray(members)->evaluateWithObject(dict()));
    EXPECT_FALSE(QXOrQualifier::initWithQualifierArray(members)->evaluateWithObject(nullptr));
  }
}

TEST(CompoundEvaluation, StopsAtTheFirstThatDecides) {
  const auto yes = make<Probe>(true);
  const auto never = make<Probe>(false);
  const auto late = make<Probe>(true);
  EXPECT_FALSE(QXAndQualifier::initWithQualifiers(yes, never, late)->evaluateWithObject(dict()));
  EXPECT_EQ(yes->asked, 1);
  EXPECT_EQ(never->asked, 1);
  EXPECT_EQ(late->asked, 0);
  EXPECT_TRUE(
      QXOrQualifier::initWithQualifierArray(array(never, yes, late))->evaluateWithObject(dict()));
  EXPECT_EQ(never->asked, 2);
  EXPECT_EQ(yes->asked, 2);
  EXPECT_EQ(late->asked, 0);
}

TEST(CompoundEvaluation, AsksNoMemberAboutANilObject) {
  const auto yes = make<Probe>(true);
  EXPECT_FALSE(QXAndQualifier::initWithQualifiers(yes)->evaluateWithObject(nullptr));
  EXPECT_FALSE(QXOrQualifier::initWithQualifiers(yes)->evaluateWithObject(nullptr));
  EXPECT_EQ(yes->asked, 0);
}

TEST(CompoundEvaluation, NotPassesANilObjectOn) {
  EXPECT_TRUE(no(kv("a", "isEqualTo:", 1))->evaluateWithObject(nullptr));
  EXPECT_TRUE(no(QXAndQualifier::init())->evaluateWithObject(nullptr));
  EXPECT_FALSE(no(no(kv("a", "isEqualTo:", 1)))->evaluateWithObject(nullptr));
  const auto yes = make<Probe>(true);
  EXPECT_FALSE(no(yes)->evaluateWithObject(nullptr));
  EXPECT_EQ(yes->asked, 1);
}

TEST(CompoundEvaluation, NotOfNothingIsFalse) {
  EXPECT_FALSE(no(nullptr)->evaluateWithObject(dict()));
  EXPECT_FALSE(no(nullptr)->evaluateWithObject(nullptr));
  EXPECT_TRUE(no(no(nullptr))->evaluateWithObject(dict()));
}

TEST(CompoundEvaluation, TheBaseClassIsFalse) {
  EXPECT_FALSE(QXQualifier::init()->evaluateWithObject(dict()));
  EXPECT_TRUE(no(QXQualifier::init())->evaluateWithObject(dict()));
}

TEST(CompoundEvaluation, ANestedTree) {
  // (a = 1 and not b = 2) or (c = 3 and (d = 4 or e = 5))
  const auto tree = QXOrQualifier::initWithQualifierArray(array(
      QXAndQualifier::initWithQualifiers(kv("a", "isEqualTo:", 1), no(kv("b", "isEqualTo:", 2))),
      QXAndQualifier::initWithQualifiers(
          kv("c", "isEqualTo:", 3), QXOrQualifier::initWithQualifierArray(array(
                                        kv("d", "isEqualTo:", 4), kv("e", "isEqualTo:", 5))))));
  for (int bits = 0; bits < 32; ++bits) {
    const auto object = MutableDictionary::init();
    const bool a = (bits & 1) != 0, b = (bits & 2) != 0, c = (bits & 4) != 0, d = (bits & 8) != 0,
               e = (bits & 16) != 0;
    if (a) object->setObject(1, "a");
    if (b) object->setObject(2, "b");
    if (c) object->setObject(3, "c");
    if (d) object->setObject(4, "d");
    if (e) object->setObject(5, "e");
    EXPECT_EQ(tree->evaluateWithObject(object), (a && !b) || (c && (d || e))) << bits;
  }
}

// A member that is no qualifier.
class Evaluator : public Object, public QXQualifierEvaluation {
 public:
  bool evaluateWithObject(const PropertyValue& object) const override { return object == 7; }
};
void describe(ClassBuilder<Evaluator>& c) { c.name("Evaluator").conforms<QXQualifierEvaluation>(); }

class BySelector : public Object {
 public:
  bool evaluate(const PropertyValue& object) const { return object == 8; }
};
void describe(ClassBuilder<BySelector>& c) {
  c.name("BySelector").operation("evaluateWithObject:", &BySelector::evaluate);
}

TEST(CompoundEvaluation, MembersNeedNotBeQualifiers) {
  const auto both =
      QXOrQualifier::initWithQualifierArray(array(make<Evaluator>(), make<BySelector>()));
  EXPECT_TRUE(both->evaluateWithObject(7));
  EXPECT_TRUE(both->evaluateWithObject(8));
  EXPECT_FALSE(both->evaluateWithObject(9));
}

TEST(CompoundEvaluation, AMemberThatCanNotBeEvaluatedRaises) {
  for (const PropertyValue& member : {PropertyValue(3), PropertyValue("x"), PropertyValue(null)}) {
    EXPECT_THROW((void)QXAndQualifier::initWithQualifierArray(array(member))->evaluateWithObject(1),
                 InvalidArgumentException);
  }
}

// An object that answers for itself.
class SelfEvaluating : public Object,
                       public QXKeyValueQualifierEvaluation,
                       public QXKeyComparisonQualifierEvaluation {
 public:
  bool evaluateWithKey(StringArg key, Selector s, const PropertyValue& value) const override {
    calls.push_back(key.utf8() + " " + std::string(s.text()) + " " + value.description());
    return answer;
  }
  bool evaluateWithLeftKey(StringArg left, Selector s, StringArg right) const override {
    calls.push_back(left.utf8() + " " + std::string(s.text()) + " [" +
                    (right.isNil() ? "nil" : right.utf8()) + "]");
    return answer;
  }
  PropertyValue valueForUndefinedKey(StringArg) const override {
    calls.push_back("asked for a value");
    return nullptr;
  }
  bool answer = true;
  mutable std::vector<std::string> calls;
};
void describe(ClassBuilder<SelfEvaluating>& c) {
  c.name("SelfEvaluating")
      .conforms<QXKeyValueQualifierEvaluation>()
      .conforms<QXKeyComparisonQualifierEvaluation>();
}

TEST(CustomEvaluation, TheObjectAnswersForItself) {
  const auto object = make<SelfEvaluating>();
  EXPECT_TRUE(kv("a.b", "isLessThan:", 3)->evaluateWithObject(object));
  EXPECT_TRUE(kv("x", Selector(), nullptr)->evaluateWithObject(object));
  EXPECT_TRUE(kc("l", "isLike:", "r")->evaluateWithObject(object));
  EXPECT_TRUE(kc("l", Selector(), nullptr)->evaluateWithObject(object));
  object->answer = false;
  EXPECT_FALSE(kv("a", "isNotEqualTo:", nullptr)->evaluateWithObject(object));
  const std::vector<std::string> calls = {"a.b isLessThan: 3", "x  ", "l isLike: [r]", "l  [nil]",
                                          "a isNotEqualTo: "};
  EXPECT_EQ(object->calls, calls);
}

// Only one of the two protocols.
class HalfEvaluating : public Object, public QXKeyComparisonQualifierEvaluation {
 public:
  bool evaluateWithLeftKey(StringArg, Selector, StringArg) const override { return true; }
  int n = 3;
};
void describe(ClassBuilder<HalfEvaluating>& c) {
  c.name("HalfEvaluating")
      .conforms<QXKeyComparisonQualifierEvaluation>()
      .property("n", &HalfEvaluating::n);
}

TEST(CustomEvaluation, EachProtocolStandsForItself) {
  const auto object = make<HalfEvaluating>();
  EXPECT_TRUE(kv("n", "isEqualTo:", 3)->evaluateWithObject(object));
  EXPECT_FALSE(kv("n", "isEqualTo:", 4)->evaluateWithObject(object));
  EXPECT_TRUE(kc("n", Selector(), "n")->evaluateWithObject(object));
}

// An object whose getter takes the world apart.
class Meddler : public Object {
 public:
  int meddle() const {
    if (act) act();
    return 1;
  }
  std::function<void()> act;
};
void describe(ClassBuilder<Meddler>& c) { c.name("Meddler").property("meddle", &Meddler::meddle); }

TEST(CustomEvaluation, AGetterMayChangeTheMembers) {
  const auto members = MutableArray::init();
  const auto object = make<Meddler>();
  object->act = [&] { members->removeAllObjects(); };
  members->addObject(kv("meddle", "isEqualTo:", 1));
  members->addObject(kv("never", "isEqualTo:", 1));
  const auto all = QXAndQualifier::initWithQualifierArray(members);
  EXPECT_TRUE(all->evaluateWithObject(object));  // the second member is gone when its turn comes
  EXPECT_EQ(members->count(), 0U);
}

TEST(CustomEvaluation, AGetterMayDropWhatItWasFoundIn) {
  const auto object = MutableDictionary::init();
  auto meddler = make<Meddler>();
  meddler->act = [&] { object->removeAllObjects(); };
  object->setObject(std::exchange(meddler, nullptr), "m");
  EXPECT_TRUE(kv("m.meddle", "isEqualTo:", 1)->evaluateWithObject(object));
  EXPECT_EQ(object->count(), 0U);
}

TEST(CustomEvaluation, AGetterOfTheRightKeyMayDropTheLeftValue) {
  const auto object = MutableDictionary::init();
  auto meddler = make<Meddler>();
  meddler->act = [&] { object->removeObjectForKey("left"); };
  object->setObject(std::exchange(meddler, nullptr), "m");
  object->setObject(std::string(100, 'x'), "left");
  EXPECT_TRUE(kc("left", "isNotEqualTo:", "m.meddle")->evaluateWithObject(object));
  EXPECT_EQ(object->count(), 1U);
}

TEST(EvaluationThreads, OneQualifierIsEvaluatedBySeveral) {
  const auto q = qualifierWithQualifierFormat("age > %d and name like %@ and not tags contains %@",
                                              3, "J*", "x");
  const auto yes = dict({{"age", 5}, {"name", "Jim"}, {"tags", array("a")}});
  const auto nope = dict({{"age", 5}, {"name", "Jim"}, {"tags", array("x")}});
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 2000; ++i)
        wrong += !q->evaluateWithObject(yes) + q->evaluateWithObject(nope);
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace qx

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include <QXFoundation/exception.h>
#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier_key.h>

#include "tests/qualifiers/generator.h"

namespace qx {
namespace {

std::vector<std::string> names(const Ref<MutableArray>& hits) {
  std::vector<std::string> all;
  for (const PropertyValue& v : *hits) all.push_back(v["name"].description());
  return all;
}
using Names = std::vector<std::string>;

class Person : public Object {
 public:
  Person(std::string n, int a) : name(std::move(n)), age(a) {}
  std::string name;
  int age;
  bool adult() const { return age >= 18; }
  Ref<Person> boss;
};
void describe(ClassBuilder<Person>& c) {
  c.name("FilterPerson").property("name", &Person::name).property("age", &Person::age);
  c.property("adult", &Person::adult).property("boss", &Person::boss);
}

TEST(Filter, KeepsOrderAndDuplicates) {
  const auto a = dict({{"name", "a"}, {"n", 3}});
  const auto b = dict({{"name", "b"}, {"n", 1}});
  const auto c = dict({{"name", "c"}, {"n", 5}});
  const auto hits = filteredArrayUsingQualifier(array(c, a, b, a), key("n") > 2);
  EXPECT_EQ(names(hits), (Names{"c", "a", "a"}));
  EXPECT_TRUE(isSame(hits->objectAtIndex(1), a));
}

TEST(Filter, GivesANewMutableArray) {
  const auto list = array(1, 2);
  const auto hits = filteredArrayUsingQualifier(list, QXAndQualifier::init());
  EXPECT_FALSE(isSame(hits, list));
  hits->addObject(3);
  EXPECT_EQ(list->count(), 2U);
  EXPECT_STREQ(hits->cls().name(), "NSMutableArray");
}

TEST(Filter, ANilQualifierKeepsNothing) {
  EXPECT_EQ(filteredArrayUsingQualifier(array(1, 2), nullptr)->count(), 0U);
  EXPECT_TRUE(filteredArrayUsingQualifier(nullptr, QXAndQualifier::init()) == nullptr);
  EXPECT_TRUE(filteredArrayUsingQualifier(nullptr, nullptr) == nullptr);
  EXPECT_EQ(filteredArrayUsingQualifier(array(), QXAndQualifier::init())->count(), 0U);
}

TEST(Filter, CanBePerformedBySelector) {
  const PropertyValue list = array(dict({{"name", "a"}}), dict());
  const PropertyValue q = (key("name") == "a").qualifier();
  EXPECT_EQ(performSelector(list, "filteredArrayUsingQualifier:", q).as<Array>()->count(), 1U);
  EXPECT_EQ(performSelector(list, "filteredArrayUsingQualifier:", nullptr).as<Array>()->count(),
            0U);
  EXPECT_TRUE(
      PropertyValue(MutableArray::init()).respondsToSelector("filteredArrayUsingQualifier:"));
  EXPECT_THROW((void)performSelector(list, "filteredArrayUsingQualifier:", "text"),
               InvalidArgumentException);
}

TEST(Filter, ElementsOfEveryKind) {
  const auto person = make<Person>("Jim", 30);
  const auto list =
      array(dict({{"name", "Jim"}}), person, "text", 5, null, array(dict({{"name", "Jim"}})), true,
            const_cast<Class*>(&classOf<Person>()));
  EXPECT_EQ(filteredArrayUsingQualifier(list, key("name") == "Jim")->count(), 2U);
  EXPECT_EQ(filteredArrayUsingQualifier(list, key("length") == 4)->count(), 1U);
  EXPECT_EQ(filteredArrayUsingQualifier(list, key("name") == null)->count(), 4U);
  EXPECT_EQ(filteredArrayUsingQualifier(list, key("name") == "FilterPerson")->count(), 1U);
  EXPECT_EQ(filteredArrayUsingQualifier(list, key("name") == array("Jim"))->count(), 1U);
}

TEST(Filter, PropertiesGettersAndPaths) {
  const auto boss = make<Person>("Ann", 50);
  const auto jim = make<Person>("Jim", 17);
  jim->boss = boss;
  const auto list = array(boss, jim);
  EXPECT_EQ(names(filteredArrayUsingQualifier(list, key("adult") == true)), Names{"Ann"});
  EXPECT_EQ(names(filteredArrayUsingQualifier(list, key("boss.name") == "Ann")), Names{"Jim"});
  EXPECT_EQ(names(filteredArrayUsingQualifier(list, key("boss.name.length") == 3)), Names{"Jim"});
  EXPECT_EQ(names(filteredArrayUsingQualifier(list, key("boss") == null)), Names{"Ann"});
  EXPECT_EQ(names(filteredArrayUsingQualifier(list, key("nothing") == null)),
            (Names{"Ann", "Jim"}));
  EXPECT_EQ(names(filteredArrayUsingQualifier(list, key("age") < key("boss.age"))), Names{"Jim"});
  EXPECT_EQ(names(filteredArrayUsingQualifier(list, key("name.length") == key("boss.name.length"))),
            Names{"Jim"});
}

TEST(Filter, DictionariesOfManyShapes) {
  const auto list = MutableArray::init();
  for (int i = 0; i < 500; ++i) {
    const auto d = MutableDictionary::init();
    // Keys before it move the slot about; more than sixteen make a shape of its own.
    for (int k = 0; k < i % 23; ++k) d->setObject(k, "k" + std::to_string(k));
    if (i % 3 != 0) d->setObject(i, "n");
    list->addObject(i % 2 == 0 ? PropertyValue(d) : PropertyValue(d->copy()));
  }
  const auto hits = filteredArrayUsingQualifier(list, key("n") >= 250);
  std::size_t expected = 0;
  for (int i = 250; i < 500; ++i) expected += i % 3 != 0;
  EXPECT_EQ(hits->count(), expected);
  EXPECT_EQ(filteredArrayUsingQualifier(list, key("n") == null)->count(), 167U);
}

TEST(Filter, MoreKeysThanALayoutHolds) {
  Ref<Array> members = array();
  const auto object = MutableDictionary::init();
  for (int i = 0; i < 200; ++i) {
    const std::string name = "k" + std::to_string(i);
    object->setObject(i, name);
    members = members->arrayByAddingObject(Ref<QXQualifier>(key(name) == i));
  }
  const auto q = QXAndQualifier::initWithQualifierArray(members);
  EXPECT_EQ(filteredArrayUsingQualifier(array(object, dict({{"k0", 0}})), q)->count(), 1U);
}

// Code of the application that runs in the middle.
class Acting : public QXQualifier {
 public:
  bool evaluateWithObject(const PropertyValue& object) const override { return act(object); }
  std::function<bool(const PropertyValue&)> act;
};
void describe(ClassBuilder<Acting>& c) { c.name("FilterActing").inherits<QXQualifier>(); }

TEST(Filter, TheArrayMayBeChangedMeanwhile) {
  const auto list = MutableArray::init();
  for (int i = 0; i < 10; ++i) list->addObject(dict({{"n", i}}));
  const auto clearing = make<Acting>();
  clearing->act = [&](const PropertyValue& object) {
    list->removeAllObjects();
    return object["n"].intValue() % 2 == 0;
  };
  EXPECT_EQ(filteredArrayUsingQualifier(list, clearing)->count(), 5U);
  EXPECT_EQ(list->count(), 0U);
}

TEST(Filter, ADictionaryMayBeChangedMeanwhile) {
  const auto changing = make<Acting>();
  changing->act = [](const PropertyValue& object) {
    object.setValue(nullptr, "a");  // b moves to another slot
    return true;
  };
  const auto list = MutableArray::init();
  for (int i = 0; i < 4; ++i) {
    const auto d = MutableDictionary::init();
    d->setObject("x", "a");
    d->setObject(i, "b");
    list->addObject(d);
  }
  const auto q = QXAndQualifier::initWithQualifiers(key("a") == "x", changing, key("a") == null,
                                                    key("b") >= 2);
  EXPECT_EQ(filteredArrayUsingQualifier(list, q)->count(), 2U);
}

TEST(Filter, ACallersMutableMembersAreReadEachTime) {
  const auto members = MutableArray::init();
  const auto growing = make<Acting>();
  growing->act = [&](const PropertyValue&) {
    members->addObject(QXQualifier::init());  // false from the next element on
    return true;
  };
  members->addObject(growing);
  const auto q =
      QXAndQualifier::initWithQualifiers(QXAndQualifier::initWithQualifierArray(members));
  // The first element meets the new member at once.
  EXPECT_EQ(filteredArrayUsingQualifier(array(1, 2, 3), q)->count(), 0U);
  EXPECT_EQ(members->count(), 4U);
}

TEST(Filter, AMemberMayDropItselfAndItsTree) {
  const auto members = MutableArray::init();
  auto dropping = make<Acting>();
  dropping->act = [&](const PropertyValue&) {
    members->removeAllObjects();
    return true;
  };
  members->addObject(std::exchange(dropping, nullptr));
  Ref<QXQualifier> q =
      QXNotQualifier::initWithQualifier(QXAndQualifier::initWithQualifierArray(members));
  EXPECT_EQ(filteredArrayUsingQualifier(array(1, 2), q)->count(), 0U);
}

TEST(Filter, ExceptionsGoThrough) {
  const auto raising = make<Acting>();
  raising->act = [](const PropertyValue&) -> bool { throw RangeException("stop"); };
  EXPECT_THROW((void)filteredArrayUsingQualifier(array(1), raising), RangeException);
}

// The numbers under "n" of what is kept.
std::vector<int> kept(const Ref<Array>& list, const Ref<QXQualifier>& q) {
  std::vector<int> all;
  const auto hits = filteredArrayUsingQualifier(list, q);
  for (const PropertyValue& hit : *hits) {
    EXPECT_TRUE(q->evaluateWithObject(hit));
    all.push_back(hit["n"].intValue());
  }
  std::size_t plain = 0;
  for (const PropertyValue& object : *list) plain += q->evaluateWithObject(object) ? 1 : 0;
  EXPECT_EQ(plain, all.size());
  return all;
}
using Numbers = std::vector<int>;

TEST(Filter, OperatorsOfTheApplication) {
  const auto list = MutableArray::init();
  for (int n = 1; n <= 6; ++n) {
    list->addObject(
        dict({{"n", n}, {"g", make<generated::Grade>(n)}, {"h", make<generated::Grade>(7 - n)}}));
  }
  list->addObject(dict({{"n", 7}, {"g", 3}, {"h", 3}}));  // has no such operator
  list->addObject(dict({{"n", 8}, {"h", make<generated::Grade>(3)}}));
  const PropertyValue three = make<generated::Grade>(3);
  EXPECT_EQ(kept(list, key("g").with("isNear:", three)), (Numbers{2, 3, 4}));
  EXPECT_EQ(kept(list, key("g").with("isNear:", 3)), (Numbers{2, 3}));
  EXPECT_EQ(kept(list, key("g").with("isNear:", nullptr)), Numbers());
  EXPECT_EQ(kept(list, !key("g").with("isNear:", three)), (Numbers{1, 5, 6, 7, 8}));
  EXPECT_EQ(kept(list, key("g").with("isNear:", key("h"))), (Numbers{3, 4}));
  EXPECT_EQ(kept(list, key("g").with("isNear:", key("n"))), (Numbers{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(kept(list, key("g").with("isNear:", key("none"))), Numbers());
  // Its own order and equality stand before the library's.
  EXPECT_EQ(kept(list, key("g") < three), (Numbers{4, 5, 6}));
  EXPECT_EQ(kept(list, key("g") < 9), Numbers{7});
  EXPECT_EQ(kept(list, key("g") == 3), (Numbers{3, 7}));
  EXPECT_EQ(kept(list, key("g") != 3), (Numbers{1, 2, 4, 5, 6, 8}));
  EXPECT_EQ(kept(list, key("g") < key("h")), (Numbers{4, 5, 6}));
  EXPECT_EQ(kept(list, key("g") == key("n")), (Numbers{1, 2, 3, 4, 5, 6}));
}

TEST(Filter, ObjectsThatAnswerForThemselves) {
  const auto judge = make<generated::Judge>();
  const auto half = make<generated::HalfJudge>();
  const PropertyValue plain = dict({{"i", 0}});
  const auto list = array(judge, plain, half, judge, plain, half);
  const auto count = [&](const Ref<QXQualifier>& q, const PropertyValue& object) {
    const auto hits = filteredArrayUsingQualifier(list, q);
    std::size_t found = 0;
    for (const PropertyValue& hit : *hits) found += isSame(hit, object) ? 1 : 0;
    EXPECT_EQ(found, q->evaluateWithObject(object) ? 2U : 0U);
    return found;
  };
  // The judge wants an even sum of the lengths of key and operator (here ten), the half judge a
  // number as constant.
  const Ref<QXQualifier> zero = key("i") == 0;
  EXPECT_EQ(count(zero, judge), 0U);
  EXPECT_EQ(count(zero, half), 2U);
  EXPECT_EQ(count(zero, plain), 2U);
  const Ref<QXQualifier> one = key("ii") == 1;
  EXPECT_EQ(count(one, judge), 2U);
  EXPECT_EQ(count(one, half), 2U);
  EXPECT_EQ(count(one, plain), 0U);
  const Ref<QXQualifier> text = key("i") == "x";
  EXPECT_EQ(count(text, judge), 0U);
  EXPECT_EQ(count(text, half), 0U);
  EXPECT_EQ(count(text, plain), 0U);
  // Key pairs are put to the judge alone; the other one is read.
  const Ref<QXQualifier> pair = key("i") == key("i");
  EXPECT_EQ(count(pair, judge), 0U);
  EXPECT_EQ(count(pair, half), 2U);
  EXPECT_EQ(count(pair, plain), 2U);
  const Ref<QXQualifier> longer = key("iii") == key("i");
  EXPECT_EQ(count(longer, judge), 2U);
  EXPECT_EQ(count(longer, half), 0U);
  EXPECT_EQ(count(!QualifierExpr(longer), half), 2U);
}

}  // namespace
}  // namespace qx

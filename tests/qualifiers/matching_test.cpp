#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <QXFoundation/exception.h>
#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier_key.h>

#include "tests/qualifiers/generator.h"

namespace qx {
namespace {

struct Row {
  std::string name;
  int age = 0;
  bool active = false;
  double score = 0;
  float ratio = 0;
  std::uint64_t big = 0;
  std::optional<int> maybe;
  PropertyValue any;
  int twice() const { return 2 * age; }
};
void describe(ClassBuilder<Row>& c) {
  c.name("MatchingRow")
      .property("name", &Row::name)
      .property("age", &Row::age)
      .property("active", &Row::active);
  c.property("score", &Row::score).property("ratio", &Row::ratio).property("big", &Row::big);
  c.property("maybe", &Row::maybe).property("any", &Row::any).property("twice", &Row::twice);
}

class Person : public Object {
 public:
  explicit Person(int a) : age(a) {}
  int age;
};
class Boss : public Person {
 public:
  explicit Boss(int a) : Person(a) {}
  int staff() const { return 7; }
};
void describe(ClassBuilder<Person>& c) { c.name("MatchingPerson").property("age", &Person::age); }
void describe(ClassBuilder<Boss>& c) {
  c.name("MatchingBoss").inherits<Person>().property("staff", &Boss::staff);
}

bool matches(const Ref<QXQualifier>& q, const Row& row) { return Matching<Row>(q)(row); }

TEST(Matching, IsAPredicateForAlgorithms) {
  std::vector<Row> rows(10);
  for (int i = 0; i < 10; ++i) rows[static_cast<std::size_t>(i)].age = i;
  const Matching<Row> old(key("age") >= 7);
  EXPECT_EQ(std::count_if(rows.begin(), rows.end(), old), 3);
  EXPECT_EQ(std::find_if(rows.begin(), rows.end(), old)->age, 7);
  std::erase_if(rows, old);
  EXPECT_EQ(rows.size(), 7U);
  EXPECT_TRUE(std::none_of(rows.begin(), rows.end(), Matching<Row>(old)));
  static_assert(std::is_copy_constructible_v<Matching<Row>> &&
                std::is_copy_assignable_v<Matching<Row>>);
}

TEST(Matching, KeepsItsQualifierAlive) {
  std::optional<Matching<Row>> m;
  {
    const auto q = qualifierWithQualifierFormat("name like %@", "J*");
    m.emplace(q);
  }
  Row row;
  row.name = "Jim";
  EXPECT_TRUE((*m)(row));
}

TEST(Matching, ANilQualifierAcceptsNothing) {
  EXPECT_FALSE(Matching<Row>(nullptr)(Row{}));
  EXPECT_FALSE(Matching<Person>(nullptr)(make<Person>(1)));
  EXPECT_FALSE(Matching<Person>(nullptr)(Ref<Person>()));
}

TEST(Matching, FieldsOfEveryKind) {
  Row row;
  row.name = "Jim";
  row.age = 30;
  row.active = true;
  row.score = 2.5;
  row.ratio = 0.1F;
  row.big = std::numeric_limits<std::uint64_t>::max();
  row.any = array(1, 2);
  EXPECT_TRUE(matches(key("name") == "Jim", row));
  EXPECT_FALSE(matches(key("name") == "jim", row));
  EXPECT_TRUE(matches(key("name") != 3, row));
  EXPECT_TRUE(matches(key("name") > "Jil", row));
  EXPECT_TRUE(matches(key("name").like("J?m"), row));
  EXPECT_TRUE(matches(key("name").caseInsensitiveLike("j*"), row));
  EXPECT_TRUE(matches(key("name").contains("im"), row));
  EXPECT_FALSE(matches(key("name").like(3), row));
  EXPECT_TRUE(matches(key("age") == 30.0, row));
  EXPECT_TRUE(matches(key("age") < 30.5, row));
  EXPECT_FALSE(matches(key("age") == "30", row));
  EXPECT_FALSE(matches(key("age").like("30"), row));
  EXPECT_TRUE(matches(key("active") == true, row));
  EXPECT_TRUE(matches(key("active") == 1, row));
  EXPECT_TRUE(matches(key("score") > 2, row));
  EXPECT_TRUE(matches(key("score") <= 2.5, row));
  EXPECT_TRUE(matches(key("ratio") == 0.1F, row));
  EXPECT_FALSE(matches(key("ratio") == 0.1, row));
  EXPECT_TRUE(matches(key("big") > std::numeric_limits<std::int64_t>::max(), row));
  EXPECT_TRUE(matches(key("big") > -1, row));
  EXPECT_TRUE(matches(key("maybe") == null, row));
  EXPECT_TRUE(matches(key("any").contains(2), row));
  EXPECT_TRUE(matches(key("twice") == 60, row));
  EXPECT_TRUE(matches(key("unknown") == null, row));
  EXPECT_TRUE(matches(key("unknown") != nullptr, row));
  row.maybe = 4;
  row.any = nullptr;
  EXPECT_TRUE(matches(key("maybe") == 4, row));
  EXPECT_TRUE(matches(key("any") == null, row));
}

TEST(Matching, TextBeyondAscii) {
  const std::string texts[] = {"",
                               "a",
                               "z",
                               "\xC3\xA4",
                               "\xF0\x9F\x98\x80",
                               "\xEF\xBF\xBD",
                               "\xEF\xBF\xA6",
                               "x\xFFy",
                               "x\xEF\xBF\xBDy"};
  for (const std::string& field : texts) {
    for (const std::string& constant : texts) {
      Row row;
      row.name = field;
      const auto object = dict({{"name", field}});
      for (const Ref<QXQualifier>& q :
           {Ref<QXQualifier>(key("name") == constant), Ref<QXQualifier>(key("name") < constant),
            Ref<QXQualifier>(key("name") >= constant), Ref<QXQualifier>(key("name").like(constant)),
            Ref<QXQualifier>(key("name").like("?")), Ref<QXQualifier>(key("name") != constant)}) {
        EXPECT_EQ(matches(q, row), q->evaluateWithObject(object))
            << PropertyValue(q).description() << " " << field;
      }
    }
  }
}

TEST(Matching, NumbersCompareExactly) {
  const double doubles[] = {0.0,          -0.0,     1.0,       9007199254740993.0,
                            std::nan(""), HUGE_VAL, -HUGE_VAL, 1e-310};
  const PropertyValue constants[] = {0,
                                     1,
                                     std::int64_t{9007199254740993},
                                     std::numeric_limits<std::int64_t>::min(),
                                     std::numeric_limits<std::uint64_t>::max(),
                                     0.5,
                                     std::nan(""),
                                     HUGE_VAL,
                                     1.0F,
                                     true,
                                     1e-310};
  for (const double d : doubles) {
    for (const PropertyValue& constant : constants) {
      Row row;
      row.score = d;
      const auto object = dict({{"score", d}});
      for (const Ref<QXQualifier>& q :
           {Ref<QXQualifier>(key("score") == constant), Ref<QXQualifier>(key("score") < constant),
            Ref<QXQualifier>(key("score") > constant),
            Ref<QXQualifier>(key("score") <= constant)}) {
        EXPECT_EQ(matches(q, row), q->evaluateWithObject(object))
            << PropertyValue(q).description() << " " << d;
        EXPECT_EQ(filteredArrayUsingQualifier(array(object), q)->count() == 1,
                  q->evaluateWithObject(object))
            << PropertyValue(q).description() << " " << d;
      }
    }
  }
}

TEST(Matching, KeyPathsAndKeyPairs) {
  Row row;
  row.name = "abc";
  row.age = 3;
  row.score = 3.0;
  row.any = dict({{"deep", dict({{"er", 5}})}});
  EXPECT_TRUE(matches(key("any.deep.er") == 5, row));
  EXPECT_TRUE(matches(key("any.none.er") == null, row));
  EXPECT_TRUE(matches(key("name.length") == 3, row));
  EXPECT_TRUE(matches(key("age.x") == null, row));
  EXPECT_TRUE(matches(key("age") == key("score"), row));
  EXPECT_TRUE(matches(key("name.length") == key("age"), row));
  EXPECT_FALSE(matches(key("unknown") == key("unknown"), row));
  EXPECT_TRUE(matches(key(nullptr) == null, row));
  EXPECT_FALSE(matches(key("age") == key(nullptr), row));
}

TEST(Matching, Trees) {
  Row row;
  row.age = 3;
  const auto yes = key("age") == 3;
  const auto no = key("age") == 4;
  EXPECT_TRUE(matches(yes && !no, row));
  EXPECT_TRUE(matches(no || yes, row));
  EXPECT_FALSE(matches(!(yes || no), row));
  EXPECT_TRUE(matches(QXAndQualifier::init(), row));
  EXPECT_FALSE(matches(QXOrQualifier::init(), row));
  EXPECT_FALSE(matches(QXNotQualifier::init(), row));
  EXPECT_TRUE(matches(!QualifierExpr(QXNotQualifier::init()), row));
}

class Custom : public QXQualifier {
 public:
  bool evaluateWithObject(const PropertyValue& object) const override { return object["age"] == 3; }
};
void describe(ClassBuilder<Custom>& c) { c.name("MatchingCustom").inherits<QXQualifier>(); }

std::string reasonOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const InvalidArgumentException& e) {
    return e.reason();
  }
  return "no raise";
}

TEST(Matching, ACustomQualifierIsRefusedForAStruct) {
  const Ref<QXQualifier> custom = make<Custom>();
  const std::string reason =
      "Matching: MatchingCustom can be asked about objects alone, and MatchingRow is a plain "
      "struct; derive it from "
      "qx::Object";
  EXPECT_EQ(reasonOf([&] { Matching<Row> m(custom); }), reason);
  EXPECT_EQ(reasonOf([&] { Matching<Row> m(QXNotQualifier::initWithQualifier(custom)); }), reason);
  EXPECT_EQ(reasonOf([&] { Matching<Row> m((key("age") == 1) || QualifierExpr(custom)); }), reason);
  EXPECT_THROW(Matching<Row>{QXQualifier::init()}, InvalidArgumentException);
  EXPECT_THROW(Matching<Row>{QXAndQualifier::initWithQualifierArray(array(3))},
               InvalidArgumentException);
}

TEST(Matching, ACallersMutableMembersAreReadEachTime) {
  const auto members = MutableArray::init();
  const Matching<Row> m(QXAndQualifier::initWithQualifierArray(members));
  Row row;
  row.age = 3;
  EXPECT_TRUE(m(row));
  members->addObject(Ref<QXQualifier>(key("age") == 3 && !(key("any") == 1)));
  EXPECT_TRUE(m(row));
  members->addObject(Ref<QXQualifier>(key("age") > key("score")));
  row.score = 4;
  EXPECT_FALSE(m(row));
  row.score = 2;
  members->addObject(make<Custom>());
  EXPECT_THROW((void)m(row), InvalidArgumentException);
}

TEST(Matching, ObjectsAreAskedAsTheyAre) {
  const auto boss = make<Boss>(50);
  const Matching<Person> old(key("age") > 40);
  const Matching<Person> leads(key("staff") == 7);
  EXPECT_TRUE(old(*boss));
  EXPECT_TRUE(old(Ref<Person>(boss)));
  EXPECT_FALSE(old(make<Person>(30)));
  EXPECT_TRUE(leads(*boss));
  EXPECT_FALSE(leads(*make<Person>(30)));
  EXPECT_TRUE(Matching<Person>(make<Custom>())(make<Person>(3)));
  std::vector<Ref<Person>> people{boss, make<Person>(30)};
  EXPECT_EQ(std::count_if(people.begin(), people.end(), old), 1);
}

TEST(Matching, OperatorsOfTheApplication) {
  Row row;
  row.age = 3;
  row.any = make<generated::Grade>(3);
  const PropertyValue four = make<generated::Grade>(4);
  EXPECT_TRUE(matches(key("any").with("isNear:", four), row));
  EXPECT_FALSE(matches(key("any").with("isNear:", make<generated::Grade>(5)), row));
  EXPECT_FALSE(matches(key("any").with("isNear:", nullptr), row));
  EXPECT_TRUE(matches(key("any").with("isNear:", key("age")), row));
  EXPECT_FALSE(matches(key("any").with("isNear:", key("twice")), row));
  EXPECT_FALSE(matches(key("age").with("isNear:", 3), row));
  EXPECT_FALSE(matches(key("age").with("isNear:", key("age")), row));
  EXPECT_FALSE(matches(key("any") < four, row));
  EXPECT_TRUE(matches(key("any") < make<generated::Grade>(2), row));
  EXPECT_TRUE(matches(key("any") == key("age"), row));
  EXPECT_FALSE(matches(key("any") == key("twice"), row));
}

TEST(Matching, ObjectsThatAnswerForThemselves) {
  const auto judge = make<generated::Judge>();
  const auto half = make<generated::HalfJudge>();
  for (const Ref<QXQualifier>& q :
       {Ref<QXQualifier>(key("i") == 0), Ref<QXQualifier>(key("ii") == 1),
        Ref<QXQualifier>(key("i") == "x"), Ref<QXQualifier>(key("i") == key("i")),
        Ref<QXQualifier>(key("iii") == key("i"))}) {
    EXPECT_EQ(Matching<generated::Judge>(q)(*judge), q->evaluateWithObject(judge));
    EXPECT_EQ(Matching<generated::HalfJudge>(q)(*half), q->evaluateWithObject(half));
  }
  EXPECT_TRUE(Matching<generated::Judge>(key("ii") == 1)(*judge));
  EXPECT_FALSE(Matching<generated::Judge>(key("i") == 0)(*judge));
  EXPECT_TRUE(Matching<generated::HalfJudge>(key("ii") == 1)(*half));
  EXPECT_TRUE(Matching<generated::HalfJudge>(key("i") == key("i"))(*half));
}

TEST(Matching, ANilReferenceIsANilObject) {
  const auto q = key("age") > 40;
  EXPECT_FALSE(Matching<Person>(q)(Ref<Person>()));
  EXPECT_TRUE(Matching<Person>(!q)(Ref<Person>()));
}

TEST(Matching, LibraryClassesToo) {
  const Matching<Dictionary> m(key("a") == 1);
  EXPECT_TRUE(m(dict({{"a", 1}})));
  EXPECT_FALSE(m(dict({{"a", 2}})));
}

TEST(MatchingThreads, OnePredicateServesSeveral) {
  std::vector<Row> rows(100);
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].age = static_cast<int>(i);
  const Matching<Row> m(key("age") >= 50 && key("twice") < 150);
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 100; ++i) wrong += std::count_if(rows.begin(), rows.end(), m) != 25;
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace qx

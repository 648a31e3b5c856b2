#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/archiver.h>
#include <QXFoundation/qualifier.h>

#include "frame/class_record.h"
#include "tests/qualifiers/tree_text.h"

namespace shape {

// A qualifier of the application, with a field of its own.
class LongerThan : public qx::QXQualifier {
 public:
  LongerThan() = default;
  explicit LongerThan(int n) : limit(n) {}
  int limit = 0;
  bool evaluateWithObject(const qx::PropertyValue& o) const override {
    return static_cast<int>(o.description().size()) > limit;
  }
  void encodeWithCoder(qx::Archiver& a) const { a.encodeObject(limit); }
  void decodeWithCoder(qx::Unarchiver& u) { limit = u.decode<int>(); }
};
void describe(qx::ClassBuilder<LongerThan>& c) {
  c.name("LongerThan").inherits<qx::QXQualifier>().archived();
}

// One that declares no archiving: that of its base class would lose what it is.
class Whim : public qx::QXAndQualifier {};
void describe(qx::ClassBuilder<Whim>& c) { c.name("Whim").inherits<qx::QXAndQualifier>(); }

}  // namespace shape

namespace qx {
namespace {

PropertyValue roundTrip(const PropertyValue& v) {
  return Unarchiver::unarchiveObjectWithData(Archiver::archivedDataWithRootObject(v));
}

// What the qualifier's class writes by itself, object after object. One that is a qualifier or an
// array stands as its tree.
std::vector<std::string> writtenBy(const auto& qualifier) {
  Archiver a;
  qualifier->cls().record().encode(*qualifier, a);
  Unarchiver u(a.archiverData());
  std::vector<std::string> texts;
  while (!u.isAtEnd()) {
    const PropertyValue object = u.decodeObject();
    const auto members = object.as<Array>();
    const bool isTree = object.as<QXQualifier>() != nullptr;
    texts.push_back(members != nullptr ? "[" + membersText(members) + "]"
                    : isTree           ? treeText(object)
                                       : valueText(object));
  }
  return texts;
}
using Texts = std::vector<std::string>;

TEST(QualifierArchive, WritesExactlyTheObjectsOfEachClassInTheirOrder) {
  const auto leaf = QXKeyValueQualifier::initWithKey("age", "isLessThan:", 3);
  const auto pair = QXKeyComparisonQualifier::initWithLeftKey("a", "isEqualTo:", "b");
  EXPECT_EQ(writtenBy(leaf), (Texts{"\"age\"", "\"isLessThan:\"", "3"}));
  EXPECT_EQ(writtenBy(pair), (Texts{"\"a\"", "\"isEqualTo:\"", "\"b\""}));
  EXPECT_EQ(writtenBy(QXNotQualifier::initWithQualifier(leaf)), (Texts{"kv(age < 3)"}));
  EXPECT_EQ(writtenBy(QXAndQualifier::initWithQualifierArray(array(leaf, pair))),
            (Texts{"[kv(age < 3), kc(a = b)]"}));
  EXPECT_EQ(writtenBy(QXOrQualifier::initWithQualifierArray(array(pair, leaf))),
            (Texts{"[kc(a = b), kv(age < 3)]"}));
  EXPECT_EQ(writtenBy(QXOrQualifier::initWithQualifierArray(array())), (Texts{"[]"}));
  EXPECT_EQ(writtenBy(QXQualifierVariable::initWithKey("who")), (Texts{"\"who\""}));
  EXPECT_EQ(writtenBy(QXQualifier::init()), Texts{});
}

TEST(QualifierArchive, WritesNilWhereNothingIs) {
  EXPECT_EQ(writtenBy(QXKeyValueQualifier::initWithKey(nullptr, Selector(), nullptr)),
            (Texts{"nil", "nil", "nil"}));
  EXPECT_EQ(writtenBy(QXKeyComparisonQualifier::initWithLeftKey(nullptr, Selector(), nullptr)),
            (Texts{"nil", "nil", "nil"}));
  EXPECT_EQ(writtenBy(QXNotQualifier::initWithQualifier(nullptr)), Texts{"nil"});
  EXPECT_EQ(writtenBy(QXAndQualifier::init()), Texts{"nil"});
}

// The number of objects in a whole archive of the qualifier: the qualifier itself comes first.
std::size_t objectsInArchive(const PropertyValue& qualifier) {
  Archiver a;
  a.encodeObject(qualifier);
  return a.objectCount();
}

TEST(QualifierArchive, CountsTheQualifierAndWhatItWrites) {
  const auto leaf = QXKeyValueQualifier::initWithKey("age", "isLessThan:", 3);
  EXPECT_EQ(objectsInArchive(QXQualifier::init()), 1U);
  EXPECT_EQ(objectsInArchive(leaf), 1U + 3U);
  EXPECT_EQ(objectsInArchive(QXNotQualifier::initWithQualifier(nullptr)), 1U + 1U);
  EXPECT_EQ(objectsInArchive(QXNotQualifier::initWithQualifier(leaf)), 1U + 1U + 3U);
}

TEST(QualifierArchive, KeepsComparisonsWithConstants) {
  const auto q = roundTrip(QXKeyValueQualifier::initWithKey("a.b", "isLessThan:", 1.5F))
                     .as<QXKeyValueQualifier>();
  ASSERT_TRUE(q);
  EXPECT_EQ(q->key()->utf8(), "a.b");
  EXPECT_EQ(q->selector(), Selector("isLessThan:"));
  EXPECT_TRUE(isSame(q->value(), 1.5F));
  EXPECT_TRUE(q->evaluateWithObject(dict({{"a", dict({{"b", 1}})}})));
}

TEST(QualifierArchive, KeepsWhatIsNil) {
  const auto q = roundTrip(QXKeyValueQualifier::initWithKey(nullptr, Selector(), nullptr))
                     .as<QXKeyValueQualifier>();
  ASSERT_TRUE(q);
  EXPECT_TRUE(q->key() == nullptr);
  EXPECT_TRUE(q->selector().isNull());
  EXPECT_TRUE(q->value().isNil());
  const auto n = roundTrip(QXNotQualifier::init()).as<QXNotQualifier>();
  EXPECT_TRUE(n->qualifier() == nullptr);
  EXPECT_TRUE(roundTrip(QXAndQualifier::init()).as<QXAndQualifier>()->qualifiers() == nullptr);
}

TEST(QualifierArchive, KeepsTreesWithTheirMeaning) {
  const auto q = qualifierWithQualifierFormat("not name like %@ or age > %d", "J*", 30);
  const auto again = roundTrip(q).as<QXQualifier>();
  ASSERT_TRUE(again);
  EXPECT_EQ(again->cls().name(), std::string("QXOrQualifier"));
  EXPECT_EQ(again->description(), q->description());
  for (const auto& o : {dict({{"name", "Jim"}, {"age", 20}}), dict({{"name", "Jim"}, {"age", 31}}),
                        dict({{"name", "Bob"}}), dict()}) {
    EXPECT_EQ(again->evaluateWithObject(o), q->evaluateWithObject(o)) << o->description();
  }
}

TEST(QualifierArchive, KeepsKeyComparisonsAndVariables) {
  const auto q = roundTrip(QXKeyComparisonQualifier::initWithLeftKey("a", "isGreaterThan:", "b"))
                     .as<QXKeyComparisonQualifier>();
  EXPECT_EQ(q->leftKey()->utf8(), "a");
  EXPECT_EQ(q->rightKey()->utf8(), "b");
  EXPECT_EQ(q->selector(), Selector("isGreaterThan:"));
  EXPECT_EQ(
      roundTrip(QXQualifierVariable::initWithKey("who")).as<QXQualifierVariable>()->key()->utf8(),
      "who");
}

TEST(QualifierArchive, KeepsSharedMembersShared) {
  const auto leaf = QXKeyValueQualifier::initWithKey("a", "isEqualTo:", 1);
  const auto both =
      roundTrip(QXAndQualifier::initWithQualifierArray(array(leaf, leaf))).as<QXAndQualifier>();
  EXPECT_TRUE(isSame(both->qualifiers()->objectAtIndex(0), both->qualifiers()->objectAtIndex(1)));
}

TEST(QualifierArchive, KeepsQualifiersOfTheApplication) {
  const auto q =
      roundTrip(QXAndQualifier::initWithQualifierArray(array(make<shape::LongerThan>(3))))
          .as<QXAndQualifier>();
  EXPECT_TRUE(q->evaluateWithObject("four"));
  EXPECT_FALSE(q->evaluateWithObject("abc"));
  EXPECT_THROW((void)roundTrip(make<shape::Whim>()), InvalidArgumentException);
}

}  // namespace
}  // namespace qx

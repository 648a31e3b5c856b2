#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/archiver.h>
#include <QXFoundation/qualifier.h>

#include "frame/class_record.h"

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

// How many objects the class of the root writes by itself and below.
std::size_t objectsWritten(const PropertyValue& root) {
  Archiver a;
  a.encodeObject(root);
  return a.objectCount() - 1;
}

TEST(QualifierArchive, WritesExactlyTheObjectsOfEachClass) {
  const auto leaf = QXKeyValueQualifier::initWithKey("age", "isLessThan:", 3);
  EXPECT_EQ(objectsWritten(leaf), 3U);
  EXPECT_EQ(objectsWritten(QXKeyComparisonQualifier::initWithLeftKey("a", "isEqualTo:", "b")), 3U);
  EXPECT_EQ(objectsWritten(QXNotQualifier::initWithQualifier(nullptr)), 1U);
  EXPECT_EQ(objectsWritten(QXNotQualifier::initWithQualifier(leaf)), 1U + 3U);
  EXPECT_EQ(objectsWritten(QXAndQualifier::initWithQualifierArray(array(leaf))), 1U + 3U);
  EXPECT_EQ(objectsWritten(QXOrQualifier::initWithQualifierArray(array())), 1U);
  EXPECT_EQ(objectsWritten(QXQualifierVariable::initWithKey("v")), 1U);
  EXPECT_EQ(objectsWritten(QXQualifier::init()), 0U);
}

// The objects that the qualifier writes by itself, in their order.
std::vector<PropertyValue> writtenBy(const auto& qualifier, std::size_t count) {
  Archiver a;
  qualifier->cls().record().encode(*qualifier, a);
  Unarchiver u(a.archiverData());
  std::vector<PropertyValue> objects;
  while (!u.isAtEnd()) objects.push_back(u.decodeObject());
  EXPECT_EQ(objects.size(), count);
  objects.resize(count);
  return objects;
}

TEST(QualifierArchive, WritesTheObjectsInTheirOrder) {
  auto w = writtenBy(QXKeyValueQualifier::initWithKey("age", "isLessThan:", 3), 3);
  EXPECT_EQ(w[0], "age");
  EXPECT_EQ(w[1], "isLessThan:");
  EXPECT_TRUE(isSame(w[2], 3));
  w = writtenBy(QXKeyComparisonQualifier::initWithLeftKey("a", "isEqualTo:", "b"), 3);
  EXPECT_EQ(w[0], "a");
  EXPECT_EQ(w[1], "isEqualTo:");
  EXPECT_EQ(w[2], "b");
  const auto leaf = QXKeyValueQualifier::initWithKey("age", "isLessThan:", 3);
  EXPECT_EQ(writtenBy(QXNotQualifier::initWithQualifier(leaf), 1)[0].cls(), &leaf->cls());
  w = writtenBy(QXAndQualifier::initWithQualifierArray(array(leaf, leaf)), 1);
  EXPECT_EQ(w[0].as<Array>()->count(), 2U);
  w = writtenBy(QXOrQualifier::initWithQualifierArray(array(leaf)), 1);
  EXPECT_EQ(w[0].as<Array>()->objectAtIndex(0).cls(), &leaf->cls());
  EXPECT_EQ(writtenBy(QXQualifierVariable::initWithKey("who"), 1)[0], "who");
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

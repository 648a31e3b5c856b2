// Plain structs: described like classes, without inheriting anything.

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "frame/class_record.h"
#include "tests/frame/print_values.h"

namespace shop {

struct Stamped {
  int stamp = 1;
};
struct Row : Stamped {
  std::string name;
  int age = 0;
  double score = 0.5;
  float factor = 2.5F;
  bool active = true;
  unsigned short port = 80;
  signed char small = -5;
  std::uint64_t large = ~std::uint64_t{0};
  std::optional<int> rank;
  qx::PropertyValue any;
  const long fixed = 7;
  bool adult() const { return age >= 18; }
};
void describe(qx::ClassBuilder<Row>& c) {
  c.name("ShopRow").property("name", &Row::name).property("age", &Row::age);
  c.property("score", &Row::score).property("factor", &Row::factor);
  c.property("active", &Row::active).property("port", &Row::port).property("small", &Row::small);
  c.property("large", &Row::large).property("rank", &Row::rank).property("any", &Row::any);
  c.property("fixed", &Row::fixed).property("adult", &Row::adult).property("stamp", &Row::stamp);
}

}  // namespace shop

namespace qx {
namespace {

using detail::Subject;
using shop::Row;

const detail::Property* property(const char* name) {
  return classOf<Row>().record().findProperty(detail::KeyText(name));
}

TEST(DescribedStruct, IsReadByItsProperties) {
  Row row;
  row.name = "Bob";
  row.age = 42;
  row.any = "any";
  const struct {
    const char* key;
    PropertyValue expected;
  } cases[] = {{"name", "Bob"},
               {"age", 42},
               {"score", 0.5},
               {"factor", 2.5F},
               {"active", true},
               {"port", static_cast<unsigned short>(80)},
               {"small", static_cast<signed char>(-5)},
               {"large", ~std::uint64_t{0}},
               {"rank", nullptr},
               {"any", "any"},
               {"fixed", 7L},
               {"adult", true},
               {"stamp", 1}};
  for (const auto& c : cases) {
    const detail::Property* p = property(c.key);
    ASSERT_NE(p, nullptr) << c.key;
    EXPECT_EQ(p->get(Subject::of(row), p->payload), c.expected) << c.key;
  }
  EXPECT_EQ(property("unknown"), nullptr);
}

TEST(DescribedStruct, IsStoredThroughItsProperties) {
  Row row;
  const detail::Property* p = property("name");
  p->set(Subject::of(row), p->payload, "Al");
  EXPECT_EQ(row.name, "Al");
  p = property("stamp");
  p->set(Subject::of(row), p->payload, 9);
  EXPECT_EQ(row.stamp, 9);
  EXPECT_EQ(property("fixed")->set, nullptr);
  EXPECT_EQ(property("adult")->set, nullptr);
  EXPECT_EQ(property("adult")->setter, nullptr);
}

TEST(DescribedStruct, ShowsWhereItsFieldsStand) {
  using detail::FieldType;
  Row row;
  row.name = "Bob";
  const struct {
    const char* key;
    FieldType type;
    const void* place;
  } cases[] = {
      {"name", FieldType::text, &row.name},        {"age", FieldType::int32, &row.age},
      {"score", FieldType::real, &row.score},      {"factor", FieldType::single, &row.factor},
      {"active", FieldType::boolean, &row.active}, {"port", FieldType::uint16, &row.port},
      {"small", FieldType::int8, &row.small},      {"large", FieldType::uint64, &row.large},
      {"any", FieldType::value, &row.any},         {"fixed", FieldType::int64, &row.fixed},
      {"stamp", FieldType::int32, &row.stamp}};
  for (const auto& c : cases) {
    const detail::Property* p = property(c.key);
    ASSERT_NE(p->field, nullptr) << c.key;
    EXPECT_EQ(p->type, c.type) << c.key;
    EXPECT_EQ(p->field(Subject::of(row), p->payload), c.place) << c.key;
  }
  EXPECT_EQ(property("rank")->type, FieldType::none);
  EXPECT_EQ(property("rank")->field, nullptr);
  EXPECT_EQ(property("adult")->field, nullptr);
}

TEST(DescribedStruct, HasAClassWithoutOperations) {
  const Class& c = classOf<Row>();
  EXPECT_STREQ(c.name(), "ShopRow");
  EXPECT_EQ(c.superclass(), nullptr);
  EXPECT_EQ(classNamed("ShopRow"), &c);
  EXPECT_FALSE(c.instancesRespondToSelector("isEqual:"));
  EXPECT_TRUE(c.initWithString("x").isNil());
}

}  // namespace
}  // namespace qx

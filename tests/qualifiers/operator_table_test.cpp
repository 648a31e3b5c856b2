#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QXFoundation/qualifier.h>

namespace qx {
namespace {

std::vector<std::string> texts(const Ref<Array>& array) {
  std::vector<std::string> all;
  for (const PropertyValue& v : *array) all.push_back(v.description());
  return all;
}

struct Row {
  const char* text;
  const char* alias;
  const char* selector;
};
constexpr Row kTable[] = {
    {"=", "==", "isEqualTo:"},
    {"!=", "<>", "isNotEqualTo:"},
    {"<=", nullptr, "isLessThanOrEqualTo:"},
    {"<", nullptr, "isLessThan:"},
    {">=", nullptr, "isGreaterThanOrEqualTo:"},
    {">", nullptr, "isGreaterThan:"},
    {"contains", nullptr, "doesContain:"},
    {"like", nullptr, "isLike:"},
    {"caseInsensitiveLike", nullptr, "isCaseInsensitiveLike:"},
};

TEST(OperatorTable, ListsTheOperatorsInOrder) {
  const std::vector<std::string> relational = {"=", "!=", "<=", "<", ">=", ">"};
  std::vector<std::string> all = relational;
  all.insert(all.end(), {"contains", "like", "caseInsensitiveLike"});
  EXPECT_EQ(texts(QXQualifier::allQualifierOperators()), all);
  EXPECT_EQ(texts(QXQualifier::relationalQualifierOperators()), relational);
}

TEST(OperatorTable, EachListIsANewArray) {
  const auto a = QXQualifier::allQualifierOperators();
  const auto b = QXQualifier::allQualifierOperators();
  EXPECT_FALSE(isSame(a, b));
}

TEST(OperatorTable, GoesBothWays) {
  for (const Row& row : kTable) {
    EXPECT_EQ(QXQualifier::operatorSelectorForString(row.text).text(), row.selector);
    if (row.alias != nullptr) {
      EXPECT_EQ(QXQualifier::operatorSelectorForString(row.alias).text(), row.selector);
    }
    EXPECT_EQ(QXQualifier::stringForOperatorSelector(Selector::named(row.selector))->utf8(),
              row.text);
  }
}

TEST(OperatorTable, EveryOtherTextIsTheNullSelector) {
  for (const char* text : {"", " ", "LIKE", "Contains", "caseinsensitivelike", "= ", " =",
                           "===", "=<", "=>", "!", "<>=", "isEqualTo:", "like\xC3\xA4"}) {
    EXPECT_TRUE(QXQualifier::operatorSelectorForString(text).isNull()) << text;
  }
  EXPECT_TRUE(QXQualifier::operatorSelectorForString(nullptr).isNull());
  EXPECT_TRUE(QXQualifier::operatorSelectorForString(std::string("=\0", 2)).isNull());
}

TEST(OperatorTable, EveryOtherSelectorHasNoText) {
  for (const char* selector : {"isEqual:", "compare:", "isLike", "like:", "description"}) {
    EXPECT_TRUE(QXQualifier::stringForOperatorSelector(Selector::named(selector)) == nullptr)
        << selector;
  }
  EXPECT_TRUE(QXQualifier::stringForOperatorSelector(Selector()) == nullptr);
}

TEST(OperatorTable, CanBeAskedBySelector) {
  const PropertyValue cls = const_cast<Class*>(&classOf<QXQualifier>());
  EXPECT_EQ(performSelector(cls, "allQualifierOperators").as<Array>()->count(), 9U);
  EXPECT_EQ(performSelector(cls, "relationalQualifierOperators").as<Array>()->count(), 6U);
  EXPECT_EQ(performSelector(cls, "stringForOperatorSelector:", "isEqualTo:"), "=");
  EXPECT_EQ(performSelector(cls, "stringForOperatorSelector:", "length"), nullptr);
  EXPECT_EQ(performSelector(cls, "operatorSelectorForString:", "<>"), "isNotEqualTo:");
  EXPECT_EQ(performSelector(cls, "operatorSelectorForString:", "LIKE"), nullptr);
}

}  // namespace
}  // namespace qx

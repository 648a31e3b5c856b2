// Classes whose comparisons take a parameter with a type: what does not fit it is not compared.

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace shop {

// Ordered against its own kind alone, and refuses one of them.
class Rank : public qx::Object {
 public:
  explicit Rank(int h) : height(h) {}
  int height;
  int compare(const qx::Ref<Rank>& other) const {
    ++asked;
    if (other == nullptr || other->height < 0) throw qx::InvalidArgumentException("no such rank");
    return height - other->height;
  }
  static inline int asked = 0;
};
void describe(qx::ClassBuilder<Rank>& c) {
  c.name("ShopRank").operation("compare:", &Rank::compare);
}

// Single comparisons of typed parameters.
class Label : public qx::Object {
 public:
  bool less(const std::string& text) const { return text == "z"; }
  bool same(const std::string& text) const { return text == "label"; }
  bool like(const std::string&) const { return true; }
  bool contains(std::optional<int> n) const { return n == 1 || !n; }
};
void describe(qx::ClassBuilder<Label>& c) {
  c.name("ShopLabel").operation("isLessThan:", &Label::less).operation("isEqualTo:", &Label::same);
  c.operation("isLike:", &Label::like).operation("doesContain:", &Label::contains);
}

// An application's type that does not tell what fits.
struct Size {
  int value = 0;
};

}  // namespace shop

template <>
struct qx::FromValue<shop::Size> {
  static shop::Size get(const qx::PropertyValue& v) {
    if (!v.isNumber()) throw qx::InvalidArgumentException("no size");
    return {v.intValue()};
  }
};

namespace shop {

class Sized : public qx::Object {
 public:
  int compare(Size other) const { return 5 - other.value; }
};
void describe(qx::ClassBuilder<Sized>& c) {
  c.name("ShopSized").operation("compare:", &Sized::compare);
}

}  // namespace shop

namespace qx {
namespace {

using shop::Label;
using shop::Rank;
using shop::Sized;

TEST(TypedCompare, OrdersItsOwnKind) {
  const PropertyValue low = make<Rank>(1);
  const PropertyValue high = make<Rank>(2);
  EXPECT_TRUE(low.isLessThan(high));
  EXPECT_TRUE(low.isLessThanOrEqualTo(high));
  EXPECT_TRUE(high.isGreaterThan(low));
  EXPECT_TRUE(high.isGreaterThanOrEqualTo(high));
  EXPECT_FALSE(high.isLessThan(low));
  EXPECT_EQ(low.compare(high), ComparisonResult::ascending);
}

TEST(TypedCompare, IsFalseForWhatDoesNotFit) {
  const PropertyValue rank = make<Rank>(1);
  Rank::asked = 0;
  for (const PropertyValue& other :
       {PropertyValue(5), PropertyValue(1e300), PropertyValue("x"), PropertyValue(null),
        PropertyValue(), PropertyValue(array(rank)), PropertyValue(make<Label>()),
        PropertyValue(classOf<Rank>())}) {
    SCOPED_TRACE(testing::PrintToString(other));
    EXPECT_FALSE(rank.isLessThan(other));
    EXPECT_FALSE(rank.isLessThanOrEqualTo(other));
    EXPECT_FALSE(rank.isGreaterThan(other));
    EXPECT_FALSE(rank.isGreaterThanOrEqualTo(other));
    EXPECT_EQ(performSelector(rank, "isLessThan:", other), PropertyValue(false));
    EXPECT_FALSE(other.isGreaterThan(rank));
    EXPECT_TRUE(rank.isNotEqualTo(other));
  }
  EXPECT_EQ(Rank::asked, 0);
}

TEST(TypedCompare, RaisesItself) {
  const PropertyValue rank = make<Rank>(1);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)rank.compare(5); }),
            "-[ShopRank compare:]: a value of class NSNumber (5) can not stand for ShopRank");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)rank.compare(nullptr); }),
            "no such rank");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { performSelector(rank, "compare:", "x"); }),
            "-[ShopRank compare:]: a value of class NSString (x) can not stand for ShopRank");
}

TEST(TypedCompare, LetsTheClassRaise) {
  const PropertyValue rank = make<Rank>(1);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)rank.isLessThan(make<Rank>(-1)); }),
            "no such rank");
  const PropertyValue sized = make<Sized>();
  EXPECT_TRUE(sized.isLessThan(6));
  EXPECT_FALSE(sized.isLessThan(nullptr));
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)sized.isLessThan("x"); }), "no size");
}

TEST(TypedCompare, DropsRecordsFromAFilterInsteadOfEndingIt) {
  const auto people = array(dict({{"boss", make<Rank>(1)}}), dict({{"boss", 7}}),
                            dict({{"boss", null}}), dict({{"name", "nobody's"}}));
  EXPECT_EQ(PropertyValue(filteredArrayUsingQualifier(
                people, QXQualifier::qualifierWithQualifierFormat("boss > %d", 5))),
            PropertyValue(array(dict({{"boss", 7}}))));
  EXPECT_EQ(filteredArrayUsingQualifier(
                people, QXQualifier::qualifierWithQualifierFormat("boss >= %@", make<Rank>(1)))
                ->count(),
            1U);
}

TEST(TypedComparisons, AreFalseForWhatDoesNotFit) {
  const PropertyValue label = make<Label>();
  EXPECT_TRUE(label.isLessThan("z"));
  EXPECT_FALSE(label.isLessThan(5));
  EXPECT_FALSE(label.isLessThan(nullptr));
  EXPECT_TRUE(label.isEqualTo("label"));
  EXPECT_FALSE(label.isEqualTo(5));
  EXPECT_FALSE(label.isNotEqualTo("label"));
  EXPECT_TRUE(label.isNotEqualTo(5));
  EXPECT_TRUE(label.isLike("anything"));
  EXPECT_FALSE(label.isLike(array()));
  EXPECT_TRUE(label.doesContain(1));
  EXPECT_TRUE(label.doesContain(nullptr));
  EXPECT_FALSE(label.doesContain("1"));
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { performSelector(label, "isLike:", 5); }),
            "-[ShopLabel isLike:]: a value of class NSNumber (5) can not stand for a string");
}

}  // namespace
}  // namespace qx

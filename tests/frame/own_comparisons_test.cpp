// Classes that compare in their own way, by operations that they declare.

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "frame/comparison.h"
#include "frame/numeric.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace shop {

// Orders by its number, against other versions and plain numbers.
class Version : public qx::Object {
 public:
  explicit Version(int n) : number(n) {}
  int number;
  bool isEqual(const qx::PropertyValue& other) const override { return numberOf(other) == number; }
  std::size_t hash() const override { return qx::PropertyValue(number).hash(); }
  int compare(const qx::PropertyValue& other) const {
    const auto n = numberOf(other);
    if (!n) throw qx::InvalidArgumentException("that is no version");
    return number - *n;  // any sign will do
  }

 private:
  static std::optional<int> numberOf(const qx::PropertyValue& v) {
    const auto* version = v.peek<Version>();
    return version != nullptr ? version->number : v.to<int>();
  }
};
void describe(qx::ClassBuilder<Version>& c) {
  c.name("ShopVersion")
      .operation("compare:", &Version::compare)
      .property("number", &Version::number);
}

class LateVersion : public Version {
 public:
  using Version::Version;
};
void describe(qx::ClassBuilder<LateVersion>& c) { c.name("ShopLateVersion").inherits<Version>(); }

// Declares single comparisons, contrary to its order.
class Contrary : public Version {
 public:
  using Version::Version;
  bool less(const qx::PropertyValue&) const { return true; }
  bool equalTo(const qx::PropertyValue& other) const { return other.isString(); }
  bool like(const qx::PropertyValue& pattern) const { return pattern == qx::PropertyValue("odd*"); }
  bool contains(const qx::PropertyValue& v) const { return v == qx::PropertyValue(number); }
};
void describe(qx::ClassBuilder<Contrary>& c) {
  c.name("ShopContrary").inherits<Version>();
  c.operation("isLessThan:", &Contrary::less).operation("isEqualTo:", &Contrary::equalTo);
  c.operation("isLike:", &Contrary::like).operation("doesContain:", &Contrary::contains);
}

// Its results are not plain ints.
class Fine : public qx::Object {
 public:
  explicit Fine(qx::PropertyValue r) : result(std::move(r)) {}
  qx::PropertyValue result;
  qx::PropertyValue compare(const qx::PropertyValue&) const { return result; }
};
void describe(qx::ClassBuilder<Fine>& c) {
  c.name("ShopFine").operation("compare:", &Fine::compare);
  c.operation("caseInsensitiveCompare:", &Fine::compare);
}

// A number of its own, ordered backwards by its own operation, which builds on the built-in one.
class Backward : public qx::Number {
 public:
  explicit Backward(double d) : value(d) {}
  double value;
  qx::detail::NumericValue numeric() const override {
    return qx::detail::NumericValue::real(value);
  }
  int backward(const qx::PropertyValue& other) const {
    return -static_cast<int>(Number::compare(other));
  }
};
void describe(qx::ClassBuilder<Backward>& c) {
  c.name("ShopBackward").inherits<qx::Number>().operation("compare:", &Backward::backward);
}

// Containers with comparisons of their own.
class Picky : public qx::MutableArray {
 public:
  bool contains(const qx::PropertyValue&) const { return false; }
  int compare(const qx::PropertyValue& other) const {
    const auto* a = other.peek<qx::Array>();
    return a == nullptr ? 1 : static_cast<int>(count()) - static_cast<int>(a->count());
  }
};
void describe(qx::ClassBuilder<Picky>& c) {
  c.name("ShopPicky").inherits<qx::MutableArray>();
  c.operation("doesContain:", &Picky::contains).operation("compare:", &Picky::compare);
}

// Inherits from a container and declares nothing of the kind.
class Plain : public qx::MutableArray {};
void describe(qx::ClassBuilder<Plain>& c) { c.name("ShopPlain").inherits<qx::MutableArray>(); }

// A text of its own, longest first. The library keeps the making of strings to itself.
class Phrase : public qx::MutableString {
 public:
  explicit Phrase(const char* text) : MutableString(qx::detail::Passkey{}) { setString(text); }
  int byLength(const qx::PropertyValue& other) const {
    const auto* s = other.peek<qx::String>();
    return s == nullptr ? 1 : static_cast<int>(s->length()) - static_cast<int>(length());
  }
  bool like(const qx::PropertyValue&) const { return true; }
};
void describe(qx::ClassBuilder<Phrase>& c) {
  c.name("ShopPhrase").inherits<qx::MutableString>().operation("compare:", &Phrase::byLength);
  c.operation("isLike:", &Phrase::like);
}

}  // namespace shop

namespace qx {
namespace {

using namespace shop;

TEST(OwnCompare, OrdersInEveryForm) {
  const struct {
    PropertyValue left;
    PropertyValue right;
    int order;
  } cases[] = {
      {make<Version>(1), make<Version>(2), -1},    {make<Version>(2), make<Version>(2), 0},
      {make<Version>(300), make<Version>(2), 1},   {make<Version>(1), 5, -1},
      {make<LateVersion>(9), make<Version>(2), 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(static_cast<int>(c.left.compare(c.right)), c.order);
    EXPECT_EQ(c.left.isLessThan(c.right), c.order < 0);
    EXPECT_EQ(c.left.isLessThanOrEqualTo(c.right), c.order <= 0);
    EXPECT_EQ(c.left.isGreaterThan(c.right), c.order > 0);
    EXPECT_EQ(c.left.isGreaterThanOrEqualTo(c.right), c.order >= 0);
    EXPECT_EQ(performSelector(c.left, "isLessThan:", c.right).to<bool>(), c.order < 0);
    EXPECT_EQ(detail::apply("isGreaterThan:", c.left, c.right).result, c.order > 0);
  }
  EXPECT_TRUE(PropertyValue(make<Version>(1)) == PropertyValue(1));
  EXPECT_FALSE(PropertyValue(1).isLessThan(make<Version>(2)));  // the left side decides
}

TEST(OwnCompare, MayRaise) {
  const PropertyValue v = make<Version>(1);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)v.compare("x"); }),
            "that is no version");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)v.isLessThan("x"); }),
            "that is no version");
}

TEST(OwnCompare, CountsBySignWhateverItsResult) {
  const struct {
    PropertyValue result;
    ComparisonResult expected;
  } cases[] = {
      {-0.5, ComparisonResult::ascending},
      {std::int64_t{1} << 32, ComparisonResult::descending},
      {-(std::int64_t{1} << 40), ComparisonResult::ascending},
      {0U, ComparisonResult::same},
      {nullptr, ComparisonResult::same},
      {"1", ComparisonResult::same},
  };
  for (const auto& c : cases) {
    const PropertyValue v = make<Fine>(c.result);
    EXPECT_EQ(v.compare(1), c.expected) << c.result.description();
    EXPECT_EQ(v.caseInsensitiveCompare("a"), c.expected);
    EXPECT_EQ(v.isLessThan(1), c.expected == ComparisonResult::ascending);
  }
}

TEST(OwnComparisons, AreUsedOneByOne) {
  const PropertyValue v = make<Contrary>(5);
  EXPECT_TRUE(v.isLessThan(1));     // its own
  EXPECT_TRUE(v.isGreaterThan(1));  // by its order
  EXPECT_FALSE(v.isLessThanOrEqualTo(1));
  EXPECT_TRUE(v.isEqualTo("text"));  // its own
  EXPECT_FALSE(v.isEqualTo(5));
  EXPECT_FALSE(v.isNotEqualTo("text"));  // the negation of its own
  EXPECT_TRUE(v.isNotEqualTo(5));
  EXPECT_TRUE(v == PropertyValue(5));  // isEqual: is another matter
  EXPECT_TRUE(v.isLike("odd*"));
  EXPECT_FALSE(v.isLike("*"));
  EXPECT_TRUE(v.doesContain(5));
  EXPECT_FALSE(v.doesContain(6));
  EXPECT_THROW((void)v.isCaseInsensitiveLike("odd*"), InvalidArgumentException);
  for (const char* name : {"isLessThan:", "isLike:", "doesContain:", "isEqualTo:"}) {
    EXPECT_TRUE(v.respondsToSelector(Selector::named(name))) << name;
    EXPECT_TRUE(detail::apply(Selector::named(name), v, 5).responds) << name;
  }
  EXPECT_TRUE(detail::apply(detail::Comparison::isLike, v, "odd*").result);
  EXPECT_TRUE(performSelector(v, "isNotEqualTo:", 5).boolValue());
}

TEST(OwnComparisons, OfNumberClassesBuildOnTheBuiltInOrder) {
  const PropertyValue v = make<Backward>(2.0);
  EXPECT_EQ(v.compare(1), ComparisonResult::ascending);
  EXPECT_TRUE(v.isLessThan(1));
  EXPECT_EQ(PropertyValue(1).compare(v), ComparisonResult::ascending);
  EXPECT_EQ(v.as<Number>()->compare(1), ComparisonResult::descending);
  EXPECT_TRUE(v == PropertyValue(2));
  EXPECT_TRUE(PropertyValue(2) == v);
  EXPECT_EQ(v.hash(), PropertyValue(2).hash());
  EXPECT_EQ(v.intValue(), 2);
  EXPECT_EQ(v.to<double>(), 2.0);
  EXPECT_EQ(v.to<int>(), std::nullopt);
  EXPECT_EQ(v.description(), "2");
  EXPECT_FALSE(isSame(v, 2.0));  // never put inline
  EXPECT_TRUE(v.isNumber());
  EXPECT_EQ(performSelector(v, "doubleValue"), PropertyValue(2.0));
  EXPECT_TRUE(isSame(v.as<Number>(), v));
}

TEST(OwnComparisons, OfContainerClassesAreUsed) {
  const auto picky = make<Picky>();
  picky->addObject(1);
  const PropertyValue v = picky;
  EXPECT_FALSE(v.doesContain(1));
  EXPECT_TRUE(picky->containsObject(1));
  EXPECT_TRUE(v.isLessThan(array(1, 2)));
  EXPECT_EQ(v.compare(array()), ComparisonResult::descending);
  EXPECT_TRUE(v == PropertyValue(array(1)));
  EXPECT_TRUE(PropertyValue(array(1)) == v);
}

TEST(OwnComparisons, OfContainerClassesWithoutThemAreTheBuiltInOnes) {
  const auto plain = make<Plain>();
  plain->addObject("x");
  const PropertyValue v = plain;
  EXPECT_TRUE(v.doesContain("x"));
  EXPECT_TRUE(v == PropertyValue(array("x")));
  EXPECT_TRUE(PropertyValue(array("x")) == v);
  EXPECT_EQ(v.hash(), PropertyValue(array("x")).hash());
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)v.compare(array()); }),
            "-[ShopPlain compare:]: the receiver has no such operation");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)v.isLike("*"); }),
            "-[ShopPlain isLike:]: the receiver has no such operation");
  EXPECT_FALSE(v.isLessThan(array()));
}

TEST(OwnComparisons, OfStringClassesAreUsed) {
  const PropertyValue v = make<Phrase>("aaa");
  EXPECT_TRUE(v.isLessThan("b"));  // by length, the longer one first
  EXPECT_FALSE(v.isLessThan("longer"));
  EXPECT_EQ(v.compare("zzz"), ComparisonResult::same);
  EXPECT_EQ(PropertyValue("aaa").compare(v), ComparisonResult::same);  // by code unit
  EXPECT_TRUE(v.isLike("nothing alike"));
  EXPECT_TRUE(v.isCaseInsensitiveLike("A*"));
  EXPECT_TRUE(v == PropertyValue("aaa"));
  EXPECT_TRUE(PropertyValue("aaa") == v);
  EXPECT_EQ(v.hash(), PropertyValue("aaa").hash());
  const auto d = MutableDictionary::init();
  d->setObject(1, v.as<String>());
  EXPECT_EQ(d->objectForKey("aaa"), PropertyValue(1));
  EXPECT_STREQ(d->allKeys()->firstObject().cls()->name(), "NSString");
}

}  // namespace
}  // namespace qx

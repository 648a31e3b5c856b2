// Arrays long enough to be evaluated in whole blocks, against the rules element by element: which
// are kept, and what code of the application sees meanwhile.

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <QXFoundation/exception.h>
#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier_key.h>

#include "tests/qualifiers/generator.h"
#include "tests/qualifiers/reference_walk.h"

namespace qx {
namespace {

using generated::Judge;

void expectAgreement(const Ref<MutableArray>& list, const Ref<QXQualifier>& q) {
  const auto expected = MutableArray::init();
  for (const PropertyValue& object : *list) {
    if (reference::walk(q, object)) expected->addObject(object);
  }
  const auto hits = filteredArrayUsingQualifier(list, q);
  ASSERT_EQ(hits->count(), expected->count()) << PropertyValue(q).description();
  for (std::size_t i = 0; i < hits->count(); ++i) {
    ASSERT_TRUE(isSame(hits->objectAtIndex(i), expected->objectAtIndex(i)))
        << i << " of " << PropertyValue(q).description();
  }
}

// An object that stands behind something else in memory.
struct Aside {
  virtual ~Aside() = default;
  std::int64_t l = 0;
  double d = 0;
};
class Behind : public Aside, public Object {
 public:
  std::string s;
  int i = 0;
  bool b = false;
  PropertyValue v;
};
class FurtherBehind : public Behind {
 public:
  std::string more;
};
void describe(ClassBuilder<Behind>& c) {
  c.name("BlockTestBehind").property("l", &Behind::l).property("d", &Behind::d);
  c.property("s", &Behind::s).property("i", &Behind::i).property("b", &Behind::b);
  c.property("v", &Behind::v).property("g", &Behind::s);
}
void describe(ClassBuilder<FurtherBehind>& c) {
  c.name("BlockTestFurtherBehind").inherits<Behind>().property("more", &FurtherBehind::more);
}

// Runs of elements of one kind, and trees that blocks can be evaluated by.
class Source {
 public:
  explicit Source(unsigned seed)
      : g_([random = std::mt19937(seed)](std::size_t n) mutable { return random() % n; }) {}

  Ref<MutableArray> list() {
    const auto all = MutableArray::init();
    rare_ = below(2) == 0 ? 100000 : 2 + below(200);
    while (all->count() < 600) {
      const std::size_t kind = below(9);
      const std::size_t layouts = std::size_t{1} << below(8);
      for (std::size_t n = below(4) == 0 ? below(12) : 1 + below(400); n > 0; --n)
        all->addObject(element(kind, layouts));
    }
    return all;
  }

  Ref<QXQualifier> tree(unsigned depth = 0) {
    const std::size_t kind = below(depth > 2 ? 1 : 6);
    if (kind < 2) return leaf();
    if (kind == 2) return QXNotQualifier::initWithQualifier(tree(depth + 1));
    const auto members = MutableArray::init();
    if (kind == 3) {
      for (std::size_t n = 2 + below(11); n > 0; --n) members->addObject(oneOf());
    } else {
      for (std::size_t n = below(5); n > 0; --n) members->addObject(tree(depth + 1));
    }
    const auto fixed = PropertyValue(members->copy()).as<Array>();
    if (kind == 4) return QXAndQualifier::initWithQualifierArray(fixed);
    return QXOrQualifier::initWithQualifierArray(fixed);
  }

 private:
  std::size_t below(std::size_t n) { return g_.below(n); }

  PropertyValue quiet() {
    switch (below(8)) {
      case 0:
        return null;
      case 1:
        return below(2) == 0;
      case 2:
      case 3:
        return g_.integer();
      case 4:
        return g_.real();
      case 5:
        return g_.edge();
      default:
        return g_.text();
    }
  }
  PropertyValue value() { return below(rare_) == 0 ? g_.value() : quiet(); }

  PropertyValue dictionary(std::size_t layout) {
    const auto d = MutableDictionary::init();
    if (layout != 0) d->setObject(1, "x" + std::to_string(layout));
    if (below(rare_) == 0) {
      for (int n = 0; n < 20; ++n) d->setObject(n, "y" + std::to_string(n));
    }
    std::size_t bit = 1;
    for (const char* k : {"s", "i", "d", "b", "v", "g"}) {
      if ((layout & bit) == 0) d->setObject(value(), k);
      bit *= 2;
    }
    return below(rare_) == 0 ? PropertyValue(d) : PropertyValue(d->copy());
  }
  template <class T>
  PropertyValue filled() {
    const auto object = make<T>();
    g_.fill(*object);
    object->v = value();
    return object;
  }
  PropertyValue behind() {
    const auto object = filled<Behind>().template as<Behind>();
    object->l = below(2) == 0 ? g_.integer() : std::numeric_limits<std::int64_t>::min();
    return object;
  }
  PropertyValue element(std::size_t kind, std::size_t layouts) {
    switch (kind) {
      case 0:
        return filled<generated::Native>();
      case 1:
        return behind();
      case 2:
        return below(9) == 0 ? filled<Behind>() : filled<FurtherBehind>();
      case 3:
        return make<Judge>();
      case 4:
        return g_.object();
      case 5:
        return dictionary(0);
      default:
        return dictionary(below(layouts));
    }
  }

  std::string key() {
    static const std::string keys[] = {"s", "i", "d", "b", "v", "g", "l", "none"};
    return g_.of(keys);
  }
  Ref<QXQualifier> leaf() {
    static const Selector selectors[] = {
        "isEqualTo:",     "isNotEqualTo:",           "isLessThan:", "isLessThanOrEqualTo:",
        "isGreaterThan:", "isGreaterThanOrEqualTo:", "isLike:",     "isCaseInsensitiveLike:",
        "doesContain:"};
    if (below(40) == 0) return g_.leaf();
    return QXKeyValueQualifier::initWithKey(key(), g_.of(selectors), value());
  }
  // One text of several under a key.
  Ref<QXQualifier> oneOf() {
    const auto name = below(12) == 0 ? key() : std::string("s");
    return QXKeyValueQualifier::initWithKey(
        name, below(12) == 0 ? Selector("isNotEqualTo:") : Selector("isEqualTo:"), g_.text());
  }

  using Choices = std::function<std::size_t(std::size_t)>;
  generated::Generator<Choices> g_;
  std::size_t rare_ = 2;
};

TEST(Blocks, AgreeWithTheRules) {
  Source source(23);
  for (int round = 0; round < 100; ++round) {
    const auto list = source.list();
    for (int n = 0; n < 8; ++n) {
      expectAgreement(list, source.tree());
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(Blocks, ReadFieldsThatStandBeforeTheRoot) {
  const auto list = MutableArray::init();
  for (int n = 0; n < 300; ++n) {
    const auto object = n % 2 == 0 ? make<Behind>() : Ref<Behind>(make<FurtherBehind>());
    object->l = n;
    object->d = n / 2.0;
    list->addObject(object);
  }
  for (const Ref<QXQualifier>& q :
       {Ref<QXQualifier>(key("l") >= 200), Ref<QXQualifier>(key("d") < 20.5 && key("l") != 7)}) {
    expectAgreement(list, q);
    const Matching<Behind> matching(q);
    for (const PropertyValue& object : *list)
      ASSERT_EQ(matching(object.as<Behind>()), reference::walk(q, object));
  }
}

// Of more layouts than are known at once, the first are forgotten for a class whose objects answer
// for themselves.
TEST(Blocks, ForgottenLayoutsLeaveNothingBehind) {
  const auto list = MutableArray::init();
  list->addObject("text");
  for (int n = 0; n < 127; ++n)
    list->addObject(dict({{"k" + std::to_string(n % 80), 1}, {"i", 0}}));
  for (int n = 0; n < 40; ++n) list->addObject(make<Judge>());
  for (int n = 0; n < 300; ++n) list->addObject(dict({{"i", n % 2}}));
  for (const Ref<QXQualifier>& q :
       {Ref<QXQualifier>(key("i") == 0), Ref<QXQualifier>(key("ii") == 0),
        Ref<QXQualifier>(key("i") == 0 || key("ii") == 1)}) {
    expectAgreement(list, q);
  }
}

TEST(Blocks, EndWithTheStepsThatTheyTake) {
  const auto list = MutableArray::init();
  for (int n = 0; n < 300; ++n) list->addObject(dict({{"n", n}, {"m", n % 7}}));
  for (const int steps : {1, 2, 15, 16, 17, 40}) {
    const auto members = MutableArray::init();
    const auto others = MutableArray::init();
    for (int k = 0; k < steps; ++k) {
      members->addObject(Ref<QXQualifier>(key("n") == 7 * k));
      others->addObject(Ref<QXQualifier>(key(k % 2 == 0 ? "n" : "m") != k));
    }
    expectAgreement(
        list, QXOrQualifier::initWithQualifierArray(PropertyValue(members->copy()).as<Array>()));
    expectAgreement(
        list, QXAndQualifier::initWithQualifierArray(PropertyValue(others->copy()).as<Array>()));
  }
}

// Equalities of one key one after the other, which lead on to the same step or to different ones.
TEST(Blocks, TellTextsUnderOneKeyApart) {
  const std::string texts[] = {"", "a", "b", "na\xC3\xAFve", "\xF0\x9F\x98\x80", "c"};
  const auto list = MutableArray::init();
  for (std::size_t n = 0; n < 700; ++n) {
    const std::string& text = texts[n % 6];
    const PropertyValue s = n % 97 == 0   ? PropertyValue(MutableString::from(text))
                            : n % 89 == 0 ? PropertyValue(null)
                                          : PropertyValue(text);
    list->addObject(n % 83 == 0 ? dict({{"i", 1}}) : dict({{"s", s}, {"i", n % 4}}));
  }
  const auto s = [&](std::size_t n) { return key("s") == texts[n]; };
  const auto isNot = [&](std::size_t n) { return key("s") != texts[n]; };
  const QualifierExpr expressions[] = {s(1) || s(2) || s(4),
                                       s(1) || (s(2) && key("i") == 1) || s(5),
                                       (s(1) && key("i") == 1) || s(2),
                                       (s(1) && key("i") == 1) || (s(3) && key("i") == 2),
                                       !(s(0) || s(3) || s(4)) && key("i") >= 1,
                                       isNot(1) && isNot(2) && isNot(4),
                                       isNot(1) || s(1),
                                       s(1) || isNot(2) || key("i") == 3};
  for (const QualifierExpr& e : expressions) expectAgreement(list, e);
}

// A value that tells when it is compared.
class Witness : public Object {
 public:
  Witness(int number, std::function<bool(int)> asked) : n(number), asked_(std::move(asked)) {}
  int n;
  bool isEqualTo(const PropertyValue&) const { return asked_(n); }

 private:
  std::function<bool(int)> asked_;
};
void describe(ClassBuilder<Witness>& c) {
  c.name("BlockTestWitness").property("n", &Witness::n);
  c.operation("isEqualTo:", &Witness::isEqualTo);
}

class Owner : public Object {
 public:
  PropertyValue a, b;
};
void describe(ClassBuilder<Owner>& c) {
  c.name("BlockTestOwner").property("a", &Owner::a).property("b", &Owner::b);
}

// Some of them ask witnesses, under either key; the others are plain.
template <class MakeOne>
Ref<MutableArray> withWitnesses(MakeOne makeOne, const std::function<bool(int)>& asked) {
  const auto list = MutableArray::init();
  for (int n = 0; n < 500; ++n) {
    const auto value = [&](int every, int plain) {
      return n % every == 0 ? PropertyValue(make<Witness>(n, asked)) : PropertyValue(plain);
    };
    list->addObject(makeOne(value(23, n % 2), value(31, n % 3)));
  }
  return list;
}
PropertyValue asDictionaryOf(const PropertyValue& a, const PropertyValue& b) {
  return dict({{"a", a}, {"b", b}});
}
PropertyValue asOwnerOf(const PropertyValue& a, const PropertyValue& b) {
  const auto owner = make<Owner>();
  owner->a = a;
  owner->b = b;
  return owner;
}
const auto kMakers = {&asDictionaryOf, &asOwnerOf};

Ref<QXQualifier> bothKeys() { return (key("b") == 1 && key("a") == 1) || key("b") == 0; }

TEST(Blocks, AskTheApplicationInOrder) {
  for (const auto maker : kMakers) {
    std::vector<int> log;
    const auto list = withWitnesses(maker, [&](int n) {
      log.push_back(n);
      return n % 2 == 0;
    });
    for (const Ref<QXQualifier>& q : {bothKeys(), Ref<QXQualifier>(!QualifierExpr(bothKeys()))}) {
      const auto hits = filteredArrayUsingQualifier(list, q);
      const std::vector<int> seen = std::exchange(log, {});
      std::size_t expected = 0;
      for (const PropertyValue& object : *list) expected += reference::walk(q, object) ? 1 : 0;
      EXPECT_EQ(seen, std::exchange(log, {}));
      EXPECT_GT(seen.size(), 20U);
      EXPECT_EQ(hits->count(), expected);
    }
  }
}

TEST(Blocks, EndWithWhatTheApplicationRaises) {
  for (const auto maker : kMakers) {
    std::vector<int> log;
    const auto list = withWitnesses(maker, [&](int n) -> bool {
      log.push_back(n);
      if (n > 200) throw RangeException("stop");
      return true;
    });
    EXPECT_THROW((void)filteredArrayUsingQualifier(list, bothKeys()), RangeException);
    const std::vector<int> seen = std::exchange(log, {});
    EXPECT_THROW(
        {
          for (const PropertyValue& object : *list) (void)reference::walk(bothKeys(), object);
        },
        RangeException);
    EXPECT_EQ(seen, log);
  }
}

TEST(Blocks, TakeTheElementsAtTheStart) {
  for (const auto maker : kMakers) {
    Ref<MutableArray> list;
    const auto q = bothKeys();
    list = withWitnesses(maker, [&](int n) {
      if (n > 150) list->removeAllObjects();
      return n % 2 == 0;
    });
    const auto same = withWitnesses(maker, [](int n) { return n % 2 == 0; });
    EXPECT_EQ(filteredArrayUsingQualifier(list, q)->count(),
              filteredArrayUsingQualifier(same, q)->count());
    EXPECT_EQ(list->count(), 0U);
  }
}

// Elements behind the one that is asked are not looked at before it has answered.
TEST(Blocks, SeeWhatTheApplicationChangesInLaterElements) {
  const auto list = MutableArray::init();
  const auto change = [&](int) {
    for (std::size_t i = 100; i < 300; ++i) list->objectAtIndex(i).setValue(1, "a");
    return true;
  };
  for (int n = 0; n < 300; ++n) {
    const bool isWitness = n == 60;
    list->addObject(
        asOwnerOf(isWitness ? PropertyValue(make<Witness>(n, change)) : PropertyValue(0), 1));
  }
  EXPECT_EQ(filteredArrayUsingQualifier(list, key("a") == 1)->count(), 201U);
}

// The value that is being compared may be taken away meanwhile.
TEST(Blocks, HoldWhatIsCompared) {
  const auto list = MutableArray::init();
  const auto drop = [&](int n) {
    list->objectAtIndex(static_cast<std::size_t>(n)).setValue(nullptr, "a");
    return n % 2 == 0;
  };
  for (int n = 0; n < 300; ++n) list->addObject(asOwnerOf(make<Witness>(n, drop), 1));
  EXPECT_EQ(filteredArrayUsingQualifier(list, key("a") == 1)->count(), 150U);
}

}  // namespace
}  // namespace qx

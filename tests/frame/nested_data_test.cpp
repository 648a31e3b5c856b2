// Deep, cyclic and widely shared data: destroyed, compared, hashed, described and copied safely.

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/counted.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

using frame_test::Counted;

constexpr int kDeep = 1'000'000;

template <class Wrap>
PropertyValue nest(int depth, PropertyValue inner, Wrap wrap) {
  for (int i = 0; i < depth; ++i) inner = wrap(inner, i);
  return inner;
}

PropertyValue inArray(const PropertyValue& v, int) { return array(v); }
PropertyValue inDictionary(const PropertyValue& v, int) { return dict({{"k", v}}); }
PropertyValue inMutableArray(const PropertyValue& v, int) {
  const auto a = MutableArray::init();
  a->addObject(v);
  return a;
}
PropertyValue inMutableDictionary(const PropertyValue& v, int) {
  const auto d = MutableDictionary::init();
  d->setObject(v, "k");
  return d;
}
PropertyValue inSet(const PropertyValue& v, int) { return Set::from(array(v)); }
PropertyValue inObject(const PropertyValue& v, int) { return make<Counted>(v); }
PropertyValue inError(const PropertyValue& v, int) {
  return Error::errorWithDomain("D", 1, dict({{QXUnderlyingErrorsKey, v}}));
}
PropertyValue inAny(const PropertyValue& v, int i) {
  switch (i % 6) {
    case 0:
      return inArray(v, i);
    case 1:
      return inMutableDictionary(v, i);
    case 2:
      return inObject(v, i);
    case 3:
      return inMutableArray(v, i);
    case 4:
      return inSet(v, i);
    default:
      return inDictionary(v, i);
  }
}

TEST(DeepData, IsDestroyedSafely) {
  for (const auto wrap : {&inArray, &inDictionary, &inMutableArray, &inMutableDictionary, &inSet,
                          &inObject, &inError, &inAny}) {
    const PropertyValue deep = nest(kDeep, 0, wrap);
    EXPECT_FALSE(deep.isNil());
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(DeepData, IsDestroyedSafelyByItsMutators) {
  const auto a = MutableArray::init();
  for (int i = 0; i < 4; ++i) a->addObject(nest(kDeep / 4, 0, &inAny));
  a->removeObjectAtIndex(0);
  a->removeLastObject();
  a->replaceObjectAtIndex(0, 1);
  a->removeAllObjects();
  const auto d = MutableDictionary::init();
  for (int i = 0; i < 3; ++i) d->setObject(nest(kDeep / 4, 0, &inAny), "k" + std::to_string(i));
  d->setObject(0, "k0");
  d->removeObjectForKey("k1");
  d->removeAllObjects();
  EXPECT_EQ(Counted::alive, 0);
}

TEST(DeepData, IsComparedSafely) {
  EXPECT_TRUE(nest(kDeep, 1, &inArray) == nest(kDeep, 1, &inMutableArray));
  EXPECT_FALSE(nest(kDeep, 1, &inDictionary) == nest(kDeep, 2, &inMutableDictionary));
}

TEST(DeepData, IsComparedHashedAndCopied) {
  constexpr int kQuiteDeep = 50'000;
  for (const auto wrap : {&inArray, &inDictionary, &inMutableArray, &inMutableDictionary}) {
    const PropertyValue a = nest(kQuiteDeep, 1, wrap);
    const PropertyValue b = nest(kQuiteDeep, 1.0, wrap);
    const PropertyValue c = nest(kQuiteDeep, 2, wrap);
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(b == a);
    EXPECT_FALSE(a == c);
    EXPECT_EQ(a.hash(), b.hash());
    EXPECT_TRUE(a.copy() == a);
    EXPECT_TRUE(a.mutableCopy() == a);
    EXPECT_LT(a.description().size(), 1000U);
    EXPECT_TRUE(array(0, a)->containsObject(b));
    EXPECT_TRUE(Set::from(array(a))->containsObject(b));
  }
}

TEST(DeepData, OfSetsIsComparedToABound) {
  const PropertyValue a = nest(500, 1, &inSet);
  const PropertyValue b = nest(500, 1, &inSet);
  EXPECT_TRUE(a == b);
  EXPECT_EQ(a.hash(), b.hash());
  const PropertyValue deepA = nest(kDeep, 1, &inSet);
  const PropertyValue deepB = nest(kDeep, 1, &inSet);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)(deepA == deepB); }),
            "isEqual: sets and objects are nested more than 500 deep");
  EXPECT_TRUE(deepA == deepA);
  EXPECT_EQ(deepA.hash(), deepB.hash());
  EXPECT_TRUE(a == b);  // the bound has left nothing behind
  EXPECT_LT(deepA.description().size(), 1000U);
}

TEST(DeepData, OfErrorsIsComparedToABound) {
  EXPECT_TRUE(nest(400, 1, &inError) == nest(400, 1, &inError));
  EXPECT_FALSE(nest(400, 1, &inError) == nest(400, 2, &inError));
  const PropertyValue a = nest(10000, 1, &inError);
  const PropertyValue b = nest(10000, 1, &inError);
  EXPECT_THROW((void)(a == b), InvalidArgumentException);
  EXPECT_EQ(a.hash(), b.hash());
}

TEST(CyclicData, IsComparedHashedAndDescribed) {
  const auto ring = [](int length, const char* key) {
    const auto first = MutableDictionary::init();
    PropertyValue inner = first;
    for (int i = 1; i < length; ++i) {
      const auto d = MutableDictionary::init();
      d->setObject(inner, key);
      inner = d;
    }
    first->setObject(inner, key);
    return first;
  };
  const auto a = ring(3, "k");
  const auto b = ring(3, "k");
  const auto c = ring(5, "k");  // unrolled it is the same
  const auto d = ring(3, "other");
  EXPECT_TRUE(PropertyValue(a) == PropertyValue(b));
  EXPECT_TRUE(PropertyValue(a) == PropertyValue(c));
  EXPECT_FALSE(PropertyValue(a) == PropertyValue(d));
  EXPECT_EQ(a->hash(), b->hash());
  EXPECT_EQ(a->hash(), c->hash());
  EXPECT_LT(a->description().size(), 1000U);
  EXPECT_TRUE(PropertyValue(a).copy() == PropertyValue(a));
  for (const auto& r : {a, b, c, d}) r->removeAllObjects();
}

TEST(CyclicData, MayHoldItselfDirectly) {
  const auto a = MutableArray::init();
  a->addObject(a);
  const auto b = MutableArray::init();
  b->addObject(b);
  EXPECT_TRUE(PropertyValue(a) == PropertyValue(b));
  EXPECT_EQ(a->hash(), b->hash());
  EXPECT_NE(a->description().find("..."), std::string::npos);
  const auto s = MutableSet::init();
  s->addObject(s);
  EXPECT_EQ(s->count(), 1U);
  EXPECT_NE(s->hash(), 0U);
  EXPECT_NE(s->description().find("..."), std::string::npos);
  a->removeAllObjects();
  b->removeAllObjects();
  s->removeAllObjects();
}

// Two ways from each level to the next.
template <class Double>
PropertyValue shared(int levels, PropertyValue leaf, Double twice) {
  for (int i = 0; i < levels; ++i) leaf = twice(leaf);
  return leaf;
}

TEST(SharedData, IsComparedHashedAndDescribedOnce) {
  const auto inArrays = [](const PropertyValue& v) -> PropertyValue { return array(v, v); };
  const auto inDictionaries = [](const PropertyValue& v) -> PropertyValue {
    return dict({{"a", v}, {"b", v}});
  };
  const auto inSets = [](const PropertyValue& v) -> PropertyValue {
    return Set::from(array(array(v, 1), array(v, 2)));
  };
  const PropertyValue arrays[] = {shared(30, 1, inArrays), shared(30, 1, inArrays),
                                  shared(30, 2, inArrays)};
  const PropertyValue maps[] = {shared(30, 1, inDictionaries), shared(30, 1, inDictionaries),
                                shared(30, 2, inDictionaries)};
  const PropertyValue sets[] = {shared(30, 1, inSets), shared(30, 1, inSets),
                                shared(30, 2, inSets)};
  for (const auto& group : {arrays, maps, sets}) {
    EXPECT_TRUE(group[0] == group[1]);
    EXPECT_FALSE(group[0] == group[2]);
    EXPECT_EQ(group[0].hash(), group[1].hash());
    const std::string text = group[0].description();
    EXPECT_LT(text.size(), std::size_t{17} << 20);
    EXPECT_NE(text.find("..."), std::string::npos);
  }
}

// What lies deeper than the descriptions go, or is longer, is left out.
TEST(Descriptions, AreCutAtTheirLimits) {
  EXPECT_EQ(nest(60, 1, &inArray).description().find("..."), std::string::npos);
  std::string cut(60, '(');
  cut += "...";
  cut.append(60, ')');
  EXPECT_EQ(nest(61, 1, &inArray).description(), cut);
  const auto many = MutableArray::init();
  for (int i = 0; i < 20; ++i) many->addObject(std::string(1 << 20, 'x'));
  const std::string text = many->description();
  EXPECT_EQ(text.size(), 16 * ((std::size_t{1} << 20) + 2) + 5);
  EXPECT_EQ(text.substr(text.size() - 6), ", ...)");
}

TEST(Descriptions, ShowContainers) {
  const struct {
    PropertyValue value;
    const char* text;
  } cases[] = {
      {array(), "()"},
      {array(1, -2.5, true, null, "word", "two words"),
       "(1, -2.5, 1, <null>, word, \"two words\")"},
      {array("", "a\"b", "a\\b", "3.5-x_y", "\xC3\xA9"),
       "(\"\", \"a\\\"b\", \"a\\\\b\", 3.5-x_y, \"\xC3\xA9\")"},
      {dict(), "{}"},
      {dict({{"age", 42}, {"full name", "Bob"}}), "{age = 42; \"full name\" = Bob;}"},
      {dict({{"a", array(1, dict({{"b", 2}}))}}), "{a = (1, {b = 2;});}"},
      {Set::from(array(1, "x")), "{(1, x)}"},
      {MutableSet::init(), "{()}"},
      {array(Data::from("ab"), Date::dateWithTimeIntervalSince1970(0)),
       "(<6162>, 1970-01-01 00:00:00 +0000)"},
      {array(1e300, 0.1F, DecimalNumber::initWithString("0.10")), "(1e+300, 0.1, 0.1)"},
      {array(classOf<String>()), "(NSString)"},
      {array(MutableArray::init(), MutableDictionary::init()), "((), {})"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.value.description(), c.text);
}

// An application class whose description describes a container that holds it.
class Family : public Object {
 public:
  Ref<MutableArray> members = MutableArray::init();
  std::string description() const override { return "family " + members->description(); }
  bool isEqual(const PropertyValue& other) const override {
    const auto* f = other.peek<Family>();
    return f != nullptr && members->isEqual(f->members);
  }
  std::size_t hash() const override { return members->count(); }
};
void describe(ClassBuilder<Family>& c) { c.name("FrameTestFamily"); }

TEST(CyclicData, ThroughApplicationObjectsEnds) {
  const auto ringOfTwo = [] {
    const auto first = make<Family>();
    const auto second = make<Family>();
    first->members->addObject(second);
    second->members->addObject(first);
    return first;
  };
  const auto a = ringOfTwo();
  const auto b = ringOfTwo();
  const std::string text = a->description();
  EXPECT_LT(text.size(), 2000U);
  EXPECT_NE(text.find("family (family ...)"), std::string::npos) << text;
  EXPECT_EQ(PropertyValue(array(1)).description(), "(1)");  // the levels are left again
  EXPECT_THROW((void)(PropertyValue(a) == PropertyValue(b)), InvalidArgumentException);
  EXPECT_TRUE(PropertyValue(array(1)) == PropertyValue(array(1)));
  a->members->removeAllObjects();
  b->members->removeAllObjects();
}

// An application class may change a container while that describes it.
class Meddler : public Object {
 public:
  Ref<MutableArray> list;
  Ref<MutableDictionary> map;
  std::string description() const override {
    if (list != nullptr) list->removeAllObjects();
    if (map != nullptr) map->removeAllObjects();
    return "meddler";
  }
};
void describe(ClassBuilder<Meddler>& c) { c.name("FrameTestMeddler"); }

TEST(Descriptions, HoldWhatTheyDescribe) {
  const auto list = MutableArray::init();
  const auto map = MutableDictionary::init();
  for (int i = 0; i < 3; ++i) {
    const auto m = make<Meddler>();
    m->list = list;
    m->map = map;
    list->addObject(m);
    map->setObject(m, "k" + std::to_string(i));
  }
  EXPECT_EQ(map->description(), "{k0 = meddler; k1 = meddler; k2 = meddler;}");
  for (int i = 0; i < 3; ++i) {
    const auto m = make<Meddler>();
    m->list = list;
    list->addObject(m);
  }
  EXPECT_EQ(list->description(), "(meddler, meddler, meddler)");
  EXPECT_EQ(list->count() + map->count(), 0U);
}

}  // namespace
}  // namespace qx

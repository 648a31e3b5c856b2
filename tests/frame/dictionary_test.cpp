#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/dictionary.h>

#include "frame/dictionary_storage.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

using detail::DictionaryStorage;
using detail::Shape;

// "a=1 b=2", in the dictionary's order.
std::string listed(const Dictionary& d) {
  std::string text;
  for (const auto& [key, value] : d) {
    text += (text.empty() ? "" : " ") + key.utf8() + "=" + value.description();
  }
  return text;
}

std::string key(std::size_t n) { return "k" + std::to_string(n); }

Ref<Dictionary> numbered(std::size_t count) {
  std::vector<std::string> keys;
  std::vector<Entry> entries;
  for (std::size_t i = 0; i < count; ++i) keys.push_back(key(i));
  for (std::size_t i = 0; i < count; ++i) entries.push_back({keys[i], i});
  return Dictionary::from(entries.data(), count);
}

TEST(Dictionaries, KeepTheOrderOfTheirKeys) {
  EXPECT_EQ(listed(*dict({{"z", 1}, {"a", 2}, {"m", 3}})), "z=1 a=2 m=3");
  EXPECT_EQ(listed(*dict()), "");
  EXPECT_EQ(listed(*Dictionary::init()), "");
  EXPECT_EQ(PropertyValue(dict({{"z", 1}, {"a", 2}})->allKeys()), PropertyValue(array("z", "a")));
  EXPECT_EQ(PropertyValue(dict({{"z", 1}, {"a", 2}})->allValues()), PropertyValue(array(1, 2)));
}

TEST(Dictionaries, KeepTheLastValueOfAKeyAtItsFirstPlace) {
  EXPECT_EQ(listed(*dict({{"a", 1}, {"b", 2}, {"a", 3}, {"c", 4}, {"b", 5}})), "a=3 b=5 c=4");
  std::vector<Entry> many;
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < 60; ++i) keys.push_back(key(i % 20));
  for (std::size_t i = 0; i < 60; ++i) many.push_back({keys[i], i});
  const auto d = Dictionary::from(many.data(), many.size());
  EXPECT_EQ(d->count(), 20U);
  EXPECT_EQ(d->allKeys()->firstObject(), PropertyValue("k0"));
  EXPECT_EQ(d->objectForKey("k0"), PropertyValue(40U));
  EXPECT_EQ(d->objectForKey("k19"), PropertyValue(59U));
}

// What remains decides between a shared shape and an own one.
TEST(Dictionaries, TakeRepeatedKeysUpToAnyNumber) {
  for (std::size_t distinct = 1; distinct <= 40; ++distinct) {
    std::vector<std::string> keys;
    std::vector<Entry> entries;
    for (std::size_t i = 0; i < distinct + 7; ++i) keys.push_back(key(i % distinct));
    for (std::size_t i = 0; i < keys.size(); ++i) entries.push_back({keys[i], i});
    const auto d = Dictionary::from(entries.data(), entries.size());
    ASSERT_EQ(d->count(), distinct);
    EXPECT_EQ(DictionaryStorage::shape(*d).isShared(), distinct <= Shape::kMaxShared);
    std::size_t place = 0;
    for (const auto& [name, value] : *d) {
      std::size_t last = place;
      while (last + distinct < keys.size()) last += distinct;
      EXPECT_EQ(name.utf8(), key(place)) << distinct;
      EXPECT_EQ(value, PropertyValue(last)) << distinct;
      EXPECT_EQ(d->objectForKey(key(place)), PropertyValue(last)) << distinct;
      ++place;
    }
  }
}

TEST(Dictionaries, RefuseNilKeysAndValues) {
  const char* reason = "+[NSDictionary dictionaryWithObjects:forKeys:]: nil can not be stored";
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { (void)dict({{"a", nullptr}}); }), reason);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { (void)dict({{"a", 1}, {nullptr, 1}}); }),
            reason);
}

TEST(Dictionaries, FindTheirEntries) {
  for (const std::size_t count : {0U, 1U, 2U, 15U, 16U, 17U, 18U, 100U, 1000U}) {
    const auto d = numbered(count);
    EXPECT_EQ(d->count(), count);
    for (std::size_t i = 0; i < count; ++i) {
      ASSERT_EQ(d->objectForKey(key(i)), PropertyValue(i));
      ASSERT_EQ(*d->find(key(i)), PropertyValue(i));
      ASSERT_EQ(d->objectForKey(String::from(key(i))), PropertyValue(i));
    }
    EXPECT_TRUE(d->objectForKey(key(count)).isNil());
    EXPECT_EQ(d->find("other"), nullptr);
    EXPECT_EQ(d->find(nullptr), nullptr);
    EXPECT_TRUE(d->objectForKey(nullptr).isNil());
    EXPECT_EQ(d->allKeys()->count(), count);
  }
}

TEST(Dictionaries, TakeAnyTextAsKey) {
  const auto d =
      dict({{"", 1}, {std::string("a\0b", 3), 2}, {"\xC3\xA9", 3}, {"\xF0\x9F\x98\x80", 4}});
  EXPECT_EQ(d->objectForKey(""), PropertyValue(1));
  EXPECT_EQ(d->objectForKey(std::string("a\0b", 3)), PropertyValue(2));
  EXPECT_TRUE(d->objectForKey("a").isNil());
  EXPECT_EQ(d->objectForKey(String::fromLatin1("\xE9")), PropertyValue(3));
  EXPECT_EQ(d->objectForKey("\xF0\x9F\x98\x80"), PropertyValue(4));
}

TEST(Dictionaries, AreEqualWhateverTheirOrder) {
  EXPECT_TRUE(dict({{"a", 1}, {"b", 2}})->isEqualToDictionary(dict({{"b", 2.0}, {"a", 1}})));
  EXPECT_FALSE(dict({{"a", 1}})->isEqualToDictionary(dict({{"a", 1}, {"b", 2}})));
  EXPECT_FALSE(dict({{"a", 1}})->isEqualToDictionary(nullptr));
  const auto large = numbered(40);
  const auto reversed = MutableDictionary::init();
  for (std::size_t i = 40; i-- > 0;) reversed->setObject(i, key(i));
  EXPECT_TRUE(large->isEqualToDictionary(reversed));
  EXPECT_TRUE(reversed->isEqualToDictionary(large));
  EXPECT_EQ(large->hash(), reversed->hash());
}

const Shape* shapeOf(const Dictionary& d) { return &DictionaryStorage::shape(d); }

TEST(DictionaryShapes, AreSharedByEqualKeyLists) {
  const auto a = dict({{"x", 1}, {"y", 2}});
  const auto b = dict({{"x", "one"}, {"y", "two"}});
  const auto c = dict({{"y", 2}, {"x", 1}});
  EXPECT_EQ(shapeOf(*a), shapeOf(*b));
  EXPECT_NE(shapeOf(*a), shapeOf(*c));
  const auto m = MutableDictionary::init();
  m->setObject(1, "x");
  EXPECT_EQ(shapeOf(*m), shapeOf(*dict({{"x", 0}})));
  m->setObject(2, "y");
  EXPECT_EQ(shapeOf(*m), shapeOf(*a));
  m->setObject(3, "z");
  m->removeObjectForKey("z");
  EXPECT_EQ(shapeOf(*m), shapeOf(*a));
  EXPECT_EQ(shapeOf(*PropertyValue(m).copy().as<Dictionary>()), shapeOf(*a));
  EXPECT_EQ(shapeOf(*PropertyValue(a).mutableCopy().as<Dictionary>()), shapeOf(*a));
  EXPECT_EQ(shapeOf(*dict()), shapeOf(*MutableDictionary::init()));
}

TEST(DictionaryShapes, EndWithTheirLastDictionary) {
  const auto text = String::from("a key of this test alone");
  const auto references = [&] {
    return detail::ObjectAccess::refs(*text).load() / detail::ObjectAccess::kOne;
  };
  {
    const auto a = dict({{text, 1}});
    const auto b = dict({{text, 2}});
    EXPECT_EQ(references(), 2U);  // the shape's
  }
  EXPECT_EQ(references(), 1U);
}

TEST(DictionaryShapes, AreOwnBeyondSixteenKeys) {
  EXPECT_TRUE(shapeOf(*numbered(16))->isShared());
  EXPECT_EQ(shapeOf(*numbered(16)), shapeOf(*numbered(16)));
  const auto large = numbered(17);
  EXPECT_FALSE(shapeOf(*large)->isShared());
  EXPECT_NE(shapeOf(*large), shapeOf(*numbered(17)));
  // A copy of few entries shares again.
  const PropertyValue m = PropertyValue(large).mutableCopy();
  for (std::size_t i = 0; i < 12; ++i) m.as<MutableDictionary>()->removeObjectForKey(key(i));
  EXPECT_FALSE(shapeOf(*m.as<Dictionary>())->isShared());
  const auto copy = m.copy().as<Dictionary>();
  EXPECT_TRUE(shapeOf(*copy)->isShared());
  EXPECT_EQ(listed(*copy), "k12=12 k13=13 k14=14 k15=15 k16=16");
  EXPECT_EQ(m.mutableCopy(), m);
}

TEST(DictionaryBuilders, ReuseTheShapeOfTheOneBefore) {
  detail::DictionaryBuilder builder;
  const Ref<String> names[] = {String::from("p"), String::from("q"), String::from("p")};
  PropertyValue first[] = {1, 2};
  PropertyValue second[] = {3, 4};
  const auto a = builder.build(names, first, 2);
  const auto b = builder.build(names, second, 2);
  EXPECT_EQ(shapeOf(*a), shapeOf(*b));
  EXPECT_EQ(listed(*b), "p=3 q=4");
  PropertyValue doubled[] = {5, 6, 7};
  EXPECT_EQ(listed(*builder.build(names, doubled, 3)), "p=7 q=6");
  PropertyValue nil[] = {1, nullptr};
  EXPECT_THROW((void)builder.build(names, nil, 2), InvalidArgumentException);
  const Ref<String> missing[] = {nullptr};
  EXPECT_THROW((void)builder.build(missing, doubled, 1), InvalidArgumentException);
  EXPECT_EQ(builder.build(nullptr, nullptr, 0)->count(), 0U);
}

}  // namespace
}  // namespace qx

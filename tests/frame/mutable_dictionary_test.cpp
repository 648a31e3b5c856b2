#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include <QXFoundation/QXFoundation.h>

#include "frame/dictionary_storage.h"
#include "tests/frame/counted.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

using frame_test::Counted;

std::string key(std::size_t n) { return "k" + std::to_string(n); }

TEST(MutableDictionaries, ChangeInPlace) {
  const auto d = MutableDictionary::init();
  d->setObject(1, "a");
  d->setObject(2, "b");
  d->setObject(3, "a");
  EXPECT_EQ(PropertyValue(d), PropertyValue(dict({{"a", 3}, {"b", 2}})));
  EXPECT_EQ(PropertyValue(d->allKeys()), PropertyValue(array("a", "b")));
  d->removeObjectForKey("a");
  d->removeObjectForKey("absent");
  EXPECT_EQ(d->count(), 1U);
  d->setObject(9, "a");
  EXPECT_EQ(PropertyValue(d->allKeys()), PropertyValue(array("b", "a")));  // a new key goes last
  d->addEntriesFromDictionary(dict({{"c", 1}, {"a", 2}}));
  d->addEntriesFromDictionary(nullptr);
  d->addEntriesFromDictionary(d);
  EXPECT_EQ(PropertyValue(d), PropertyValue(dict({{"b", 2}, {"a", 2}, {"c", 1}})));
  d->setValueForKey(nullptr, "a");
  d->setValueForKey(5, "b");
  EXPECT_EQ(PropertyValue(d), PropertyValue(dict({{"b", 5}, {"c", 1}})));
  d->setDictionary(dict({{"z", 26}}));
  EXPECT_EQ(PropertyValue(d), PropertyValue(dict({{"z", 26}})));
  d->setDictionary(d);
  EXPECT_EQ(d->count(), 1U);
  d->setDictionary(nullptr);
  EXPECT_EQ(d->count(), 0U);
  d->removeAllObjects();
  EXPECT_EQ(MutableDictionary::dictionaryWithDictionary(nullptr)->count(), 0U);
}

TEST(MutableDictionaries, RefuseNil) {
  const auto d = MutableDictionary::dictionaryWithDictionary(dict({{"a", 1}}));
  const char* stored = "-[NSMutableDictionary setObject:forKey:]: nil can not be stored";
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { d->setObject(nullptr, "a"); }), stored);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { d->setObject(1, nullptr); }), stored);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { d->removeObjectForKey(nullptr); }),
            "nil was used as an object in -[NSMutableDictionary removeObjectForKey:]");
  for (const PropertyValue& v : {PropertyValue(), PropertyValue(1)}) {
    EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { d->setValueForKey(v, nullptr); }),
              "nil was used as an object in -[NSMutableDictionary setValue:forKey:]");
  }
  EXPECT_EQ(PropertyValue(d), PropertyValue(dict({{"a", 1}})));
}

TEST(MutableDictionaries, CopyTheirKeys) {
  const auto d = MutableDictionary::init();
  const auto text = MutableString::from("key");
  d->setObject(1, text);
  text->setString("changed");
  EXPECT_EQ(d->objectForKey("key"), PropertyValue(1));
  EXPECT_TRUE(d->objectForKey("changed").isNil());
  EXPECT_STREQ(d->allKeys()->firstObject().cls()->name(), "NSString");
  const auto fixed = String::from("fixed");
  d->setObject(2, fixed);
  EXPECT_TRUE(isSame(d->allKeys()->lastObject(), fixed));
}

TEST(MutableDictionaries, TakeTheirOwnKeysAndValues) {
  for (const std::size_t count : {3U, 16U, 17U, 40U}) {
    const auto d = MutableDictionary::init();
    for (std::size_t i = 0; i < count; ++i) d->setObject("v" + std::to_string(i), key(i));
    for (int round = 0; round < 20; ++round) {
      const auto item = *d->begin();
      d->setObject(item.value, "copy" + std::to_string(round));
    }
    EXPECT_EQ(d->objectForKey("copy19"), PropertyValue("v0"));
    while (d->count() != 0) d->removeObjectForKey((*d->begin()).key);
    d->setObject(d, "itself");
    EXPECT_TRUE(isSame(d->objectForKey("itself"), d));
    d->removeAllObjects();
  }
}

TEST(MutableDictionaries, LeaveTheirCopiesAlone) {
  for (const std::size_t count : {0U, 1U, 16U, 17U, 100U}) {
    const auto d = MutableDictionary::init();
    for (std::size_t i = 0; i < count; ++i) d->setObject(i, key(i));
    const PropertyValue fixed = PropertyValue(d).copy();
    const PropertyValue changing = PropertyValue(d).mutableCopy();
    const PropertyValue both = fixed.mutableCopy();
    d->setObject("more", "more");
    d->removeObjectForKey("k0");
    EXPECT_EQ(fixed.as<Dictionary>()->count(), count);
    EXPECT_EQ(changing, fixed);
    EXPECT_EQ(both, fixed);
    changing.as<MutableDictionary>()->setObject(1, "other");
    EXPECT_EQ(fixed.as<Dictionary>()->count(), count);
    EXPECT_STREQ(fixed.cls()->name(), "NSDictionary");
    EXPECT_STREQ(changing.cls()->name(), "NSMutableDictionary");
    EXPECT_TRUE(isSame(fixed.copy(), fixed));
  }
}

TEST(MutableDictionaries, HoldManyEntries) {
  constexpr std::size_t kMany = 100'000;
  const auto d = MutableDictionary::init();
  for (std::size_t i = 0; i < kMany; ++i) d->setObject(i, key(i));
  EXPECT_EQ(d->count(), kMany);
  for (std::size_t i = 0; i < kMany; ++i) ASSERT_EQ(*d->find(key(i)), PropertyValue(i));
  const PropertyValue copy = PropertyValue(d).copy();
  EXPECT_EQ(copy, PropertyValue(d));
  for (std::size_t i = 0; i < kMany; i += 2) d->removeObjectForKey(key(i));
  EXPECT_EQ(d->count(), kMany / 2);
  std::size_t next = 1;
  for (const auto& [k, v] : *d) {
    ASSERT_EQ(v, PropertyValue(next));
    next += 2;
  }
  for (std::size_t i = 1; i < kMany; i += 2) d->removeObjectForKey(key(i));
  EXPECT_EQ(d->count(), 0U);
  EXPECT_TRUE(d->begin() == d->end());
  d->setObject(1, "again");
  EXPECT_EQ(d->count(), 1U);
  EXPECT_EQ(copy.as<Dictionary>()->count(), kMany);
}

TEST(MutableDictionaries, CloseTheHolesOfRemovedEntries) {
  const auto d = MutableDictionary::init();
  for (std::size_t i = 0; i < 100; ++i) d->setObject(i, key(i));
  for (std::size_t i = 0; i < 99; ++i) {
    d->removeObjectForKey(key(i));
    ASSERT_EQ(d->count(), 99 - i);
    ASSERT_EQ((*d->begin()).value, PropertyValue(i + 1));
    ASSERT_EQ(d->objectForKey("k99"), PropertyValue(99U));
  }
  EXPECT_LE(detail::DictionaryStorage::shape(*d).slots(), 34U);
  // A queue: never many entries, but many pass through.
  for (std::size_t i = 0; i < 10000; ++i) {
    d->setObject(i, "q" + std::to_string(i));
    if (i >= 20) d->removeObjectForKey("q" + std::to_string(i - 20));
    ASSERT_LE(detail::DictionaryStorage::shape(*d).slots(), 64U);
  }
  EXPECT_EQ(d->count(), 21U);
}

// Sees every change.
class WatchedDictionary : public MutableDictionary {
 public:
  std::vector<std::string> calls;
  void setObject(const PropertyValue& v, StringArg k) override {
    calls.push_back("set " + k.utf8());
    MutableDictionary::setObject(v, k);
  }
  void removeObjectForKey(StringArg k) override {
    calls.push_back("remove " + k.utf8());
    MutableDictionary::removeObjectForKey(k);
  }
  void removeAllObjects() override {
    calls.push_back("remove all");
    MutableDictionary::removeAllObjects();
  }
};
void describe(ClassBuilder<WatchedDictionary>& c) {
  c.name("FrameTestWatchedDictionary").inherits<MutableDictionary>();
}

TEST(MutableDictionaries, GoThroughThePrimitivesOfASubclass) {
  const auto d = make<WatchedDictionary>();
  d->addEntriesFromDictionary(dict({{"a", 1}, {"b", 2}}));
  d->setDictionary(dict({{"c", 3}}));
  d->setValueForKey(4, "d");
  d->setValueForKey(nullptr, "c");
  PropertyValue(d).setValue(5, "e");
  PropertyValue(d).setValue(nullptr, "e");
  performSelector(d, "setObject:forKey:", 6, "f");
  performSelector(d, "removeAllObjects");
  const std::vector<std::string> expected = {"set a", "set b",     "remove all", "set c",
                                             "set d", "remove c",  "set e",      "remove e",
                                             "set f", "remove all"};
  EXPECT_EQ(d->calls, expected);
}

// Random changes against a list in the order of insertion, over key sets of several sizes.
TEST(MutableDictionaries, FollowAModel) {
  for (const std::size_t keys : {4U, 20U, 200U}) {
    std::mt19937 random(static_cast<unsigned>(keys));
    const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    const auto d = MutableDictionary::init();
    std::vector<std::pair<std::string, PropertyValue>> model;
    for (int step = 0; step < 20000; ++step) {
      const std::string k = key(below(keys));
      const auto at = std::find_if(model.begin(), model.end(),
                                   [&](const auto& entry) { return entry.first == k; });
      const bool growing = (step / 1000) % 2 == 0;
      if (below(10) < (growing ? 7U : 3U)) {
        const PropertyValue v =
            below(2) == 0 ? PropertyValue(make<Counted>()) : PropertyValue(step);
        d->setObject(v, k);
        if (at == model.end()) {
          model.emplace_back(k, v);
        } else {
          at->second = v;
        }
      } else {
        d->removeObjectForKey(k);
        if (at != model.end()) model.erase(at);
      }
      ASSERT_EQ(d->count(), model.size());
      if (step % 97 == 0) {
        std::size_t i = 0;
        for (const auto& [foundKey, value] : *d) {
          ASSERT_EQ(foundKey.utf8(), model[i].first);
          ASSERT_TRUE(isSame(value, model[i].second));
          ++i;
        }
        ASSERT_EQ(i, model.size());
        for (std::size_t n = 0; n < keys; ++n) {
          const bool known = std::any_of(model.begin(), model.end(),
                                         [&](const auto& e) { return e.first == key(n); });
          ASSERT_EQ(d->find(key(n)) != nullptr, known);
        }
      }
      if (step == 15000) {
        d->removeAllObjects();
        model.clear();
      }
    }
  }
  EXPECT_EQ(Counted::alive, 0);
}

}  // namespace
}  // namespace qx

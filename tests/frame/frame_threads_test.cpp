// What several threads may do at once: build shapes and classes, name selectors, read what is
// immutable.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include <QXFoundation/QXFoundation.h>

#include "frame/dictionary_storage.h"
#include "tests/frame/person.h"

namespace qx {
namespace {

using frame_test::Person;

constexpr int kThreads = 4;

// Runs `work(thread)` on several threads that start as nearly together as can be.
template <class Work>
void together(Work work) {
  std::atomic<int> waiting = kThreads;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      --waiting;
      while (waiting > 0) std::this_thread::yield();
      work(t);
    });
  }
  for (std::thread& t : threads) t.join();
}

TEST(FrameThreads, ShareShapes) {
  for (int round = 0; round < 50; ++round) {
    const std::string own = "key of round " + std::to_string(round);
    Ref<Dictionary> made[kThreads];
    together([&](int t) {
      for (int i = 0; i < 20; ++i) made[t] = dict({{"first", i}, {own, t}, {"last", null}});
      const auto m = MutableDictionary::init();
      for (int i = 0; i < 18; ++i) m->setObject(i, own + std::to_string(i % 17));
      for (int i = 0; i < 18; ++i) m->removeObjectForKey(own + std::to_string(i));
      ASSERT_EQ(m->count(), 0U);
    });
    for (const auto& d : made) {
      EXPECT_EQ(&detail::DictionaryStorage::shape(*d), &detail::DictionaryStorage::shape(*made[0]));
    }
    together([&](int t) { made[t] = nullptr; });
  }
}

template <int N>
class Fresh : public Object {
 public:
  int number = N;
};
template <int N>
class FreshChild : public Fresh<N> {
 public:
  int more = N + 1;
};
template <int N>
void describe(ClassBuilder<Fresh<N>>& c) {
  c.property("number", &Fresh<N>::number);
}
template <int N>
void describe(ClassBuilder<FreshChild<N>>& c) {
  c.name(N == 0 ? "FrameTestFreshChild" : "FrameTestFreshChildAgain");
  c.template inherits<Fresh<N>>().property("more", &FreshChild<N>::more);
}

template <int N>
const Class* describedAtOnce() {
  const Class* seen[kThreads] = {};
  together([&](int t) {
    seen[t] = t % 2 == 0 ? &classOf<FreshChild<N>>() : classOf<FreshChild<N>>().superclass();
    const Class* named = classNamed("FrameTestFreshChild");
    ASSERT_TRUE(named == nullptr || named == &classOf<FreshChild<0>>());
  });
  EXPECT_EQ(seen[0], seen[2]);
  EXPECT_EQ(seen[1], seen[3]);
  EXPECT_EQ(seen[1], &classOf<Fresh<N>>());
  return seen[0];
}

TEST(FrameThreads, DescribeClasses) {
  const Class* const all[] = {describedAtOnce<0>(), describedAtOnce<1>(), describedAtOnce<2>(),
                              describedAtOnce<3>(), describedAtOnce<4>(), describedAtOnce<5>()};
  EXPECT_EQ(classNamed("FrameTestFreshChild"), all[0]);
  EXPECT_EQ(classNamed("FrameTestFreshChildAgain"), all[1]);
}

TEST(FrameThreads, NameSelectors) {
  for (int round = 0; round < 50; ++round) {
    const std::string text = "selectorOfRound" + std::to_string(round) + ":";
    Selector named[kThreads];
    together([&](int t) { named[t] = Selector::named(text); });
    for (const Selector s : named) EXPECT_EQ(s.text().data(), named[0].text().data());
  }
}

TEST(FrameThreads, HashSharedStrings) {
  for (int round = 0; round < 100; ++round) {
    const auto s = String::from("text of round " + std::to_string(round));
    std::size_t hashes[kThreads] = {};
    together([&](int t) { hashes[t] = s->hash(); });
    for (const std::size_t h : hashes) EXPECT_EQ(h, hashes[0]);
  }
}

TEST(FrameThreads, ReadImmutableValues) {
  const auto boss = make<Person>("Eve", 60);
  const auto bob = make<Person>("Bob", 42);
  bob->boss = boss;
  const PropertyValue data = dict({{"list", array(1, "two", 3.0, dict({{"k", "v"}}))},
                                   {"person", bob},
                                   {"set", Set::from(array("a", 1, array(2)))},
                                   {"large", 1e300}});
  const std::string text = data.description();
  const std::size_t hash = data.hash();
  together([&](int) {
    for (int i = 0; i < 200; ++i) {
      const PropertyValue mine = data;
      ASSERT_EQ(mine.valueForKeyPath("person.boss.name"), PropertyValue("Eve"));
      ASSERT_TRUE(mine["list"].doesContain("two"));
      ASSERT_TRUE(mine["set"].doesContain(array(2)));
      ASSERT_TRUE(mine == data);
      ASSERT_EQ(mine.hash(), hash);
      ASSERT_EQ(mine["list"].description(), data["list"].description());
      ASSERT_EQ(performSelector(mine["person"], "greet:", "you"), PropertyValue("hello you, Bob"));
      ASSERT_TRUE(mine.mutableCopy() == data);
    }
  });
  EXPECT_EQ(data.description(), text);
}

// Each thread has its own list of what waits to be destroyed.
TEST(FrameThreads, DestroyDeepData) {
  together([](int) {
    PropertyValue deep = 0;
    for (int i = 0; i < 50000; ++i) deep = array(deep, dict({{"k", deep}}));
  });
  PropertyValue shared[kThreads];
  PropertyValue deep = 0;
  for (int i = 0; i < 50000; ++i) deep = array(deep, i);
  for (PropertyValue& v : shared) v = deep;
  deep = nullptr;
  together([&](int t) { shared[t] = nullptr; });
}

}  // namespace
}  // namespace qx

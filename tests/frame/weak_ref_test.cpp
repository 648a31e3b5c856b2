#include <gtest/gtest.h>

#include <thread>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/weak_ref.h>

#include "tests/frame/counted.h"

namespace qx {
namespace {

using frame_test::Counted;

class WeakChild : public Counted {};
void describe(ClassBuilder<WeakChild>& c) { c.name("FrameTestWeakChild").inherits<Counted>(); }

TEST(WeakRefs, ReadAsNilOnceTheObjectIsGone) {
  WeakRef<Counted> weak;
  EXPECT_TRUE(weak.lock() == nullptr);
  {
    const auto object = make<Counted>();
    weak = object;
    EXPECT_EQ(weak.lock().get(), object.get());
    EXPECT_EQ(weak.lock().get(), object.get());
  }
  EXPECT_EQ(Counted::alive, 0);
  EXPECT_TRUE(weak.lock() == nullptr);
  EXPECT_TRUE(weak.lock() == nullptr);
}

TEST(WeakRefs, KeepTheObjectWhileItIsLocked) {
  auto object = make<Counted>();
  const WeakRef<Counted> weak = object;
  auto locked = weak.lock();
  object = nullptr;
  EXPECT_EQ(Counted::alive, 1);
  EXPECT_FALSE(weak.lock() == nullptr);
  locked = nullptr;
  EXPECT_EQ(Counted::alive, 0);
  EXPECT_TRUE(weak.lock() == nullptr);
}

TEST(WeakRefs, AreCopiedAndMoved) {
  auto object = make<Counted>();
  const WeakRef<Counted> first = object;
  WeakRef<Counted> copy = first;
  WeakRef<Counted> other = make<Counted>();  // gone at once
  EXPECT_TRUE(other.lock() == nullptr);
  other = copy;
  copy = WeakRef<Counted>(nullptr);
  EXPECT_TRUE(copy.lock() == nullptr);
  const WeakRef<Counted> moved = std::move(other);
  EXPECT_EQ(moved.lock().get(), object.get());
  object = nullptr;
  EXPECT_TRUE(first.lock() == nullptr);
  EXPECT_TRUE(moved.lock() == nullptr);
}

TEST(WeakRefs, ServeBaseClassesAndPointers) {
  const auto child = make<WeakChild>();
  const WeakRef<Counted> base = child;
  const WeakRef<Object> root = child;
  const WeakRef<WeakChild> exact(child.get());
  EXPECT_EQ(base.lock().get(), child.get());
  EXPECT_EQ(root.lock().get(), child.get());
  EXPECT_EQ(exact.lock().get(), child.get());
  EXPECT_TRUE(WeakRef<Counted>(static_cast<Counted*>(nullptr)).lock() == nullptr);
  EXPECT_TRUE(WeakRef<Counted>(Ref<Counted>()).lock() == nullptr);
}

TEST(WeakRefs, ServeEveryKindOfObject) {
  WeakRef<String> text;
  WeakRef<Array> list;
  WeakRef<MutableDictionary> map;
  WeakRef<Data> data;
  {
    const auto s = String::from("weak");
    const auto a = array(s);
    const auto m = MutableDictionary::init();
    const auto d = Data::from("x");
    text = s;
    list = a;
    map = m;
    data = d;
    EXPECT_EQ(text.lock()->utf8(), "weak");
    EXPECT_EQ(list.lock()->count(), 1U);
    EXPECT_EQ(map.lock().get(), m.get());
    EXPECT_EQ(data.lock().get(), d.get());
  }
  EXPECT_TRUE(text.lock() == nullptr && list.lock() == nullptr);
  EXPECT_TRUE(map.lock() == nullptr && data.lock() == nullptr);
}

// A new object at the address of one that is gone is not taken for it.
TEST(WeakRefs, DoNotConfuseObjectsOfOneAddress) {
  for (int i = 0; i < 1000; ++i) {
    WeakRef<Counted> old = make<Counted>();
    const auto fresh = make<Counted>();
    ASSERT_TRUE(old.lock() == nullptr);
    const WeakRef<Counted> weak = fresh;
    ASSERT_EQ(weak.lock().get(), fresh.get());
  }
}

TEST(WeakRefs, OfNestedObjectsEndWithThem) {
  Ref<Counted> chain;
  std::vector<WeakRef<Counted>> weak;
  for (int i = 0; i < 1000; ++i) {
    chain = make<Counted>(chain);
    weak.emplace_back(chain);
  }
  chain = nullptr;
  EXPECT_EQ(Counted::alive, 0);
  for (const auto& w : weak) EXPECT_TRUE(w.lock() == nullptr);
}

// Threads lock while another lets the object go: each gets the whole object, or nil.
TEST(WeakRefThreads, LockWhileTheObjectIsReleased) {
  constexpr int kRounds = 300;
  constexpr int kThreads = 3;
  for (int round = 0; round < kRounds; ++round) {
    auto object = make<Counted>(round);
    const WeakRef<Counted> weak = object;
    std::atomic<int> ready = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&weak, &ready, round] {
        WeakRef<Counted> mine = weak;
        ++ready;
        while (ready <= kThreads) std::this_thread::yield();
        for (int i = 0; i < 20; ++i) {
          const auto locked = mine.lock();
          if (locked == nullptr) break;
          ASSERT_EQ(locked->held.intValue(), round);
          const WeakRef<Counted> another = locked;
          ASSERT_FALSE(another.lock() == nullptr);
        }
      });
    }
    while (ready < kThreads) std::this_thread::yield();
    ++ready;
    object = nullptr;
    for (std::thread& t : threads) t.join();
    ASSERT_EQ(Counted::alive, 0);
    ASSERT_TRUE(weak.lock() == nullptr);
  }
}

// First weak references to one object made by several threads at once.
TEST(WeakRefThreads, AreMadeAtOnce) {
  for (int round = 0; round < 200; ++round) {
    const auto object = make<Counted>();
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
      threads.emplace_back([&object] {
        const WeakRef<Counted> weak = object;
        ASSERT_EQ(weak.lock().get(), object.get());
      });
    }
    for (std::thread& t : threads) t.join();
  }
  EXPECT_EQ(Counted::alive, 0);
}

}  // namespace
}  // namespace qx

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QXFoundation/QXFoundation.h>

#include "tests/support/memory_user_defaults.h"
#include "tests/support/notification_listener.h"

namespace qx {
namespace {

using Listener = test_support::NotificationListener;
using testing::ElementsAre;
using testing::IsEmpty;

// With a file, a write takes a shorter road to the same notifications.
enum class Kind { custom, file };

Ref<QXPreferences> storeOf(Kind kind) {
  return kind == Kind::file ? QXPreferences::initWithPath("/nowhere/at/all.plist")
                            : QXPreferences::initForCustomInfo();
}

class StoreObservation : public testing::TestWithParam<Kind> {
 protected:
  Observation logging(const char* path) {
    return store->observe(path, [this](StringArg written) { log.push_back(written.utf8()); });
  }
  test_support::WithMemoryUserDefaults memory;
  Ref<QXPreferences> store = storeOf(GetParam());
  std::vector<std::string> log;
};

INSTANTIATE_TEST_SUITE_P(Kinds, StoreObservation, testing::Values(Kind::custom, Kind::file));

TEST_P(StoreObservation, TellsNameCanonicalPathAndThePathAsWritten) {
  const auto listener = make<Listener>();
  store->addObserver(listener, "heard:", "a[0].bcdef");
  store->setInteger(1, "a[0].bcdef");
  store->setInteger(1, "a[0].b");
  ASSERT_EQ(listener->notifications.size(), 2U);
  EXPECT_EQ(listener->notifications[0]->name()->utf8(), QXPreferencesDidChangeNotification);
  EXPECT_EQ(listener->notifications[0]->object(), "a.b");
  EXPECT_EQ(PropertyValue(listener->notifications[0]->userInfo()),
            dict({{"keyPath", "a[0].bcdef"}}));
  EXPECT_EQ(PropertyValue(listener->notifications[1]->userInfo()), dict({{"keyPath", "a[0].b"}}));
  EXPECT_TRUE(isSame(listener->notifications[0]->object(), listener->notifications[1]->object()))
      << "one object stands for the path";
}

TEST_P(StoreObservation, TellsEveryObserverOfThePathAlone) {
  const Observation parent = logging("a");
  const Observation child = logging("a.b.c");
  const Observation other = logging("a.c");
  const Observation first = logging("a.b");
  const Observation second = logging("a[3].b");
  store->setInteger(1, "a.b");
  EXPECT_THAT(log, ElementsAre("a.b", "a.b"));
}

TEST_P(StoreObservation, GivesObserversOfAPathOneObject) {
  const auto one = make<Listener>();
  const auto two = make<Listener>();
  const auto path = String::from("a.b");
  store->addObserver(one, "heard:", path);
  store->addObserver(two, "heard:", std::string("a[0].bcd"));
  store->setInteger(1, std::string("a.b"));
  ASSERT_EQ(one->notifications.size(), 1U);
  ASSERT_EQ(two->notifications.size(), 1U);
  EXPECT_TRUE(isSame(one->notifications[0]->object(), path)) << "that of the first observer";
  EXPECT_TRUE(isSame(two->notifications[0]->object(), path));
}

TEST_P(StoreObservation, TellsOfRemovalAndOfEveryWay) {
  const Observation o = logging("k");
  const Observation list = logging("list");
  store->setInteger(1, "k");
  store->setObject("x", "k");
  store->setValue(2, "k");
  store->setBool(true, "k");
  store->setDataObject(1, "k");
  PropertyValue(store).setValue(3, "k");
  store->removeObjectForKeyPath("k");
  store->removeObjectForKeyPath("k");
  EXPECT_THAT(log, ElementsAre("k", "k", "k", "k", "k", "k", "k", "k"));
}

TEST_P(StoreObservation, IsCalledAtOnceWithTheNewValueInPlace) {
  int seen = 0;
  bool wasDirty = false;
  PropertyValue mirrored;
  const Observation o = store->observe("a.b", [&] {
    seen = store->integerForKeyPath("a.b");
    wasDirty = store->isDirty();
    mirrored = memory.defaults->values->objectForKey("a");
  });
  store->setInteger(5, "a.b");
  EXPECT_EQ(seen, 5);
  EXPECT_TRUE(wasDirty);
  EXPECT_EQ(mirrored, GetParam() == Kind::file ? PropertyValue() : PropertyValue(dict({{"b", 5}})));
}

TEST_P(StoreObservation, TellsCallablesWithoutArgumentsAndOfValues) {
  int calls = 0;
  int width = 0;
  std::string title;
  constexpr PreferenceKey<int> kWidth{"ui.width", 80};
  constexpr PreferenceKey<std::string> kTitle{"ui.title", "untitled"};
  const Observation a = store->observe("ui.width", [&] { ++calls; });
  const Observation b = store->observe(kWidth, [&](int w) { width = w; });
  const Observation c = store->observe(kTitle, [&](const std::string& t) { title = t; });
  store->set(kWidth, 100);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(width, 100);
  store->removeObjectForKeyPath(kWidth.path);
  EXPECT_EQ(width, 80) << "the key's own value";
  store->set(kTitle, "mine");
  EXPECT_EQ(title, "mine");
}

TEST_P(StoreObservation, EndsWithItsObjectAndOutlivesTheStore) {
  Observation o = logging("k");
  {
    const Observation inner = logging("k");
    store->setInteger(1, "k");
  }
  store->setInteger(2, "k");
  EXPECT_EQ(log.size(), 3U);
  o.end();
  store->setInteger(3, "k");
  EXPECT_EQ(log.size(), 3U);
  o = logging("k");
  store = nullptr;
  o.end();
}

TEST_P(StoreObservation, RemovesAnObserverByAnEqualPath) {
  const auto listener = make<Listener>();
  const auto other = make<Listener>();
  store->addObserver(listener, "heard:", "a.b");
  store->addObserver(listener, "heard:", "c");
  store->addObserver(other, "heard:", "a.b");
  store->removeObserver(listener, String::from("a[0].b"));
  store->setInteger(1, "a.b");
  store->setInteger(1, "c");
  EXPECT_EQ(listener->notifications.size(), 1U);
  EXPECT_EQ(other->notifications.size(), 1U);
  performSelector(store, "removeObserver:forKeyPath:", listener, "c");
  store->setInteger(1, "c");
  EXPECT_EQ(listener->notifications.size(), 1U);
  store->removeObserver(listener, "never observed");
  store->removeObserver(nullptr, "c");
}

TEST_P(StoreObservation, RemovesAnObserverOfAllPathsByNone) {
  const auto listener = make<Listener>();
  const Observation o = logging("a.b");
  store->addObserver(listener, "heard:", "a.b");
  store->addObserver(listener, "heard:", "c");
  store->removeObserver(listener, nullptr);
  store->setInteger(1, "a.b");
  store->setInteger(1, "c");
  EXPECT_THAT(listener->notifications, IsEmpty());
  EXPECT_THAT(log, ElementsAre("a.b"));
}

TEST_P(StoreObservation, RefersToObserversWeakly) {
  auto listener = make<Listener>();
  const WeakRef<Listener> weak = listener;
  store->addObserver(listener, "heard:", "k");
  listener = nullptr;
  EXPECT_TRUE(weak.lock() == nullptr);
  store->setInteger(1, "k");
}

TEST_P(StoreObservation, RefusesNoPathNoObserverNoSelector) {
  EXPECT_THROW(store->addObserver(make<Listener>(), "heard:", nullptr), InvalidArgumentException);
  EXPECT_THROW(store->addObserver(nullptr, "heard:", "k"), InvalidArgumentException);
  EXPECT_THROW(store->addObserver(make<Listener>(), Selector(), "k"), InvalidArgumentException);
  EXPECT_THROW((void)store->observe(nullptr, [] {}), InvalidArgumentException);
}

TEST_P(StoreObservation, OfOneStoreHearsNothingOfAnother) {
  const Observation o = logging("k");
  QXPreferences::initForCustomInfo()->setInteger(1, "k");
  EXPECT_THAT(log, IsEmpty());
}

TEST_P(StoreObservation, MayWriteObserveAndEndDuringANotification) {
  Observation self;
  std::vector<Observation> more;
  self = store->observe("k", [&](StringArg) {
    self.end();
    store->setInteger(2, "other");
    more.push_back(logging("k"));
  });
  const Observation other = logging("other");
  store->setInteger(1, "k");
  EXPECT_THAT(log, ElementsAre("other"));
  store->setInteger(1, "k");
  EXPECT_THAT(log, ElementsAre("other", "k"));
}

TEST_P(StoreObservation, MayLetGoOfTheStoreDuringANotification) {
  QXPreferences* plain = store.get();
  const Observation a = store->observe("k", [&] { store = nullptr; });
  const Observation b = logging("k");
  plain->setInteger(1, "k");
  EXPECT_THAT(log, ElementsAre("k"));
}

TEST_P(StoreObservation, LetsWhatAnObserverRaisesReachTheWriterAfterTheWrite) {
  const Observation o = store->observe("k", [] { throw GenericException("no"); });
  EXPECT_THROW(store->setInteger(1, "k"), GenericException);
  EXPECT_EQ(store->integerForKeyPath("k"), 1);
  EXPECT_TRUE(store->isDirty());
}

}  // namespace
}  // namespace qx

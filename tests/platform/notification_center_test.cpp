#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include <QXFoundation/QXFoundation.h>

#include "tests/support/notification_listener.h"

namespace qx {
namespace {

using Listener = test_support::NotificationListener;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(NotificationCenter, TellsObserversBySelectorWithNameObjectAndInformation) {
  const auto center = NotificationCenter::init();
  const auto listener = make<Listener>();
  center->addObserver(listener, "heard:", "Changed", nullptr);
  center->postNotificationName("Changed", "about", dict({{"key", 1}}));
  center->postNotificationName("Other", "about", nullptr);
  EXPECT_THAT(listener->names(), ElementsAre("Changed"));
}

TEST(NotificationCenter, GivesCallablesTheNotificationItself) {
  const auto center = NotificationCenter::init();
  const auto object = array(1);
  int calls = 0;
  const Observation o = center->observe("Changed", nullptr, [&](const Notification& n) {
    ++calls;
    EXPECT_EQ(n.name()->utf8(), "Changed");
    EXPECT_TRUE(isSame(n.object(), object));
    EXPECT_EQ(n.userInfo()->objectForKey("key"), 1);
  });
  center->postNotificationName("Changed", object, dict({{"key", 1}}));
  EXPECT_EQ(calls, 1);
  center->postNotification(
      Notification::notificationWithName("Changed", object, dict({{"key", 1}})));
  EXPECT_EQ(calls, 2);
}

TEST(NotificationCenter, MatchesNameAndObject) {
  const auto center = NotificationCenter::init();
  const auto object = make<Listener>();
  const auto other = make<Listener>();
  std::vector<std::string> log;
  const auto note = [&](const char* text) {
    return [&log, text](const Notification&) { log.emplace_back(text); };
  };
  const Observation a = center->observe("N", object, note("name and object"));
  const Observation b = center->observe("N", nullptr, note("name"));
  const Observation c = center->observe(nullptr, object, note("object"));
  const Observation d = center->observe(nullptr, nullptr, note("all"));
  const Observation e = center->observe("N", 3, note("number"));
  const auto posted = [&](StringArg name, const PropertyValue& about) {
    log.clear();
    center->postNotificationName(name, about, nullptr);
    return log;
  };
  EXPECT_THAT(posted("N", object), ElementsAre("name and object", "name", "object", "all"));
  EXPECT_THAT(posted("N", other), ElementsAre("name", "all"));
  EXPECT_THAT(posted("N", nullptr), ElementsAre("name", "all"));
  EXPECT_THAT(posted("M", object), ElementsAre("object", "all"));
  EXPECT_THAT(posted("M", nullptr), ElementsAre("all"));
  EXPECT_THAT(posted("N", 3), ElementsAre("name", "all", "number"));
  EXPECT_THAT(posted("N", 3.0), ElementsAre("name", "all"));
}

TEST(NotificationCenter, MatchesStringsByEquality) {
  const auto center = NotificationCenter::init();
  int calls = 0;
  const Observation o =
      center->observe("N", MutableString::from("naïve"), [&](const Notification&) { ++calls; });
  center->postNotificationName("N", String::from("naïve"), nullptr);
  center->postNotificationName("N", MutableString::from("naïve"), nullptr);
  center->postNotificationName("N", "naive", nullptr);
  EXPECT_EQ(calls, 2);
}

TEST(NotificationCenter, TellsInTheOrderOfAddingWhateverTheyWantToHear) {
  const auto center = NotificationCenter::init();
  std::string order;
  const Observation a = center->observe(nullptr, "x", [&](const Notification&) { order += 'a'; });
  const Observation b = center->observe("N", "x", [&](const Notification&) { order += 'b'; });
  const Observation c = center->observe("N", nullptr, [&](const Notification&) { order += 'c'; });
  const Observation d = center->observe("N", "x", [&](const Notification&) { order += 'd'; });
  center->postNotificationName("N", "x", nullptr);
  EXPECT_EQ(order, "abcd");
}

TEST(NotificationCenter, TellsAnObserverAddedTwiceTwice) {
  const auto center = NotificationCenter::init();
  const auto listener = make<Listener>();
  center->addObserver(listener, "heard:", "N", nullptr);
  center->addObserver(listener, "heard:", "N", nullptr);
  center->postNotificationName("N", nullptr, nullptr);
  EXPECT_EQ(listener->names().size(), 2U);
}

TEST(NotificationCenter, RemovesByNameAndObject) {
  const auto center = NotificationCenter::init();
  const auto listener = make<Listener>();
  const auto other = make<Listener>();
  const auto add = [&] {
    center->removeObserver(listener);
    center->addObserver(listener, "heard:", "A", "x");
    center->addObserver(listener, "heard:", "A", nullptr);
    center->addObserver(listener, "heard:", "B", "x");
  };
  const auto heard = [&] {
    listener->notifications.clear();
    center->postNotificationName("A", "x", nullptr);
    center->postNotificationName("B", "x", nullptr);
    return listener->names();
  };
  center->addObserver(other, "heard:", "A", "x");
  add();
  EXPECT_THAT(heard(), ElementsAre("A", "A", "B"));
  center->removeObserver(listener, "A", String::from("x"));
  EXPECT_THAT(heard(), ElementsAre("A", "B"));
  add();
  center->removeObserver(listener, "A", nullptr);
  EXPECT_THAT(heard(), ElementsAre("B"));
  add();
  center->removeObserver(listener, nullptr, "x");
  EXPECT_THAT(heard(), ElementsAre("A"));
  add();
  center->removeObserver(listener);
  EXPECT_THAT(heard(), IsEmpty());
  center->removeObserver(nullptr);
  center->removeObserver(listener, "A", "y");
  EXPECT_FALSE(other->names().empty());
}

TEST(NotificationCenter, RefersToObserversWeakly) {
  const auto center = NotificationCenter::init();
  auto listener = make<Listener>();
  const WeakRef<Listener> weak = listener;
  center->addObserver(listener, "heard:", "N", nullptr);
  EXPECT_TRUE(center->hasObservers("N", nullptr));
  listener = nullptr;
  EXPECT_TRUE(weak.lock() == nullptr);
  center->postNotificationName("N", nullptr, nullptr);
  EXPECT_FALSE(center->hasObservers("N", nullptr));
}

TEST(NotificationCenter, RefersToObjectsWeakly) {
  const auto center = NotificationCenter::init();
  auto object = make<Listener>();
  const WeakRef<Listener> weak = object;
  const Observation o = center->observe("N", object, [](const Notification&) { FAIL(); });
  object = nullptr;
  EXPECT_TRUE(weak.lock() == nullptr);
  for (int i = 0; i < 100; ++i) center->postNotificationName("N", make<Listener>(), nullptr);
}

TEST(NotificationCenter, DoesNotGatherObserversThatCeasedToExist) {
  const auto center = NotificationCenter::init();
  for (int i = 0; i < 10'000; ++i) {
    center->addObserver(make<Listener>(), "heard:", "N", nullptr);
  }
  const auto last = make<Listener>();
  center->addObserver(last, "heard:", "N", nullptr);
  center->postNotificationName("N", nullptr, nullptr);
  EXPECT_EQ(last->names().size(), 1U);
}

TEST(NotificationCenter, RefusesNoObserverNoSelectorNoName) {
  const auto center = NotificationCenter::init();
  EXPECT_THROW(center->addObserver(nullptr, "heard:", "N", nullptr), InvalidArgumentException);
  EXPECT_THROW(center->addObserver(make<Listener>(), Selector(), "N", nullptr),
               InvalidArgumentException);
  EXPECT_THROW(center->postNotificationName(nullptr, nullptr, nullptr), InvalidArgumentException);
  EXPECT_THROW(center->postNotification(nullptr), InvalidArgumentException);
}

TEST(NotificationCenter, RaisesForAnObserverWithoutTheOperation) {
  const auto center = NotificationCenter::init();
  const auto object = make<Listener>();
  center->addObserver(object, Selector::named("unheard:"), "N", nullptr);
  EXPECT_THROW(center->postNotificationName("N", nullptr, nullptr), InvalidArgumentException);
}

TEST(NotificationCenter, LetsWhatAnObserverRaisesReachThePoster) {
  const auto center = NotificationCenter::init();
  int calls = 0;
  const Observation a = center->observe("N", nullptr, [&](const Notification&) { ++calls; });
  const Observation b =
      center->observe("N", nullptr, [](const Notification&) { throw GenericException("no"); });
  const Observation c = center->observe("N", nullptr, [&](const Notification&) { calls += 10; });
  EXPECT_THROW(center->postNotificationName("N", nullptr, nullptr), GenericException);
  EXPECT_EQ(calls, 1);
}

TEST(Observation, EndsWithItsObject) {
  const auto center = NotificationCenter::init();
  int calls = 0;
  const auto post = [&] { center->postNotificationName("N", nullptr, nullptr); };
  {
    const Observation o = center->observe("N", nullptr, [&](const Notification&) { ++calls; });
    post();
  }
  post();
  EXPECT_EQ(calls, 1);
}

TEST(Observation, MovesAndEndsByHand) {
  const auto center = NotificationCenter::init();
  int first = 0;
  int second = 0;
  const auto post = [&] { center->postNotificationName("N", nullptr, nullptr); };
  Observation a = center->observe("N", nullptr, [&](const Notification&) { ++first; });
  Observation b = std::move(a);
  post();
  b = center->observe("N", nullptr, [&](const Notification&) { ++second; });
  post();
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 1);
  b.end();
  b.end();
  post();
  EXPECT_EQ(second, 1);
  EXPECT_FALSE(center->hasObservers("N", nullptr));
}

TEST(Observation, OutlivesItsCenter) {
  auto center = NotificationCenter::init();
  const WeakRef<NotificationCenter> weak = center;
  const auto held = std::make_shared<int>(1);
  Observation o = center->observe("N", nullptr, [held](const Notification&) {});
  center = nullptr;
  EXPECT_TRUE(weak.lock() == nullptr);
  o.end();
  EXPECT_EQ(held.use_count(), 1);
}

TEST(Observation, LetsGoOfItsCallable) {
  const auto center = NotificationCenter::init();
  const auto held = std::make_shared<int>(1);
  Observation o = center->observe("N", nullptr, [held](const Notification&) {});
  EXPECT_EQ(held.use_count(), 2);
  o.end();
  EXPECT_EQ(held.use_count(), 1);
}

TEST(Observation, OfACenterMayHoldAnotherOfTheSame) {
  auto center = NotificationCenter::init();
  auto inner =
      std::make_shared<Observation>(center->observe("N", nullptr, [](const Notification&) {}));
  Observation outer = center->observe("N", nullptr, [inner](const Notification&) {});
  inner = nullptr;
  center->postNotificationName("N", nullptr, nullptr);
  center = nullptr;
}

// What observers do while they are told.
class DuringANotification : public testing::Test {
 protected:
  void post() { center->postNotificationName("N", nullptr, nullptr); }
  Ref<NotificationCenter> center = NotificationCenter::init();
  std::string log;
};

TEST_F(DuringANotification, AnObserverMayEndItself) {
  Observation a;
  a = center->observe("N", nullptr, [&](const Notification&) {
    log += 'a';
    a.end();
    log += '.';  // what the callable holds is still there
  });
  const Observation b = center->observe("N", nullptr, [&](const Notification&) { log += 'b'; });
  post();
  post();
  EXPECT_EQ(log, "a.bb");
}

TEST_F(DuringANotification, OneThatIsRemovedBeforeItsTurnIsNotTold) {
  Observation b;
  const Observation a = center->observe("N", nullptr, [&](const Notification&) {
    log += 'a';
    b.end();
  });
  b = center->observe("N", nullptr, [&](const Notification&) { log += 'b'; });
  const Observation c = center->observe("N", nullptr, [&](const Notification&) { log += 'c'; });
  post();
  EXPECT_EQ(log, "ac");
}

TEST_F(DuringANotification, OneThatIsAddedIsToldFromTheNextOn) {
  std::vector<Observation> added;
  const Observation a = center->observe("N", nullptr, [&](const Notification&) {
    log += 'a';
    added.push_back(center->observe("N", nullptr, [&](const Notification&) { log += '+'; }));
  });
  post();
  EXPECT_EQ(log, "a");
  post();
  EXPECT_EQ(log, "aa+");
}

TEST_F(DuringANotification, ListenersBySelectorMayRemoveOneAnother) {
  const auto listener = make<Listener>();
  const Observation a =
      center->observe("N", nullptr, [&](const Notification&) { center->removeObserver(listener); });
  center->addObserver(listener, "heard:", "N", nullptr);
  post();
  EXPECT_TRUE(listener->names().empty());
}

TEST_F(DuringANotification, AnObserverMayPostAgain) {
  int depth = 0;
  const Observation a = center->observe("N", nullptr, [&](const Notification&) {
    log += 'a';
    if (++depth < 3) post();
  });
  const Observation b = center->observe("N", nullptr, [&](const Notification&) { log += 'b'; });
  post();
  EXPECT_EQ(log, "aaabbb");
}

TEST_F(DuringANotification, AnObserverMayLetGoOfTheCenter) {
  const WeakRef<NotificationCenter> weak = center;
  const Observation a = center->observe("N", nullptr, [&](const Notification&) {
    center = nullptr;
    log += 'a';
  });
  const Observation b = center->observe("N", nullptr, [&](const Notification&) { log += 'b'; });
  NotificationCenter* plain = center.get();
  plain->postNotificationName("N", nullptr, nullptr);
  EXPECT_EQ(log, "ab");
  EXPECT_TRUE(weak.lock() == nullptr);
}

TEST(Notification, ReadsByKeyAndDescribesItself) {
  const auto n = Notification::notificationWithName("N", "x", dict({{"k", 1}}));
  const PropertyValue v = n;
  EXPECT_EQ(v["name"], "N");
  EXPECT_EQ(v["object"], "x");
  EXPECT_EQ(v["userInfo"]["k"], 1);
  EXPECT_EQ(n->description(), "<NSNotification N; object = x; userInfo = {k = 1;}>");
  EXPECT_EQ(v.copy().object(), n.get());
  EXPECT_EQ(v.cls(), classNamed("NSNotification"));
  EXPECT_THROW((void)Notification::notificationWithName(nullptr, nullptr, nullptr),
               InvalidArgumentException);
}

}  // namespace
}  // namespace qx

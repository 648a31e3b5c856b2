// A store with a file writes along a way that is there already in one step; a store without one
// reports every container on the way. Both come to the same tree.

#include <functional>
#include <random>

#include "preferences/containers.h"
#include "preferences/store_access.h"
#include "tests/preferences/store_fixture.h"

namespace counted {

// Counts what is put into it.
class Settings : public qx::QXPreferencesDictionary {
 public:
  void setObject(const qx::PropertyValue& value, qx::StringArg forKey) override {
    ++puts;
    QXPreferencesDictionary::setObject(value, forKey);
  }
  int puts = 0;
};
void describe(qx::ClassBuilder<Settings>& c) {
  c.name("CountedSettings").inherits<qx::QXPreferencesDictionary>();
}

// Does something when it ends.
class Ending : public qx::Object {
 public:
  explicit Ending(std::function<void()> action) : action_(std::move(action)) {}

 protected:
  ~Ending() override { action_(); }

 private:
  std::function<void()> action_;
};
void describe(qx::ClassBuilder<Ending>& c) { c.name("CountedEnding"); }

}  // namespace counted

namespace qx {
namespace {

using Roads = StoreTest;

const char* const kPaths[] = {"a",
                              "b",
                              "",
                              "a.b",
                              "a.a",
                              "a.b.c",
                              "a.a.a",
                              "b.a.b",
                              "a.",
                              ".",
                              ".a",
                              "a..b",
                              "a[0]",
                              "a[0].b",
                              "a.b[0]",
                              "b[0].a",
                              "b[]",
                              "abc]",
                              "a.abc]",
                              "abc].a",
                              "caf\u00E9",
                              "a.\u4E2D",
                              "a.longer than eight characters",
                              "b[1].a",
                              "a.b.c.d.e"};

PropertyValue randomValue(std::mt19937& random) {
  switch (random() % 7) {
    case 0:
      return nullptr;
    case 1:
      return dict({{"a", 1}, {"b", dict({{"c", array(1, dict({{"a", 2}}))}})}});
    case 2:
      return array(dict({{"b", 1}}), 2);
    case 3:
      return "text";
    case 4:
      return dict();
    case 5:
      return QXPreferencesDictionary::initWithDictionary(dict({{"a", dict({{"a", 3}})}}), nullptr);
    default:
      return static_cast<int>(random() % 100);
  }
}

// What the write raised; empty where it did not.
std::string failureOf(QXPreferences& store, const PropertyValue& value, const char* path) {
  try {
    store.setObject(value, path);
    return {};
  } catch (const Exception& e) {
    return e.name() + std::string(": ") + e.what();
  }
}

// Where the containers of a tree report to, in their order: the store, elsewhere, or nowhere as
// they are plain.
void appendReports(std::string& out, const PropertyValue& at, const QXPreferences& store) {
  if (!at.isArray() && !at.isDictionary()) return;
  const detail::PreferencesLink* link = detail::linkOf(at);
  out += at.isArray() ? '[' : '{';
  out += link == nullptr ? 'p' : link->store() == &store ? 's' : 'e';
  const Ref<Array> elements = at.isArray() ? at.as<Array>() : at.as<Dictionary>()->allValues();
  for (const PropertyValue& element : *elements) appendReports(out, element, store);
  out += ' ';
}

std::string reportsIn(const QXPreferences& store) {
  std::string out;
  appendReports(out, store.objectForKeyPath(nullptr), store);
  return out;
}

// What observers of every path heard, in their order.
class Heard {
 public:
  explicit Heard(const Ref<QXPreferences>& store) {
    for (const char* path : kPaths) {
      observations_.push_back(store->observe(path, [this, path](StringArg written) {
        texts.push_back(std::string(path) + " by " + written.utf8());
      }));
    }
  }
  std::vector<std::string> texts;

 private:
  std::vector<Observation> observations_;
};

TEST_F(Roads, ComeToTheSame) {
  std::size_t heard = 0;
  for (unsigned seed = 0; seed < 200; ++seed) {
    const auto inOneStep = QXPreferences::initWithPath(files / "never written.plist");
    const auto stepByStep = QXPreferences::initForCustomInfo();
    ASSERT_TRUE(detail::PreferencesAccess::onlyMarks(*inOneStep));
    ASSERT_FALSE(detail::PreferencesAccess::onlyMarks(*stepByStep));
    Heard ofOneStep(inOneStep);
    Heard ofSteps(stepByStep);
    for (unsigned step = 0; step < 60; ++step) {
      const char* path = kPaths[std::mt19937(seed * 1000 + step)() % std::size(kPaths)];
      std::mt19937 one(seed * 7919 + step);
      std::mt19937 other = one;
      inOneStep->setDirty(false);
      stepByStep->setDirty(false);
      const std::string failure = failureOf(*inOneStep, randomValue(one), path);
      ASSERT_EQ(failure, failureOf(*stepByStep, randomValue(other), path)) << path;
      ASSERT_EQ(PropertyValue(inOneStep->userValues()), PropertyValue(stepByStep->userValues()))
          << "after " << path;
      ASSERT_EQ(inOneStep->isDirty(), stepByStep->isDirty()) << path << ' ' << failure;
      ASSERT_EQ(reportsIn(*inOneStep), reportsIn(*stepByStep)) << "after " << path;
      ASSERT_EQ(ofOneStep.texts, ofSteps.texts) << path << ' ' << failure;
      for (const char* read : {"a", "a.b", "a.b.c", "a[0].b", "b[0]", "a.a.a"}) {
        std::string failures[2];
        const auto get = [&](QXPreferences& store, std::string& raised) -> PropertyValue {
          try {
            return store.objectForKeyPath(read);
          } catch (const Exception& e) {
            raised = e.what();
            return nullptr;
          }
        };
        ASSERT_EQ(get(*inOneStep, failures[0]), get(*stepByStep, failures[1])) << read;
        ASSERT_EQ(failures[0], failures[1]) << read;
      }
    }
    heard += ofOneStep.texts.size();
  }
  EXPECT_GT(heard, 1000U);
}

// With a file, a plain dictionary is taken over at once, and converted within.
TEST_F(Roads, ConvertWholeDictionariesAtEveryDepth) {
  for (const std::size_t extra : {0U, 30U}) {
    const auto store = QXPreferences::initWithPath(files / "never written.plist");
    const auto other = QXPreferences::initForCustomInfo();
    const auto foreign = QXPreferencesDictionary::initWithDictionary(dict({{"f", 1}}), other);
    const auto plain = MutableDictionary::init();
    for (std::size_t i = 0; i < extra; ++i) plain->setObject(i, "n" + std::to_string(i));
    plain->setObject(dict({{"deep", array(dict({{"deepest", 2}}))}}), "inner");
    plain->setObject(foreign, "foreign");
    store->setDirty(false);
    const auto built = QXPreferencesDictionary::initWithDictionary(dict({{"a", plain}}), store);
    EXPECT_TRUE(store->isDirty());
    const auto a = built->objectForKey("a").as<QXPreferencesDictionary>();
    EXPECT_EQ(PropertyValue(a), PropertyValue(plain));
    const auto inner = a->objectForKey("inner").as<QXPreferencesDictionary>();
    const auto deep = inner->objectForKey("deep").as<QXPreferencesArray>();
    const auto deepest = deep->objectAtIndex(0).as<QXPreferencesDictionary>();
    for (const auto& seen :
         {a->preferences(), inner->preferences(), deep->preferences(), deepest->preferences()}) {
      EXPECT_EQ(seen.get(), store.get());
    }
    EXPECT_TRUE(isSame(a->objectForKey("foreign"), foreign));
    EXPECT_EQ(foreign->preferences().get(), store.get());
    EXPECT_EQ(plain->objectForKey("inner").as<QXPreferencesDictionary>(), nullptr)
        << "what was given stays as it was";
    store->setDirty(false);
    (void)QXPreferencesDictionary::initWithDictionary(dict(), store);
    EXPECT_FALSE(store->isDirty()) << "no entry, no report";
  }
}

// Names that many dictionaries have are kept once.
TEST_F(Roads, ShareTheNamesOfSettings) {
  const auto store = QXPreferences::initWithPath(files / "never written.plist");
  for (int i = 0; i < 1000; ++i) {
    store->setObject(dict(), "a" + std::to_string(i));
    store->setInteger(i, "a" + std::to_string(i) + ".width");
    store->setInteger(i, "a" + std::to_string(i) + ".key" + std::to_string(i));
  }
  const auto nameIn = [&](const char* path) {
    return store->objectForKeyPath(path).as<Dictionary>()->allKeys()->objectAtIndex(0);
  };
  EXPECT_TRUE(isSame(nameIn("a1"), nameIn("a2")));
  for (int i = 0; i < 1000; ++i) {
    const std::string entry = "a" + std::to_string(i);
    EXPECT_EQ(store->objectForKeyPath(entry), dict({{"width", i}, {"key" + std::to_string(i), i}}));
  }
}

// What is replaced may run code that looks at the store, or changes it.
TEST_F(Roads, LetGoOfWhatIsReplacedAtTheEnd) {
  const auto store = QXPreferences::initWithPath(files / "never written.plist");
  int seen = 0;
  store->setObject(dict({{"c", make<counted::Ending>([&] {
                            seen = store->integerForKeyPath("a.c");
                            for (int i = 0; i < 40; ++i) {
                              store->setInteger(i, "a.new" + std::to_string(i));
                            }
                          })}}),
                   "a");
  store->setInteger(7, "a.c");
  EXPECT_EQ(seen, 7);
  EXPECT_EQ(store->integerForKeyPath("a.new39"), 39);
}

// A class of the application sees every container that is put back on the way.
TEST_F(Roads, LeadThroughTheOperationsOfOtherClasses) {
  const auto store = QXPreferences::initWithPath(files / "never written.plist");
  const auto settings = make<counted::Settings>();
  store->setObject(settings, "a");
  store->setObject(dict({{"c", 1}}), "a.b");
  EXPECT_EQ(settings->puts, 1);
  store->setInteger(2, "a.b.c");
  EXPECT_EQ(settings->puts, 2) << "the container below it is put back";
  store->setInteger(3, "a.d");
  EXPECT_EQ(settings->puts, 3);
}

// Containers that reported elsewhere report to the store once a write has led through them.
TEST_F(Roads, TakeOverContainersOfOtherStores) {
  const auto store = QXPreferences::initWithPath(files / "never written.plist");
  const auto other = QXPreferences::initForCustomInfo();
  store->setObject(dict({{"b", dict()}}), "a");
  const auto inner = store->objectForKeyPath("a.b").as<QXPreferencesDictionary>();
  inner->setPreferences(other);
  store->setInteger(1, "a.b.c");
  EXPECT_TRUE(isSame(inner->preferences(), store));
}

// So does the root: what is written below it is told to the store that it was given.
TEST_F(Roads, TellTheStoreThatTheRootReportsTo) {
  const auto store = QXPreferences::initWithPath(files / "never written.plist");
  const auto other = QXPreferences::initWithPath(files / "nor this.plist");
  store->setInteger(1, "a.b");
  store->setInteger(1, "c");
  store->objectForKeyPath(nullptr).as<QXPreferencesDictionary>()->setPreferences(other);
  store->setDirty(false);
  store->setInteger(2, "c");
  EXPECT_TRUE(other->isDirty());
  EXPECT_TRUE(store->isDirty()) << "a write of its own";
  other->setDirty(false);
  store->setInteger(2, "a.b");
  EXPECT_TRUE(other->isDirty());
  EXPECT_TRUE(
      isSame(store->objectForKeyPath("a").as<QXPreferencesDictionary>()->preferences(), other))
      << "put back into the root";
  EXPECT_EQ(PropertyValue(store->userValues()), dict({{"a", dict({{"b", 2}})}, {"c", 2}}));
}

using Change = void (*)(QXPreferencesDictionary& map, QXPreferencesArray& list);

const struct {
  const char* what;
  Change change;
} kChanges[] = {
    {"setObject", [](auto& map, auto&) { map.setObject(2, "k"); }},
    {"setObject of a new key", [](auto& map, auto&) { map.setObject(2, "new"); }},
    {"setObject of the same", [](auto& map, auto&) { map.setObject(map.objectForKey("k"), "k"); }},
    {"setObject of a dictionary", [](auto& map, auto&) { map.setObject(dict(), "k"); }},
    {"removeObjectForKey", [](auto& map, auto&) { map.removeObjectForKey("k"); }},
    {"removeObjectForKey of none", [](auto& map, auto&) { map.removeObjectForKey("none"); }},
    {"addEntriesFromDictionary",
     [](auto& map, auto&) { map.addEntriesFromDictionary(dict({{"k", 1}})); }},
    {"removeAllObjects of a dictionary", [](auto& map, auto&) { map.removeAllObjects(); }},
    {"addObject", [](auto&, auto& list) { list.addObject(4); }},
    {"addObject of an array", [](auto&, auto& list) { list.addObject(array()); }},
    {"insertObject", [](auto&, auto& list) { list.insertObject(4, 0); }},
    {"replaceObjectAtIndex", [](auto&, auto& list) { list.replaceObjectAtIndex(0, 1); }},
    {"removeObjectAtIndex", [](auto&, auto& list) { list.removeObjectAtIndex(0); }},
    {"removeLastObject", [](auto&, auto& list) { list.removeLastObject(); }},
    {"addObjectsFromArray of nothing",
     [](auto&, auto& list) { list.addObjectsFromArray(array()); }},
    {"removeAllObjects", [](auto&, auto& list) { list.removeAllObjects(); }},
};

const struct {
  const char* what;
  Change change;
} kRefused[] = {
    {"setObject of nil", [](auto& map, auto&) { map.setObject(nullptr, "k"); }},
    {"setObject without a key", [](auto& map, auto&) { map.setObject(1, nullptr); }},
    {"removeObjectForKey without one", [](auto& map, auto&) { map.removeObjectForKey(nullptr); }},
    {"addObject of nil", [](auto&, auto& list) { list.addObject(nullptr); }},
    {"insertObject beyond", [](auto&, auto& list) { list.insertObject(1, 9); }},
    {"replaceObjectAtIndex beyond", [](auto&, auto& list) { list.replaceObjectAtIndex(9, 1); }},
    {"removeObjectAtIndex beyond", [](auto&, auto& list) { list.removeObjectAtIndex(9); }},
};

// With a file, a container's report is no more than the mark: every change makes it, none notifies.
TEST_F(Roads, MarkTheStoreWithEveryChangeOfAContainer) {
  for (const auto& row : kChanges) {
    const auto store = QXPreferences::initWithPath(files / "never written.plist");
    store->setObject(dict({{"map", dict({{"k", 1}})}, {"list", array(1, 2)}}), "a");
    const auto map = store->objectForKeyPath("a.map").as<QXPreferencesDictionary>();
    const auto list = store->objectForKeyPath("a.list").as<QXPreferencesArray>();
    const Observation ofMap = store->observe("a.map", [] { FAIL(); });
    const Observation ofList = store->observe("a.list", [] { FAIL(); });
    store->setDirty(false);
    row.change(*map, *list);
    EXPECT_TRUE(store->isDirty()) << row.what;
  }
  EXPECT_THAT(defaults().set, IsEmpty());
  EXPECT_THAT(defaults().removed, IsEmpty());
}

TEST_F(Roads, MarkNothingForARefusedChange) {
  const auto store = QXPreferences::initWithPath(files / "never written.plist");
  store->setObject(dict({{"map", dict({{"k", 1}})}, {"list", array(1, 2)}}), "a");
  const auto map = store->objectForKeyPath("a.map").as<QXPreferencesDictionary>();
  const auto list = store->objectForKeyPath("a.list").as<QXPreferencesArray>();
  store->setDirty(false);
  for (const auto& row : kRefused) {
    EXPECT_THROW(row.change(*map, *list), Exception) << row.what;
    EXPECT_FALSE(store->isDirty()) << row.what;
  }
  EXPECT_EQ(store->objectForKeyPath("a"), dict({{"map", dict({{"k", 1}})}, {"list", array(1, 2)}}));
}

}  // namespace
}  // namespace qx

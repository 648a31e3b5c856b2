// What the modes of a store differ in, and how it is saved and freed.

#include "tests/preferences/store_fixture.h"

namespace qx {
namespace {

class StoreModes : public StoreTest {};

// ---- modes

TEST_F(StoreModes, OnTheUserDefaultsStartsWithTheirContents) {
  defaults().values->setObject(dict({{"b", array(1)}}), "a");
  for (const auto& store : {QXPreferences::init(), QXPreferences::initWithPath(nullptr),
                            QXPreferences::initWithPath("")}) {
    EXPECT_EQ(PropertyValue(store->userValues()), dict({{"a", dict({{"b", array(1)}})}}));
    EXPECT_FALSE(store->isDirty());
    EXPECT_NE(store->objectForKeyPath("a.b").as<QXPreferencesArray>(), nullptr);
    EXPECT_THAT(defaults().set, IsEmpty()) << "construction mirrors nothing";
  }
}

TEST_F(StoreModes, WithAFileStartsWithItsContents) {
  files.write("store.plist", dict({{"a", dict({{"b", array(1, "x")}})}}));
  const auto store = QXPreferences::initWithPath(files / "store.plist");
  EXPECT_EQ(store->objectForKeyPath("a.b"), array(1, "x"));
  EXPECT_FALSE(store->isDirty());
  const auto none = QXPreferences::initWithPath(files / "none.plist");
  EXPECT_EQ(none->userValues()->count(), 0U);
}

TEST_F(StoreModes, ForCustomInformationStartsEmpty) {
  defaults().values->setObject(1, "a");
  const auto store = QXPreferences::initForCustomInfo();
  EXPECT_EQ(store->userValues()->count(), 0U);
  EXPECT_FALSE(store->isDirty());
}

TEST_F(StoreModes, WithAFileNeverTouchesTheUserDefaults) {
  const auto store = QXPreferences::initWithPath(files / "store.plist");
  store->setInteger(5, "a.b");
  store->setObject(dict({{"x", 1}}), "c");
  store->removeObjectForKeyPath("a.b");
  store->removeObjectForKeyPath("c");
  store->objectForKeyPath("a").as<QXPreferencesDictionary>()->setObject(1, "direct");
  EXPECT_TRUE(store->synchronize());
  EXPECT_THAT(defaults().set, IsEmpty());
  EXPECT_THAT(defaults().removed, IsEmpty());
  EXPECT_EQ(defaults().synchronized, 0);
}

TEST_F(StoreModes, OnTheUserDefaultsMirrorsTheWholeEntryOfTheRoot) {
  for (const auto& store : {QXPreferences::init(), QXPreferences::initForCustomInfo()}) {
    defaults().values->removeAllObjects();
    defaults().forget();
    store->setInteger(5, "a.b");
    EXPECT_THAT(mirrored(), ElementsAre("a"));
    EXPECT_EQ(PropertyValue(defaults().values), dict({{"a", dict({{"b", 5}})}}));
    store->setInteger(6, "a.c[0].d");
    EXPECT_THAT(mirrored(), ElementsAre("a"));
    EXPECT_EQ(PropertyValue(defaults().values),
              dict({{"a", dict({{"b", 5}, {"c", array(dict({{"d", 6}}))}})}}));
    store->setInteger(7, "top");
    EXPECT_THAT(mirrored(), ElementsAre("top"));
    EXPECT_THAT(removed(), IsEmpty());
  }
}

TEST_F(StoreModes, RemovesTopKeysFromTheUserDefaultsAndRewritesBranches) {
  defaults().values->addEntriesFromDictionary(dict({{"a", dict({{"b", 1}, {"c", 2}})}, {"t", 1}}));
  const auto store = QXPreferences::init();
  store->removeObjectForKeyPath("t");
  EXPECT_THAT(removed(), ElementsAre("t"));
  EXPECT_THAT(mirrored(), IsEmpty());
  store->removeObjectForKeyPath("a.b");
  EXPECT_THAT(removed(), IsEmpty());
  EXPECT_THAT(mirrored(), ElementsAre("a"));
  EXPECT_EQ(PropertyValue(defaults().values), dict({{"a", dict({{"c", 2}})}}));
  store->removeObjectForKeyPath("none");
  EXPECT_THAT(removed(), ElementsAre("none"));
  store->removeObjectForKeyPath("new.none");
  EXPECT_EQ(defaults().values->objectForKey("new"), dict());
}

// Equal parts are not one text: a.a is a branch, and is written, not removed.
TEST_F(StoreModes, TellsAPathOfEqualPartsFromAPathOfOne) {
  const auto store = QXPreferences::init();
  store->setInteger(1, "a.a");
  store->removeObjectForKeyPath("a.a");
  EXPECT_THAT(removed(), IsEmpty());
  EXPECT_EQ(PropertyValue(defaults().values), dict({{"a", dict()}}));
}

TEST_F(StoreModes, WithAnEmptyPathMirrorsPathsOfOneKey) {
  const auto store = QXPreferences::initWithPath("");
  store->setInteger(1, "a");
  EXPECT_THAT(mirrored(), ElementsAre("a"));
  EXPECT_EQ(defaults().values->objectForKey("a"), 1);
  store->removeObjectForKeyPath("a");
  EXPECT_THAT(removed(), ElementsAre("a"));
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(defaults().synchronized, 1);
}

// There is no top key for the write itself; what arrives is told by the containers on the way.
TEST_F(StoreModes, WithAnEmptyPathLeavesLongerPathsToTheContainers) {
  const auto store = QXPreferences::initWithPath("");
  store->setInteger(1, "a.b");
  EXPECT_EQ(PropertyValue(defaults().values), dict({{"a", dict({{"b", 1}})}}));
  store->setInteger(2, "a.b");
  EXPECT_EQ(PropertyValue(defaults().values), dict({{"a", dict({{"b", 2}})}}));
  store->removeObjectForKeyPath("a.b");
  EXPECT_EQ(PropertyValue(defaults().values), dict({{"a", dict()}}));
  EXPECT_THAT(removed(), IsEmpty());
}

// ---- dirty, immediately, synchronize

TEST_F(StoreModes, IsDirtyFromAWriteToTheNextSave) {
  const auto store = QXPreferences::initWithPath(files / "store.plist");
  EXPECT_FALSE(store->isDirty());
  store->setInteger(1, "a");
  EXPECT_TRUE(store->isDirty());
  EXPECT_TRUE(store->synchronize());
  EXPECT_FALSE(store->isDirty());
  store->setDirty(true);
  EXPECT_TRUE(store->isDirty());
  store->setDirty(false);
  EXPECT_FALSE(store->isDirty());
}

TEST_F(StoreModes, AppliesImmediately) {
  const auto store = QXPreferences::initWithPath(files / "store.plist");
  EXPECT_FALSE(store->appliesImmediately());
  store->setAppliesImmediately(true);
  EXPECT_TRUE(store->appliesImmediately());
  store->setInteger(1, "a.b[0].c");
  EXPECT_FALSE(store->isDirty());
  EXPECT_EQ(files.read("store.plist"), dict({{"a", dict({{"b", array(dict({{"c", 1}}))}})}}));
  store->objectForKeyPath("a").as<QXPreferencesDictionary>()->setObject(dict({{"x", 1}}), "b");
  EXPECT_EQ(files.read("store.plist"), dict({{"a", dict({{"b", dict({{"x", 1}})}})}}));
  EXPECT_FALSE(store->isDirty());
  store->removeObjectForKeyPath("a");
  EXPECT_EQ(files.read("store.plist"), dict());
  files.remove("store.plist");
  store->setDirty(false);
  EXPECT_EQ(files.read("store.plist"), dict()) << "setting the flag to no saves too";
}

TEST_F(StoreModes, SavesOnceForAnOperationAndBeforeItNotifies) {
  const auto store = QXPreferences::init();
  store->setAppliesImmediately(true);
  int savedWhenHeard = 0;
  const Observation o = store->observe("a.b.c", [&] { savedWhenHeard = defaults().synchronized; });
  store->setObject(dict({{"x", array(1, 2, dict({{"y", 1}}))}}), "a.b.c");
  EXPECT_EQ(defaults().synchronized, 1);
  EXPECT_EQ(savedWhenHeard, 1);
  auto a = store->objectForKeyPath("a").as<QXPreferencesDictionary>();
  defaults().forget();
  a->addEntriesFromDictionary(dict({{"k", 1}, {"l", dict({{"m", 1}})}}));
  EXPECT_EQ(defaults().synchronized, 1);
  a->setObject(1, "k");
  EXPECT_EQ(defaults().synchronized, 2);
  a->removeAllObjects();
  EXPECT_EQ(defaults().synchronized, 3);
  (void)QXPreferencesArray::initWithArray(array(array(1), dict({{"k", 1}})), store);
  EXPECT_EQ(defaults().synchronized, 4);
}

TEST_F(StoreModes, SavesWhatAFailingOperationChangedBefore) {
  const auto store = QXPreferences::initWithPath(files / "store.plist");
  store->setObject(array(dict(), "text"), "list");
  store->setAppliesImmediately(true);
  EXPECT_THROW(store->setInteger(1, "list[0]"), InvalidArgumentException);  // fails at the second
  EXPECT_EQ(files.read("store.plist"), dict({{"list", array(dict({{"list", 1}}), "text")}}));
  EXPECT_FALSE(store->isDirty());
}

TEST_F(StoreModes, SynchronizesByMode) {
  const auto onDefaults = QXPreferences::init();
  EXPECT_TRUE(onDefaults->synchronize());
  EXPECT_EQ(defaults().synchronized, 1);
  defaults().answer = false;
  onDefaults->setInteger(1, "a");
  EXPECT_FALSE(onDefaults->synchronize());
  EXPECT_FALSE(onDefaults->isDirty()) << "clean also where saving failed";
  const auto custom = QXPreferences::initForCustomInfo();
  custom->setInteger(1, "c");
  EXPECT_TRUE(custom->synchronize());
  EXPECT_FALSE(custom->isDirty());
  EXPECT_EQ(defaults().synchronized, 2);
  EXPECT_THAT(mirrored(), UnorderedElementsAre("a", "c"));
}

TEST_F(StoreModes, IgnoresReportsOfContainersThatItDoesNotHold) {
  const auto store = QXPreferences::init();
  store->setInteger(1, "a.b");
  defaults().forget();
  store->updatedObject(QXPreferencesArray::initWithArray(array(99), nullptr), nullptr);
  store->updatedObject("text", "a");
  store->updatedObject(nullptr, nullptr);
  EXPECT_THAT(defaults().set, IsEmpty());
  store->updatedObject(store->objectForKeyPath(nullptr), "a");
  EXPECT_THAT(mirrored(), ElementsAre("a"));
  store->updatedObject(store->objectForKeyPath(nullptr), "none");
  EXPECT_THAT(removed(), ElementsAre("none"));
  store->updatedObject(store->objectForKeyPath("a"), "ignored");
  EXPECT_THAT(mirrored(), ElementsAre("a"));
}

// ---- lifetime

TEST_F(StoreModes, IsFreedWithItsTreeWhenTheApplicationLetsGo) {
  auto store = QXPreferences::init();
  store->setObject(dict({{"list", array(dict())}}), "a");
  const WeakRef<QXPreferences> weakStore = store;
  const WeakRef<QXPreferencesArray> weakList =
      store->objectForKeyPath("a.list").as<QXPreferencesArray>();
  const WeakRef<QXPreferencesDictionary> weakRoot =
      store->objectForKeyPath(nullptr).as<QXPreferencesDictionary>();
  store = nullptr;
  EXPECT_TRUE(weakStore.lock() == nullptr);
  EXPECT_TRUE(weakList.lock() == nullptr);
  EXPECT_TRUE(weakRoot.lock() == nullptr);
}

// An object of the application that lets go of a store when it ends.
class Holder : public Object {
 public:
  explicit Holder(Ref<QXPreferences>* place) : place_(place) {}

 protected:
  ~Holder() override { *place_ = nullptr; }

 private:
  Ref<QXPreferences>* place_;
};
void describe(ClassBuilder<Holder>& c) { c.name("StoreHolder"); }

TEST_F(StoreModes, SurvivesAWriteThatEndsItsLastReference) {
  for (const bool immediately : {false, true}) {
    for (const bool withFile : {false, true}) {
      Ref<QXPreferences> store = withFile ? QXPreferences::initWithPath(files / "store.plist")
                                          : QXPreferences::initForCustomInfo();
      store->setAppliesImmediately(immediately);
      store->setObject(make<Holder>(&store), "a.b");
      QXPreferences* plain = store.get();
      plain->setInteger(1, "a.b");
      EXPECT_TRUE(store == nullptr);
    }
  }
}

}  // namespace
}  // namespace qx

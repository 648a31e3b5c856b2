#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/support/memory_user_defaults.h"

namespace kept {

// A dictionary and an array of the application, which pass their classes on.
class Settings : public qx::QXPreferencesDictionary {
 public:
  qx::Ref<qx::QXPreferencesDictionary> emptyInstance() const override {
    return qx::make<Settings>();
  }
  void encodeWithCoder(qx::Archiver&) const {}
  void decodeWithCoder(qx::Unarchiver&) {}
};
void describe(qx::ClassBuilder<Settings>& c) {
  c.name("KeptSettings").inherits<qx::QXPreferencesDictionary>().archived();
}

class List : public qx::QXPreferencesArray {
 public:
  qx::Ref<qx::QXPreferencesArray> emptyInstance() const override { return qx::make<List>(); }
};
void describe(qx::ClassBuilder<List>& c) { c.name("KeptList").inherits<qx::QXPreferencesArray>(); }

}  // namespace kept

namespace qx {
namespace {

using test_support::MemoryUserDefaults;
using testing::ElementsAre;
using testing::IsEmpty;

QXPreferencesDictionary* dictionaryIn(const PropertyValue& v) {
  return dynamic_cast<QXPreferencesDictionary*>(v.object());
}
QXPreferencesArray* arrayIn(const PropertyValue& v) {
  return dynamic_cast<QXPreferencesArray*>(v.object());
}

// A store in memory: without a file, and with what it tells the user defaults.
class Containers : public testing::Test {
 protected:
  std::vector<std::string> mirrored() {
    const auto keys = MemoryUserDefaults::once(memory.defaults->set);
    memory.defaults->forget();
    return keys;
  }
  // Whether the store was marked dirty since the last time.
  bool wasMarked() {
    const bool dirty = store->isDirty();
    store->setDirty(false);
    return dirty;
  }

  test_support::WithMemoryUserDefaults memory;
  Ref<QXPreferences> store = QXPreferences::initForCustomInfo();
};

TEST_F(Containers, StartEmptyWithAndWithoutAStore) {
  EXPECT_EQ(QXPreferencesDictionary::init()->count(), 0U);
  EXPECT_TRUE(QXPreferencesDictionary::init()->preferences() == nullptr);
  EXPECT_EQ(QXPreferencesArray::init()->count(), 0U);
  EXPECT_TRUE(QXPreferencesArray::init()->preferences() == nullptr);
  const auto d = QXPreferencesDictionary::initWithPreferences(store);
  const auto a = QXPreferencesArray::initWithPreferences(store);
  EXPECT_EQ(d->preferences().get(), store.get());
  EXPECT_EQ(a->preferences().get(), store.get());
  EXPECT_FALSE(wasMarked());
  EXPECT_STREQ(d->cls().name(), "QXPreferencesDictionary");
  EXPECT_STREQ(a->cls().name(), "QXPreferencesArray");
}

TEST_F(Containers, BuiltFromContentsTellTheStore) {
  const auto d = QXPreferencesDictionary::initWithDictionary(dict({{"a", 1}}), store);
  EXPECT_TRUE(wasMarked());
  EXPECT_EQ(PropertyValue(d), dict({{"a", 1}}));
  (void)QXPreferencesDictionary::initWithDictionary(dict(), store);
  EXPECT_FALSE(wasMarked()) << "no entry, no report";
  (void)QXPreferencesDictionary::initWithDictionary(nullptr, store);
  EXPECT_FALSE(wasMarked());
  const auto a = QXPreferencesArray::initWithArray(array(1, 2), store);
  EXPECT_TRUE(wasMarked());
  EXPECT_EQ(PropertyValue(a), array(1, 2));
  (void)QXPreferencesArray::initWithArray(array(), store);
  EXPECT_TRUE(wasMarked()) << "reports once, even for no element";
  (void)QXPreferencesArray::initWithArray(nullptr, store);
  EXPECT_TRUE(wasMarked());
  EXPECT_EQ(QXPreferencesDictionary::dictionaryWithDictionary(dict({{"a", 1}}), nullptr)->count(),
            1U);
  EXPECT_EQ(QXPreferencesArray::arrayWithArray(array(1), nullptr)->count(), 1U);
}

TEST_F(Containers, ConvertWhatIsPutInAtEveryDepth) {
  const auto d = QXPreferencesDictionary::initWithPreferences(store);
  const auto plain = dict({{"list", array(1, dict({{"deep", array(array(2))}}))}});
  d->setObject(plain, "a");
  auto* a = dictionaryIn(d->objectForKey("a"));
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(PropertyValue(a), plain);
  auto* list = arrayIn(a->objectForKey("list"));
  ASSERT_NE(list, nullptr);
  auto* inner = dictionaryIn(list->objectAtIndex(1));
  ASSERT_NE(inner, nullptr);
  auto* deep = arrayIn(inner->objectForKey("deep"));
  ASSERT_NE(deep, nullptr);
  auto* deepest = arrayIn(deep->objectAtIndex(0));
  ASSERT_NE(deepest, nullptr);
  for (const auto& seen : {a->preferences(), list->preferences(), inner->preferences(),
                           deep->preferences(), deepest->preferences()}) {
    EXPECT_EQ(seen.get(), store.get());
  }
}

TEST_F(Containers, OfArraysConvertByEveryOperation) {
  const auto a = QXPreferencesArray::initWithPreferences(store);
  a->addObject(dict({{"k", 0}}));
  a->insertObject(array(1), 0);
  a->addObjectsFromArray(array(dict({{"k", 2}}), array(3), 4));
  a->addObject("replaced");
  a->replaceObjectAtIndex(5, array(5));
  EXPECT_EQ(PropertyValue(a),
            array(array(1), dict({{"k", 0}}), dict({{"k", 2}}), array(3), 4, array(5)));
  for (const std::size_t i : {0U, 3U, 5U}) EXPECT_NE(arrayIn(a->objectAtIndex(i)), nullptr) << i;
  for (const std::size_t i : {1U, 2U}) EXPECT_NE(dictionaryIn(a->objectAtIndex(i)), nullptr) << i;
}

TEST_F(Containers, KeepOtherValuesAsTheyAre) {
  const auto text = MutableString::from("text");
  const auto set = MutableSet::init();
  const auto d = QXPreferencesDictionary::initWithPreferences(store);
  d->setObject(text, "text");
  d->setObject(set, "set");
  d->setObject(null, "null");
  EXPECT_TRUE(isSame(d->objectForKey("text"), text));
  EXPECT_TRUE(isSame(d->objectForKey("set"), set));
  EXPECT_EQ(d->objectForKey("null"), null);
}

TEST_F(Containers, TakeOverContainersOfAnotherStoreWithoutCopying) {
  const auto other = QXPreferences::initForCustomInfo();
  other->setObject(dict({{"inner", array(1)}}), "a");
  const PropertyValue moved = other->objectForKeyPath("a");
  store->setObject(moved, "b");
  EXPECT_TRUE(isSame(store->objectForKeyPath("b"), moved));
  EXPECT_EQ(dictionaryIn(moved)->preferences().get(), store.get());
  // Those within stay as they are.
  EXPECT_EQ(arrayIn(moved["inner"])->preferences().get(), other.get());
}

TEST_F(Containers, TellTheStoreOfEveryChangeEvenOfNone) {
  store->setObject(dict({{"k", 1}}), "map");
  store->setObject(array(1, 2, 3), "list");
  auto* map = dictionaryIn(store->objectForKeyPath("map"));
  auto* list = arrayIn(store->objectForKeyPath("list"));
  const auto expectTold = [&](const char* what, const char* key) {
    EXPECT_TRUE(wasMarked()) << what;
    EXPECT_THAT(mirrored(), ElementsAre(key)) << what;
    EXPECT_EQ(memory.defaults->values->objectForKey(key), store->objectForKeyPath(key)) << what;
  };
  wasMarked();
  mirrored();
  map->setObject(2, "k");
  expectTold("setObject", "map");
  map->setObject(2, "k");
  expectTold("setObject of the same", "map");
  map->removeObjectForKey("k");
  expectTold("removeObjectForKey", "map");
  map->removeObjectForKey("none");
  expectTold("removeObjectForKey of none", "map");
  map->addEntriesFromDictionary(dict({{"a", 1}, {"b", 2}}));
  expectTold("addEntriesFromDictionary", "map");
  map->removeAllObjects();
  expectTold("removeAllObjects of a dictionary", "map");
  list->addObject(4);
  expectTold("addObject", "list");
  list->insertObject(0, 0);
  expectTold("insertObject", "list");
  list->replaceObjectAtIndex(0, 0);
  expectTold("replaceObjectAtIndex", "list");
  list->removeObjectAtIndex(0);
  expectTold("removeObjectAtIndex", "list");
  list->removeLastObject();
  expectTold("removeLastObject", "list");
  list->addObjectsFromArray(array());
  expectTold("addObjectsFromArray", "list");
  list->removeAllObjects();
  expectTold("removeAllObjects", "list");
}

TEST_F(Containers, TellOncePerEntryOrOncePerArray) {
  store->setObject(dict(), "map");
  store->setObject(array(), "list");
  memory.defaults->forget();
  dictionaryIn(store->objectForKeyPath("map"))
      ->addEntriesFromDictionary(dict({{"a", 1}, {"b", 2}, {"c", 3}}));
  EXPECT_EQ(memory.defaults->set.size(), 3U);
  memory.defaults->forget();
  arrayIn(store->objectForKeyPath("list"))->addObjectsFromArray(array(1, 2, 3));
  EXPECT_EQ(memory.defaults->set.size(), 1U);
}

TEST_F(Containers, SendDerivedOperationsThroughThePrimitives) {
  store->setObject(array(3, 1, 2), "list");
  auto* list = arrayIn(store->objectForKeyPath("list"));
  const auto expectTold = [&](const char* what) {
    EXPECT_TRUE(wasMarked()) << what;
    EXPECT_THAT(mirrored(), ElementsAre("list")) << what;
    EXPECT_EQ(memory.defaults->values->objectForKey("list"), PropertyValue(list)) << what;
  };
  wasMarked();
  mirrored();
  list->exchangeObjectAtIndex(0, 1);
  expectTold("exchangeObjectAtIndex");
  list->removeObject(2);
  expectTold("removeObject");
  list->setArray(array(dict({{"a", 1}})));
  expectTold("setArray");
  EXPECT_NE(dictionaryIn(list->objectAtIndex(0)), nullptr);
  PropertyValue(list).setValue(5, "b");
  EXPECT_EQ(list->objectAtIndex(0), dict({{"a", 1}, {"b", 5}}));
}

TEST_F(Containers, PostNoNotificationByThemselves) {
  store->setObject(array(1), "list");
  int heard = 0;
  const Observation o = store->observe("list", [&] { ++heard; });
  arrayIn(store->objectForKeyPath("list"))->addObject(2);
  EXPECT_EQ(heard, 0);
  EXPECT_TRUE(store->isDirty());
}

TEST_F(Containers, ReplaceAllEntriesQuietly) {
  store->setObject(dict({{"k", 1}}), "map");
  auto* map = dictionaryIn(store->objectForKeyPath("map"));
  wasMarked();
  mirrored();
  const auto inner = array(1);
  map->setDictionary(dict({{"inner", inner}}));
  EXPECT_FALSE(wasMarked());
  EXPECT_THAT(mirrored(), IsEmpty());
  EXPECT_TRUE(isSame(map->objectForKey("inner"), inner));
  map->setDictionary(nullptr);
  EXPECT_EQ(map->count(), 0U);
  map->setDictionary(dict({{"a", 1}}));
  map->setDictionary(map);
  EXPECT_EQ(PropertyValue(map), dict({{"a", 1}}));
  EXPECT_FALSE(wasMarked());
}

TEST_F(Containers, GiveAPlainDictionaryOfTheirEntries) {
  const auto d = QXPreferencesDictionary::initWithDictionary(dict({{"a", array(1)}}), nullptr);
  const Ref<Dictionary> plain = d->dictionary();
  EXPECT_EQ(PropertyValue(plain), dict({{"a", array(1)}}));
  EXPECT_EQ(dynamic_cast<MutableDictionary*>(plain.get()), nullptr);
  EXPECT_TRUE(isSame(plain->objectForKey("a"), d->objectForKey("a")));
  d->setObject(1, "b");
  EXPECT_EQ(plain->count(), 1U);
}

TEST_F(Containers, AddThemselvesOnceOver) {
  const auto a = QXPreferencesArray::initWithArray(array(1, 2), nullptr);
  a->addObjectsFromArray(a);
  EXPECT_EQ(PropertyValue(a), array(1, 2, 1, 2));
  const auto d = QXPreferencesDictionary::initWithDictionary(dict({{"a", 1}}), store);
  wasMarked();
  d->addEntriesFromDictionary(d);
  EXPECT_TRUE(wasMarked());
  EXPECT_EQ(d->count(), 1U);
}

TEST_F(Containers, RefuseNilAndPlacesThatAreNotThere) {
  const auto a = QXPreferencesArray::initWithArray(array(1), store);
  const auto d = QXPreferencesDictionary::initWithPreferences(store);
  wasMarked();
  EXPECT_THROW(a->addObject(nullptr), InvalidArgumentException);
  EXPECT_THROW(a->insertObject(1, 2), RangeException);
  EXPECT_THROW(a->replaceObjectAtIndex(1, 2), RangeException);
  EXPECT_THROW(a->removeObjectAtIndex(1), RangeException);
  EXPECT_THROW(d->setObject(nullptr, "k"), InvalidArgumentException);
  EXPECT_THROW(d->setObject(1, nullptr), InvalidArgumentException);
  EXPECT_THROW(d->removeObjectForKey(nullptr), InvalidArgumentException);
  EXPECT_FALSE(wasMarked());
  EXPECT_EQ(PropertyValue(a), array(1));
  EXPECT_THROW(QXPreferencesArray::init()->removeLastObject(), RangeException);
}

TEST_F(Containers, OutliveTheirStoreAsPlainContainers) {
  store->setObject(dict({{"list", array(1)}}), "a");
  const auto a = store->objectForKeyPath("a").as<QXPreferencesDictionary>();
  const auto list = store->objectForKeyPath("a.list").as<QXPreferencesArray>();
  const WeakRef<QXPreferences> weak = store;
  store = nullptr;
  EXPECT_TRUE(weak.lock() == nullptr);
  EXPECT_TRUE(a->preferences() == nullptr);
  memory.defaults->forget();
  a->setObject(dict({{"x", 1}}), "new");
  list->addObject(2);
  list->addObjectsFromArray(array(array(3)));
  a->addEntriesFromDictionary(dict({{"y", 1}}));
  a->removeObjectForKey("none");
  EXPECT_EQ(PropertyValue(a),
            dict({{"list", array(1, 2, array(3))}, {"new", dict({{"x", 1}})}, {"y", 1}}));
  EXPECT_NE(dictionaryIn(a->objectForKey("new")), nullptr);
  a->removeAllObjects();
  a->setPreferences(nullptr);
  EXPECT_THAT(memory.defaults->set, IsEmpty());
}

TEST_F(Containers, CopyToPlainOnes) {
  const auto a = QXPreferencesArray::initWithArray(array(1), store);
  const auto d = QXPreferencesDictionary::initWithDictionary(dict({{"a", 1}}), store);
  EXPECT_STREQ(PropertyValue(a).copy().cls()->name(), "NSArray");
  EXPECT_STREQ(PropertyValue(d).copy().cls()->name(), "NSDictionary");
  EXPECT_STREQ(PropertyValue(a).mutableCopy().cls()->name(), "NSMutableArray");
  EXPECT_STREQ(PropertyValue(d).mutableCopy().cls()->name(), "NSMutableDictionary");
  EXPECT_EQ(PropertyValue(a).hash(), PropertyValue(array(1)).hash());
}

TEST_F(Containers, PassTheirClassOn) {
  const auto settings = make<kept::Settings>();
  settings->setObject(dict({{"list", array(dict())}}), "a");
  EXPECT_STREQ(settings->objectForKey("a").cls()->name(), "KeptSettings");
  const PropertyValue list = settings->objectForKey("a")["list"];
  EXPECT_STREQ(list.cls()->name(), "QXPreferencesArray");
  EXPECT_STREQ(list.as<Array>()->objectAtIndex(0).cls()->name(), "QXPreferencesDictionary");
  const auto own = make<kept::List>();
  own->addObjectsFromArray(array(array(array()), dict()));
  EXPECT_STREQ(own->objectAtIndex(0).cls()->name(), "KeptList");
  EXPECT_STREQ(own->objectAtIndex(0).as<Array>()->objectAtIndex(0).cls()->name(), "KeptList");
  EXPECT_STREQ(own->objectAtIndex(1).cls()->name(), "QXPreferencesDictionary");
  own->addObject(array());
  EXPECT_STREQ(own->objectAtIndex(2).cls()->name(), "QXPreferencesArray");
}

TEST_F(Containers, AnswerBySelector) {
  const PropertyValue d =
      performSelector(const_cast<Class*>(&classOf<QXPreferencesDictionary>()), "dictionary");
  EXPECT_NE(dictionaryIn(d), nullptr);
  const PropertyValue a = performSelector(const_cast<Class*>(&classOf<QXPreferencesArray>()),
                                          "arrayWithArray:preferences:", array(1, array(2)), store);
  ASSERT_NE(arrayIn(a), nullptr);
  EXPECT_EQ(arrayIn(a)->preferences().get(), store.get());
  EXPECT_EQ(performSelector(a, "containsObject:", 2), true);
  EXPECT_EQ(performSelector(a, "containsObject:", 3), false);
  performSelector(d, "setObject:forKey:", a, "a");
  EXPECT_EQ(performSelector(d, "dictionary"), dict({{"a", array(1, array(2))}}));
  EXPECT_EQ(performSelector(d, "containsObject:", 2), true);
  performSelector(a, "setPreferences:", nullptr);
  EXPECT_TRUE(arrayIn(a)->preferences() == nullptr);
  EXPECT_NE(arrayIn(performSelector(const_cast<Class*>(&classOf<QXPreferencesArray>()), "array")),
            nullptr);
  const PropertyValue entries =
      performSelector(const_cast<Class*>(&classOf<QXPreferencesDictionary>()),
                      "dictionaryWithDictionary:preferences:", dict({{"k", 1}}), nullptr);
  EXPECT_EQ(entries, dict({{"k", 1}}));
}

TEST_F(Containers, ClassOperationsGiveTheReceivingClass) {
  EXPECT_STREQ(
      performSelector(const_cast<Class*>(&classOf<kept::Settings>()), "dictionary").cls()->name(),
      "KeptSettings");
  EXPECT_THROW(performSelector(const_cast<Class*>(&classOf<kept::List>()), "array"),
               InvalidArgumentException)
      << "a class that is not archived can not be made by name";
}

}  // namespace
}  // namespace qx

// Reading and writing.

#include "tests/preferences/store_fixture.h"

namespace kept {

class Person : public qx::Object {
 public:
  std::string name;
  void encodeWithCoder(qx::Archiver& a) const { a.encodeObject(name); }
  void decodeWithCoder(qx::Unarchiver& u) { name = u.decode<std::string>(); }
};
void describe(qx::ClassBuilder<Person>& c) {
  c.name("KeptPerson").property("name", &Person::name).archived();
}

}  // namespace kept

namespace qx {
namespace {

class Store : public StoreTest {};

// ---- reading and writing

TEST_F(Store, ReadsWhatItWrote) {
  const auto store = QXPreferences::initForCustomInfo();
  const auto date = Date::dateWithTimeIntervalSince1970(5);
  const auto data = Data::from("bytes");
  store->setObject("text", "s.text");
  store->setObject(date, "s.date");
  store->setObject(data, "s.data");
  store->setObject(array("a", "b"), "s.array");
  store->setObject(dict({{"k", 1}}), "s.dictionary");
  store->setInteger(42, "n.int");
  store->setFloat(1.5F, "n.float");
  store->setDouble(2.25, "n.double");
  store->setBool(true, "n.bool");
  EXPECT_EQ(store->stringForKeyPath("s.text"), "text");
  EXPECT_EQ(store->objectForKeyPath("s.date"), date);
  EXPECT_EQ(store->dataForKeyPath("s.data"), data);
  EXPECT_EQ(store->arrayForKeyPath("s.array"), array("a", "b"));
  EXPECT_EQ(store->stringArrayForKeyPath("s.array"), array("a", "b"));
  EXPECT_EQ(store->dictionaryForKeyPath("s.dictionary"), dict({{"k", 1}}));
  EXPECT_EQ(store->integerForKeyPath("n.int"), 42);
  EXPECT_EQ(store->floatForKeyPath("n.float"), 1.5F);
  EXPECT_EQ(store->doubleForKeyPath("n.double"), 2.25);
  EXPECT_TRUE(store->boolForKeyPath("n.bool"));
  EXPECT_EQ(store->objectForKeyPath("n.int").as<Number>()->kind(), NumberKind::signedInteger);
  EXPECT_EQ(store->objectForKeyPath("n.float").as<Number>()->kind(), NumberKind::single);
  EXPECT_EQ(store->objectForKeyPath("n.double").as<Number>()->kind(), NumberKind::real);
  EXPECT_EQ(store->objectForKeyPath("n.bool").as<Number>()->kind(), NumberKind::boolean);
}

TEST_F(Store, GivesValuesWhateverTheirKind) {
  const auto store = QXPreferences::initForCustomInfo();
  store->setInteger(5, "n");
  EXPECT_EQ(store->stringForKeyPath("n"), 5);
  EXPECT_EQ(store->arrayForKeyPath("n"), 5);
  EXPECT_EQ(store->dataForKeyPath("n"), 5);
  EXPECT_EQ(store->dictionaryForKeyPath("n"), 5);
  EXPECT_EQ(store->stringArrayForKeyPath("n"), 5);
}

TEST_F(Store, ConvertsNumbersLeniently) {
  const auto store = QXPreferences::initForCustomInfo();
  EXPECT_EQ(store->integerForKeyPath("none"), 0);
  EXPECT_EQ(store->floatForKeyPath("none"), 0.0F);
  EXPECT_EQ(store->doubleForKeyPath("none"), 0.0);
  EXPECT_FALSE(store->boolForKeyPath("none"));
  EXPECT_TRUE(store->objectForKeyPath("none").isNil());
  EXPECT_TRUE(store->dataObjectForKeyPath("none").isNil());
  store->setObject("12", "text");
  EXPECT_EQ(store->integerForKeyPath("text"), 12);
  EXPECT_EQ(store->doubleForKeyPath("text"), 12.0);
  EXPECT_TRUE(store->boolForKeyPath("text"));
  store->setObject("YES", "yes");
  EXPECT_TRUE(store->boolForKeyPath("yes"));
  store->setObject(std::int64_t{1} << 40 | 7, "large");
  EXPECT_EQ(store->integerForKeyPath("large"), 7) << "32 bits";
  store->setDouble(2.9, "real");
  EXPECT_EQ(store->integerForKeyPath("real"), 2);
}

TEST_F(Store, GivesOutItsOwnContainers) {
  const auto store = QXPreferences::initForCustomInfo();
  store->setObject(array(1), "list");
  (void)store->synchronize();
  store->arrayForKeyPath("list").as<MutableArray>()->addObject(2);
  EXPECT_EQ(store->objectForKeyPath("list"), array(1, 2));
  EXPECT_TRUE(store->isDirty());
}

TEST_F(Store, WritesALastIndexIntoEveryElement) {
  const auto store = QXPreferences::initForCustomInfo();
  store->setObject(array(dict({{"i", 0}}), dict({{"i", 1}})), "a");
  store->setObject("NEW", "a[0]");
  EXPECT_EQ(store->objectForKeyPath("a"),
            array(dict({{"i", 0}, {"a", "NEW"}}), dict({{"i", 1}, {"a", "NEW"}})));
}

TEST_F(Store, DropsWhatLiesBeyondAnArrayAndStillNotifies) {
  const auto store = QXPreferences::initForCustomInfo();
  int heard = 0;
  const Observation o = store->observe("a[1].b", [&] { ++heard; });
  store->setInteger(5, "a[1].b");
  EXPECT_EQ(store->objectForKeyPath("a"), array());
  EXPECT_TRUE(store->isDirty());
  EXPECT_EQ(heard, 1);
}

TEST_F(Store, PostsNothingWhereItFails) {
  const auto store = QXPreferences::initWithPath(files / "store.plist");
  store->setObject(array(dict()), "list");
  store->setInteger(1, "n");
  (void)store->synchronize();
  int heard = 0;
  const Observation o = store->observe("list", [&] { ++heard; });
  EXPECT_THROW(store->removeObjectForKeyPath("list[0]"), InvalidArgumentException);
  EXPECT_TRUE(store->isDirty());  // the way to the element was written again
  EXPECT_EQ(store->objectForKeyPath("list"), array(dict()));
  EXPECT_EQ(heard, 0);
  EXPECT_THROW(store->removeObjectForKeyPath("new.branch.oops]"), RangeException);
  EXPECT_EQ(store->objectForKeyPath("new"), dict({{"branch", dict()}}));
  EXPECT_THROW(store->setInteger(1, "n."), InvalidArgumentException);
  EXPECT_THROW(store->setInteger(1, "n.x"), InvalidArgumentException);
  EXPECT_THROW(store->setInteger(1, nullptr), InvalidArgumentException);
  EXPECT_THROW(store->removeObjectForKeyPath(nullptr), InvalidArgumentException);
  EXPECT_THROW(store->setInteger(1, "."), InvalidArgumentException);
  EXPECT_THROW(store->removeObjectForKeyPath("a."), InvalidArgumentException);
  EXPECT_THROW((void)store->objectForKeyPath("n.x"), InvalidArgumentException);
}

TEST_F(Store, GivesTheRootForNoPath) {
  const auto store = QXPreferences::initForCustomInfo();
  store->setInteger(1, "a");
  EXPECT_EQ(store->objectForKeyPath(nullptr), dict({{"a", 1}}));
}

void expectDroppedValuesKept(const Ref<QXPreferences>& store) {
  store->setObject(dict({{"b", dict({{"c", 1}})}}), "a");
  store->setObject(store->objectForKeyPath("a.b"), "a");  // the value lives in what is replaced
  EXPECT_EQ(store->objectForKeyPath("a"), dict({{"c", 1}}));
  store->setObject("x", "path");
  // The path is a string of the tree that the write replaces.
  auto path = String::from("path");
  store->setObject(path, "path");
  const String* borrowed = path.get();
  path = nullptr;  // the tree alone keeps it now
  store->setObject(1, *borrowed);
  EXPECT_EQ(store->objectForKeyPath("path"), 1);
}

TEST_F(Store, KeepsAnElementThatIsWrittenAndDroppedInTheSameStep) {
  expectDroppedValuesKept(QXPreferences::initForCustomInfo());
  expectDroppedValuesKept(QXPreferences::initWithPath(files / "store.plist"));
}

TEST_F(Store, AnswersKeyAccessWithKeyPaths) {
  const auto store = QXPreferences::initForCustomInfo();
  const PropertyValue v = store;
  store->setValue(5, "a.b");
  EXPECT_EQ(store->valueForKey("a.b"), 5);
  EXPECT_EQ(v.valueForKey("a.b"), 5);
  v.setValue(6, "a.b");
  EXPECT_EQ(store->integerForKeyPath("a.b"), 6);
  v.setValue(nullptr, "a.b");
  EXPECT_TRUE(v["a.b"].isNil());
  v.setValue(true, "isDirty");
  EXPECT_EQ(v["isDirty"], true) << "a key path like any other";
  store->setObject(array(1, 2), "list");
  EXPECT_EQ(v.valueForKeyPath("list"), array(1, 2));
  EXPECT_EQ(v.valueForKey("list[0]"), 1);
}

TEST_F(Store, AnswersBySelector) {
  const auto store = QXPreferences::initForCustomInfo();
  const PropertyValue v = store;
  performSelector(v, "setObject:forKeyPath:", "text", "a.s");
  performSelector(v, "setInteger:forKeyPath:", 5, "a.i");
  performSelector(v, "setFloat:forKeyPath:", 1.5, "a.f");
  performSelector(v, "setDouble:forKeyPath:", 2.5, "a.d");
  performSelector(v, "setBool:forKeyPath:", true, "a.b");
  performSelector(v, "setDataObject:forKeyPath:", array(1), "a.o");
  EXPECT_EQ(performSelector(v, "stringForKeyPath:", "a.s"), "text");
  EXPECT_EQ(performSelector(v, "objectForKeyPath:", "a.s"), "text");
  EXPECT_EQ(performSelector(v, "integerForKeyPath:", "a.i"), 5);
  EXPECT_EQ(performSelector(v, "floatForKeyPath:", "a.f"), 1.5);
  EXPECT_EQ(performSelector(v, "doubleForKeyPath:", "a.d"), 2.5);
  EXPECT_EQ(performSelector(v, "boolForKeyPath:", "a.b"), true);
  EXPECT_EQ(performSelector(v, "dataObjectForKeyPath:", "a.o"), array(1));
  EXPECT_TRUE(performSelector(v, "dataForKeyPath:", "a.o").isData());
  EXPECT_TRUE(performSelector(v, "dictionaryForKeyPath:", "a").isDictionary());
  EXPECT_EQ(performSelector(v, "isDirty"), true);
  EXPECT_EQ(performSelector(v, "synchronize"), true);
  performSelector(v, "setDirty:", true);
  EXPECT_TRUE(store->isDirty());
  performSelector(v, "setAppliesImmediately:", true);
  EXPECT_EQ(performSelector(v, "appliesImmediately"), true);
  performSelector(v, "setDefaultObject:forKeyPath:", 7, "d");
  EXPECT_EQ(performSelector(v, "defaultObjectForKeyPath:", "d"), 7);
  performSelector(v, "removeDefaultObjectForKeyPath:", "d");
  performSelector(v, "setDefaultDataObject:forKeyPath:", 8, "e");
  EXPECT_EQ(performSelector(v, "defaultDataObjectForKeyPath:", "e"), 8);
  performSelector(v, "removeObjectForKeyPath:", "a");
  EXPECT_EQ(performSelector(v, "userValues"), dict());
  performSelector(v, "setUserValues:", dict({{"x", array(1)}}));
  EXPECT_EQ(performSelector(v, "arrayForKeyPath:", "x"), array(1));
  EXPECT_EQ(performSelector(v, "stringArrayForKeyPath:", "x"), array(1));
  const auto other = QXPreferences::initForCustomInfo();
  performSelector(other, "updateKey:fromPrefs:", "x", v);
  EXPECT_EQ(other->objectForKeyPath("x"), array(1));
  EXPECT_STREQ(v.cls()->name(), "QXPreferences");
}

// ---- data objects

TEST_F(Store, KeepsObjectsAsArchives) {
  const auto store = QXPreferences::initWithPath(files / "store.plist");
  const auto person = make<kept::Person>();
  person->name = "Bob";
  store->setDataObject(person, "a.person");
  store->setDataObject(array(null, 1), "a.list");
  store->setDataObject(nullptr, "a.nothing");
  EXPECT_TRUE(store->objectForKeyPath("a.person").isData());
  ASSERT_TRUE(store->synchronize());
  const auto again = QXPreferences::initWithPath(files / "store.plist");
  EXPECT_EQ(again->dataObjectForKeyPath("a.person")["name"], "Bob");
  EXPECT_EQ(again->dataObjectForKeyPath("a.list"), array(null, 1));
  EXPECT_TRUE(again->dataObjectForKeyPath("a.nothing").isNil());
}

TEST_F(Store, RaisesForWhatIsNoArchive) {
  const auto store = QXPreferences::initForCustomInfo();
  store->setObject(Data::from("bytes"), "data");
  store->setObject("text", "text");
  EXPECT_THROW((void)store->dataObjectForKeyPath("data"), InvalidArgumentException);
  EXPECT_THROW((void)store->dataObjectForKeyPath("text"), InvalidArgumentException);
  EXPECT_THROW(store->setDataObject(make<test_support::MemoryUserDefaults>(), "x"),
               InvalidArgumentException);
}

// ---- defaults

TEST_F(Store, FallsBackToDefaultsOfExactlyThePathsText) {
  const auto store = QXPreferences::initForCustomInfo();
  store->setDefaultObject(9, "a.b");
  store->setDefaultObject("d", "a[0].c");
  EXPECT_EQ(store->integerForKeyPath("a.b"), 9);
  EXPECT_TRUE(store->objectForKeyPath("a[0].b").isNil());
  EXPECT_EQ(store->objectForKeyPath("a[0].c"), "d");
  EXPECT_EQ(store->defaultObjectForKeyPath("a.b"), 9);
  EXPECT_TRUE(store->defaultObjectForKeyPath("a").isNil());
  store->setInteger(1, "a.b");
  EXPECT_EQ(store->integerForKeyPath("a.b"), 1);
  store->removeObjectForKeyPath("a.b");
  EXPECT_EQ(store->integerForKeyPath("a.b"), 9);
  store->removeDefaultObjectForKeyPath("a.b");
  EXPECT_EQ(store->integerForKeyPath("a.b"), 0);
  store->setDefaultDataObject(array(1), "object");
  EXPECT_EQ(store->dataObjectForKeyPath("object"), array(1));
  EXPECT_EQ(store->defaultDataObjectForKeyPath("object"), array(1));
  EXPECT_TRUE(store->defaultDataObjectForKeyPath("none").isNil());
}

TEST_F(Store, NeverMarksNotifiesOrSavesForDefaults) {
  const auto store = QXPreferences::initWithPath(files / "store.plist");
  int heard = 0;
  const Observation o = store->observe("a", [&] { ++heard; });
  store->setDefaultObject(1, "a");
  store->removeDefaultObjectForKeyPath("a");
  store->setDefaultObject(2, "a");
  EXPECT_FALSE(store->isDirty());
  EXPECT_EQ(heard, 0);
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(files.read("store.plist"), dict());
  EXPECT_THROW(store->setDefaultObject(nullptr, "a"), InvalidArgumentException);
  EXPECT_THROW(store->setDefaultObject(1, nullptr), InvalidArgumentException);
}

// ---- whole values, other stores

TEST_F(Store, GivesAndTakesAllValuesQuietly) {
  const auto store = QXPreferences::init();
  store->setObject(array(1), "list");
  (void)store->synchronize();
  defaults().forget();
  const Ref<Dictionary> values = store->userValues();
  EXPECT_TRUE(isSame(values->objectForKey("list"), store->objectForKeyPath("list")));
  int heard = 0;
  const Observation o = store->observe("list", [&] { ++heard; });
  const auto plain = array(2);
  store->setUserValues(dict({{"list", plain}, {"x", 1}}));
  EXPECT_TRUE(isSame(store->objectForKeyPath("list"), plain)) << "not converted";
  EXPECT_FALSE(store->isDirty());
  EXPECT_EQ(heard, 0);
  EXPECT_THAT(defaults().set, IsEmpty());
  EXPECT_EQ(PropertyValue(values), dict({{"list", array(1)}}));
  // Writing converts the containers on its way.
  store->setUserValues(dict({{"a", dict({{"b", dict()}})}}));
  store->setInteger(1, "a.b.c");
  EXPECT_EQ(store->integerForKeyPath("a.b.c"), 1);
  store->setUserValues(nullptr);
  EXPECT_EQ(store->userValues()->count(), 0U);
}

TEST_F(Store, TakesOverAKeyFromAnotherStore) {
  const auto from = QXPreferences::initForCustomInfo();
  const auto to = QXPreferences::initForCustomInfo();
  from->setInteger(5, "a.b");
  to->updateKey("a.b", from);
  EXPECT_EQ(to->integerForKeyPath("a.b"), 5);
  from->removeObjectForKeyPath("a.b");
  to->updateKey("a.b", from);
  EXPECT_TRUE(to->objectForKeyPath("a.b").isNil());
  from->setDefaultObject(7, "d");
  to->updateKey("d", from);
  EXPECT_EQ(to->objectForKeyPath("d"), 7) << "a default of the other counts";
  (void)to->synchronize();
  int heard = 0;
  const Observation o = to->observe("list", [&] { ++heard; });
  from->setObject(array(1), "list");
  to->updateKey("list", from);
  EXPECT_EQ(heard, 1);
  EXPECT_TRUE(to->isDirty());
  EXPECT_TRUE(isSame(to->objectForKeyPath("list"), from->objectForKeyPath("list")))
      << "containers are not copied";
  EXPECT_EQ(to->objectForKeyPath("list").as<QXPreferencesArray>()->preferences().get(), to.get());
  EXPECT_THROW(to->updateKey("a", nullptr), InvalidArgumentException);
}

}  // namespace
}  // namespace qx

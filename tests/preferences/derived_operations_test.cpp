// Every operation that changes an array or a dictionary goes through the primitives: in a tree it
// is reported, and what it puts in is converted.

#include "tests/preferences/store_fixture.h"
#include "tests/support/scripted_random.h"

namespace qx {
namespace {

using ArrayChange = void (*)(const Ref<QXPreferencesArray>& list);
using DictionaryChange = void (*)(const Ref<QXPreferencesDictionary>& map);

PropertyValue named(int n) { return dict({{"n", n}}); }
Ref<QXSortOrdering> byN(Selector selector) {
  return QXSortOrdering::sortOrderingWithKey("n", selector);
}
int compareN(const PropertyValue& a, const PropertyValue& b, int&) {
  return a["n"].intValue() - b["n"].intValue() < 0 ? -1 : 1;
}

// Of [{n: 3}, {n: 1}, {n: 2}].
const struct {
  const char* what;
  ArrayChange change;
  std::vector<int> after;  // the values under n
} kArrayChanges[] = {
    {"sortUsingKeyOrderArray",
     [](const auto& list) { sortUsingKeyOrderArray(list, array(byN("compareAscending:"))); },
     {1, 2, 3}},
    {"sortUsingKeyOrderArray by selector",
     [](const auto& list) {
       performSelector(list, "sortUsingKeyOrderArray:", array(byN("compareDescending:")));
     },
     {3, 2, 1}},
    {"sortStablyUsingOrderings",
     [](const auto& list) { sortStablyUsingOrderings(list, array(byN("compareAscending:"))); },
     {1, 2, 3}},
    {"insertObjectInSortedArray",
     [](const auto& list) {
       int nothing = 0;
       insertObjectInSortedArray(list, named(4), &compareN, nothing);
     },
     {3, 1, 2, 4}},
    {"kwRandomize",
     [](const auto& list) {
       ScriptedRandom random({1, 1});
       kwRandomize(list);
     },
     {1, 2, 3}},
    {"kwRandomize by selector",
     [](const auto& list) {
       ScriptedRandom random({2, 0});
       performSelector(list, "kwRandomize");
     },
     {2, 1, 3}},
    {"exchangeObjectAtIndex",
     [](const auto& list) { list->exchangeObjectAtIndex(0, 2); },
     {2, 1, 3}},
    {"removeObject", [](const auto& list) { list->removeObject(named(1)); }, {3, 2}},
    {"setArray", [](const auto& list) { list->setArray(array(named(7), named(8))); }, {7, 8}},
    {"addObjectCheckNil",
     [](const auto& list) { addObjectCheckNil(list, named(4)); },
     {3, 1, 2, 4}},
    {"addObjectIfAbsent",
     [](const auto& list) { (void)addObjectIfAbsent(list, named(4)); },
     {3, 1, 2, 4}},
    {"addObjectIfMissing",
     [](const auto& list) { addObjectIfMissing(list, named(4)); },
     {3, 1, 2, 4}},
    {"addObjectsFromArrayIfAbsent",
     [](const auto& list) { addObjectsFromArrayIfAbsent(list, array(named(1), named(4))); },
     {3, 1, 2, 4}},
    {"insertObjectIfAbsent",
     [](const auto& list) { (void)insertObjectIfAbsent(list, named(4), 0); },
     {4, 3, 1, 2}},
    {"removeObjectsNotInArray",
     [](const auto& list) { removeObjectsNotInArray(list, array(named(1))); },
     {1}},
    {"removeObjectsInArrayUsingIsEqual",
     [](const auto& list) { removeObjectsInArrayUsingIsEqual(list, array(named(1))); },
     {3, 2}},
};

class DerivedOperations : public StoreTest {};

TEST_F(DerivedOperations, OfArraysAreReportedAndConvert) {
  for (const auto& row : kArrayChanges) {
    const auto store = QXPreferences::init();
    store->setObject(array(named(3), named(1), named(2)), "top.list");
    const auto list = store->objectForKeyPath("top.list").as<QXPreferencesArray>();
    store->setDirty(false);
    defaults().forget();
    row.change(list);
    std::vector<int> after;
    for (const PropertyValue& element : *list) {
      after.push_back(element["n"].intValue());
      EXPECT_NE(element.as<QXPreferencesDictionary>(), nullptr) << row.what;
    }
    EXPECT_EQ(after, row.after) << row.what;
    EXPECT_TRUE(store->isDirty()) << row.what;
    EXPECT_THAT(mirrored(), ElementsAre("top")) << row.what;
    EXPECT_EQ(defaults().values->objectForKey("top"), dict({{"list", list}})) << row.what;
  }
}

const struct {
  const char* what;
  DictionaryChange change;
  PropertyValue after;
} kDictionaryChanges[] = {
    {"setValueForKey", [](const auto& map) { map->setValueForKey(dict(), "b"); },
     dict({{"a", 1}, {"b", dict()}})},
    {"setValueForKey of nil", [](const auto& map) { map->setValueForKey(nullptr, "a"); }, dict()},
    {"storing by key access", [](const auto& map) { PropertyValue(map).setValue(dict(), "b"); },
     dict({{"a", 1}, {"b", dict()}})},
    {"setObject with a default", [](const auto& map) { setObject(map, dict(), "b", nullptr); },
     dict({{"a", 1}, {"b", dict()}})},
    {"setObject of the default", [](const auto& map) { setObject(map, 1, "a", 1); }, dict()},
    {"addEntriesFromDictionary",
     [](const auto& map) { map->addEntriesFromDictionary(dict({{"b", dict()}})); },
     dict({{"a", 1}, {"b", dict()}})},
    {"removeAllObjects", [](const auto& map) { map->removeAllObjects(); }, dict()},
};

TEST_F(DerivedOperations, OfDictionariesAreReportedAndConvert) {
  for (const auto& row : kDictionaryChanges) {
    const auto store = QXPreferences::init();
    store->setObject(dict({{"a", 1}}), "top.map");
    const auto map = store->objectForKeyPath("top.map").as<QXPreferencesDictionary>();
    store->setDirty(false);
    defaults().forget();
    row.change(map);
    EXPECT_EQ(PropertyValue(map), row.after) << row.what;
    if (const PropertyValue b = map->objectForKey("b"); b != nullptr) {
      EXPECT_NE(b.as<QXPreferencesDictionary>(), nullptr) << row.what;
    }
    EXPECT_TRUE(store->isDirty()) << row.what;
    EXPECT_THAT(mirrored(), ElementsAre("top")) << row.what;
    EXPECT_EQ(defaults().values->objectForKey("top"), dict({{"map", map}})) << row.what;
  }
}

}  // namespace
}  // namespace qx

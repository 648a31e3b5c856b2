#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/preferences/store_files.h"
#include "tests/support/memory_user_defaults.h"

namespace qx {
namespace {

class Controller : public testing::Test {
 protected:
  test_support::WithMemoryUserDefaults memory;
  StoreFiles files;
  Ref<QXPreferencesController> controller = QXPreferencesController::init();
};

TEST_F(Controller, HasTheStoreOfTheUserDefaultsUnderTheEmptyName) {
  memory.defaults->values->setObject(5, "a");
  controller = QXPreferencesController::init();
  const auto store = controller->preferencesName("");
  ASSERT_TRUE(store != nullptr);
  EXPECT_EQ(controller->preferencesName(nullptr).get(), store.get());
  EXPECT_EQ(store->integerForKeyPath("a"), 5);
  EXPECT_EQ(controller->integerForKeyPath("a", nullptr), 5);
  store->setInteger(6, "a");
  EXPECT_EQ(memory.defaults->values->objectForKey("a"), 6);
}

TEST_F(Controller, RegistersAStoreOncePerName) {
  files.write("one.plist", dict({{"n", 1}}));
  files.write("two.plist", dict({{"n", 2}}));
  const auto one = controller->registerPreferencesName("x", files / "one.plist");
  const auto again = controller->registerPreferencesName("x", files / "two.plist");
  EXPECT_EQ(one.get(), again.get());
  EXPECT_EQ(controller->preferencesName("x").get(), one.get());
  EXPECT_EQ(controller->integerForKeyPath("n", "x"), 1);
  const auto onDefaults = controller->registerPreferencesName("y", "");
  onDefaults->setInteger(3, "m");
  EXPECT_EQ(memory.defaults->values->objectForKey("m"), 3);
  EXPECT_THROW(controller->registerPreferencesName(nullptr, "p"), InvalidArgumentException);
  EXPECT_TRUE(controller->preferencesName("unknown") == nullptr);
}

TEST_F(Controller, LetsGoOfAStoreWithoutSavingIt) {
  auto store = controller->registerPreferencesName("x", files / "x.plist");
  store->setInteger(1, "a");
  const WeakRef<QXPreferences> weak = store;
  store = nullptr;
  controller->unregisterPreferencesName("x");
  EXPECT_TRUE(weak.lock() == nullptr);
  EXPECT_TRUE(files.names().empty());
  controller->unregisterPreferencesName("");
  EXPECT_TRUE(controller->preferencesName(nullptr) == nullptr);
  EXPECT_EQ(controller->integerForKeyPath("a", nullptr), 0);
  const auto again = controller->registerPreferencesName("", files / "own.plist");
  again->setInteger(2, "a");
  EXPECT_EQ(controller->integerForKeyPath("a", nullptr), 2) << "of the store registered since";
  EXPECT_TRUE(memory.defaults->set.empty()) << "it has a file";
  controller->unregisterPreferencesName("never there");
  EXPECT_THROW(controller->unregisterPreferencesName(nullptr), InvalidArgumentException);
}

TEST_F(Controller, ReadsFromTheStoreOfAName) {
  const auto store = controller->registerPreferencesName("x", files / "x.plist");
  store->setObject("text", "s");
  store->setObject(array("a"), "list");
  store->setObject(dict({{"k", 1}}), "map");
  store->setObject(Data::from("d"), "data");
  store->setDataObject(array(7), "object");
  store->setDouble(2.5, "number");
  store->setBool(true, "yes");
  EXPECT_EQ(controller->objectForKeyPath("s", "x"), "text");
  EXPECT_EQ(controller->stringForKeyPath("s", "x"), "text");
  EXPECT_EQ(controller->arrayForKeyPath("list", "x"), array("a"));
  EXPECT_EQ(controller->stringArrayForKeyPath("list", "x"), array("a"));
  EXPECT_EQ(controller->dictionaryForKeyPath("map", "x"), dict({{"k", 1}}));
  EXPECT_EQ(controller->dataForKeyPath("data", "x"), Data::from("d"));
  EXPECT_EQ(controller->dataObjectForKeyPath("object", "x"), array(7));
  EXPECT_EQ(controller->integerForKeyPath("number", "x"), 2);
  EXPECT_EQ(controller->floatForKeyPath("number", "x"), 2.5F);
  EXPECT_EQ(controller->doubleForKeyPath("number", "x"), 2.5);
  EXPECT_TRUE(controller->boolForKeyPath("yes", "x"));
}

TEST_F(Controller, GivesNothingForUnknownNames) {
  EXPECT_TRUE(controller->objectForKeyPath("a", "u").isNil());
  EXPECT_TRUE(controller->arrayForKeyPath("a", "u").isNil());
  EXPECT_TRUE(controller->dictionaryForKeyPath("a", "u").isNil());
  EXPECT_TRUE(controller->stringForKeyPath("a", "u").isNil());
  EXPECT_TRUE(controller->dataForKeyPath("a", "u").isNil());
  EXPECT_TRUE(controller->stringArrayForKeyPath("a", "u").isNil());
  EXPECT_TRUE(controller->dataObjectForKeyPath("a", "u").isNil());
  EXPECT_EQ(controller->integerForKeyPath("a", "u"), 0);
  EXPECT_EQ(controller->floatForKeyPath("a", "u"), 0.0F);
  EXPECT_EQ(controller->doubleForKeyPath("a", "u"), 0.0);
  EXPECT_FALSE(controller->boolForKeyPath("a", "u"));
}

TEST_F(Controller, IsSharedByTheProcess) {
  const auto shared = QXPreferencesController::sharedPreferencesController();
  EXPECT_EQ(shared.get(), QXPreferencesController::sharedPreferencesController().get());
  EXPECT_NE(shared.get(), controller.get());
  EXPECT_EQ(performSelector(const_cast<Class*>(&classOf<QXPreferencesController>()),
                            "sharedPreferencesController")
                .object(),
            shared.get());
}

TEST_F(Controller, AnswersBySelector) {
  const PropertyValue c = controller;
  EXPECT_STREQ(c.cls()->name(), "QXPreferencesController");
  const PropertyValue store =
      performSelector(c, "registerPreferencesName:path:", "x", files / "x.plist");
  performSelector(store, "setObject:forKeyPath:", "5", "a");
  EXPECT_EQ(performSelector(c, "preferencesName:", "x").object(), store.object());
  for (const char* name :
       {"objectForKeyPath:preferencesName:", "arrayForKeyPath:preferencesName:",
        "dictionaryForKeyPath:preferencesName:", "stringForKeyPath:preferencesName:",
        "dataForKeyPath:preferencesName:", "stringArrayForKeyPath:preferencesName:"}) {
    EXPECT_EQ(performSelector(c, Selector::named(name), "a", "x"), "5") << name;
  }
  EXPECT_EQ(performSelector(c, "integerForKeyPath:preferencesName:", "a", "x"), 5);
  EXPECT_EQ(performSelector(c, "floatForKeyPath:preferencesName:", "a", "x"), 5.0);
  EXPECT_EQ(performSelector(c, "doubleForKeyPath:preferencesName:", "a", "x"), 5.0);
  EXPECT_EQ(performSelector(c, "boolForKeyPath:preferencesName:", "a", "x"), true);
  EXPECT_TRUE(performSelector(c, "dataObjectForKeyPath:preferencesName:", "none", "x").isNil());
  performSelector(c, "unregisterPreferencesName:", "x");
  EXPECT_TRUE(performSelector(c, "preferencesName:", "x").isNil());
}

}  // namespace
}  // namespace qx

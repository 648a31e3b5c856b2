#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <string>
#include <thread>

#include <QXFoundation/QXFoundation.h>

#include "platform/file_lock.h"
#include "platform/file_user_defaults.h"
#include "platform/standard_user_defaults.h"
#include "tests/support/failing_file_calls.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using detail::FileUserDefaults;
using detail::ReplacedFileCalls;
using test_support::FailingFileCalls;
using test_support::readBytes;
using test_support::ScopedEnvironment;
using test_support::TemporaryFolder;
using test_support::writeBytes;
using testing::ElementsAre;

PropertyValue contentOf(const std::string& path) {
  return PropertyListSerialization::propertyListWithData(
      Data::from(readBytes(path)), PropertyListMutability::immutable, nullptr);
}

void writeList(const std::string& path, const PropertyValue& value) {
  writeBytes(
      path,
      PropertyListSerialization::dataWithPropertyList(value, PropertyListFormat::xml)->view());
}

class UserDefaultsFile : public testing::Test {
 protected:
  Ref<FileUserDefaults> open() const { return make<FileUserDefaults>(path); }
  TemporaryFolder folder;
  std::string path = folder / "app.plist";
};

TEST_F(UserDefaultsFile, KeepsWhatWasSetFromOneRunToTheNext) {
  const auto date = Date::dateWithTimeIntervalSince1970(5);
  const PropertyValue values[] = {"text", "naïve 漢",
                                  1,      -5,
                                  2.5,    true,
                                  false,  Data::from("bytes"),
                                  date,   array(1, dict({{"a", "b"}})),
                                  dict()};
  const auto first = open();
  int n = 0;
  for (const PropertyValue& v : values) first->setObject(v, "k" + std::to_string(n++));
  ASSERT_TRUE(first->synchronize());
  const auto second = open();
  n = 0;
  for (const PropertyValue& v : values) {
    const PropertyValue again = second->objectForKey("k" + std::to_string(n++));
    EXPECT_EQ(again, v);
    EXPECT_EQ(again.cls(), v.cls());
  }
  EXPECT_EQ(second->objectForKey("k5").to<bool>(), true);
  EXPECT_EQ(second->get<int>("k2"), 1);
  EXPECT_EQ(second->get<int>("k0"), std::nullopt);
  EXPECT_EQ(second->get<std::string>("k1"), "naïve 漢");
}

TEST_F(UserDefaultsFile, SavesOnlyWhenSynchronized) {
  const auto defaults = open();
  defaults->setObject(1, "a");
  EXPECT_EQ(defaults->objectForKey("a"), 1);
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(contentOf(path), dict({{"a", 1}}));
}

TEST_F(UserDefaultsFile, RemovesKeysForNilToo) {
  writeList(path, dict({{"a", 1}, {"b", 2}, {"c", 3}}));
  const auto defaults = open();
  defaults->removeObjectForKey("a");
  defaults->setObject(nullptr, "b");
  defaults->removeObjectForKey("none");
  EXPECT_TRUE(defaults->objectForKey("a").isNil());
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(contentOf(path), dict({{"c", 3}}));
}

TEST_F(UserDefaultsFile, ShowsRegisteredValuesBelowAndNeverSavesThem) {
  writeList(path, dict({{"a", 1}}));
  const auto defaults = open();
  defaults->registerDefaults(dict({{"a", 10}, {"b", 20}}));
  defaults->registerDefaults(dict({{"c", 30}}));
  defaults->registerDefaults(nullptr);
  EXPECT_EQ(defaults->objectForKey("a"), 1);
  EXPECT_EQ(defaults->objectForKey("b"), 20);
  EXPECT_EQ(defaults->dictionaryRepresentation()->description(),
            dict({{"a", 1}, {"b", 20}, {"c", 30}})->description());
  defaults->removeObjectForKey("a");
  EXPECT_EQ(defaults->objectForKey("a"), 10);
  defaults->setObject(2, "d");
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(contentOf(path), dict({{"d", 2}}));
}

TEST_F(UserDefaultsFile, GivesOutAndKeepsCopies) {
  const auto defaults = open();
  const auto inner = MutableArray::init();
  const auto text = MutableString::from("x");
  inner->addObject(text);
  defaults->setObject(dict({{"list", inner}}), "a");
  inner->addObject(2);
  text->appendString("y");
  EXPECT_EQ(defaults->objectForKey("a"), dict({{"list", array("x")}}));
  EXPECT_TRUE(defaults->objectForKey("a")["list"].as<MutableArray>() == nullptr);
  const auto all = defaults->dictionaryRepresentation();
  defaults->setObject(1, "b");
  EXPECT_EQ(all->count(), 1U);
}

TEST_F(UserDefaultsFile, RefusesNilKeys) {
  const auto defaults = open();
  EXPECT_THROW(defaults->setObject(1, nullptr), InvalidArgumentException);
  EXPECT_THROW(defaults->removeObjectForKey(nullptr), InvalidArgumentException);
  EXPECT_TRUE(defaults->objectForKey(nullptr).isNil());
}

TEST_F(UserDefaultsFile, MergesItsChangedKeysIntoWhatTheFileHoldsNow) {
  writeList(path, dict({{"a", 1}, {"b", 1}, {"c", 1}, {"d", 1}}));
  const auto one = open();
  const auto two = open();
  one->setObject(2, "a");
  one->removeObjectForKey("d");
  two->setObject(3, "b");
  two->setObject(3, "e");
  EXPECT_TRUE(one->synchronize());
  EXPECT_EQ(two->objectForKey("a"), 1);
  EXPECT_TRUE(two->synchronize());
  EXPECT_EQ(contentOf(path), dict({{"a", 2}, {"b", 3}, {"c", 1}, {"e", 3}}));
  EXPECT_EQ(two->objectForKey("a"), 2) << "what others changed is taken over";
  EXPECT_TRUE(two->objectForKey("d").isNil());
  EXPECT_EQ(one->objectForKey("b"), 1);
  EXPECT_TRUE(one->synchronize());
  EXPECT_EQ(one->objectForKey("b"), 3);
}

TEST_F(UserDefaultsFile, ChangesTheKindOfANumberWhoseValueStays) {
  writeList(path, dict({{"a", 1}}));
  const auto defaults = open();
  defaults->setObject(true, "a");
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(contentOf(path)["a"].to<bool>(), true);
}

TEST_F(UserDefaultsFile, MakesItsFolderForTheUserAlone) {
  path = folder / "deep/config/app.plist";
  const auto defaults = open();
  defaults->setObject(1, "a");
  EXPECT_TRUE(defaults->synchronize());
  struct stat about{};
  ASSERT_EQ(::stat((folder / "deep/config").c_str(), &about), 0);
  EXPECT_EQ(about.st_mode & 07777, 0700U);
}

TEST_F(UserDefaultsFile, StartsEmptyOverADamagedFileAndKeepsItBeforeTheFirstWrite) {
  writeBytes(path, "<plist><dict><key>a</key>");
  const auto defaults = open();
  EXPECT_EQ(defaults->dictionaryRepresentation()->count(), 0U);
  EXPECT_TRUE(defaults->synchronize()) << "there is nothing to save";
  EXPECT_EQ(readBytes(path), "<plist><dict><key>a</key>");
  defaults->setObject(1, "b");
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(contentOf(path), dict({{"b", 1}}));
  EXPECT_EQ(readBytes(path + ".damaged"), "<plist><dict><key>a</key>");
}

TEST_F(UserDefaultsFile, GoesOnFromWhatItKnewWhenTheFileIsDamagedLater) {
  writeList(path, dict({{"a", 1}, {"b", 1}}));
  const auto defaults = open();
  writeBytes(path, "damaged");
  defaults->setObject(2, "b");
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(contentOf(path), dict({{"a", 1}, {"b", 2}}));
  EXPECT_EQ(readBytes(path + ".damaged"), "damaged");
}

TEST_F(UserDefaultsFile, NeverReplacesAnEarlierDamagedFile) {
  writeBytes(path, "damaged again");
  writeBytes(path + ".damaged", "damaged before");
  const auto defaults = open();
  defaults->setObject(1, "a");
  EXPECT_EQ(defaults->lastSaveError(), nullptr);
  EXPECT_FALSE(defaults->synchronize());
  ASSERT_NE(defaults->lastSaveError(), nullptr);
  EXPECT_EQ(defaults->lastSaveError()->code(), EEXIST);
  EXPECT_EQ(readBytes(path), "damaged again");
  EXPECT_EQ(readBytes(path + ".damaged"), "damaged before");
  std::filesystem::remove(path + ".damaged");
  EXPECT_TRUE(defaults->synchronize()) << "the change was not forgotten";
  EXPECT_EQ(contentOf(path), dict({{"a", 1}}));
  EXPECT_EQ(readBytes(path + ".damaged"), "damaged again");
}

TEST_F(UserDefaultsFile, TriesAgainWhatCouldNotBeSaved) {
  writeList(path, dict({{"a", 1}}));
  const auto defaults = open();
  defaults->setObject(2, "a");
  const std::string before = readBytes(path);
  for (const char* call : {"write", "fsync", "rename", "lockByte", "read"}) {
    FailingFileCalls calls(call, 0, EIO);
    const ReplacedFileCalls replaced(calls);
    EXPECT_FALSE(defaults->synchronize()) << call;
    ASSERT_NE(defaults->lastSaveError(), nullptr) << call;
    EXPECT_EQ(defaults->lastSaveError()->code(), EIO) << call;
    EXPECT_EQ(defaults->objectForKey("a"), 2) << call;
  }
  EXPECT_EQ(readBytes(path), before);
  EXPECT_THAT(folder.names(), ElementsAre(".app.plist.lock", "app.plist"));
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(defaults->lastSaveError(), nullptr);
  EXPECT_EQ(contentOf(path), dict({{"a", 2}}));
}

TEST_F(UserDefaultsFile, SavesTheOtherKeysOfAValueThatIsNoPropertyList) {
  const auto defaults = open();
  defaults->setObject(1, "good");
  defaults->setObject(array(null), "bad");
  defaults->setObject("\x01", "control");
  EXPECT_FALSE(defaults->synchronize());
  ASSERT_NE(defaults->lastSaveError(), nullptr);
  EXPECT_NE(defaults->lastSaveError()->localizedDescription().find("bad"), std::string::npos);
  EXPECT_EQ(contentOf(path), dict({{"good", 1}}));
  EXPECT_EQ(defaults->objectForKey("bad"), array(null));
  EXPECT_FALSE(defaults->synchronize());
  defaults->setObject("better", "bad");
  defaults->removeObjectForKey("control");
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(contentOf(path), dict({{"good", 1}, {"bad", "better"}}));
}

TEST_F(UserDefaultsFile, WaitsForTheLockButNotForEver) {
  const auto defaults = open();
  defaults->setObject(1, "a");
  defaults->setPatience(20);
  {
    const detail::FileLock other(folder / ".app.plist.lock", 0);
    ASSERT_TRUE(other.isHeld());
    EXPECT_EQ(other.error(), 0);
    EXPECT_FALSE(defaults->synchronize());
    ASSERT_NE(defaults->lastSaveError(), nullptr);
    EXPECT_EQ(defaults->lastSaveError()->code(), EAGAIN);
  }
  EXPECT_TRUE(defaults->synchronize());
}

TEST_F(UserDefaultsFile, ReadsBinaryLists) {
  writeBytes(path, PropertyListSerialization::dataWithPropertyList(dict({{"a", 1}}),
                                                                   PropertyListFormat::binary)
                       ->view());
  EXPECT_EQ(open()->objectForKey("a"), 1);
}

TEST_F(UserDefaultsFile, TakesAnEmptyFileForNone) {
  writeBytes(path, "");
  const auto defaults = open();
  defaults->setObject(1, "a");
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_THAT(folder.names(), ElementsAre(".app.plist.lock", "app.plist"));
}

TEST_F(UserDefaultsFile, SavesNothingWithoutAPath) {
  path = "";
  const auto defaults = open();
  EXPECT_TRUE(defaults->synchronize());
  defaults->setObject(1, "a");
  EXPECT_EQ(defaults->objectForKey("a"), 1);
  EXPECT_FALSE(defaults->synchronize());
  ASSERT_NE(defaults->lastSaveError(), nullptr);
  EXPECT_EQ(defaults->lastSaveError()->code(), ENOENT);
}

TEST_F(UserDefaultsFile, ThreadsMayShareThem) {
  const auto defaults = open();
  constexpr int kEach = 200;
  std::atomic<int> failures = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kEach; ++i) {
        const std::string key = std::to_string(t) + "." + std::to_string(i % 10);
        defaults->setObject(i, key);
        failures += defaults->objectForKey(key) != i;
        if (i % 20 == 0) failures += !defaults->synchronize();
        (void)defaults->dictionaryRepresentation();
      }
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(failures, 0);
  const PropertyValue content = contentOf(path);
  for (int t = 0; t < 4; ++t) {
    for (int i = 0; i < 10; ++i) {
      const std::string key = std::to_string(t) + "." + std::to_string(i);
      EXPECT_EQ(content.as<Dictionary>()->objectForKey(key), kEach - 10 + i) << key;
    }
  }
}

// Two holders of one file, as two processes are.
TEST_F(UserDefaultsFile, ThreadsWithTheirOwnDefaultsLoseNothingOfEachOthers) {
  std::vector<std::thread> threads;
  std::atomic<int> failures = 0;
  for (int t = 0; t < 2; ++t) {
    threads.emplace_back([&, t] {
      const auto own = open();
      for (int i = 0; i < 100; ++i) {
        own->setObject(i, std::to_string(t) + "." + std::to_string(i % 7));
        failures += !own->synchronize();
      }
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(failures, 0);
  const auto content = contentOf(path).as<Dictionary>();
  EXPECT_EQ(content->count(), 14U);
  for (int t = 0; t < 2; ++t) {
    for (int i = 93; i < 100; ++i) {
      EXPECT_EQ(content->objectForKey(std::to_string(t) + "." + std::to_string(i % 7)), i);
    }
  }
}

TEST(StandardUserDefaults, StandInTheFolderForConfigurations) {
  const struct {
    const char* config;
    const char* home;
    const char* path;
  } rows[] = {
      {"/config", "/home/bob", "/config/app.plist"},
      {nullptr, "/home/bob", "/home/bob/.config/app.plist"},
      {"", "/home/bob", "/home/bob/.config/app.plist"},
      {"relative", "/home/bob", "/home/bob/.config/app.plist"},
  };
  for (const auto& row : rows) {
    const ScopedEnvironment config("XDG_CONFIG_HOME", row.config);
    const ScopedEnvironment home("HOME", row.home);
    EXPECT_EQ(detail::userDefaultsPath("app"), row.path);
    EXPECT_EQ(UserDefaults::pathForApplicationName("app")->utf8(), row.path);
  }
  const ScopedEnvironment config("XDG_CONFIG_HOME", nullptr);
  const ScopedEnvironment home("HOME", nullptr);
  const std::string path = detail::userDefaultsPath("app");
  EXPECT_TRUE(path.empty() || path.ends_with("/.config/app.plist")) << path;
}

TEST(StandardUserDefaults, AreOneObjectOfTheProcessNamedBeforeFirstUse) {
  const TemporaryFolder folder;
  const ScopedEnvironment config("XDG_CONFIG_HOME", folder.path().c_str());
  const detail::ReplacedUserDefaults none(nullptr);
  for (const char* bad : {"", "a/b", ".", ".."}) {
    EXPECT_THROW(UserDefaults::setApplicationName(bad), InvalidArgumentException) << bad;
    EXPECT_THROW((void)UserDefaults::pathForApplicationName(bad), InvalidArgumentException) << bad;
  }
  EXPECT_THROW(UserDefaults::setApplicationName(nullptr), InvalidArgumentException);
  EXPECT_THROW(UserDefaults::setApplicationName(std::string("a\0b", 3)), InvalidArgumentException);
  UserDefaults::setApplicationName("test app");
  const auto defaults = UserDefaults::standardUserDefaults();
  EXPECT_EQ(defaults.get(), UserDefaults::standardUserDefaults().get());
  EXPECT_THROW(UserDefaults::setApplicationName("late"), InternalInconsistencyException);
  defaults->setObject(1, "a");
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(contentOf(folder / "test app.plist"), dict({{"a", 1}}));
}

TEST(StandardUserDefaults, AnswerBySelector) {
  const TemporaryFolder folder;
  const PropertyValue defaults = make<FileUserDefaults>(folder / "app.plist");
  EXPECT_STREQ(defaults.cls()->name(), "NSUserDefaults");
  performSelector(defaults, "setObject:forKey:", 1, "a");
  performSelector(defaults, "registerDefaults:", dict({{"b", 2}}));
  EXPECT_EQ(performSelector(defaults, "objectForKey:", "b"), 2);
  EXPECT_EQ(performSelector(defaults, "dictionaryRepresentation"), dict({{"b", 2}, {"a", 1}}));
  performSelector(defaults, "removeObjectForKey:", "a");
  EXPECT_EQ(performSelector(defaults, "synchronize"), true);
  EXPECT_TRUE(performSelector(defaults, "objectForKey:", "a").isNil());
}

}  // namespace
}  // namespace qx

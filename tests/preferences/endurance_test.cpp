// What only many repetitions show: a writer killed at any moment, and two processes with one file.
// A fiftieth of the counts by default; scripts/endurance.sh runs them all.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <QXFoundation/QXFoundation.h>

#include "platform/file_calls.h"
#include "platform/file_user_defaults.h"
#include "platform/standard_user_defaults.h"
#include "tests/preferences/store_files.h"
#include "tests/support/memory_user_defaults.h"

namespace qx {
namespace {

int scaled(int count) {
  const char* whole = std::getenv("QXFOUNDATION_ENDURANCE");
  return whole != nullptr && whole == std::string("full") ? count : count / 50;
}

// A generation of settings: every value tells it, and the sum of what is there shows a torn file.
constexpr int kKeys = 200;

void writeGeneration(QXPreferences& store, int generation) {
  for (int i = 0; i < kKeys; ++i) {
    store.setInteger(generation, "group" + std::to_string(i % 10) + ".key" + std::to_string(i));
  }
}

// The generation that the file holds; -1 where it is no whole one.
int generationOf(const PropertyValue& content) {
  int found = 0;
  int generation = -1;
  const auto groups = content.as<Dictionary>();
  if (groups == nullptr) return -1;
  for (const auto& group : *groups) {
    const auto entries = group.value.as<Dictionary>();
    for (const auto& [key, value] : *entries) {
      if (found++ == 0) generation = value.intValue();
      if (value.intValue() != generation) return -1;
    }
  }
  return found == kKeys ? generation : -1;
}

void sleepMicroseconds(long microseconds) {
  const timespec time{microseconds / 1'000'000, microseconds % 1'000'000 * 1000};
  ::nanosleep(&time, nullptr);
}

// Writes generation after generation, telling of each that was saved, until it is killed.
[[noreturn]] void writeForEver(const std::string& path, int first, int told) {
  const auto store = QXPreferences::initWithPath(path);
  for (int generation = first;; ++generation) {
    writeGeneration(*store, generation);
    if (!store->synchronize()) ::_exit(1);
    if (::write(told, &generation, sizeof generation) != sizeof generation) ::_exit(2);
  }
}

// The last generation that the writer told to have saved.
int lastTold(int pipe) {
  int generation = -1;
  int next = 0;
  while (::read(pipe, &next, sizeof next) == sizeof next) generation = next;
  return generation;
}

bool hasUnnamedFiles(const std::string& folder) {
  return detail::OpenFile(folder.c_str(), O_TMPFILE | O_WRONLY, 0600).isOpen();
}

TEST(Endurance, AKilledWriterLeavesTheOldFileOrTheNew) {
  const test_support::WithMemoryUserDefaults memory;
  const StoreFiles files;
  const auto first = QXPreferences::initWithPath(files / "s.plist");
  writeGeneration(*first, 0);
  ASSERT_TRUE(first->synchronize());
  std::mt19937 random(1);
  int generation = 0;
  int advances = 0;
  unsigned window = 20'000;  // microseconds; on a busy machine the first save takes longer
  for (int kill = 0; kill < scaled(2000); ++kill) {
    int told[2];
    ASSERT_EQ(::pipe(told), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      ::close(told[0]);
      writeForEver(files / "s.plist", generation + 1, told[1]);
    }
    ::close(told[1]);
    sleepMicroseconds(static_cast<long>(random() % window));
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the writer ended by itself";
    const int saved = std::max(lastTold(told[0]), generation);
    ::close(told[0]);
    const int found = generationOf(files.read("s.plist"));
    // What was told to be saved is there; the one after it may be.
    ASSERT_GE(found, saved) << "after kill " << kill;
    ASSERT_LE(found, saved + 1) << "after kill " << kill;
    advances += found > generation;
    if (advances == 0) window = std::min(2 * window, 2'000'000U);
    generation = found;
  }
  EXPECT_GT(advances, 0) << "no writer came so far as to save";
  // Only a kill between naming the new content and renaming it leaves a name behind; where the file
  // system has no files without names, one at any moment of the writing.
  if (hasUnnamedFiles(files.path())) {
    EXPECT_LE(files.names().size(), 2U + static_cast<std::size_t>(scaled(2000) / 4));
  }
  const auto last = QXPreferences::initWithPath(files / "s.plist");
  writeGeneration(*last, 1);
  EXPECT_TRUE(last->synchronize());
}

constexpr int kSharedKeys = 500;

// As an application has them, but for the patience with others that hold the lock: on a busy
// machine one may not get on for many seconds.
Ref<UserDefaults> sharedDefaults(const std::string& path) {
  auto defaults = make<detail::FileUserDefaults>(path);
  defaults->setPatience(300'000);
  return defaults;
}

// A process of an application that keeps its settings in the user defaults.
int changeSharedDefaults(const std::string& path, int process, int changes) {
  const detail::ReplacedUserDefaults own(sharedDefaults(path));
  const auto store = QXPreferences::init();
  for (int i = 0; i < changes; ++i) {
    // One key for each setting: a dot would make them one entry.
    store->setInteger(i, "p" + std::to_string(process) + "k" + std::to_string(i % kSharedKeys));
    if (!store->synchronize()) return 1;
  }
  return 0;
}

TEST(Endurance, TwoProcessesLoseNothingOfEachOthersChanges) {
  const StoreFiles files;
  const int changes = scaled(2000);
  std::vector<pid_t> children;
  for (int process = 0; process < 2; ++process) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(changeSharedDefaults(files / "app.plist", process, changes));
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  const auto content = files.read("app.plist").as<Dictionary>();
  ASSERT_TRUE(content != nullptr);
  EXPECT_EQ(content->count(), static_cast<std::size_t>(2 * std::min(changes, kSharedKeys)));
  for (int process = 0; process < 2; ++process) {
    for (int i = std::max(0, changes - kSharedKeys); i < changes; ++i) {
      const std::string key = "p" + std::to_string(process) + "k" + std::to_string(i % kSharedKeys);
      EXPECT_EQ(content->objectForKey(key), i) << key;
    }
  }
}

// The same with a process that is killed again and again: the other's changes are all there, and of
// its own those that it told.
TEST(Endurance, AKilledProcessLosesNothingThatItSavedInSharedDefaults) {
  const StoreFiles files;
  const std::string path = files / "app.plist";
  std::mt19937 random(2);
  int saved = -1;
  const auto own = sharedDefaults(path);
  for (int kill = 0; kill < scaled(2000); ++kill) {
    int told[2];
    ASSERT_EQ(::pipe(told), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      ::close(told[0]);
      const auto theirs = sharedDefaults(path);
      for (int i = saved + 1;; ++i) {
        theirs->setObject(i, "theirs");
        if (!theirs->synchronize()) ::_exit(1);
        if (::write(told[1], &i, sizeof i) != sizeof i) ::_exit(2);
      }
    }
    ::close(told[1]);
    own->setObject(kill, "own");
    ASSERT_TRUE(own->synchronize());
    sleepMicroseconds(static_cast<long>(random() % 8'000));
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the other ended by itself";
    saved = std::max(saved, lastTold(told[0]));
    ::close(told[0]);
    const auto content = files.read("app.plist").as<Dictionary>();
    ASSERT_TRUE(content != nullptr);
    ASSERT_EQ(content->objectForKey("own"), kill);
    const PropertyValue theirs = content->objectForKey("theirs");
    if (saved >= 0) {
      ASSERT_GE(theirs.intValue(), saved);
      ASSERT_LE(theirs.intValue(), saved + 1);
      saved = theirs.intValue();
    }
  }
}

}  // namespace
}  // namespace qx

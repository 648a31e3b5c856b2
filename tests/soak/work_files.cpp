// Preferences, user defaults, locks, folders, names, attributes, tags and URLs, while the disk is
// full at times and other processes use the same files.

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/soak/soak.h"

namespace soak {
namespace {

void keepPreferences(Ground& ground, std::mt19937& random) {
  const std::string path = ground.folder + "/settings.plist";
  const int number = static_cast<int>(random() % 1'000'000);
  const DiskWatch watch(ground);
  int heard = 0;
  const auto store = qx::QXPreferences::initWithPath(path);
  {
    const auto observation = store->observe("ui.number", [&] { ++heard; });
    store->setInteger(number, "ui.number");
    store->setObject(qx::array(qx::dict({{"width", 1}}), "x"), "ui.frames");
    store->setInteger(number, "ui.frames[0].width");
  }
  store->setInteger(number, "ui.number");
  expect(heard == 1, "an observer was told too often, or not");
  const bool saved = store->synchronize();
  expect(saved || watch.wasFull(), "preferences were not saved, and nothing was in the way");
  // This thread alone writes the file: it is the new one or an older one, and whole.
  const auto again = qx::QXPreferences::initWithPath(path);
  if (saved)
    expect(again->integerForKeyPath("ui.number") == number, "saved preferences are others");
  expect(again->integerForKeyPath("ui.number") == again->integerForKeyPath("ui.frames[0].width"),
         "a torn file");
  expect(::access((path + ".damaged").c_str(), F_OK) != 0, "a file was taken for damaged");
}

void keepDefaults(Ground& ground, std::mt19937& random) {
  const auto defaults = qx::UserDefaults::standardUserDefaults();
  const int number = static_cast<int>(random() % 1'000'000);
  const DiskWatch watch(ground);
  defaults->setObject(number, "soak");
  const bool saved = defaults->synchronize();
  expect(saved || watch.wasFull(), "defaults were not saved, and nothing was in the way");
  expect(defaults->get<int>("soak") == number, "defaults are others");
}

// Between taking and giving up the lock, nobody else writes the file, process or thread.
void lockFile(Ground& ground, std::mt19937& random) {
  const std::string path = ground.folder + "/shared.txt";
  const DiskWatch watch(ground);
  qx::Ref<qx::Error> error;
  auto lock = qx::QXFileLock::lock(path, &error);
  expect(error == nullptr || watch.wasFull(),
         "a lock was not to be had, and nothing was in the way");
  if (!lock.isHeld()) return;
  const std::string mark = std::to_string(random());
  const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
  expect(file >= 0 && ::write(file, mark.data(), mark.size()) == static_cast<ssize_t>(mark.size()),
         "no mark was made");
  ::usleep(static_cast<useconds_t>(random() % 2000));
  char bytes[32];
  const ssize_t count = ::pread(file, bytes, sizeof bytes, 0);
  ::close(file);
  expect(count >= 0 && mark == std::string_view(bytes, static_cast<std::size_t>(count)),
         "two held one lock");
  expect(lock.unlock(&error), "a lock was not given up");
}

// The locks of which the last writer wins, each on a file of its own.
void lockLoosely(Ground& ground, std::mt19937& random) {
  const auto files = qx::FileManager::defaultManager();
  const std::string path = ground.folder + "/loose/" + std::to_string(random() % 4) + "/file.txt";
  const DiskWatch watch(ground);
  bool created = false;
  qx::Ref<qx::Error> error;
  const auto record = lockFileAtPath(files, path, random() % 2 == 0, created, &error);
  if (!created) {
    expect(watch.wasFull(), "a lock that nobody holds was not made");
    return;
  }
  expect(holderOfLockRecord(record) == qx::LockHolder::alive, "this process is gone");
  unlockFileAtPath(files, path);
  expect(lockRecordForPath(files, path) == nullptr, "a lock stayed");
}

void useFolders(Ground& ground, std::mt19937& random) {
  const auto files = qx::FileManager::defaultManager();
  const std::string top = ground.folder + "/top" + std::to_string(random());
  expect(createPathToFile(files, top + "/a/b/file.txt", nullptr), "folders were not made");
  expect(tempFilenameFromTemplate(files, top + "/@@.txt", "@@")->utf8() == top + "/1.txt",
         "another name is free");
  expect(files->removeItemAtPath(top), "folders were not removed");
  expect(files->fileExistsAtPath(scratchDirectoryPath(files)), "there is no scratch folder");
  expect(qx::QXUniqueMachineIdentifier()->length() > 0, "this machine is nobody");
  const auto page = qx::URL::URLWithString("http://example.com/p?a=1&b=%41#top");
  expect(URLByAppendingQueryParameters(page, qx::dict({{"a", "x y"}}))->text() ==
             "http://example.com/p?b=%41&a=x%20y#top",
         "a query is another");
}

void markFile(Ground& ground, std::mt19937& random) {
  if (!ground.hasAttributes) return;
  const std::string path = ground.folder + "/marked.txt";
  const auto file = qx::URL::fileURLWithPath(path);
  qx::Ref<qx::Error> error;
  const auto value = qx::array("draft", static_cast<int>(random() % 100));
  expect(setExtendedAttributeValue(file, value, "soak.state", &error), "an attribute was not set");
  expect(valueOfExtendedAttributeWithName(file, "soak.state", &error) == qx::PropertyValue(value),
         "an attribute is another");
  expect(removeExtendedAttributeWithName(file, "soak.state", &error),
         "an attribute was not removed");
  const auto tag =
      qx::QXColorTag::colorTagWithName("Work", static_cast<std::int32_t>(random() % 8));
  expect(setColorTags(file, qx::array(tag), &error), "tags were not set");
  expect(colorTagsWithError(file, &error)->objectAtIndex(0) == qx::PropertyValue(tag),
         "tags are others");
}

}  // namespace

std::vector<Work> workOnFiles() {
  return {{"keep preferences", keepPreferences},
          {"keep defaults", keepDefaults},
          {"lock a file", lockFile},
          {"lock a file too", lockFile},
          {"lock loosely", lockLoosely},
          {"use folders", useFolders},
          {"mark a file", markFile}};
}

void runPeer(const std::string& folder) {
  // Where the soak itself is killed, its peer does not stay behind.
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  std::mt19937 random(static_cast<unsigned>(::getpid()));
  for (;;) {
    qx::Ref<qx::Error> error;
    {
      auto lock = qx::QXFileLock::lock(folder + "/shared.txt", &error);
      if (lock.isHeld()) {
        const int file =
            ::open((folder + "/shared.txt").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        (void)!::write(file, "peer", 4);
        ::close(file);
      }
    }
    const auto defaults = qx::UserDefaults::standardUserDefaults();
    defaults->setObject(static_cast<int>(random() % 100), "peer" + std::to_string(random() % 20));
    (void)defaults->synchronize();
  }
}

}  // namespace soak

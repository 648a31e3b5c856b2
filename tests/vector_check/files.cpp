// machine_id, interface_addresses, lock_..., unlock_check, temp_...

#include <cerrno>
#include <filesystem>
#include <set>

#include "tests/support/fake_machine.h"
#include "tests/support/rooted_file_calls.h"
#include "tests/support/temporary_folder.h"
#include "tests/vector_check/driver.h"

namespace vector_check {

using namespace qx;

namespace {

std::string bytesOfHex(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

void setInterfaces(test_support::FakeMachineSystem& system, const json& args) {
  for (const json& entry : args.at("interfaces")) {
    system.interfaces.push_back(
        {entry[0].get<std::string>(), bytesOfHex(entry[1].get<std::string>())});
  }
}

Outcome machineId(const json& args, const json& expect) {
  test_support::FakeMachineSystem system;
  const test_support::FreshIdentity fresh;
  setInterfaces(system, args);
  return compare(expect, QXUniqueMachineIdentifier()->utf8());
}

Outcome interfaceAddresses(const json& args, const json& expect) {
  test_support::FakeMachineSystem system;
  test_support::FreshIdentity fresh;
  setInterfaces(system, args);
  return compare(expect, plainJson(fresh.identity.interfaceAddresses()));
}

// ---- locks

int errorNamed(const std::string& name) {
  if (name == "success") return 0;
  if (name == "ESRCH") return ESRCH;
  if (name == "EPERM") return EPERM;
  return EINVAL;
}

// The lock file of a case, in a folder that stands for the root.
class LockPlace {
 public:
  LockPlace(const std::string& path, const json& existing) {
    const std::string lock = lockFilePathForPath(FileManager::defaultManager(), path)->utf8();
    const auto state = existing.at("state").get<std::string>();
    if (state == "absent") return;
    const std::filesystem::path file = folder_.path() + "/" + lock;
    std::filesystem::create_directories(file.parent_path());
    test_support::writeBytes(file.string(),
                             state == "record" ? bytesOf(existing.at("record")) : "garbage");
  }

 private:
  static std::string bytesOf(const json& record) {
    return std::string(
        PropertyListSerialization::dataWithPropertyList(plainValue(record), PropertyListFormat::xml)
            ->view());
  }
  test_support::TemporaryFolder folder_;

 public:
  test_support::RootedFileCalls calls{folder_.path()};
};

Outcome lockDecision(const json& args, const json& expect) {
  const json& self = args.at("self");
  test_support::FakeIdentity identity(self.at("hostIdentifier").get<std::string>(),
                                      self.at("hostName").get<std::string>());
  test_support::FakeProcesses processes;
  processes.answer = errorNamed(args.at("kill").get<std::string>());
  const LockPlace place("/data/file", args.at("existing"));
  bool created = true;
  const auto record = lockFileAtPath(FileManager::defaultManager(), "/data/file",
                                     args.at("override").get<bool>(), created);
  json actual;
  actual["outcome"] = created ? "proceed" : "held";
  actual["created"] = created;
  const bool isNew = created && record->objectForKey("processNumber") == processes.own;
  actual["returns"] = isNew ? json("new") : plainJson(record);
  actual["kill_pid"] = processes.probed.empty() ? json() : json(processes.probed.front());
  return compare(expect, actual);
}

Outcome unlockCheck(const json& args, const json& expect) {
  const json& self = args.at("self");
  test_support::FakeIdentity identity("id", self.at("hostName").get<std::string>());
  test_support::FakeUser user(self.at("userName").get<std::string>());
  test_support::FakeProcesses processes;
  processes.own = self.at("pid").get<pid_t>();
  const auto path = args.at("path").get<std::string>();
  LockPlace place(path, args.at("existing"));
  place.calls.removes = args.at("remove_ok").get<bool>();
  const auto files = FileManager::defaultManager();
  unlockFileAtPath(files, path);
  return compare(expect, {{"removed", !files->fileExistsAtPath(path + ".lock")}});
}

Outcome lockPath(const json& args, const json& expect) {
  return compare(
      expect, lockFilePathForPath(FileManager::defaultManager(), args.at("path").get<std::string>())
                  ->utf8());
}

// ---- temporary names

// Knows of the files that a case names, and of no others.
class ListedFiles : public FileManager {
 public:
  explicit ListedFiles(const json& names) {
    for (const json& name : names) names_.insert(name.get<std::string>());
  }
  using FileManager::fileExistsAtPath;
  bool fileExistsAtPath(StringArg path) const override { return names_.contains(path.utf8()); }

 private:
  std::set<std::string> names_;
};

void describe(ClassBuilder<ListedFiles>& c) { c.name("ListedFiles").inherits<FileManager>(); }

// Runs find(files, template).
template <class Find>
Outcome foundName(const json& args, const json& expect, Find find) {
  const auto files = make<ListedFiles>(args.at("existing"));
  return compare(expect, find(files, args.at("template").get<std::string>())->utf8());
}

using Files = const Ref<ListedFiles>&;
using Text = const std::string&;

Outcome tempRange(const json& args, const json& expect) {
  const Range range{args.at("location").get<std::size_t>(), args.at("length").get<std::size_t>()};
  return foundName(args, expect,
                   [&](Files files, Text t) { return tempFilenameFromTemplate(files, t, range); });
}
Outcome tempPosition(const json& args, const json& expect) {
  const auto position = args.at("position").get<std::int32_t>();
  return foundName(args, expect, [&](Files files, Text t) {
    return tempFilenameFromTemplate(files, t, position);
  });
}
Outcome tempSubstring(const json& args, const json& expect) {
  const auto substring = args.at("substring").get<std::string>();
  return foundName(args, expect, [&](Files files, Text t) {
    return tempFilenameFromTemplate(files, t, substring);
  });
}
Outcome tempHashes(const json& args, const json& expect) {
  return foundName(args, expect,
                   [](Files files, Text t) { return tempFilenameFromHashesTemplate(files, t); });
}

}  // namespace

void addFileOperations(Operations& operations) {
  operations["machine_id"] = machineId;
  operations["interface_addresses"] = interfaceAddresses;
  operations["lock_decision"] = lockDecision;
  operations["unlock_check"] = unlockCheck;
  operations["lock_path"] = lockPath;
  operations["temp_range"] = tempRange;
  operations["temp_position"] = tempPosition;
  operations["temp_substring"] = tempSubstring;
  operations["temp_hashes"] = tempHashes;
}

}  // namespace vector_check

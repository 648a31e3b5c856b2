// Arbitrary bytes as a lock file: they are judged without asking the system for what is no process,
// and a record that is written again is judged as before.

#include "files/lock_record.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/processes.h"
#include "tests/support/fake_machine.h"

namespace {

// Every process is gone, so that holders whose numbers are asked for count as gone.
class NobodyLives : public qx::detail::Processes {
 public:
  pid_t current() override { return 100; }
  int probe(pid_t process) override {
    if (process <= 0) std::abort();  // a number that would mean a group of processes
    return ESRCH;
  }

 private:
  qx::detail::ReplacedProcesses replaced_{*this};
};

bool hasText(const qx::Dictionary& record, const char* key, const char* text) {
  const qx::PropertyValue value = record.objectForKey(key);
  return value.isString() && value.as<qx::String>()->utf8() == text;
}

void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static NobodyLives processes;
  static test_support::FakeIdentity identity("00:1a:2b:3c:4d:5e", "alpha");
  static test_support::FakeUser user("ann");
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto record = qx::detail::lockRecordFrom(bytes);
  const auto holder = qx::holderOfLockRecord(record);
  require(holder != qx::LockHolder::alive);
  if (record == nullptr) {
    require(holder == qx::LockHolder::unknown);
    return 0;
  }
  const bool namesMachine = hasText(*record, "hostIdentifier", "00:1a:2b:3c:4d:5e") ||
                            hasText(*record, "hostName", "alpha");
  require(holder != qx::LockHolder::gone || namesMachine);
  const bool isOwn = qx::detail::isOwnLockRecord(*record);
  // What is written again is judged as before. A binary list may have texts that XML has not.
  std::string again;
  if (!qx::detail::lockFileBytes(*record, again)) return 0;
  const auto second = qx::detail::lockRecordFrom(again);
  require(second != nullptr && second->count() == record->count());
  require(qx::holderOfLockRecord(second) == holder);
  require(qx::detail::isOwnLockRecord(*second) == isOwn);
  return 0;
}

#pragma once

// A machine, a user and processes that a test makes up.

#include <cerrno>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QXFoundation/string.h>

#include "files/machine_identity.h"
#include "platform/machine_system.h"
#include "platform/processes.h"
#include "platform/user_accounts.h"

namespace test_support {

// Each stands in for the system's while it lives.

class FakeMachineSystem : public qx::detail::MachineSystem {
 public:
  std::vector<qx::detail::NetworkInterface> interfaces;
  std::string hostName = "host";
  int socketError = 0;
  int listError = 0;
  int nameError = 0;
  int opened = 0;
  int closed = 0;
  int listed = 0;
  int namesAsked = 0;

  int openDatagramSocket() override {
    errno = socketError;
    if (socketError != 0) return -1;
    ++opened;
    return 77;
  }
  void closeSocket(int socket) override {
    if (socket == 77) ++closed;
    errno = 0;
  }
  int listInterfaces(int, std::vector<qx::detail::NetworkInterface>& list) override {
    ++listed;
    if (listError == 0) list = interfaces;
    return listError;
  }
  int gethostname(char* name, std::size_t size) override {
    ++namesAsked;
    if (nameError != 0) {
      errno = nameError;
      return -1;
    }
    std::strncpy(name, hostName.c_str(), size);
    return 0;
  }

 private:
  qx::detail::ReplacedMachineSystem replaced_{*this};
};

// Nothing learnt yet.
class FreshIdentity {
 public:
  qx::detail::MachineIdentity identity;

 private:
  qx::detail::ReplacedMachineIdentity replaced_{identity};
};

class FakeIdentity : public qx::detail::MachineIdentity {
 public:
  explicit FakeIdentity(std::string identifier, std::optional<std::string> hostName)
      : identifier_(std::move(identifier)), hostName_(std::move(hostName)) {}
  qx::Ref<qx::String> identifier() override { return qx::String::from(identifier_); }
  qx::Ref<qx::String> hostName() override {
    ++namesAsked;
    return hostName_ ? qx::String::from(*hostName_) : nullptr;
  }
  int namesAsked = 0;

 private:
  std::string identifier_;
  std::optional<std::string> hostName_;
  qx::detail::ReplacedMachineIdentity replaced_{*this};
};

class FakeProcesses : public qx::detail::Processes {
 public:
  pid_t own = 4711;
  int answer = 0;  // of every probe
  std::vector<pid_t> probed;

  pid_t current() override { return own; }
  int probe(pid_t process) override {
    probed.push_back(process);
    return answer;
  }

 private:
  qx::detail::ReplacedProcesses replaced_{*this};
};

class FakeUser : public qx::detail::UserAccounts {
 public:
  explicit FakeUser(std::string name, std::string home = "/home/nobody")
      : account_{std::move(name), std::move(home)} {}
  const qx::detail::UserAccount& current() override { return account_; }
  std::optional<qx::detail::UserAccount> named(const std::string& name) override {
    const auto found = others.find(name);
    if (found == others.end()) return std::nullopt;
    return qx::detail::UserAccount{name, found->second};
  }
  std::map<std::string, std::string> others;  // homes by name

 private:
  qx::detail::UserAccount account_;
  qx::detail::ReplacedUserAccounts replaced_{*this};
};

}  // namespace test_support

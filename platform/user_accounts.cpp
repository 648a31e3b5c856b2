#include "platform/user_accounts.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>
#include <vector>

namespace qx::detail {
namespace {

// `ask(entry, room, size, found)` is one of the system's two ways to look an account up.
template <class Ask>
std::optional<UserAccount> accountBy(Ask ask) {
  passwd entry{};
  passwd* found = nullptr;
  std::vector<char> room(1024);
  while (ask(&entry, room.data(), room.size(), &found) == ERANGE) room.resize(room.size() * 2);
  if (found == nullptr || found->pw_name == nullptr) return std::nullopt;
  return UserAccount{found->pw_name, found->pw_dir != nullptr ? found->pw_dir : ""};
}

}  // namespace

UserAccounts::~UserAccounts() {
  const Known* known = known_.load(std::memory_order_acquire);
  while (known != nullptr) delete std::exchange(known, known->before);
}

const UserAccount& UserAccounts::current() {
  const uid_t user = ::getuid();
  const Known* first = known_.load(std::memory_order_acquire);
  for (const Known* known = first; known != nullptr; known = known->before) {
    if (known->user == user) return known->account;
  }
  auto account = accountBy([user](passwd* entry, char* room, std::size_t size, passwd** found) {
    return ::getpwuid_r(user, entry, room, size, found);
  });
  auto* known =
      new Known{user, account ? *std::move(account) : UserAccount{std::to_string(user), ""}, first};
  while (!known_.compare_exchange_weak(known->before, known, std::memory_order_acq_rel)) {
  }
  return known->account;
}

std::optional<UserAccount> UserAccounts::named(const std::string& name) {
  return accountBy([&name](passwd* entry, char* room, std::size_t size, passwd** found) {
    return ::getpwnam_r(name.c_str(), entry, room, size, found);
  });
}

std::string homeFolder() {
  if (const char* home = std::getenv("HOME"); home != nullptr && home[0] == '/') return home;
  return userAccounts().current().home;
}

}  // namespace qx::detail

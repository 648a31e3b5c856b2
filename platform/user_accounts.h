#pragma once

// The accounts of users, in one place that tests can replace.

#include <sys/types.h>

#include <atomic>
#include <optional>
#include <string>

#include "platform/replaceable.h"

namespace qx::detail {

struct UserAccount {
  std::string name;
  std::string home;  // a folder's path
};

class UserAccounts {
 public:
  UserAccounts() = default;
  UserAccounts(const UserAccounts&) = delete;
  UserAccounts& operator=(const UserAccounts&) = delete;
  virtual ~UserAccounts();

  // The account of the process's (real) user. A user without an account is called by the number.
  // Asked of the system once for each user that the process becomes.
  virtual const UserAccount& current();
  virtual std::optional<UserAccount> named(const std::string& name);

 private:
  // The accounts that were asked for, a list. Not freed before the end: others may be reading.
  struct Known {
    uid_t user;
    UserAccount account;
    const Known* before;
  };
  std::atomic<const Known*> known_{nullptr};
};

inline UserAccounts& userAccounts() { return Replaceable<UserAccounts>::inUse(); }
using ReplacedUserAccounts = Replaceable<UserAccounts>::Replacement;

// `$HOME` where that is an absolute path, else what the user's account says. Empty where neither is
// known.
std::string homeFolder();

}  // namespace qx::detail

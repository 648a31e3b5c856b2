// Users, processes and interfaces as this machine has them.

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <thread>

#include <QXFoundation/localized_text.h>
#include <QXFoundation/path.h>

#include "platform/machine_system.h"
#include "platform/processes.h"
#include "platform/user_accounts.h"
#include "tests/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

TEST(UserAccounts, NameTheProcessesUser) {
  const passwd* entry = ::getpwuid(::getuid());
  if (entry == nullptr) GTEST_SKIP() << "this user has no account";
  const std::string name = entry->pw_name;
  EXPECT_EQ(NSUserName()->utf8(), name);
  EXPECT_EQ(detail::userAccounts().current().home, entry->pw_dir);
  EXPECT_EQ(detail::userAccounts().named(name)->home, entry->pw_dir);
  EXPECT_FALSE(detail::userAccounts().named("no such user at all").has_value());
}

TEST(UserAccounts, FollowAProcessThatBecomesAnother) {
  if (::getuid() != 0) GTEST_SKIP() << "only a privileged process can give its rights up";
  test_support::ChildProcess child([] {
    const std::string before = NSUserName()->utf8();
    if (::setresuid(1234567, 1234567, 0) != 0) return 10;
    if (NSUserName()->utf8() != "1234567") return 11;
    if (::setresuid(0, 0, 0) != 0) return 12;
    return NSUserName()->utf8() == before ? 0 : 13;
  });
  EXPECT_EQ(child.wait(), 0);
}

TEST(UserAccountThreads, AskAtOnce) {
  detail::UserAccounts accounts;
  std::vector<std::string> seen(8);
  std::vector<std::thread> threads;
  for (auto& name : seen) threads.emplace_back([&] { name = accounts.current().name; });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(std::count(seen.begin(), seen.end(), seen[0]), 8);
}

TEST(Processes, AreProbed) {
  EXPECT_EQ(detail::processes().current(), ::getpid());
  EXPECT_EQ(detail::processes().probe(::getpid()), 0);
  EXPECT_EQ(detail::processes().probe(test_support::endedProcess()), ESRCH);
}

// The kernel's own list of interfaces and addresses.
TEST(MachineSystem, ListsTheInterfacesOfThisMachine) {
  std::vector<detail::NetworkInterface> interfaces;
  detail::MachineSystem system;
  const int socket = system.openDatagramSocket();
  ASSERT_GE(socket, 0);
  ASSERT_EQ(system.listInterfaces(socket, interfaces), 0);
  system.closeSocket(socket);
  EXPECT_LT(::write(socket, "", 1), 0);
  std::size_t known = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/sys/class/net")) {
    const std::string name = entry.path().filename().string();
    if (!std::filesystem::is_directory(entry.path())) continue;
    const auto found = std::find_if(interfaces.begin(), interfaces.end(),
                                    [&](const auto& i) { return i.name == name; });
    ASSERT_NE(found, interfaces.end()) << name;
    ++known;
    std::string text = test_support::readBytes((entry.path() / "address").string());
    while (!text.empty() && text.back() == '\n') text.pop_back();
    const bool isZero = text.find_first_not_of("0:") == std::string::npos;
    const bool isLoopback =
        (std::stoi(test_support::readBytes((entry.path() / "flags").string()), nullptr, 16) & 8) !=
        0;
    EXPECT_EQ(found->address.size(), isZero || isLoopback ? 0 : (text.size() + 1) / 3) << name;
  }
  EXPECT_EQ(interfaces.size(), known);
}

TEST(LocalizedText, IsTranslatedWhereAFunctionIsInstalled) {
  EXPECT_EQ(localizedText("x"), "x");
  setTranslation([](const std::string& text) { return "<" + text + ">"; });
  EXPECT_EQ(localizedText("x"), "<x>");
  setTranslation(nullptr);
  EXPECT_EQ(localizedText("x"), "x");
}

}  // namespace
}  // namespace qx

// The identifier and the name of the machine, on machines that are made up and on this one.

#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>
#include <vector>

#include <QXFoundation/exception.h>
#include <QXFoundation/machine_identity.h>

#include "tests/frame/raises.h"
#include "tests/support/fake_machine.h"

namespace qx {
namespace {

using test_support::FakeMachineSystem;
using test_support::FreshIdentity;

std::string bytes(std::initializer_list<int> list) {
  std::string out;
  for (const int byte : list) out += static_cast<char>(byte);
  return out;
}

const std::string kMac = bytes({0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e});

struct IdentityCase {
  const char* name;
  std::vector<detail::NetworkInterface> interfaces;
  std::string identifier;
};

class Identifier : public testing::TestWithParam<IdentityCase> {};

TEST_P(Identifier, IsChosenByName) {
  FakeMachineSystem system;
  const FreshIdentity fresh;
  system.interfaces = GetParam().interfaces;
  EXPECT_EQ(QXUniqueMachineIdentifier()->utf8(), GetParam().identifier);
  EXPECT_EQ(QXUniqueMachineIdentifier()->utf8(), GetParam().identifier);
  EXPECT_EQ(system.listed, 1);
  EXPECT_EQ(system.opened, 1);
  EXPECT_EQ(system.closed, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Identifier,
    testing::Values(
        IdentityCase{"none", {}, kNoUniqueMachineIdentifier},
        IdentityCase{"loopback_and_tunnels",
                     {{"lo", ""}, {"tun0", ""}, {"tun1", ""}},
                     "no unique machine identifier found"},
        IdentityCase{"digits", {{"eth0", kMac}}, "00:1a:2b:3c:4d:5e"},
        IdentityCase{"one_byte", {{"x", bytes({0xff})}}, "ff"},
        IdentityCase{"first_by_name",
                     {{"en1", bytes({1})}, {"en0", bytes({2})}, {"bridge0", bytes({3})}},
                     "03"},
        IdentityCase{"case_counts", {{"a", bytes({1})}, {"B", bytes({2})}}, "02"},
        IdentityCase{"zen0_wins", {{"a", bytes({1})}, {"zen0", bytes({0xab, 2})}}, "ab:02"},
        IdentityCase{
            "other_zen", {{"zen1", bytes({1})}, {"Zen0", bytes({2})}, {"en0", bytes({3})}}, "02"},
        IdentityCase{"zen0_without_address", {{"zen0", ""}, {"b", bytes({9})}}, "09"},
        IdentityCase{"without_address_is_passed_over", {{"a", ""}, {"b", bytes({9})}}, "09"},
        IdentityCase{"the_later_of_a_name", {{"a", bytes({1})}, {"a", bytes({2})}}, "02"},
        IdentityCase{"an_empty_one_replaces_nothing", {{"a", bytes({1})}, {"a", ""}}, "01"},
        IdentityCase{"sixteen_characters",
                     {{"abcdefghijklmnop", bytes({1})}, {"abcdefghijklmno", bytes({2})}},
                     "02"},
        IdentityCase{"cut_at_sixteen",
                     {{"abcdefghijklmnopqrst", bytes({1})}, {"abcdefghijklmnop", bytes({2})}},
                     "02"},
        IdentityCase{"cut_at_nul", {{std::string("b\0x", 3), bytes({1})}, {"c", bytes({2})}}, "01"},
        IdentityCase{"not_ascii", {{"\xC3\xA4", bytes({1})}, {"b", bytes({2})}}, "02"},
        IdentityCase{"twenty_bytes",
                     {{"ib0", std::string(20, '\x80')}},
                     "80:80:80:80:80:80:80:80:80:80:80:80:80:80:80:80:80:80:80:80"}),
    [](const auto& c) { return c.param.name; });

TEST(MachineIdentity, KeepsWholeNamesOfSixteenCharacters) {
  FakeMachineSystem system;
  FreshIdentity fresh;
  system.interfaces = {{"abcdefghijklmnopq", bytes({1})}, {"en0", bytes({2, 3})}};
  EXPECT_TRUE(PropertyValue(fresh.identity.interfaceAddresses()) ==
              PropertyValue(dict({{"abcdefghijklmnop", "01"}, {"en0", "02:03"}})));
}

TEST(MachineIdentity, AnEmptyAddressInTheTableIsPassedOver) {
  EXPECT_EQ(detail::identifierAmong(*dict({{"zen0", ""}, {"a", ""}, {"b", "x"}}))->utf8(), "x");
  EXPECT_EQ(detail::identifierAmong(*dict({{"zen0", ""}}))->utf8(), kNoUniqueMachineIdentifier);
}

TEST(MachineIdentity, NeverChangesOnceItWasLearnt) {
  FakeMachineSystem system;
  const FreshIdentity fresh;
  EXPECT_EQ(QXUniqueMachineIdentifier()->utf8(), kNoUniqueMachineIdentifier);
  system.interfaces = {{"zen0", kMac}};
  EXPECT_EQ(QXUniqueMachineIdentifier()->utf8(), kNoUniqueMachineIdentifier);
  EXPECT_EQ(system.listed, 1);
}

TEST(MachineIdentity, RaisesWithoutASocketAndAsksAgain) {
  FakeMachineSystem system;
  const FreshIdentity fresh;
  system.interfaces = {{"en0", kMac}};
  system.socketError = 24;
  EXPECT_EQ(reasonOf<GenericException>([] { (void)QXUniqueMachineIdentifier(); }),
            "Unable to create temporary socket, errno = 24");
  EXPECT_EQ(system.closed, 0);
  system.socketError = 0;
  EXPECT_EQ(QXUniqueMachineIdentifier()->utf8(), "00:1a:2b:3c:4d:5e");
}

TEST(MachineIdentity, RaisesWithoutAListAndClosesTheSocketFirst) {
  FakeMachineSystem system;
  const FreshIdentity fresh;
  system.interfaces = {{"en0", kMac}};
  system.listError = 105;
  EXPECT_EQ(reasonOf<GenericException>([] { (void)QXUniqueMachineIdentifier(); }),
            "Unable to get list of network interfaces, errno = 105");
  EXPECT_EQ(system.closed, 1);
  system.listError = 0;
  EXPECT_EQ(QXUniqueMachineIdentifier()->utf8(), "00:1a:2b:3c:4d:5e");
}

TEST(HostName, IsAskedForOnce) {
  FakeMachineSystem system;
  const FreshIdentity fresh;
  system.hostName = "workshop.local";
  EXPECT_EQ(QXHostName()->utf8(), "workshop.local");
  system.hostName = "other";
  EXPECT_EQ(QXHostName()->utf8(), "workshop.local");
  EXPECT_EQ(system.namesAsked, 1);
}

TEST(HostName, IsLocalhostForGoodWhereTheSystemFails) {
  FakeMachineSystem system;
  const FreshIdentity fresh;
  system.nameError = 36;
  EXPECT_EQ(QXHostName()->utf8(), "localhost");
  system.nameError = 0;
  EXPECT_EQ(QXHostName()->utf8(), "localhost");
}

TEST(HostName, IsNotKeptWhereItIsNotAscii) {
  FakeMachineSystem system;
  const FreshIdentity fresh;
  system.hostName = "h\xC3\xB6hle";
  EXPECT_TRUE(QXHostName() == nullptr);
  EXPECT_TRUE(QXHostName() == nullptr);
  system.hostName = "cave";
  EXPECT_EQ(QXHostName()->utf8(), "cave");
  EXPECT_EQ(system.namesAsked, 3);
}

TEST(HostName, IsCutAt256Bytes) {
  FakeMachineSystem system;
  const FreshIdentity fresh;
  system.hostName = std::string(300, 'h');
  EXPECT_EQ(QXHostName()->utf8(), std::string(256, 'h'));
}

TEST(HostName, MayBeEmpty) {
  FakeMachineSystem system;
  const FreshIdentity fresh;
  system.hostName = "";
  EXPECT_EQ(QXHostName()->utf8(), "");
  EXPECT_EQ(QXHostName()->utf8(), "");
  EXPECT_EQ(system.namesAsked, 1);
}

TEST(MachineIdentity, OfThisMachineIsWhatTheSystemSays) {
  const FreshIdentity fresh;
  char name[300] = "";
  ASSERT_EQ(::gethostname(name, sizeof name - 1), 0);
  EXPECT_EQ(QXHostName()->utf8(), name);
  const std::string identifier = QXUniqueMachineIdentifier()->utf8();
  std::vector<detail::NetworkInterface> interfaces;
  ASSERT_EQ(detail::machineSystem().listInterfaces(-1, interfaces), 0);
  bool anyAddress = false;
  for (const auto& i : interfaces) anyAddress = anyAddress || !i.address.empty();
  EXPECT_EQ(identifier != kNoUniqueMachineIdentifier, anyAddress);
  EXPECT_TRUE(isSame(PropertyValue(QXUniqueMachineIdentifier()),
                     PropertyValue(QXUniqueMachineIdentifier())));
}

TEST(MachineIdentityThreads, LearnTheSame) {
  FakeMachineSystem system;
  const FreshIdentity fresh;
  system.interfaces = {{"en0", kMac}};
  std::vector<std::string> seen(16);
  std::vector<std::thread> threads;
  const auto ask = [](std::string& result) {
    result = QXUniqueMachineIdentifier()->utf8() + " " + QXHostName()->utf8();
  };
  // The fake counts without locks, so that one thread asks first.
  ask(seen[0]);
  for (auto& result : seen) threads.emplace_back([&] { ask(result); });
  for (auto& thread : threads) thread.join();
  for (const auto& result : seen) EXPECT_EQ(result, "00:1a:2b:3c:4d:5e host");
}

TEST(MachineIdentityThreads, MayAskForTheFirstTimeAtOnce) {
  const FreshIdentity fresh;
  std::vector<std::string> seen(16);
  std::vector<std::thread> threads;
  for (auto& result : seen) {
    threads.emplace_back(
        [&] { result = QXUniqueMachineIdentifier()->utf8() + " " + QXHostName()->utf8(); });
  }
  for (auto& thread : threads) thread.join();
  for (const auto& result : seen) EXPECT_EQ(result, seen[0]);
}

}  // namespace
}  // namespace qx

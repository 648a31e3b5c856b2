#include "platform/machine_system.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netpacket/packet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

namespace qx::detail {
namespace {

// The bytes lie behind the structure's fixed part. Some kinds of link have more of them than its
// field names; the C library leaves room for those.
std::string addressOf(const ifaddrs& entry) {
  sockaddr_ll link{};
  std::memcpy(&link, entry.ifa_addr, sizeof link);
  const char* bytes =
      reinterpret_cast<const char*>(entry.ifa_addr) + offsetof(sockaddr_ll, sll_addr);
  std::string address(bytes, link.sll_halen);
  const bool isZero = address.find_first_not_of('\0') == std::string::npos;
  return (entry.ifa_flags & IFF_LOOPBACK) != 0 || isZero ? std::string() : address;
}

}  // namespace

int MachineSystem::openDatagramSocket() { return ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0); }

void MachineSystem::closeSocket(int socket) { ::close(socket); }

// The system's list is asked for without the socket, which stands for the right to ask.
int MachineSystem::listInterfaces(int, std::vector<NetworkInterface>& interfaces) {
  ifaddrs* first = nullptr;
  if (::getifaddrs(&first) != 0) return errno;
  const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> held(first, &::freeifaddrs);
  for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
    if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_PACKET) continue;
    interfaces.push_back({entry->ifa_name, addressOf(*entry)});
  }
  return 0;
}

int MachineSystem::gethostname(char* name, std::size_t size) { return ::gethostname(name, size); }

}  // namespace qx::detail

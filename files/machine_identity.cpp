#include "files/machine_identity.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include <QXFoundation/exception.h>
#include <QXFoundation/machine_identity.h>

#include "frame/text_span.h"
#include "platform/machine_system.h"

namespace qx {
namespace detail {
namespace {

constexpr char kPreferred[] = "zen0";
constexpr std::size_t kLongestInterfaceName = 16;
constexpr std::size_t kLongestHostName = 256;

bool isAsciiText(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return isAscii(static_cast<unsigned char>(c)); });
}

std::string addressText(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (!text.empty()) text += ':';
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

class DatagramSocket {
 public:
  DatagramSocket() : socket_(machineSystem().openDatagramSocket()) {
    if (socket_ < 0) {
      throw GenericException("Unable to create temporary socket, errno = " + std::to_string(errno));
    }
  }
  DatagramSocket(const DatagramSocket&) = delete;
  DatagramSocket& operator=(const DatagramSocket&) = delete;
  ~DatagramSocket() { machineSystem().closeSocket(socket_); }
  int get() const { return socket_; }

 private:
  int socket_;
};

std::vector<NetworkInterface> listInterfaces() {
  const DatagramSocket socket;
  std::vector<NetworkInterface> interfaces;
  if (const int error = machineSystem().listInterfaces(socket.get(), interfaces)) {
    throw GenericException("Unable to get list of network interfaces, errno = " +
                           std::to_string(error));
  }
  return interfaces;
}

// An interface whose name is not ASCII has no name to be found by.
Ref<Dictionary> readAddresses() {
  const auto addresses = MutableDictionary::init();
  for (const NetworkInterface& interface : listInterfaces()) {
    std::string_view name = interface.name;
    name = name.substr(0, std::min(name.find('\0'), kLongestInterfaceName));
    if (interface.address.empty() || !isAsciiText(name)) continue;
    addresses->setObject(addressText(interface.address), name);
  }
  return PropertyValue(addresses->copy()).as<Dictionary>();
}

// Nil where the name is not ASCII.
Ref<String> readHostName() {
  char name[kLongestHostName + 1];
  if (machineSystem().gethostname(name, kLongestHostName) != 0) return String::from("localhost");
  name[kLongestHostName] = '\0';
  return isAsciiText(name) ? String::from(std::string_view(name)) : nullptr;
}

}  // namespace

Ref<String> identifierAmong(const Dictionary& addresses) {
  const auto usable = [&addresses](StringArg name) -> Ref<String> {
    const PropertyValue address = addresses.objectForKey(name);
    return address.isString() && address.as<String>()->length() > 0 ? address.as<String>()
                                                                    : nullptr;
  };
  if (auto address = usable(kPreferred)) return address;
  std::vector<std::string> names;
  for (const auto& [name, address] : addresses) names.push_back(name.utf8());
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    if (auto address = usable(name)) return address;
  }
  return String::from(kNoUniqueMachineIdentifier);
}

Ref<Dictionary> MachineIdentity::interfaceAddresses() {
  if (Dictionary* known = addresses_.get()) return known;
  return addresses_.keep(readAddresses());
}

Ref<String> MachineIdentity::identifier() {
  if (String* known = identifier_.get()) return known;
  return identifier_.keep(identifierAmong(*interfaceAddresses()));
}

Ref<String> MachineIdentity::hostName() {
  if (String* known = hostName_.get()) return known;
  auto name = readHostName();
  return name == nullptr ? nullptr : hostName_.keep(std::move(name));
}

}  // namespace detail

Ref<String> QXUniqueMachineIdentifier() { return detail::machineIdentity().identifier(); }

Ref<String> QXHostName() { return detail::machineIdentity().hostName(); }

}  // namespace qx

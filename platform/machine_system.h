#pragma once

// What the system tells of the machine, in one place that tests can replace.

#include <cstddef>
#include <string>
#include <vector>

#include "platform/replaceable.h"

namespace qx::detail {

struct NetworkInterface {
  std::string name;
  std::string address;  // the bytes of the hardware address; empty where there is none
};

class MachineSystem {
 public:
  MachineSystem() = default;
  MachineSystem(const MachineSystem&) = delete;
  MachineSystem& operator=(const MachineSystem&) = delete;
  virtual ~MachineSystem() = default;

  // A socket that the list of interfaces is asked through; -1 and `errno` where there is none.
  virtual int openDatagramSocket();
  virtual void closeSocket(int socket);
  // The link-level entries in the system's order, and 0; or the `errno` value of the failure. The
  // loopback and interfaces whose address is zero throughout count as having none.
  virtual int listInterfaces(int socket, std::vector<NetworkInterface>& interfaces);
  // As the call of that name.
  virtual int gethostname(char* name, std::size_t size);
};

inline MachineSystem& machineSystem() { return Replaceable<MachineSystem>::inUse(); }
using ReplacedMachineSystem = Replaceable<MachineSystem>::Replacement;

}  // namespace qx::detail

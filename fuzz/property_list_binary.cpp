// Arbitrary bytes as a binary property list: a value or a clear error. What is read is written in
// both formats and read back; all must be equal.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/platform/property_list/round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  if (!bytes.starts_with("bplist")) return 0;
  if (const auto complaint = qx::plist::checkBytes(bytes)) {
    std::fprintf(stderr, "%s\n", complaint.what.c_str());
    std::abort();
  }
  return 0;
}

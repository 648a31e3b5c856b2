// Arbitrary bytes as an XML property list: a value or a clear error. What is read is well-formed
// XML for an independent parser too; it is written in both formats and read back, and all must be
// equal.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/platform/property_list/round_trip.h"
#include "tests/platform/property_list/well_formed.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  if (bytes.starts_with("bplist")) return 0;
  qx::PropertyValue value;
  std::string complaint = qx::plist::checkBytes(bytes, &value).what;
  if (complaint.empty() && !value.isNil()) complaint = qx::plist::xmlComplaint(bytes);
  if (!complaint.empty()) {
    std::fprintf(stderr, "%s\n", complaint.c_str());
    std::abort();
  }
  return 0;
}

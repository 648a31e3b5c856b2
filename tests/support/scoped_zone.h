#pragma once

// The process's local time zone for the length of a test.

#include "tests/support/scoped_environment.h"

namespace test_support {

class ScopedZone {
 public:
  // A null name leaves `TZ` unset, for the system's zone.
  explicit ScopedZone(const char* name) : variable_("TZ", name) {}

 private:
  ScopedEnvironment variable_;
};

// UTC; daylight saving in the north and in the south, there of half an hour too; a quarter of an
// hour; far west and far east, there across the date line; and rules without a zone of that name.
inline constexpr const char* kZones[] = {
    "UTC",
    "America/New_York",
    "Europe/Berlin",
    "Australia/Sydney",
    "Asia/Kathmandu",
    "Pacific/Pago_Pago",
    "Pacific/Apia",
    "Australia/Lord_Howe",
    "Africa/Casablanca",
    "Europe/Dublin",
    "Asia/Gaza",
    "America/St_Johns",
    "NST3:30NDT,M3.2.0/0:01,M11.1.0/0:01",
};

}  // namespace test_support

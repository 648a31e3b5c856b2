#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <random>

#include <QXFoundation/thousand_format.h>

namespace qx {
namespace {

TEST(ThousandFormat, GroupsByPowersOf1024) {
  const std::pair<std::int64_t, const char*> cases[] = {
      {0, "0"},
      {5, "5"},
      {-5, "-5"},
      {999, "999"},
      {1000, "1000"},
      {1023, "1023"},
      {-1023, "-1023"},
      {1024, "1,000"},
      {-1024, "-1,000"},
      {1025, "1,001"},
      {-1025, "-1,-01"},
      {2000, "1,976"},
      {-2000, "-1,-976"},
      {2047, "1,1023"},
      {1000000, "976,576"},
      {1048576, "1,000,000"},
      {std::numeric_limits<std::int64_t>::max(), "7,1023,1023,1023,1023,1023,1023"},
      {std::numeric_limits<std::int64_t>::min(), "-8,000,000,000,000,000,000"},
  };
  for (const auto& [n, text] : cases) EXPECT_EQ(thousandFormat(n)->utf8(), text) << n;
}

// The rule as it is laid down, with the texts that printf makes.
std::string byPrintf(std::int64_t n) {
  std::string text;
  for (bool isFirst = true;; isFirst = false) {
    const std::int64_t quotient = n / 1024;
    const bool isLast = n >= -1023 && n <= 1023;
    char group[16];
    std::snprintf(group, sizeof group, isLast ? "%d" : "%03d",
                  static_cast<int>(n - 1024 * quotient));
    text = isFirst ? group : group + ("," + text);
    if (isLast) return text;
    n = quotient;
  }
}

TEST(ThousandFormat, MatchesTheRule) {
  for (std::int64_t n = -5000; n <= 5000; ++n) ASSERT_EQ(thousandFormat(n)->utf8(), byPrintf(n));
  std::mt19937_64 random(53);
  for (int i = 0; i < 100000; ++i) {
    const auto n = static_cast<std::int64_t>(random()) >> (random() % 64);
    ASSERT_EQ(thousandFormat(n)->utf8(), byPrintf(n));
  }
}

}  // namespace
}  // namespace qx

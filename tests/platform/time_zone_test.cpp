#include "platform/time_zone.h"

#include <gtest/gtest.h>
#include <time.h>

#include <atomic>
#include <random>
#include <thread>
#include <vector>

#include "platform/calendar.h"
#include "tests/support/scoped_zone.h"

namespace qx::detail {
namespace {

using test_support::kZones;
using test_support::ScopedZone;

constexpr std::int64_t kHour = 3600;
constexpr std::int64_t kYear = 31556952;

std::int64_t secondOf(std::int64_t year, std::int32_t month, std::int32_t day) {
  return daysSince1970({year, month, day}) * kSecondsPerDay;
}

// What the C library says, asked afresh.
std::int32_t systemOffset(std::int64_t moment) {
  const auto seconds = static_cast<time_t>(moment);
  tm parts{};
  localtime_r(&seconds, &parts);
  return static_cast<std::int32_t>(parts.tm_gmtoff);
}

// The definition: the earliest moment that shows this local time; or, where none does, the offset
// before the gap that it is in. Offsets, changes and the local time are multiples of the step.
std::int32_t offsetByDefinition(std::int64_t localTime, std::int64_t step) {
  std::int32_t before = systemOffset(localTime - 30 * kHour);
  std::int64_t at = localTime - 30 * kHour;
  for (;; at += step) {
    const std::int32_t offset = systemOffset(at);
    if (at + offset == localTime) return offset;
    if (at + offset > localTime) return before;
    before = offset;
  }
}

TEST(TimeZone, KnowsTheOffsetsOfTheSystem) {
  std::mt19937_64 random(1);
  for (const char* name : kZones) {
    const ScopedZone zone(name);
    tzset();
    for (int i = 0; i < 5000; ++i) {
      const auto moment =
          secondOf(1880, 1, 1) +
          static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(200 * kYear));
      ASSERT_EQ(offsetOfMoment(moment), systemOffset(moment)) << name << ' ' << moment;
    }
  }
}

TEST(TimeZone, KnowsTheOffsetsBeforeTheFirstAndAfterTheLastChange) {
  std::mt19937_64 random(2);
  for (const char* name : kZones) {
    const ScopedZone zone(name);
    tzset();
    for (int i = 0; i < 300; ++i) {
      const auto moment =
          secondOf(1000, 1, 1) +
          static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(5000 * kYear));
      ASSERT_EQ(offsetOfMoment(moment), systemOffset(moment)) << name << ' ' << moment;
    }
  }
}

TEST(TimeZone, FindsEveryChangeToTheSecond) {
  for (const char* name : kZones) {
    const ScopedZone zone(name);
    tzset();
    int changes = 0;
    for (std::int64_t day = secondOf(1960, 1, 1); day < secondOf(2040, 1, 1);
         day += kSecondsPerDay) {
      if (systemOffset(day) == systemOffset(day + kSecondsPerDay)) continue;
      ++changes;
      for (std::int64_t at = day; at <= day + kSecondsPerDay; at += 900) {
        ASSERT_EQ(offsetOfMoment(at - 1), systemOffset(at - 1)) << name << ' ' << at;
        ASSERT_EQ(offsetOfMoment(at), systemOffset(at)) << name << ' ' << at;
      }
    }
    // Samoa's clocks have stood eleven hours behind since 1911.
    const std::string_view zoneName = name;
    const bool isFixed = zoneName == "UTC" || zoneName == "Pacific/Pago_Pago";
    EXPECT_EQ(changes == 0, isFixed) << name;
  }
}

TEST(TimeZone, ResolvesLocalTimesThatAreSkippedOrComeTwice) {
  for (const char* name : kZones) {
    const ScopedZone zone(name);
    tzset();
    const std::int64_t step = std::string_view(name).starts_with("NST") ? 60 : 900;
    for (std::int64_t day = secondOf(2008, 1, 1); day < secondOf(2024, 1, 1);
         day += kSecondsPerDay) {
      if (systemOffset(day - kSecondsPerDay) == systemOffset(day + 2 * kSecondsPerDay)) continue;
      for (std::int64_t local = day; local < day + kSecondsPerDay; local += 900) {
        ASSERT_EQ(offsetOfLocalTime(local), offsetByDefinition(local, step))
            << name << ' ' << local;
      }
    }
  }
}

TEST(TimeZone, MovesSkippedTimesForwardAndTakesTheEarlierOfTwo) {
  struct Case {
    const char* zone;
    std::int64_t localTime;
    std::int32_t offset;
  };
  const auto at = [](std::int32_t month, std::int32_t day, std::int64_t hour, std::int64_t minute) {
    return secondOf(2021, month, day) + hour * kHour + minute * 60;
  };
  const Case cases[] = {
      {"America/New_York", at(3, 14, 1, 59), -5 * 3600},
      {"America/New_York", at(3, 14, 2, 0), -5 * 3600},
      {"America/New_York", at(3, 14, 2, 59), -5 * 3600},
      {"America/New_York", at(3, 14, 3, 0), -4 * 3600},
      {"America/New_York", at(11, 7, 0, 59), -4 * 3600},
      {"America/New_York", at(11, 7, 1, 0), -4 * 3600},
      {"America/New_York", at(11, 7, 1, 59), -4 * 3600},
      {"America/New_York", at(11, 7, 2, 0), -5 * 3600},
      {"Australia/Sydney", at(10, 3, 2, 30), 10 * 3600},
      {"Australia/Sydney", at(10, 3, 3, 0), 11 * 3600},
      {"Australia/Sydney", at(4, 4, 2, 30), 11 * 3600},
      {"Australia/Sydney", at(4, 4, 3, 0), 10 * 3600},
      {"Asia/Kathmandu", at(6, 1, 12, 0), 5 * 3600 + 45 * 60},
      {"Pacific/Pago_Pago", at(6, 1, 12, 0), -11 * 3600},
      // A whole day was skipped.
      {"Pacific/Apia", secondOf(2011, 12, 30) + 12 * kHour, -10 * 3600},
      {"Pacific/Apia", secondOf(2011, 12, 31), 14 * 3600},
  };
  for (const Case& c : cases) {
    const ScopedZone zone(c.zone);
    EXPECT_EQ(offsetOfLocalTime(c.localTime), c.offset) << c.zone << ' ' << c.localTime;
  }
}

// The calendar repeats itself every 400 years, and with it every rule.
TEST(TimeZone, RepeatsItsRulesForEver) {
  const ScopedZone zone("America/New_York");
  const std::int64_t july = secondOf(2150, 7, 4);
  const std::int64_t january = secondOf(2150, 1, 4);
  for (const std::int64_t periods : {1LL, 2LL, 10LL, 1000LL, 5368708LL}) {
    const std::int64_t later = periods * 400 * kYear;
    EXPECT_EQ(offsetOfMoment(july + later), -4 * 3600) << periods;
    EXPECT_EQ(offsetOfLocalTime(july + later), -4 * 3600) << periods;
    EXPECT_EQ(offsetOfMoment(january + later), -5 * 3600) << periods;
  }
  // Before the first railway there was each town's own time.
  for (const std::int64_t year :
       std::initializer_list<std::int64_t>{1600, 1000, 0, -44, -2147483648LL}) {
    EXPECT_EQ(offsetOfLocalTime(secondOf(year, 7, 4)), -17762) << year;
  }
}

// Whether a rule has daylight saving before 1970 C libraries do not agree on: this process's own
// is followed, so that dates read here and dates shown by `localtime_r` are the same.
TEST(TimeZone, RulesWithoutATableHoldForEverAsTheSystemHasThem) {
  for (const char* rule : {"EST5EDT,M3.2.0,M11.1.0", "AEST-10AEDT,M10.1.0,M4.1.0/3"}) {
    const ScopedZone zone(rule);
    tzset();
    const std::int32_t winter = systemOffset(secondOf(2021, rule[0] == 'E' ? 1 : 7, 4));
    const std::int32_t summer = systemOffset(secondOf(2021, rule[0] == 'E' ? 7 : 1, 4));
    ASSERT_EQ(summer, winter + kHour) << rule;
    for (const std::int64_t year : {-400000, -44, 1, 1199, 1500, 1969, 1970, 2600, 20000, 400000}) {
      for (std::int32_t month = 1; month <= 12; ++month) {
        const std::int64_t moment = secondOf(year, month, 4);
        const std::int32_t offset = systemOffset(moment);
        EXPECT_EQ(offsetOfMoment(moment), offset) << rule << ' ' << year << ' ' << month;
        EXPECT_EQ(offsetOfLocalTime(moment + offset), offset)
            << rule << ' ' << year << ' ' << month;
      }
      if (year < 1970) continue;
      EXPECT_EQ(offsetOfMoment(secondOf(year, rule[0] == 'E' ? 7 : 1, 4)), summer) << year;
      EXPECT_EQ(offsetOfMoment(secondOf(year, rule[0] == 'E' ? 1 : 7, 4)), winter) << year;
    }
  }
}

TEST(TimeZone, FollowsChangesOfTheVariable) {
  const std::int64_t moment = secondOf(2021, 7, 1);
  for (int round = 0; round < 3; ++round) {
    for (const auto& [name, offset] :
         {std::pair{"Asia/Tokyo", 9 * 3600}, std::pair{"America/New_York", -4 * 3600},
          std::pair{"", 0}}) {
      const ScopedZone zone(name);
      EXPECT_EQ(offsetOfMoment(moment), offset) << name;
    }
    const ScopedZone unset(nullptr);
    tzset();
    EXPECT_EQ(offsetOfMoment(moment), systemOffset(moment));
  }
}

TEST(TimeZone, ThreadsShareWhatIsLearnt) {
  for (const char* name : {"Europe/Berlin", "Australia/Sydney"}) {
    const ScopedZone zone(name);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < 4; ++seed) {
      threads.emplace_back([&wrong, seed] {
        std::mt19937_64 random(seed);
        for (int i = 0; i < 2000; ++i) {
          const auto moment =
              static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(60 * kYear));
          const std::int32_t offset = offsetOfMoment(moment);
          if (offset != systemOffset(moment)) ++wrong;
          if (offsetOfLocalTime(moment + offset) < offset)
            ++wrong;  // the earlier one is farther east
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0) << name;
  }
}

}  // namespace
}  // namespace qx::detail

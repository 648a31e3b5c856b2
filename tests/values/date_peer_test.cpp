// Dates beside those of Python's datetime, an implementation of the same calendar and zones by
// others.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include <QXFoundation/iso_date.h>
#include <QXFoundation/rfc3339.h>

#include "tests/support/scoped_zone.h"

namespace qx {
namespace {

using test_support::ScopedZone;

// Runs a script and gives its lines, one at a time.
class Python {
 public:
  explicit Python(const std::string& script)
      : pipe_(popen(("exec python3 -c '" + script + "'").c_str(), "r")) {}
  Python(const Python&) = delete;
  Python& operator=(const Python&) = delete;
  ~Python() {
    if (pipe_ != nullptr) pclose(pipe_);
  }

  bool nextLine(std::string& line) {
    char text[200];
    if (pipe_ == nullptr || std::fgets(text, sizeof text, pipe_) == nullptr) return false;
    line = text;
    line.pop_back();
    return true;
  }
  bool succeeded() { return pclose(std::exchange(pipe_, nullptr)) == 0; }

 private:
  std::FILE* pipe_;
};

TEST(DatePeer, EveryDayOfPythonsCalendarIsTheSame) {
  Python python(R"(
from datetime import date
import sys
day = date.fromordinal
for start in range(1, date.max.toordinal() + 1, 10000):
    end = min(start + 10000, date.max.toordinal() + 1)
    sys.stdout.write("".join([day(o).isoformat() + "\n" for o in range(start, end)]))
)");
  constexpr double kDay = 86400;
  double seconds = -719162 * kDay;
  std::int64_t days = 0;
  for (std::string day; python.nextLine(day); seconds += kDay, ++days) {
    const auto date = qxDateFromISO8601String(day + "T00:00:00+00:00");
    ASSERT_EQ(date->timeIntervalSince1970(), seconds) << day;
    ASSERT_EQ(qxISO8601String(date)->utf8(), day + "T00:00:00Z");
    if (days % 16 != 0) continue;
    ASSERT_EQ(qxDateFromRFC3339String(day + "T00:00:00Z")->timeIntervalSince1970(), seconds) << day;
    ASSERT_EQ(qxRFC3339String(date)->utf8(), day + "T00:00:00Z");
  }
  EXPECT_TRUE(python.succeeded());
  EXPECT_EQ(days, 3652059);
}

TEST(DatePeer, RandomTimesWithOffsetAreTheSame) {
  Python python(R"(
from datetime import *
import random
r = random.Random(37)
epoch = datetime(1970, 1, 1, tzinfo=timezone.utc)
for i in range(50000):
    zone = timezone(timedelta(minutes=r.randint(-1439, 1439)))
    t = datetime(r.randint(2, 9998), r.randint(1, 12), r.randint(1, 28), r.randint(0, 23), r.randint(0, 59),
                 r.randint(0, 59), r.choice([0, r.randint(0, 999999)]), tzinfo=zone)
    d = t - epoch
    print(t.isoformat(), d.days * 86400 + d.seconds, d.microseconds)
)");
  int count = 0;
  for (std::string line; python.nextLine(line); ++count) {
    const std::size_t space = line.find(' ');
    const std::string text = line.substr(0, space);
    std::size_t used = 0;
    const std::int64_t seconds = std::stoll(line.substr(space + 1), &used);
    const std::int64_t microseconds = std::stoll(line.substr(space + 1 + used));
    const double expected = static_cast<double>(seconds) + static_cast<double>(microseconds) / 1e6;
    ASSERT_NEAR(qxDateFromISO8601String(text)->timeIntervalSince1970(), expected, 1e-4) << text;
    const auto strict = qxDateFromRFC3339String(text);
    ASSERT_NEAR(strict->timeIntervalSince1970(), expected, 1e-4) << text;
    if (microseconds == 0) {
      ASSERT_EQ(strict->timeIntervalSince1970(), expected) << text;
    }
  }
  EXPECT_TRUE(python.succeeded());
  EXPECT_EQ(count, 50000);
}

// Python's first choice for a local time that is skipped or comes twice is ours too.
TEST(DatePeer, LocalTimesAreTheSame) {
  for (const char* name : test_support::kZones) {
    if (std::strchr(name, ',') != nullptr) continue;  // rules, which have no name there
    const ScopedZone zone(name);
    Python python(R"(
from datetime import *
from zoneinfo import ZoneInfo
import random
r = random.Random(41)
zone = ZoneInfo(")" +
                  std::string(name) + R"(")
epoch = datetime(1970, 1, 1, tzinfo=timezone.utc)
def show(t):
    d = t.replace(tzinfo=zone).astimezone(timezone.utc) - epoch
    print(t.isoformat(), d.days * 86400 + d.seconds)
t = datetime(2020, 1, 1)
while t.year < 2023:
    show(t)
    t += timedelta(minutes=30)
for i in range(5000):
    show(datetime(2, 1, 1) + timedelta(seconds=r.randint(0, 315000000000)))
for i in range(5000):
    show(datetime(1880, 1, 1) + timedelta(seconds=r.randint(0, 7000000000)))
)");
    int count = 0;
    for (std::string line; python.nextLine(line); ++count) {
      const std::size_t space = line.find(' ');
      const std::string text = line.substr(0, space);
      ASSERT_EQ(qxDateFromISO8601String(text)->timeIntervalSince1970(),
                std::stod(line.substr(space + 1)))
          << name << ' ' << text;
    }
    EXPECT_TRUE(python.succeeded()) << name;
    EXPECT_EQ(count, 52608 + 10000) << name;
  }
}

}  // namespace
}  // namespace qx

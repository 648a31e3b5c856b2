// Reading and writing of dates, beside strptime and strftime with the C library's calendar, and
// beside the date library of Howard Hinnant (libhowardhinnant-date-dev) and Abseil (libabsl-dev)
// where they are installed. Every way must give the same dates before anything is timed. Column ns:
// nanoseconds per date.

#include <time.h>

#include <random>
#include <sstream>
#include <vector>

#if __has_include(<date/date.h>)
#ifndef __clang__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"  // which g++ 12 finds in the header
#endif
#include <date/date.h>
#ifndef __clang__
#pragma GCC diagnostic pop
#endif
#define BENCH_HAS_DATE 1
#endif

#ifdef QX_BENCH_ABSL
#include <absl/time/time.h>
#endif

#include <QXFoundation/date.h>
#include <QXFoundation/iso_date.h>
#include <QXFoundation/rfc3339.h>

#include "bench/values_support.h"

namespace bench {
namespace {

constexpr std::size_t kCount = 2000;

struct Sample {
  double seconds;
  qx::Ref<qx::Date> date;
  std::string utc;         // "2021-03-04T03:06:07Z"
  std::string withOffset;  // "2021-03-04T05:06:07+02:00"
  std::string local;       // "2021-03-04T04:06:07"
  qx::PropertyValue withOffsetValue;
  qx::PropertyValue localValue;
};

std::string timeText(time_t seconds, const char* format) {
  tm parts{};
  gmtime_r(&seconds, &parts);
  char text[40];
  return {text, strftime(text, sizeof text, format, &parts)};
}

std::string localText(time_t seconds) {
  tm parts{};
  localtime_r(&seconds, &parts);
  return timeText(seconds + parts.tm_gmtoff, "%Y-%m-%dT%H:%M:%S");
}

// From 1970 to 2037, in a zone with daylight saving, without the local times that come twice.
const std::vector<Sample>& samples() {
  static const std::vector<Sample> all = [] {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    std::mt19937_64 random(7);
    std::vector<Sample> made;
    while (made.size() < kCount) {
      const auto t = static_cast<time_t>(random() % (std::uint64_t{67} * 31556952));
      const std::string local = localText(t);
      if (local == localText(t - 3600) || local == localText(t + 3600)) continue;
      const auto seconds = static_cast<double>(t);
      Sample s{seconds,
               qx::Date::dateWithTimeIntervalSince1970(seconds),
               timeText(t, "%Y-%m-%dT%H:%M:%SZ"),
               timeText(t + 7200, "%Y-%m-%dT%H:%M:%S+02:00"),
               local,
               {},
               {}};
      s.withOffsetValue = s.withOffset;
      s.localValue = s.local;
      made.push_back(s);
    }
    return made;
  }();
  return all;
}

template <class Work>
void reading(benchmark::State& state, Work work) {
  for (const Sample& s : samples()) require(work(s) == s.seconds, s.withOffset + " or " + s.local);
  perItem(state, samples(), work);
}

template <class Work>
void writing(benchmark::State& state, Work work) {
  for (const Sample& s : samples()) require(std::string_view(work(s)) == s.utc, s.utc);
  perItem(state, samples(), work);
}

double secondsOf(const qx::Ref<qx::Date>& date) { return date->timeIntervalSince1970(); }

void readWithOffset(benchmark::State& state) {
  reading(state, [](const Sample& s) {
    return secondsOf(qx::qxDateFromISO8601String(s.withOffsetValue));
  });
}
void readLocal(benchmark::State& state) {
  reading(state,
          [](const Sample& s) { return secondsOf(qx::qxDateFromISO8601String(s.localValue)); });
}
void readStrict(benchmark::State& state) {
  reading(state,
          [](const Sample& s) { return secondsOf(qx::qxDateFromRFC3339String(s.withOffset)); });
}
void readWithOffsetByStrptime(benchmark::State& state) {
  reading(state, [](const Sample& s) {
    tm parts{};
    strptime(s.withOffset.c_str(), "%Y-%m-%dT%H:%M:%S%z", &parts);
    const long offset = parts.tm_gmtoff;
    return static_cast<double>(timegm(&parts) - offset);
  });
}
void readLocalByStrptime(benchmark::State& state) {
  reading(state, [](const Sample& s) {
    tm parts{};
    strptime(s.local.c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
    parts.tm_isdst = -1;
    return static_cast<double>(mktime(&parts));
  });
}

// The text without the bytes' owner, so that both kinds of string can be compared.
struct Written {
  qx::Ref<qx::String> string;
  explicit operator std::string_view() const {
    static std::string text;
    return text = string->utf8();
  }
};
void write(benchmark::State& state) {
  writing(state, [](const Sample& s) { return Written{qxISO8601String(s.date)}; });
}
void writeStrict(benchmark::State& state) {
  writing(state, [](const Sample& s) { return Written{qxRFC3339String(s.date)}; });
}
void writeByStrftime(benchmark::State& state) {
  writing(state, [](const Sample& s) {
    return timeText(static_cast<time_t>(s.seconds), "%Y-%m-%dT%H:%M:%SZ");
  });
}

BENCHMARK(readWithOffset);
BENCHMARK(readWithOffsetByStrptime);
BENCHMARK(readLocal);
BENCHMARK(readLocalByStrptime);
BENCHMARK(readStrict);
BENCHMARK(write);
BENCHMARK(writeByStrftime);
BENCHMARK(writeStrict);

#ifdef BENCH_HAS_DATE
void readWithOffsetByDateLibrary(benchmark::State& state) {
  reading(state, [](const Sample& s) {
    std::istringstream in(s.withOffset);
    date::sys_seconds seconds;
    in >> date::parse("%FT%T%Ez", seconds);
    return static_cast<double>(seconds.time_since_epoch().count());
  });
}
void writeByDateLibrary(benchmark::State& state) {
  writing(state, [](const Sample& s) {
    return date::format("%FT%TZ",
                        date::sys_seconds(std::chrono::seconds(static_cast<long>(s.seconds))));
  });
}
BENCHMARK(readWithOffsetByDateLibrary);
BENCHMARK(writeByDateLibrary);
#endif

#ifdef QX_BENCH_ABSL
void readWithOffsetByAbseil(benchmark::State& state) {
  reading(state, [](const Sample& s) {
    absl::Time time;
    std::string error;
    absl::ParseTime(absl::RFC3339_sec, s.withOffset, &time, &error);
    return static_cast<double>(absl::ToUnixSeconds(time));
  });
}
void readLocalByAbseil(benchmark::State& state) {
  static const absl::TimeZone zone = absl::LocalTimeZone();
  reading(state, [](const Sample& s) {
    absl::Time time;
    std::string error;
    absl::ParseTime("%Y-%m-%dT%H:%M:%S", s.local, zone, &time, &error);
    return static_cast<double>(absl::ToUnixSeconds(time));
  });
}
void writeByAbseil(benchmark::State& state) {
  writing(state, [](const Sample& s) {
    return absl::FormatTime("%Y-%m-%dT%H:%M:%SZ",
                            absl::FromUnixSeconds(static_cast<std::int64_t>(s.seconds)),
                            absl::UTCTimeZone());
  });
}
BENCHMARK(readWithOffsetByAbseil);
BENCHMARK(readLocalByAbseil);
BENCHMARK(writeByAbseil);
#endif

}  // namespace
}  // namespace bench

#include "platform/time_zone.h"

#include <time.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/calendar.h"

namespace qx::detail {
namespace {

// Time is cut into years of the calendar's mean length: 400 of them are its period, after which
// every rule of a zone repeats. Beyond the years that the zone's own tables may tell apart, years
// are folded into the first or last whole period.
constexpr std::int64_t kYear = 31556952;
constexpr std::int64_t kPeriod = 400;
constexpr std::int64_t kFirstYear = 1200 - 1970;
constexpr std::int64_t kEndYear = 2800 - 1970;

// Beyond what any zone is from UTC.
constexpr std::int64_t kWidestOffset = 26 * 3600;

// Offsets that differ for less than this are not looked for. In the zones of this world the
// shortest stretch of one offset lasted four days.
constexpr std::int64_t kStride = kSecondsPerDay;

// From here on the offset holds.
struct Change {
  std::int64_t moment;
  // The first local time with this offset. All that is skipped by the change, and all that comes
  // twice, has the offset before.
  std::int64_t localTime;
  std::int32_t offset;
};

// The offsets of a year, in order; the first holds from the year's start at least.
using Year = std::vector<Change>;

std::int32_t askSystem(std::int64_t moment) {
  const auto seconds = static_cast<time_t>(moment);
  tm parts{};
  return localtime_r(&seconds, &parts) != nullptr ? static_cast<std::int32_t>(parts.tm_gmtoff) : 0;
}

// The first moment in (from, to] whose offset is another than that of `from`, which is `offset`;
// that of `to` is another.
std::int64_t findChange(std::int64_t from, std::int64_t to, std::int32_t offset) {
  while (to - from > 1) {
    const std::int64_t middle = from + (to - from) / 2;
    (askSystem(middle) == offset ? from : to) = middle;
  }
  return to;
}

Year learnYear(std::int64_t index) {
  constexpr std::int64_t kAlways = std::numeric_limits<std::int64_t>::min();
  std::int64_t at = index * kYear - kWidestOffset;
  const std::int64_t end = (index + 1) * kYear + kWidestOffset;
  std::int32_t offset = askSystem(at);
  Year year{{kAlways, kAlways, offset}};
  while (at < end) {
    const std::int64_t next = at + kStride;
    const std::int32_t offsetThere = askSystem(next);
    at = offsetThere == offset ? next : findChange(at, next, offset);
    if (offsetThere == offset) continue;
    const std::int32_t before = std::exchange(offset, askSystem(at));
    year.push_back({at, at + std::max(before, offset), offset});
  }
  return year;
}

// What is known of one value of `TZ`.
class LocalZone {
 public:
  explicit LocalZone(const char* name) {
    if (name != nullptr) name_ = name;
  }
  LocalZone(const LocalZone&) = delete;
  LocalZone& operator=(const LocalZone&) = delete;
  ~LocalZone() {
    for (const auto& year : years_) delete year.load(std::memory_order_relaxed);
  }

  bool isNamed(const char* name) const {
    return name != nullptr ? name_ == std::string_view(name) : !name_.has_value();
  }

  // Null when the year is not known and `TZ` has changed, so that it can not be asked about any
  // more.
  const Year* year(std::int64_t index) {
    std::atomic<const Year*>& place = years_[static_cast<std::size_t>(index - kFirstYear)];
    const Year* known = place.load(std::memory_order_acquire);
    return known != nullptr ? known : learn(index, place);
  }

 private:
  const Year* learn(std::int64_t index, std::atomic<const Year*>& place);

  std::optional<std::string> name_;
  std::array<std::atomic<const Year*>, kEndYear - kFirstYear> years_{};
};

const char* zoneName() { return std::getenv("TZ"); }

// Guards the current zone, and the learning of years: the C library has one zone at a time.
struct Shared {
  std::mutex mutex;
  std::shared_ptr<LocalZone> zone;
};
Shared& shared() {
  static auto* one = new Shared;  // never destroyed: objects outlive static destruction
  return *one;
}

const Year* LocalZone::learn(std::int64_t index, std::atomic<const Year*>& place) {
  const std::scoped_lock lock(shared().mutex);
  if (const Year* known = place.load(std::memory_order_relaxed)) return known;
  if (!isNamed(zoneName())) return nullptr;
  tzset();  // localtime_r itself does not look at `TZ` again
  const auto* year = new Year(learnYear(index));
  place.store(year, std::memory_order_release);
  return year;
}

std::shared_ptr<LocalZone> sharedZone(const char* name) {
  const std::scoped_lock lock(shared().mutex);
  std::shared_ptr<LocalZone>& zone = shared().zone;
  if (zone == nullptr || !zone->isNamed(name)) zone = std::make_shared<LocalZone>(name);
  return zone;
}

// Each thread holds on to the zone it used last, so that usual calls take no lock.
LocalZone& currentZone() {
  thread_local std::shared_ptr<LocalZone> mine;
  const char* name = zoneName();
  if (mine == nullptr || !mine->isNamed(name)) mine = sharedZone(name);
  return *mine;
}

std::int64_t foldedYear(std::int64_t year) {
  if (year < kFirstYear) return kFirstYear + floorModulo(year - kFirstYear, kPeriod);
  if (year >= kEndYear) return kEndYear - kPeriod + (year - kEndYear) % kPeriod;
  return year;
}

std::int32_t offsetBy(std::int64_t Change::* key, std::int64_t time) {
  const std::int64_t year = floorDivide(time, kYear);
  const std::int64_t folded = foldedYear(year);
  const std::int64_t foldedTime = time + (folded - year) * kYear;
  const Year* changes = nullptr;
  do {
    changes = currentZone().year(folded);
  } while (changes == nullptr);
  std::size_t i = changes->size() - 1;
  while (foldedTime < (*changes)[i].*key) --i;
  return (*changes)[i].offset;
}

}  // namespace

std::int32_t offsetOfMoment(std::int64_t moment) { return offsetBy(&Change::moment, moment); }
std::int32_t offsetOfLocalTime(std::int64_t localTime) {
  return offsetBy(&Change::localTime, localTime);
}

}  // namespace qx::detail

// Adds up a log of downloads by day. Each line has a time by RFC 3339, a number of bytes, and a
// file.
//
//     example_values              the log in data/
//     example_values FILE
//
// Days are those of UTC, whatever offset a line names. A file with a line that is malformed is
// refused.

#include <charconv>
#include <iomanip>
#include <iostream>
#include <limits>
#include <map>
#include <string>

#include <QXFoundation/array.h>
#include <QXFoundation/data_cursor.h>
#include <QXFoundation/file_manager.h>
#include <QXFoundation/fraction_number.h>
#include <QXFoundation/iso_date.h>
#include <QXFoundation/rfc3339.h>
#include <QXFoundation/size_formatter.h>

namespace {

struct Sum {
  std::int64_t downloads = 0;
  std::int64_t bytes = 0;
  void add(std::int64_t n) {
    ++downloads;
    bytes += n;
  }
};

struct Log {
  std::map<std::string, Sum> days;
  Sum all;
  qx::Ref<qx::Date> first;
  qx::Ref<qx::Date> last;
};

bool addLine(Log& log, const qx::Ref<qx::String>& line) {
  const auto fields = line->componentsSeparatedByString(",");
  if (fields->count() != 3) return false;
  const auto date = qx::qxDateFromRFC3339String(fields->objectAtIndex(0).as<qx::String>());
  const std::string size = fields->objectAtIndex(1).description();
  std::int64_t bytes = 0;
  const auto [end, fault] = std::from_chars(size.data(), size.data() + size.size(), bytes);
  if (date == nullptr || fault != std::errc() || end != size.data() + size.size() || bytes < 0 ||
      bytes > std::numeric_limits<std::int64_t>::max() - log.all.bytes) {
    return false;
  }
  log.days[qxRFC3339String(date)->substringToIndex(10)->utf8()].add(bytes);
  log.all.add(bytes);
  if (log.first == nullptr || date->timeIntervalSinceDate(log.first) < 0) log.first = date;
  if (log.last == nullptr || date->timeIntervalSinceDate(log.last) > 0) log.last = date;
  return true;
}

// Whether every line was understood; what was not is told.
bool read(Log& log, const std::string& path) {
  // A cursor takes a file that can not be read for an empty one.
  bool isFolder = false;
  if (!qx::FileManager::defaultManager()->fileExistsAtPath(path, &isFolder) || isFolder) {
    std::cerr << path << ": no such file\n";
    return false;
  }
  bool isRight = true;
  const auto cursor = qx::QXDataCursor::initWithFile(path);
  for (int number = 1; const auto line = cursor->readLine(); ++number) {
    if (line->length() == 0 || line->hasPrefix("#") || addLine(log, line)) continue;
    std::cerr << path << ':' << number << ": not TIME,BYTES,FILE: " << line->utf8() << '\n';
    isRight = false;
  }
  return isRight;
}

void show(const Log& log) {
  for (const auto& [day, sum] : log.days) {
    const auto share =
        qx::QXFractionNumber::qxFractionNumberWithNumerator(sum.downloads, log.all.downloads);
    std::cout << day << std::right << std::setw(4) << sum.downloads << " downloads, "
              << share->numerator() << '/' << share->denominator() << " of all, " << std::setw(11)
              << sum.bytes
              << " bytes = " << qx::QXSizeFormatter::stringForByteCount(sum.bytes)->utf8() << '\n';
  }
  std::cout << "from " << qxRFC3339String(log.first)->utf8() << " to "
            << qxRFC3339String(log.last)->utf8() << ", " << daysBetweenDate(log.first, log.last)
            << " whole days: " << log.all.downloads << " downloads, "
            << qx::QXSizeFormatter::stringForByteCount(log.all.bytes)->utf8() << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  Log log;
  if (!read(log, argc > 1 ? argv[1] : EXAMPLES_DIR "/data/downloads.csv")) return 1;
  if (log.all.downloads == 0) {
    std::cout << "no downloads\n";
  } else {
    show(log);
  }
}

// qx date: the moment that a text or a number of seconds stands for.

#include <CLI/App.hpp>
#include <cmath>
#include <memory>
#include <optional>
#include <string>

#include <QXFoundation/iso_date.h>
#include <QXFoundation/rfc3339.h>

#include "tools/qx/command.h"
#include "tools/qx/failure.h"
#include "tools/qx/labelled_lines.h"
#include "tools/qx/number_of.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

// Words such as "nan", which are numbers to C++, are none here.
std::optional<double> secondsOf(const std::string& text) {
  if (text.find_first_not_of("0123456789.-eE+") != std::string::npos) return std::nullopt;
  return numberOf<double>(text);
}

qx::Ref<qx::Date> dateOf(const std::string& text) {
  constexpr double kBeyond = 9223372036854775808.0;
  if (const auto seconds = secondsOf(text)) {
    if (!(std::fabs(*seconds) < kBeyond)) throw Failure("seconds must fit 64 bits, not " + text);
    return qx::Date::dateWithTimeIntervalSince1970(*seconds);
  }
  auto date = qx::qxDateFromISO8601String(text);
  if (date == nullptr) {
    throw Failure("no date can be read from " + cutToWidth(printable(quotedIfEmpty(text)), 60) +
                  "; a full one is 2021-03-04T05:06:07+02:00");
  }
  return date;
}

// The years that RFC 3339 text has no room for are shown by their UTC alone, to the second.
std::string utcText(const qx::Ref<qx::Date>& date) {
  const auto text = qxRFC3339String(date);
  return (text != nullptr ? text : qxISO8601String(date))->utf8();
}
std::string localText(const qx::Ref<qx::Date>& date) {
  const auto text = qxLocalRFC3339String(date);
  return text != nullptr ? text->utf8() : "not shown outside the years 0 to 9999";
}
std::string strictText(const std::string& text) {
  const auto date = qx::qxDateFromRFC3339String(text);
  return date != nullptr ? utcText(date) : "refused";
}

void runDate(const std::string& text) {
  const auto date = dateOf(text);
  const std::string seconds = decimalText(date->timeIntervalSince1970());
  if (secondsOf(text)) {
    showLines({{"utc", utcText(date)}, {"local", localText(date)}, {"seconds", seconds}});
  } else {
    showLines({{"utc", utcText(date)},
               {"local", localText(date)},
               {"seconds", seconds},
               {"strict", strictText(text)}});
  }
}

std::function<void()> declareDate(CLI::App& app) {
  const auto text = std::make_shared<std::string>();
  app.add_option("DATE", *text,
                 "A text as in ISO 8601, or a number of seconds since 1970-01-01 00:00:00 UTC")
      ->type_name("")
      ->required();
  return [text] { runDate(*text); };
}

}  // namespace

const Command kDateCommand{"date",
                           "Show the moment that a date text or a number of seconds stands for",
                           "A text without an offset, and one that ends in Z, is taken as local "
                           "time (TZ tells the zone);\n"
                           "\"strict\" is what a reader of RFC 3339 makes of the text, to which Z "
                           "is UTC, or \"refused\".\n"
                           "\n"
                           "Examples:\n"
                           "  qx date 2021-03-04T05:06:07+02:00\n"
                           "  TZ=Asia/Kathmandu qx date 2021-03-04T05:06:07Z\n"
                           "  qx date 1614834367.25",
                           &declareDate};

}  // namespace qxtool

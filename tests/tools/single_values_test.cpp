// qx date, qx size and qx fraction: what single values stand for.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/scoped_zone.h"
#include "tests/tools/run_program.h"

namespace qx_tests {
namespace {

using test_support::ScopedZone;

std::string shown(const std::vector<std::string>& arguments) {
  const ProgramRun run = runTool(arguments);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, "");
  return run.out;
}

TEST(DateCommand, ShowsTheMomentOfATextInUtcAndLocally) {
  struct Case {
    const char* zone;
    const char* text;
    const char* lines;
  };
  const Case cases[] = {
      {"Asia/Kathmandu", "2021-03-04T05:06:07+02:00",
       "utc      2021-03-04T03:06:07Z\n"
       "local    2021-03-04T08:51:07+05:45\n"
       "seconds  1614827167\n"
       "strict   2021-03-04T03:06:07Z\n"},
      // To the strict reader Z is UTC.
      {"America/New_York", "2021-07-04T05:06:07.5Z",
       "utc      2021-07-04T09:06:07.5Z\n"
       "local    2021-07-04T05:06:07.5-04:00\n"
       "seconds  1625389567.5\n"
       "strict   2021-07-04T05:06:07.5Z\n"},
      {"Australia/Sydney", "2021-13-40T00:00:00",
       "utc      2021-12-30T13:00:00Z\n"
       "local    2021-12-31T00:00:00+11:00\n"
       "seconds  1640869200\n"
       "strict   refused\n"},
      {"UTC", "10:20:30",
       "utc      0001-01-01T10:20:30Z\n"
       "local    0001-01-01T10:20:30Z\n"
       "seconds  -62135559570\n"
       "strict   refused\n"},
      {"UTC", "-0044-03-15T00:00:00",
       "utc      -0044-03-15T00:00:00Z\n"
       "local    not shown outside the years 0 to 9999\n"
       "seconds  -63549360000\n"
       "strict   refused\n"},
  };
  for (const Case& c : cases) {
    const ScopedZone zone(c.zone);
    EXPECT_EQ(shown({"date", c.text}), c.lines) << c.text;
  }
}

TEST(DateCommand, ShowsTheMomentOfSeconds) {
  const ScopedZone zone("Pacific/Pago_Pago");
  EXPECT_EQ(shown({"date", "0"}),
            "utc      1970-01-01T00:00:00Z\n"
            "local    1969-12-31T13:00:00-11:00\n"
            "seconds  0\n");
  EXPECT_EQ(shown({"date", "-1.5"}),
            "utc      1969-12-31T23:59:58.5Z\n"
            "local    1969-12-31T12:59:58.5-11:00\n"
            "seconds  -1.5\n");
  EXPECT_EQ(shown({"date", "9.2e18"}),
            "utc      291536396232-08-31T11:33:20Z\n"
            "local    not shown outside the years 0 to 9999\n"
            "seconds  9200000000000000000\n");
}

TEST(SizeCommand, ShowsTheSizeText) {
  const std::pair<const char*, const char*> cases[] = {
      {"0", "0 bytes\n"},
      {"1500", "1.500 KB\n"},
      {"1050000", "1.5 MB\n"},
      {"-1", "-1 bytes\n"},
      {"9223372036854775807", "9223372036.85 GB\n"},
      {"-9223372036854775808", "-9223372036854775808 bytes\n"},
  };
  for (const auto& [count, text] : cases) EXPECT_EQ(shown({"size", count}), text);
}

TEST(FractionCommand, ShowsTheFractionThatIsMade) {
  EXPECT_EQ(shown({"fraction", "6/-4"}),
            "fraction  -3/2\n"
            "text      -1.5\n"
            "value     -1.5\n"
            "integer   -1\n");
  EXPECT_EQ(shown({"fraction", "3.14159"}),
            "fraction  355/113\n"
            "text      3.1\n"
            "value     3.1415929203539825\n"
            "integer   3\n");
  EXPECT_EQ(shown({"fraction", "-1/3"}),
            "fraction  -1/3\n"
            "text      -1/3\n"
            "value     -0.3333333333333333\n"
            "integer   0\n");
  const std::pair<const char*, const char*> cases[] = {
      {"2.5", "fraction  4/1\n"},
      {"5/0", "fraction  0/0\n"},
      {"-7", "fraction  -7/1\n"},
      {"9223372036854775807", "fraction  9223372036854775807/1\n"},
      {"-9223372036854775808/2", "fraction  -4611686018427387904/1\n"},
      {"1e300", "fraction  -9223372036854775808/1\n"},
  };
  for (const auto& [given, line] : cases) {
    const std::string lines = shown({"fraction", given});
    EXPECT_EQ(lines.substr(0, lines.find('\n') + 1), line) << given;
  }
}

struct Refusal {
  std::vector<std::string> arguments;
  std::string reason;
};

class SingleValue : public testing::TestWithParam<Refusal> {};

TEST_P(SingleValue, IsRefusedWithAReason) {
  const ProgramRun run = runTool(GetParam().arguments);
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "qx: " + GetParam().reason + "\n");
}

std::string noDate(const std::string& text) {
  return "no date can be read from " + text + "; a full one is 2021-03-04T05:06:07+02:00";
}

INSTANTIATE_TEST_SUITE_P(
    Table, SingleValue,
    testing::Values(
        Refusal{{"date"}, "DATE is required"}, Refusal{{"date", ""}, noDate("\"\"")},
        Refusal{{"date", "2021-03-04"}, noDate("2021-03-04")},
        Refusal{{"date", "nan"}, noDate("nan")}, Refusal{{"date", "1e"}, noDate("1e")},
        Refusal{{"date", "a\x1B\xFF"}, noDate("a\\u001B\\xFF")},
        Refusal{{"date", "1e300"}, "seconds must fit 64 bits, not 1e300"},
        Refusal{{"date", "1e999"}, noDate("1e999")},
        Refusal{{"date", "9223372036854775808"},
                "seconds must fit 64 bits, not 9223372036854775808"},
        Refusal{{"date", "0", "1"}, "The following argument was not expected: 1"},
        Refusal{{"size"}, "N is required"},
        Refusal{{"size", ""}, "N is an integer of 64 bits, not \"\""},
        Refusal{{"size", "1.5"}, "N is an integer of 64 bits, not 1.5"},
        Refusal{{"size", "9223372036854775808"},
                "N is an integer of 64 bits, not 9223372036854775808"},
        Refusal{{"fraction"}, "FRACTION is required"},
        Refusal{{"fraction", "1/"}, "N/D is two integers of 64 bits, not 1/"},
        Refusal{{"fraction", "1/2/3"}, "N/D is two integers of 64 bits, not 1/2/3"},
        Refusal{{"fraction", "1.5/2"}, "N/D is two integers of 64 bits, not 1.5/2"},
        Refusal{{"fraction", "inf"}, "a fraction is made from N/D or a decimal number, not inf"},
        Refusal{{"fraction", "x"}, "a fraction is made from N/D or a decimal number, not x"}));

}  // namespace
}  // namespace qx_tests

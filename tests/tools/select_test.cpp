// qx select: which records, which of their entries, in which form.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/run_program.h"

namespace qx_tests {
namespace {

const char kPeople[] = R"([
  {"name": "Jim", "age": 30, "address": {"city": "Oslo", "zip": 150}, "score": 1.0, "ok": true},
  {"name": "Ann", "age": 21, "address": {"city": "Rome"}, "email": null, "tags": ["a", 1]},
  {"name": "Jo", "age": 55, "limit": 40, "score": 0.1}
])";

ProgramRun select(std::vector<std::string> arguments, const std::string& json = kPeople) {
  arguments.insert(arguments.begin(), {"select", "-"});
  Surroundings surroundings;
  surroundings.input = json;
  return runTool(arguments, surroundings);
}

// The names of the people that pass, one a line.
std::string namesWhere(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "--where");
  arguments.insert(arguments.end(), {"--keys", "name"});
  const ProgramRun run = select(arguments);
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.err, "");
  return run.out;
}

struct WhereCase {
  std::vector<std::string> arguments;
  std::string names;
};

class SelectWhere : public testing::TestWithParam<WhereCase> {};

TEST_P(SelectWhere, TakesArgumentsInTheirOrderAsTheirConversionsWant) {
  EXPECT_EQ(namesWhere(GetParam().arguments), "name\n" + GetParam().names);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SelectWhere,
    testing::Values(
        WhereCase{{"age > %d", "--arg", "25"}, "Jim\nJo\n"},
        WhereCase{{"age > %d", "--arg", "-1"}, "Jim\nAnn\nJo\n"},
        WhereCase{{"age > %d", "--arg=25"}, "Jim\nJo\n"},
        WhereCase{{"age > %d", "--arg-json", "25"}, "Jim\nJo\n"},
        WhereCase{{"score > %f", "--arg", "0.5"}, "Jim\n"},
        WhereCase{{"score > %f", "--arg", "-1e-3"}, "Jim\nJo\n"},
        WhereCase{{"score > %f", "--arg", "1"}, ""},
        WhereCase{{"score >= %f", "--arg-json", "1"}, "Jim\n"},
        WhereCase{{"name = %s", "--arg", "Ann"}, "Ann\n"},
        WhereCase{{"name = %s", "--arg-json", "\"Ann\""}, "Ann\n"},
        WhereCase{{"name = %@", "--arg", "Ann"}, "Ann\n"},
        WhereCase{{"name = %@", "--arg", ""}, ""}, WhereCase{{"age = %@", "--arg", "30"}, ""},
        WhereCase{{"age = %@", "--arg-json", "30"}, "Jim\n"},
        WhereCase{{"age = %@", "--arg-json", "30.0"}, "Jim\n"},
        WhereCase{{"ok = %@", "--arg-json", "true"}, "Jim\n"},
        WhereCase{{"email = %@", "--arg-json", "null"}, "Jim\nAnn\nJo\n"},
        WhereCase{{"tags = %@", "--arg-json", "[\"a\",1]"}, "Ann\n"},
        WhereCase{{"tags contains %@", "--arg", "a"}, "Ann\n"},
        WhereCase{{"address = %@", "--arg-json", R"({"zip":150,"city":"Oslo"})"}, "Jim\n"},
        WhereCase{{"%s > limit", "--arg", "age"}, "Jo\n"},
        WhereCase{{"age > %d and name like %@", "--arg", "25", "--arg", "J?"}, "Jo\n"},
        WhereCase{{"age > %d and name like %@", "--arg-json", "25", "--arg", "J?"}, "Jo\n"},
        WhereCase{{"name like %@ and age > %d", "--arg", "J*", "--arg-json", "40"}, "Jo\n"},
        WhereCase{{"name like %@ and age > %d", "--arg-json", "\"J*\"", "--arg", "40"}, "Jo\n"},
        WhereCase{{"name = %@ or name = %@ or name = %@", "--arg-json", "\"x\"", "--arg", "Jim",
                   "--arg-json", "\"Ann\""},
                  "Jim\nAnn\n"},
        WhereCase{{"name = 'Jim'"}, "Jim\n"}, WhereCase{{"age > 25"}, ""},
        WhereCase{{"name = %@", "--arg", "--count"}, ""}));

TEST(Select, ShowsAllRecordsWithoutAQualifier) {
  const ProgramRun run = select({"--keys", "name"});
  EXPECT_EQ(run.out, "name\nJim\nAnn\nJo\n");
  EXPECT_EQ(run.exitCode, 0);
}

TEST(Select, ReadsAFileAsItReadsStandardInput) {
  const TemporaryFolder folder;
  const ProgramRun run = runTool({"select", "--count", folder.file("people.json", kPeople)});
  EXPECT_EQ(run.out, "3\n");
  EXPECT_EQ(run.err, "");
}

TEST(Select, TakesWhatStandsBehindADoubleDashAsAFile) {
  const TemporaryFolder folder;
  folder.file("--people", "[{}]");
  EXPECT_EQ(runTool({"select", "--count", "--", folder.path("--people")}).out, "1\n");
}

TEST(Select, AlignsAllKeysOfAllRecordsInATable) {
  EXPECT_EQ(select({}).out,
            "name  age  address                       score  ok    email  tags      limit\n"
            "Jim    30  {\"city\": \"Oslo\", \"zip\": 150}    1.0  true\n"
            "Ann    21  {\"city\": \"Rome\"}                           null   [\"a\", 1]\n"
            "Jo     55                                  0.1                            40\n");
}

TEST(Select, WritesOneRecordALineAsJson) {
  const ProgramRun run = select({"--output", "json"});
  EXPECT_EQ(run.out, R"([
{"name": "Jim", "age": 30, "address": {"city": "Oslo", "zip": 150}, "score": 1.0, "ok": true},
{"name": "Ann", "age": 21, "address": {"city": "Rome"}, "email": null, "tags": ["a", 1]},
{"name": "Jo", "age": 55, "limit": 40, "score": 0.1}
]
)");
  EXPECT_EQ(select({"--output", "json"}, run.out).out, run.out);
}

TEST(Select, ShowsTableColumnsInTheOrderOfKeysAndJsonInTheRecordsOrder) {
  EXPECT_EQ(select({"--keys", "age,address.city,name"}).out,
            "age  address.city  name\n"
            " 30  Oslo          Jim\n"
            " 21  Rome          Ann\n"
            " 55                Jo\n");
  EXPECT_EQ(select({"--keys", "age,address.city,name", "--output", "json"}).out,
            "[\n"
            "{\"name\": \"Jim\", \"age\": 30, \"address.city\": \"Oslo\"},\n"
            "{\"name\": \"Ann\", \"age\": 21, \"address.city\": \"Rome\"},\n"
            "{\"name\": \"Jo\", \"age\": 55}\n"
            "]\n");
}

TEST(Select, PrefersAnEntryWithTheWholeKeyToAKeyPath) {
  const std::string json = R"([{"a": {"b": 1}, "a.b": 2}, {"a": {"b": 3}}])";
  EXPECT_EQ(select({"--keys", "a.b"}, json).out, "a.b\n  2\n  3\n");
  EXPECT_EQ(select({"--keys", "a.b", "--output", "json"}, json).out,
            "[\n{\"a.b\": 2},\n{\"a.b\": 3}\n]\n");
}

TEST(Select, LeavesOutKeysThatNoRecordHas) {
  EXPECT_EQ(select({"--keys", "name,nothing", "--limit", "1"}).out, "name  nothing\nJim\n");
  EXPECT_EQ(select({"--keys", "nothing,no.thing", "--limit", "1", "--output", "json"}).out,
            "[\n{}\n]\n");
}

TEST(Select, CountsAKeyThatIsNamedTwiceOnce) {
  EXPECT_EQ(select({"--keys", "name,name", "--limit", "1", "--output", "json"}).out,
            "[\n{\"name\": \"Jim\"}\n]\n");
}

TEST(Select, StopsAtTheLimit) {
  EXPECT_EQ(select({"--keys", "name", "--limit", "2"}).out, "name\nJim\nAnn\n");
  EXPECT_EQ(select({"--keys", "name", "--limit", "0"}).out, "name\n");
  EXPECT_EQ(select({"--keys", "name", "--limit", "99"}).out, "name\nJim\nAnn\nJo\n");
  EXPECT_EQ(select({"--where", "age > %d", "--arg", "25", "--keys", "name", "--limit", "1"}).out,
            "name\nJim\n");
}

TEST(Select, ReadsTheWholeFileAlsoWithALimit) {
  const ProgramRun run = select({"--limit", "1"}, "[{\"a\": 1}, {\"a\": ");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
}

struct SortCase {
  std::vector<std::string> arguments;
  std::string names;
};

class SelectSort : public testing::TestWithParam<SortCase> {};

TEST_P(SelectSort, OrdersWhatPasses) {
  static const char kRecords[] =
      R"([{"name": "bo", "age": 3}, {"name": "Al", "age": 1}, {"name": "cy", "age": 2},
          {"name": "Di", "age": 1}, {"name": "al", "age": 2, "x:y": 1}])";
  std::vector<std::string> arguments = GetParam().arguments;
  arguments.insert(arguments.end(), {"--keys", "name"});
  const ProgramRun run = select(arguments, kRecords);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.out, "name\n" + GetParam().names);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SelectSort,
    testing::Values(
        SortCase{{"--sort", "name"}, "Al\nDi\nal\nbo\ncy\n"},
        SortCase{{"--sort", "name:ascending"}, "Al\nDi\nal\nbo\ncy\n"},
        SortCase{{"--sort", "name:descending"}, "cy\nbo\nal\nDi\nAl\n"},
        // Stable: the two that are equal without their case stay as they were.
        SortCase{{"--sort", "name:ci-ascending", "--sort", "name:ci-ascending"},
                 "Al\nal\nbo\ncy\nDi\n"},
        SortCase{{"--sort", "name:ci-descending", "--sort", "age"}, "Di\ncy\nbo\nAl\nal\n"},
        SortCase{{"--sort", "age", "--sort", "name:descending"}, "Di\nAl\ncy\nal\nbo\n"},
        SortCase{{"--sort", "age", "--sort", "name", "--limit", "2"}, "Al\nDi\n"},
        // After the selection, and before the limit.
        SortCase{{"--where", "age > %d", "--arg", "1", "--sort", "age:descending", "--limit", "1"},
                 "bo\n"},
        // The order stands behind the last colon; missing values come first.
        SortCase{{"--sort", "x:y:descending", "--sort", "age", "--sort", "name"},
                 "al\nAl\nDi\ncy\nbo\n"}));

TEST(Select, RefusesToSortWhatHasNoOrder) {
  const std::string reason =
      "qx: --sort: there are records whose values have no order: of different kinds, or missing or "
      "null beside others\n";
  for (const std::string values : {R"([{"a": 1}, {"a": "1"}])", R"([{"a": 1}, {"b": 1}])"}) {
    const ProgramRun run = select({"--sort", "a"}, values);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, reason);
  }
  EXPECT_EQ(select({"--sort", "a", "--count"}, R"([{"a": 1}, {"a": "1"}])").out, "2\n");
}

TEST(Select, CountsWhatItWouldShow) {
  EXPECT_EQ(select({"--count"}).out, "3\n");
  EXPECT_EQ(select({"--count", "--where", "age > %d", "--arg", "25"}).out, "2\n");
  EXPECT_EQ(select({"--count", "--where", "age > %d", "--arg", "99"}).out, "0\n");
  EXPECT_EQ(select({"--count", "--limit", "1"}).out, "1\n");
  EXPECT_EQ(select({"--count", "--output", "json"}).out, "3\n");
}

TEST(Select, ShowsThatNothingIsThere) {
  EXPECT_EQ(select({}, "[]").out, "");
  EXPECT_EQ(select({"--keys", "a"}, "[]").out, "a\n");
  EXPECT_EQ(select({"--output", "json"}, "[]").out, "[]\n");
  EXPECT_EQ(select({"--output", "json"}, "[{}]").out, "[\n{}\n]\n");
  EXPECT_EQ(select({"--count"}, " [ ] ").out, "0\n");
}

TEST(Select, DecidesAboutManyRecordsInTheirOrder) {
  std::string json = "[";
  std::string expected = "    n\n";
  for (int i = 0; i < 10000; ++i) {
    const std::string number = std::to_string(10000 + i);
    json += (i == 0 ? "{\"n\":" : ",{\"n\":") + number + "}";
    if (i % 2 == 1 && i > 4000) expected += number + "\n";
    if (i % 2 == 1) json.insert(json.size() - 1, ",\"odd\":true");
  }
  const ProgramRun run = select(
      {"--where", "odd = %@ and n > %d", "--arg-json", "true", "--arg", "14000", "--keys", "n"},
      json + "]");
  EXPECT_EQ(run.out, expected);
}

}  // namespace
}  // namespace qx_tests

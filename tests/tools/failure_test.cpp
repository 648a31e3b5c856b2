// What ends with exit code 2: nothing on standard output, one line on standard error.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/tools/run_program.h"

namespace qx_tests {
namespace {

void expectFailure(const ProgramRun& run, const std::string& reason) {
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "qx: " + reason + "\n");
}

struct UsageCase {
  std::vector<std::string> arguments;
  std::string reason;
};

class Usage : public testing::TestWithParam<UsageCase> {};

TEST_P(Usage, IsRefusedWithAReason) {
  Surroundings surroundings;
  surroundings.input = R"([{"a": 1}])";
  expectFailure(runTool(GetParam().arguments, surroundings), GetParam().reason);
}

INSTANTIATE_TEST_SUITE_P(
    CommandLine, Usage,
    testing::Values(
        UsageCase{{}, "no command is given; qx --help lists them"},
        UsageCase{{"bogus"},
                  "there is no command bogus; there are select, explain, plist, prefs, date, size, "
                  "fraction, lock, identity, tags, attributes"},
        UsageCase{{"", "x"},
                  "there is no command \"\"; there are select, explain, plist, prefs, date, size, "
                  "fraction, lock, identity, tags, attributes"},
        UsageCase{{"--bogus"}, "there is no option --bogus before a command; see qx --help"},
        UsageCase{{"--bogus", "size", "1"},
                  "there is no option --bogus before a command; see qx --help"},
        UsageCase{{"select"}, "FILE is required"},
        UsageCase{{"select", "-", "more"}, "The following argument was not expected: more"},
        UsageCase{{"select", "-", "--bogus"}, "The following argument was not expected: --bogus"},
        UsageCase{{"select", "-", "--where"}, "--where: 1 required FORMAT missing"},
        UsageCase{{"select", "-", "--where", "a = b", "--where", "a = c"},
                  "--where: At Most 1 required but received 2"},
        UsageCase{{"select", "-", "--arg"}, "--arg: 1 required TEXT missing"},
        UsageCase{{"select", "-", "--limit", "-1"}, "--limit takes a number of records, not -1"},
        UsageCase{{"select", "-", "--limit", "x"}, "--limit takes a number of records, not x"},
        UsageCase{{"select", "-", "--limit", "1x"}, "--limit takes a number of records, not 1x"},
        UsageCase{{"select", "-", "--limit", "18446744073709551616"},
                  "--limit takes a number of records, not 18446744073709551616"},
        UsageCase{{"select", "-", "--output", "xml"},
                  "--output takes table, json, plist or binary, not xml"},
        UsageCase{{"select", "-", "--keys", ""}, "--keys: there is an empty key in the list"},
        UsageCase{{"select", "-", "--keys", "a,"}, "--keys: there is an empty key in the list"},
        UsageCase{{"select", "-", "--keys", "a\xFF"}, "--keys: the list is not UTF-8"},
        UsageCase{{"select", "-", "--sort", ""}, "--sort: the key is empty"},
        UsageCase{{"select", "-", "--sort", ":descending"}, "--sort: the key is empty"},
        UsageCase{{"select", "-", "--sort", "a\xFF"}, "--sort: the key is not UTF-8"},
        UsageCase{
            {"select", "-", "--sort", "a:down"},
            "--sort: the order is ascending, descending, ci-ascending or ci-descending, not down"},
        UsageCase{{"select", "-", "--arg", "1"}, "--arg and --arg-json need --where"},
        UsageCase{{"explain"}, "FORMAT is required"},
        UsageCase{{"explain", "a = b", "--json", "--dot"}, "--json excludes --dot"},
        UsageCase{{"explain", "a = b", "c = d"},
                  "The following argument was not expected: c = d"}));

UsageCase where(std::vector<std::string> arguments, const std::string& reason) {
  arguments.insert(arguments.begin(), {"select", "-", "--where"});
  return {arguments, "--where: " + reason};
}

INSTANTIATE_TEST_SUITE_P(
    Formats, Usage,
    testing::Values(
        where({""}, "the format is empty"), where({"a = \xFF"}, "the format is not UTF-8"),
        where({"a = %x"}, "unrecognized character (x) in the conversion specification"),
        where({"a = %"}, "the format ends within a conversion; %% stands for a percent sign"),
        where({"a = %d"}, "missing arguments: 0 given, the format takes 1"),
        where({"a = %d and b = %@", "--arg", "1"},
              "missing arguments: 1 given, the format takes 2"),
        where({"a = %d", "--arg", "1", "--arg-json", "2"},
              "too many arguments: 2 given, the format takes 1"),
        where({"a = b", "--arg", "1"}, "too many arguments: 1 given, the format takes 0"),
        where({"a = %d", "--arg", "x"}, "argument 1 (x): %d takes an integer of 32 bits"),
        where({"a = %d", "--arg", ""}, "argument 1 (): %d takes an integer of 32 bits"),
        where({"a = %d", "--arg", " 1"}, "argument 1 ( 1): %d takes an integer of 32 bits"),
        where({"a = %d", "--arg", "1.0"}, "argument 1 (1.0): %d takes an integer of 32 bits"),
        where({"a = %d", "--arg", "2147483648"},
              "argument 1 (2147483648): %d takes an integer of 32 bits"),
        where({"a = %d", "--arg-json", "-2147483649"},
              "argument 1 (-2147483649): %d takes an integer of 32 bits"),
        where({"a = %d", "--arg-json", "1.0"}, "argument 1 (1.0): %d takes an integer of 32 bits"),
        where({"a = %d", "--arg-json", "true"},
              "argument 1 (true): %d takes an integer of 32 bits"),
        where({"a = %d", "--arg-json", "null"},
              "argument 1 (null): %d takes an integer of 32 bits"),
        where({"a = %f", "--arg", "x"},
              "argument 1 (x): %f takes a real number within single precision"),
        where({"a = %f", "--arg", "nan"},
              "argument 1 (nan): %f takes a real number within single precision"),
        where({"a = %f", "--arg", "1e39"},
              "argument 1 (1e39): %f takes a real number within single precision"),
        where({"a = %f", "--arg-json", "\"1\""},
              "argument 1 (\"1\"): %f takes a real number within single precision"),
        where({"a = %f", "--arg-json", "false"},
              "argument 1 (false): %f takes a real number within single precision"),
        where({"a = %s", "--arg-json", "1"}, "argument 1 (1): %s takes a string"),
        where({"a = %@ and b = %d", "--arg", "x", "--arg", "y"},
              "argument 2 (y): %d takes an integer of 32 bits"),
        where({"a = %@", "--arg", "\xFF"}, "argument 1 (\\xFF): it is not UTF-8"),
        where({"a = %@", "--arg-json", "[1"},
              "argument 1 ([1): parse error at line 1, column 3: syntax error while parsing array "
              "- unexpected end of input; expected ']' (byte 2)"),
        where({"a = %@", "--arg-json", ""},
              "argument 1 (): parse error at line 1, column 1: syntax error while parsing value - "
              "unexpected end of input; expected '[', '{', or a literal (byte 0)"),
        where({"a = %@", "--arg-json", "1 2"},
              "argument 1 (1 2): parse error at line 1, column 3: syntax error while parsing value "
              "- unexpected number literal; expected end of input (byte 2)")));

struct InputCase {
  std::string content;
  std::string reason;
};

class MalformedInput : public testing::TestWithParam<InputCase> {};

TEST_P(MalformedInput, IsRefusedWithItsPlace) {
  Surroundings surroundings;
  surroundings.input = GetParam().content;
  for (const char* output : {"table", "json"}) {
    expectFailure(runTool({"select", "-", "--output", output}, surroundings),
                  "standard input: " + GetParam().reason);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, MalformedInput,
    testing::Values(
        InputCase{"",
                  "parse error at line 1, column 1: syntax error while parsing value - "
                  "unexpected end of input; expected '[', '{', or a literal (byte 0)"},
        InputCase{"{}", "the root is a dictionary, not an array of dictionaries (byte 0)"},
        InputCase{"\"x\"", "the root is not an array of dictionaries (byte 2)"},
        InputCase{"[{}, 1]", "element 2 of the array is not a dictionary (byte 6)"},
        InputCase{"[null]", "element 1 of the array is not a dictionary (byte 4)"},
        InputCase{"[{}, []]", "element 2 of the array is not a dictionary (byte 6)"},
        InputCase{"[{}\n,\n{]",
                  "parse error at line 3, column 2: syntax error while parsing object "
                  "key - unexpected ']'; expected string literal (byte 7)"},
        InputCase{"[{}] x",
                  "parse error at line 1, column 6: syntax error while parsing value - "
                  "invalid literal; last read: '[{}] x' (byte 5)"},
        InputCase{"[{\"a\": 01}]",
                  "parse error at line 1, column 9: syntax error while parsing "
                  "object - unexpected number literal; expected '}' (byte 8)"},
        InputCase{"[{\"a\": NaN}]",
                  "parse error at line 1, column 8: syntax error while parsing "
                  "value - invalid literal; last read: '\"a\": N' (byte 7)"},
        InputCase{"[{\"a\": 1e999}]", "number overflow parsing '1e999' (byte 11)"},
        InputCase{"[{\"a\": \"\xC3(\"}]",
                  "parse error at line 1, column 10: syntax error while parsing value - invalid "
                  "string: ill-formed UTF-8 byte; last read: '\"\\xC3(' (byte 9)"},
        InputCase{"[{\"a\": \"\\ud800\"}]",
                  "parse error at line 1, column 15: syntax error while parsing value - invalid "
                  "string: surrogate U+D800..U+DBFF must be followed by U+DC00..U+DFFF; last read: "
                  "'\"\\ud800\"' (byte 14)"},
        InputCase{"[{\"a\": \"\x1B[31m\"}]",
                  "parse error at line 1, column 9: syntax error while parsing value - invalid "
                  "string: control character U+001B (ESC) must be escaped to \\u001B; last read: "
                  "'\"<U+001B>' (byte 8)"}));

TEST(MalformedInput, IsQuotedAtItsEndAlone) {
  Surroundings surroundings;
  surroundings.input = "[{\"a\": \"" + std::string(100000, 'x') + "\n";
  const ProgramRun run = runTool({"select", "-"}, surroundings);
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_LT(run.err.size(), 300U);
  EXPECT_NE(run.err.find("last read: '...xxxx"), std::string::npos);
}

TEST(MalformedInput, IsToldToItsEndWhereItsNameHoldsANul) {
  Surroundings surroundings;
  surroundings.input = R"([{"a\u0000b": 1}])";
  const ProgramRun run = runTool({"select", "-", "--output", "plist"}, surroundings);
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_NE(run.err.find("[0].a\\u0000b: "), std::string::npos) << run.err;
}

TEST(UnreadableFile, IsRefusedWithItsName) {
  const TemporaryFolder folder;
  const std::string missing = folder.path("missing");
  expectFailure(runTool({"select", missing}),
                "cannot read " + missing + ": No such file or directory");
  expectFailure(runTool({"select", folder.path("")}),
                "cannot read " + folder.path("") + ": Is a directory");
  Surroundings surroundings;
  surroundings.withoutInput = true;
  expectFailure(runTool({"select", "-"}, surroundings),
                "cannot read standard input: Bad file descriptor");
}

TEST(UnreadableFile, CannotUpsetTheTerminalByItsName) {
  expectFailure(runTool({"select", "/no\n\x1B[31m\xFFthing"}),
                "cannot read /no\\n\\u001B[31m\\xFFthing: No such file or directory");
}

TEST(Reason, ShowsAnEmptyWordAsQuotes) {
  EXPECT_EQ(runTool({"select", ""}).err, "qx: cannot read \"\": No such file or directory\n");
  const TemporaryFolder folder;
  const std::string list = folder.file("l", "<plist version=\"1.0\"><true/></plist>");
  EXPECT_EQ(runTool({"plist", list, "--out", ""}).err,
            "qx: cannot write \"\": No such file or directory\n");
  EXPECT_EQ(runTool({"lock", list, "--", ""}).err,
            "qx: cannot run \"\": No such file or directory\n");
}

TEST(UnwritableOutput, IsReported) {
  Surroundings surroundings;
  surroundings.input = R"([{"a": 1}])";
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"select", "-"},
                                             {"select", "-", "--output", "json"},
                                             {"explain", "a = b"},
                                             {"--help"}}) {
    surroundings.output = "/dev/full";
    expectFailure(runTool(arguments, surroundings),
                  "cannot write the output: No space left on device");
    surroundings.output = "closed";
    expectFailure(runTool(arguments, surroundings), "cannot write the output: Bad file descriptor");
  }
}

TEST(UnwritableOutput, EndsQuietlyWhenNobodyReadsIt) {
  const TemporaryFolder folder;
  std::string json = "[{\"a\": 1}";
  for (int i = 0; i < 100000; ++i) json += ",{\"a\": 1}";
  const std::string file = folder.file("many.json", json + "]");
  const std::string tool = QX_TOOL_PATH;
  const ProgramRun run = runProgram(
      {"/bin/bash", "-c", "\"$0\" select \"$1\" | head -n 1; echo ${PIPESTATUS[0]}", tool, file});
  EXPECT_EQ(run.out, "a\n141\n");
  EXPECT_EQ(run.err, "");
}

TEST(UnwritableOutput, IsReportedWhenTheSignalIsIgnored) {
  const TemporaryFolder folder;
  std::string json = "[{\"a\": 1}";
  for (int i = 0; i < 100000; ++i) json += ",{\"a\": 1}";
  const std::string file = folder.file("many.json", json + "]");
  const ProgramRun run = runProgram(
      {"/bin/bash", "-c",
       "trap '' PIPE; \"$0\" select \"$1\" | head -n 1 >/dev/null; echo ${PIPESTATUS[0]}",
       QX_TOOL_PATH, file});
  EXPECT_EQ(run.out, "2\n");
  EXPECT_EQ(run.err, "qx: cannot write the output: Broken pipe\n");
}

}  // namespace
}  // namespace qx_tests

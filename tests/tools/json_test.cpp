// How JSON is read and written again.

#include <gtest/gtest.h>

#include <string>

#include "tests/tools/run_program.h"

namespace qx_tests {
namespace {

ProgramRun rewritten(const std::string& json) {
  Surroundings surroundings;
  surroundings.input = json;
  return runTool({"select", "-", "--output", "json"}, surroundings);
}

struct ValueCase {
  const char* read;
  const char* written;
};

class JsonValue : public testing::TestWithParam<ValueCase> {};

TEST_P(JsonValue, IsWrittenInOneForm) {
  const std::string begin = "[\n{\"v\": ";
  const std::string end = "}\n]\n";
  const ProgramRun run = rewritten(begin + GetParam().read + end);
  EXPECT_EQ(run.out, begin + GetParam().written + end);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(rewritten(run.out).out, run.out);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, JsonValue,
    testing::Values(ValueCase{"0", "0"}, ValueCase{"-0", "0"}, ValueCase{"0.0", "0.0"},
                    ValueCase{"-0.0", "-0.0"}, ValueCase{"1", "1"}, ValueCase{"1.0", "1.0"},
                    ValueCase{"1.50", "1.5"}, ValueCase{"1e2", "100.0"}, ValueCase{"0.1", "0.1"},
                    ValueCase{"1e23", "1e+23"}, ValueCase{"1e-7", "1e-07"},
                    ValueCase{"0.30000000000000004", "0.30000000000000004"},
                    ValueCase{"5e-324", "5e-324"},
                    ValueCase{"1.7976931348623157e308", "1.7976931348623157e+308"},
                    ValueCase{"9223372036854775807", "9223372036854775807"},
                    ValueCase{"-9223372036854775808", "-9223372036854775808"},
                    ValueCase{"9223372036854775808", "9223372036854775808"},
                    ValueCase{"18446744073709551615", "18446744073709551615"},
                    ValueCase{"18446744073709551616", "18446744073709551616"},
                    ValueCase{"-9223372036854775809", "-9223372036854775809"},
                    ValueCase{"12345678901234567890123456789012345678",
                              "12345678901234567890123456789012345678"},
                    ValueCase{"10000000000000000000000000000000000000",
                              "10000000000000000000000000000000000000"},
                    ValueCase{"100000000000000000000000000000000000000", "1e+38"}));

INSTANTIATE_TEST_SUITE_P(
    Others, JsonValue,
    testing::Values(ValueCase{"null", "null"}, ValueCase{"true", "true"},
                    ValueCase{"false", "false"}, ValueCase{"[]", "[]"}, ValueCase{"{}", "{}"},
                    ValueCase{"[ [1],\n{\"a\":[]} ]", "[[1], {\"a\": []}]"},
                    ValueCase{"\"\"", "\"\""},
                    ValueCase{R"("\"\\\/\b\f\n\r\t")", R"("\"\\/\b\f\n\r\t")"},
                    ValueCase{R"("\u0041\u00e9\u4e16\ud83d\ude00")", "\"A\u00e9\u4e16\U0001F600\""},
                    ValueCase{R"("\u0000\u001b\u007f\u009b\u2028\u202e\u2066")",
                              R"("\u0000\u001B\u007F\u009B\u2028\u202E\u2066")"},
                    ValueCase{"\"\u200D\uFFFF\"", "\"\u200D\uFFFF\""},
                    ValueCase{R"({"b": 1, "a": 2, "b": 3})", R"({"b": 3, "a": 2})"},
                    ValueCase{R"({"": {"\n": 1}})", R"({"": {"\n": 1}})"}));

TEST(Json, MayBeginWithAByteOrderMark) {
  EXPECT_EQ(rewritten("\xEF\xBB\xBF[{\"a\": 1}]").out, "[\n{\"a\": 1}\n]\n");
}

TEST(Json, KeepsTheKeysOfRecordsThatDiffer) {
  const std::string json =
      "[\n{\"a\": 1, \"b\": 2},\n{\"b\": 3, \"a\": 4},\n{\"a\": 5},\n{\"a\": 6, \"c\": 7, \"b\": "
      "8}\n]\n";
  EXPECT_EQ(rewritten(json).out, json);
}

TEST(Json, KeepsARecordOfManyKeys) {
  std::string json = "[\n{\"k0\": 0";
  for (int i = 1; i < 1000; ++i) json += ", \"k" + std::to_string(i) + "\": " + std::to_string(i);
  json += "}\n]\n";
  EXPECT_EQ(rewritten(json).out, json);
}

std::string nested(std::size_t levels) {
  return "[{\"a\": " + std::string(levels, '[') + std::string(levels, ']') + "}]";
}

TEST(Json, IsReadToADepthOfAThousand) {
  EXPECT_EQ(rewritten(nested(998)).exitCode, 0);
  const ProgramRun run = rewritten(nested(999));
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "qx: standard input: nested more than 1000 levels deep (byte 1005)\n");
  EXPECT_EQ(rewritten(std::string(1000000, '[')).exitCode, 2);
}

TEST(Json, IsReadAcrossBlocks) {
  const std::string text(700000, 'x');
  const std::string json = "[\n{\"a\": \"" + text + "\"},\n{\"a\": \"y" + text + "\"}\n]\n";
  EXPECT_EQ(rewritten(json).out, json);
}

TEST(Json, ComparesLargeIntegersExactly) {
  Surroundings surroundings;
  surroundings.input = R"([{"n": 18446744073709551616}, {"n": 18446744073709551617}])";
  const ProgramRun run = runTool({"select", "-", "--where", "n > %@", "--arg-json",
                                  "18446744073709551616", "--output", "json"},
                                 surroundings);
  EXPECT_EQ(run.out, "[\n{\"n\": 18446744073709551617}\n]\n");
}

}  // namespace
}  // namespace qx_tests

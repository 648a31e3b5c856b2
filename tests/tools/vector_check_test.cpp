// The driver of conformance cases finds what is wrong, and says where.

#include <gtest/gtest.h>

#include <string>

#include "tests/tools/run_program.h"

namespace qx_tests {
namespace {

const char kRight[] = R"({"op":"kvc","args":{"object":{"a":1},"path":"a"},"expect":{"value":1}})";

// What the driver says of one case, without the file's name.
std::string verdict(const std::string& line, int expectedExit = 1) {
  const TemporaryFolder folder;
  const std::string file = folder.file("cases.jsonl", line + "\n");
  const ProgramRun run = runDriver({file});
  EXPECT_EQ(run.exitCode, expectedExit) << run.out;
  EXPECT_EQ(run.err, "");
  return run.out.rfind(file, 0) == 0 ? run.out.substr(file.size()) : run.out;
}

TEST(VectorCheck, PassesARightCase) { EXPECT_EQ(verdict(kRight, 0), "1 passed, 0 failed\n"); }

TEST(VectorCheck, PrintsPlaceArgumentsExpectedAndGot) {
  EXPECT_EQ(verdict(R"({"op":"like","args":{"text":"a","pattern":"b","ignoreCase":false},)"
                    R"("expect":{"result":true}})"),
            ":1 like\n"
            "  arguments {\"text\":\"a\",\"pattern\":\"b\",\"ignoreCase\":false}\n"
            "  expected  {\"result\":true}\n"
            "  got       {\"result\":false}\n"
            "0 passed, 1 failed\n");
}

struct KindCase {
  const char* value;
  const char* expected;
  bool same;
};

class VectorCheckKinds : public testing::TestWithParam<KindCase> {};

TEST_P(VectorCheckKinds, AreCompared) {
  const KindCase c = GetParam();
  const std::string line = std::string(R"({"op":"kvc","args":{"object":{"a":)") + c.value +
                           R"(},"path":"a"},"expect":{"value":)" + c.expected + "}}";
  EXPECT_NE(verdict(line, c.same ? 0 : 1).find(c.same ? "1 passed, 0" : "0 passed, 1"),
            std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    Table, VectorCheckKinds,
    testing::Values(KindCase{"1", "1", true}, KindCase{"1", "1.0", false},
                    KindCase{"1", "true", false}, KindCase{"1.0", "1", false},
                    KindCase{"1.0", "1.0", true}, KindCase{"true", "1", false},
                    KindCase{"false", "0.0", false}, KindCase{"0.0", "-0.0", false},
                    KindCase{"null", "null", true}, KindCase{"null", "0", false},
                    KindCase{"18446744073709551615", "18446744073709551615", true},
                    KindCase{"18446744073709551615", "-1", false},
                    KindCase{"9007199254740993", "9007199254740992", false},
                    KindCase{"[1]", "[1.0]", false}, KindCase{"[1]", "[1]", true},
                    KindCase{"[1]", "[1,1]", false}, KindCase{"\"1\"", "1", false},
                    KindCase{R"({"x":1,"y":2})", R"({"y":2,"x":1})", true},
                    KindCase{R"({"x":1})", R"({"x":1,"y":2})", false},
                    KindCase{R"({"x":1})", R"({"x":1.0})", false}));

TEST(VectorCheck, ReportsAnUnknownOperationByItsName) {
  EXPECT_EQ(verdict(R"({"op":"unheard_of","args":{},"expect":{}})"),
            ":1: the operation unheard_of is not known\n0 passed, 1 failed\n");
}

TEST(VectorCheck, ReportsLinesThatAreNoCases) {
  for (const char* line : {"{", "[]", "{}", R"({"op":1,"args":{},"expect":{}})"}) {
    EXPECT_EQ(verdict(line), ":1: not a case\n0 passed, 1 failed\n");
  }
  EXPECT_NE(verdict(R"({"op":"kvc","args":7,"expect":{}})").find("0 passed, 1 failed\n"),
            std::string::npos);
}

TEST(VectorCheck, WantsTheRaiseThatIsExpected) {
  const std::string call = R"({"op":"parse","args":{"format":"a = %x","arguments":[]},"expect":)";
  const std::string reason =
      "qualifierParser -- QXQualifier: unrecognized character (x) in the conversion specification";
  EXPECT_EQ(verdict(call + R"({"fail":"any"}})", 0), "1 passed, 0 failed\n");
  EXPECT_EQ(verdict(call + R"({"raise":"NSInvalidArgumentException"}})", 0),
            "1 passed, 0 failed\n");
  EXPECT_EQ(
      verdict(call + R"({"raise":"NSInvalidArgumentException","reason":")" + reason + "\"}}", 0),
      "1 passed, 0 failed\n");
  verdict(call + R"({"raise":"NSInvalidArgumentException","reason":"another"}})");
  verdict(call + R"({"raise":"NSRangeException"}})");
  verdict(call + R"({"tree":null}})");
  verdict(R"({"op":"parse","args":{"format":"a = b","arguments":[]},"expect":{"fail":"any"}})");
}

TEST(VectorCheck, CountsOverAllFilesAndGoesOnBehindAFailure) {
  const TemporaryFolder folder;
  const std::string right =
      folder.file("right.jsonl", std::string(kRight) + "\n\n" + kRight + "\n");
  const std::string mixed = folder.file("mixed.jsonl", std::string("{\n") + kRight);
  const ProgramRun run = runDriver({mixed, right, folder.path("missing")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, mixed + ":1: not a case\n" + folder.path("missing") +
                         ": can not be read\n3 passed, 2 failed\n");
}

TEST(VectorCheck, FailsWhereNothingIsChecked) {
  const TemporaryFolder folder;
  EXPECT_EQ(runDriver({folder.file("empty.jsonl", "")}).exitCode, 1);
}

}  // namespace
}  // namespace qx_tests

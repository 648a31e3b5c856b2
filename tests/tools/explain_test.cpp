// qx explain: the tree in its three forms, and the remarks.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/run_program.h"

namespace qx_tests {
namespace {

ProgramRun explain(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "explain");
  const ProgramRun run = runTool(arguments);
  EXPECT_EQ(run.exitCode, 0) << run.err;
  return run;
}

TEST(Explain, ShowsTheTreeAsIndentedText) {
  const ProgramRun run = explain(
      {"not name like %@ or age > %d or x <> y or z = nil", "--arg", "J*", "--arg-json", "30"});
  EXPECT_EQ(run.out,
            "or\n"
            "  not\n"
            "    name like \"J*\"\n"
            "  age > 30\n"
            "  x != \"y\"\n"
            "  z = nil\n");
}

struct LabelCase {
  std::vector<std::string> arguments;
  std::string label;
};

class ExplainLabel : public testing::TestWithParam<LabelCase> {};

TEST_P(ExplainLabel, TellsKeysFromConstantsAndTheirKinds) {
  EXPECT_EQ(explain(GetParam().arguments).out, GetParam().label + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Table, ExplainLabel,
    testing::Values(
        LabelCase{{""}, "nil"}, LabelCase{{"size < limit"}, "size < key limit"},
        LabelCase{{"age > 21"}, "age > key 21"}, LabelCase{{"a = nil"}, "a = absent key"},
        LabelCase{{"a = nil)"}, "a = key nil"}, LabelCase{{" "}, "\"\" ? key \"\""},
        LabelCase{{"a ~ b"}, "a ? key b"}, LabelCase{{"a = %@", "--arg-json", "1"}, "a = 1"},
        LabelCase{{"a = %@", "--arg-json", "1.0"}, "a = 1.0"},
        LabelCase{{"a = %@", "--arg-json", "true"}, "a = true"},
        LabelCase{{"a = %@", "--arg-json", "null"}, "a = null"},
        LabelCase{{"a = %@", "--arg-json", "[1,{\"b\":\"c\"}]"}, "a = [1, {\"b\": \"c\"}]"},
        LabelCase{{"a = %@", "--arg", "1"}, "a = \"1\""},
        LabelCase{{"a = (NSDecimalNumber)'1.50'"}, "a = (NSDecimalNumber)1.5"},
        LabelCase{{"%s = %d", "--arg", "a b\n", "--arg", "3"}, "\"a b\\n\" = 3"},
        LabelCase{{"%s = %d", "--arg", "a.b", "--arg", "3"}, "a.b = 3"}));

struct DumpCase {
  std::vector<std::string> arguments;
  std::string json;
};

class ExplainJson : public testing::TestWithParam<DumpCase> {};

TEST_P(ExplainJson, DumpsTheTree) {
  auto arguments = GetParam().arguments;
  arguments.push_back("--json");
  EXPECT_EQ(explain(arguments).out, GetParam().json + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Table, ExplainJson,
    testing::Values(
        DumpCase{{""}, "null"}, DumpCase{{"size < limit"}, R"(["kc", "size", "<", "limit"])"},
        DumpCase{{"a == nil"}, R"(["kc", "a", "=", null])"},
        DumpCase{{"a ~ b"}, R"(["kc", "a", null, "b"])"},
        DumpCase{{"not a <> %d and b = %f", "--arg", "3", "--arg", "0.1"},
                 R"(["and", [["not", ["kv", "a", "!=", {"i": 3}]], )"
                 R"(["kv", "b", "=", {"f": 0.10000000149011612}]]])"},
        DumpCase{{"a = %s or b = nil", "--arg", "x\""},
                 R"(["or", [["kv", "a", "=", {"s": "x\""}], ["kv", "b", "=", null]]])"},
        DumpCase{{"a = %@", "--arg-json", "18446744073709551615"},
                 R"(["kv", "a", "=", {"i": 18446744073709551615}])"},
        DumpCase{{"a = %@", "--arg-json", "1.0"}, R"(["kv", "a", "=", {"obj": 1.0}])"},
        DumpCase{{"a = %@", "--arg-json", "true"}, R"(["kv", "a", "=", {"obj": true}])"},
        DumpCase{{"a = %@", "--arg-json", "null"}, R"(["kv", "a", "=", {"obj": null}])"},
        DumpCase{{"a = %@", "--arg-json", "[1, \"b\"]"}, R"(["kv", "a", "=", {"obj": [1, "b"]}])"},
        DumpCase{{"a = (NSDecimalNumber)'1.50'"},
                 R"(["kv", "a", "=", {"obj": {"class": "NSDecimalNumber", "string": "1.5"}}])"},
        DumpCase{{"a = (Nothing)'1.50'"}, R"(["kv", "a", "=", null])"}));

TEST(Explain, ShowsTheTreeAsAGraph) {
  EXPECT_EQ(explain({"not a = %@ and b = c", "--arg", "q\"\\", "--dot"}).out,
            "digraph qualifier {\n"
            "  node [fontname=\"monospace\"];\n"
            "  n0 [label=\"and\"];\n"
            "  n1 [label=\"not\"];\n"
            "  n2 [label=\"a = \\\"q\\\\\\\"\\\\\\\\\\\"\", shape=box];\n"
            "  n1 -> n2;\n"
            "  n0 -> n1;\n"
            "  n3 [label=\"b = \\\"c\\\"\", shape=box];\n"
            "  n0 -> n3;\n"
            "}\n");
}

TEST(Explain, TellsOnStandardErrorWhatMayNotBeMeant) {
  EXPECT_EQ(explain({"a = %d and b = %d", "--arg", "1", "--arg", "2"}).err, "");
  EXPECT_EQ(
      explain({"age > 21"}).err,
      "qx: column 7: \"21\" is taken as a key; constants are given as arguments or in quotes\n");
  const ProgramRun run =
      explain({"a = %d and b = %d or c = %d", "--arg", "1", "--arg", "2", "--arg", "3"});
  EXPECT_EQ(run.out, "or\n  and\n    a = 1\n  c = 3\n");
  EXPECT_EQ(run.err.rfind("qx: column 12: this comparison is dropped", 0), 0U) << run.err;
  EXPECT_EQ(explain({"a = %d", "--arg", "1", "--arg", "2"}).err,
            "qx: column 7: 1 of the arguments are not used\n");
}

TEST(Explain, ShowsTextOfTheFormatThatIsSafeForATerminal) {
  EXPECT_EQ(explain({"a = 'b' \x1B[31m"}).err,
            "qx: column 8: quoted text ends the format: \" \\u001B[31m\" is ignored\n");
}

TEST(Explain, RefusesWhatTheParserRefuses) {
  const ProgramRun run = runTool({"explain", "a = %q"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "qx: unrecognized character (q) in the conversion specification\n");
  EXPECT_EQ(runTool({"explain", "a = %d"}).err,
            "qx: missing arguments: 0 given, the format takes 1\n");
}

TEST(Explain, RefusesATreeOfTooManyLevels) {
  std::string format = "a = b";
  for (int i = 0; i < 400; ++i) format += " and a = b or a = b";
  const std::vector<std::vector<std::string>> forms = {{}, {"--json"}, {"--dot"}};
  for (const std::vector<std::string>& form : forms) {
    std::vector<std::string> arguments = {"explain", format};
    arguments.insert(arguments.end(), form.begin(), form.end());
    const ProgramRun run = runTool(arguments);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "qx: the tree is nested more than 499 levels deep\n");
  }
}

}  // namespace
}  // namespace qx_tests

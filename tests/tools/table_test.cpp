// Tables: alignment by the width that characters have on a terminal, and data that would upset one.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/run_program.h"
#include "tests/tools/terminal.h"

namespace qx_tests {
namespace {

std::string table(const std::string& json) {
  Surroundings surroundings;
  surroundings.input = json;
  return runTool({"select", "-"}, surroundings).out;
}

TEST(Table, PutsNumbersToTheRightAndEverythingElseToTheLeft) {
  EXPECT_EQ(table(R"([{"number": 1, "mixed": 1, "text": "a"}, {"number": -22.5, "mixed": true}])"),
            "number  mixed  text\n"
            "     1  1      a\n"
            " -22.5  true\n");
}

TEST(Table, CountsWideAndCombiningCharactersAsTheyAreShown) {
  EXPECT_EQ(table("[{\"a\": \"\u4e16\u754c\", \"b\": 1}, {\"a\": \"e\u0301\", \"b\": 2}, "
                  "{\"a\": \"\u00e9\", \"b\": 3}, {\"a\": \"abcd\", \"b\": 4}]"),
            "a     b\n\u4e16\u754c  1\ne\u0301     2\n\u00e9     3\nabcd  4\n");
}

TEST(Table, EscapesWhatWouldUpsetATerminal) {
  EXPECT_EQ(table(R"([{"a\u001b[2J": "x\u001b]0;t\u0007\n\r\t\u009b\u202ey", "b": "\u0000"}])"),
            "a\\u001B[2J                            b\n"
            "x\\u001B]0;t\\u0007\\n\\r\\t\\u009B\\u202Ey  \\u0000\n");
}

TEST(Table, DoesNotPadEveryLineForOneLongCell) {
  const std::string text(100000, 'x');
  const std::string out = table("[{\"a\": \"" + text + "\", \"b\": 1}, {\"a\": \"y\", \"b\": 2}]");
  EXPECT_EQ(out.size(), ("a" + std::string(501, ' ') + "b\n" + text + "  1\n" + "y" +
                         std::string(501, ' ') + "2\n")
                            .size());
  EXPECT_NE(out.find(text + "  1\n"), std::string::npos);
}

std::string shownOnTerminal(unsigned short columns, const std::string& json) {
  Terminal terminal;
  terminal.output = true;
  terminal.columns = columns;
  const TerminalRun run = runOnTerminal({QX_TOOL_PATH, "select", "-"}, terminal, {json}, 0);
  EXPECT_EQ(run.exitCode, 0);
  return run.shown;
}

TEST(Table, CutsLongCellsOnATerminalAlone) {
  const std::string json = R"([{"name": "abcdefghijklmnopqrstuvwxyz", "n": 1, "key": "v"}])";
  EXPECT_EQ(table(json), "name                        n  key\nabcdefghijklmnopqrstuvwxyz  1  v\n");
  EXPECT_EQ(shownOnTerminal(80, json),
            "name                        n  key\r\nabcdefghijklmnopqrstuvwxyz  1  v\r\n");
  EXPECT_EQ(shownOnTerminal(20, json), "name          n  key\r\nabcdefghijk\u2026  1  v\r\n");
  EXPECT_EQ(shownOnTerminal(3, json), "name      n  key\r\nabcdefg\u2026  1  v\r\n");
}

TEST(Table, CutsWideCharactersWhole) {
  EXPECT_EQ(shownOnTerminal(8, "[{\"a\": \"\u4e16\u4e16\u4e16\u4e16\u4e16\"}]"),
            "a\r\n\u4e16\u4e16\u4e16\u2026\r\n");
}

}  // namespace
}  // namespace qx_tests

// What is told on a terminal, and there alone.

#include "tests/tools/terminal.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/run_program.h"

namespace qx_tests {
namespace {

Terminal forMessages() {
  Terminal terminal;
  terminal.messages = true;
  return terminal;
}

TEST(Progress, IsShownAfterASecondAndRemovedAtTheEnd) {
  const TerminalRun run = runOnTerminal({QX_TOOL_PATH, "select", "-", "--count"}, forMessages(),
                                        {"[{\"a\": 1}", ",{\"a\": 2}", "]"}, 700);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.shown.find("qx: reading, 0 MB"), std::string::npos);
  ASSERT_GE(run.shown.size(), 4U);
  EXPECT_EQ(run.shown.substr(run.shown.size() - 4), "\r\033[K");
}

TEST(Progress, IsNotShownForQuickWork) {
  const TerminalRun run =
      runOnTerminal({QX_TOOL_PATH, "select", "-", "--count"}, forMessages(), {"[{}]"}, 0);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.shown, "");
}

TEST(Progress, IsRemovedBeforeAFailureIsTold) {
  const TerminalRun run = runOnTerminal({QX_TOOL_PATH, "select", "-", "--count"}, forMessages(),
                                        {"[{}", ",", ","}, 700);
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_NE(run.shown.find("MB\r\033[Kqx: standard input: parse error"), std::string::npos)
      << run.shown;
}

TEST(BinaryLists, AreNotWrittenToATerminal) {
  Terminal terminal;
  terminal.output = terminal.messages = true;
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {"plist", "-", "--to", "binary"}, {"select", "-", "--output", "binary"}}) {
    std::vector<std::string> argv = {QX_TOOL_PATH};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    const TerminalRun run = runOnTerminal(argv, terminal, {"<plist><array/></plist>"}, 0);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.shown, "qx: binary property lists are not written to a terminal\r\n");
  }
}

TEST(Remarks, AreToldBySelectOnATerminalAlone) {
  const std::vector<std::string> arguments = {"select", "-", "--count", "--where", "a > 30"};
  std::vector<std::string> argv = {QX_TOOL_PATH};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  const TerminalRun run = runOnTerminal(argv, forMessages(), {"[]"}, 0);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.shown,
            "qx: column 5: \"30\" is taken as a key; constants are given as arguments or in "
            "quotes\r\n");
  Surroundings surroundings;
  surroundings.input = "[]";
  EXPECT_EQ(runTool(arguments, surroundings).err, "");
}

}  // namespace
}  // namespace qx_tests

// Help and version.

#include <gtest/gtest.h>

#include <string>

#include "tests/tools/run_program.h"

namespace qx_tests {
namespace {

void expectShown(const ProgramRun& run, const std::vector<std::string>& texts) {
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, "");
  for (const std::string& text : texts) {
    EXPECT_NE(run.out.find(text), std::string::npos) << text << "\nis not in\n" << run.out;
  }
}

TEST(Help, ListsTheCommands) {
  expectShown(runTool({"--help"}), {"Usage: qx", "\n  select ", "\n  explain ", "\n  date ",
                                    "\n  size ", "\n  fraction ", "--version"});
}

TEST(Help, ShowsOptionsAndExamplesOfACommand) {
  expectShown(
      runTool({"select", "--help"}),
      {"Usage: qx select [OPTIONS] FILE", "--where FORMAT", "--arg TEXT", "--arg-json JSON",
       "--keys K1,K2", "--limit N", "--count", "--output FORM", "\nExamples:\n  qx select "});
  expectShown(runTool({"explain", "--help"}),
              {"Usage: qx explain [OPTIONS] FORMAT", "--arg TEXT", "--arg-json JSON", "--json",
               "--dot", "\nExamples:\n  qx explain "});
  expectShown(runTool({"date", "--help"}),
              {"Usage: qx date [OPTIONS] DATE", "\nExamples:\n  qx date "});
  expectShown(runTool({"size", "--help"}),
              {"Usage: qx size [OPTIONS] N", "\nExamples:\n  qx size "});
  expectShown(runTool({"fraction", "--help"}),
              {"Usage: qx fraction [OPTIONS] FRACTION", "\nExamples:\n  qx fraction "});
}

TEST(Help, ShowsTheVersion) {
  const ProgramRun run = runTool({"--version"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_TRUE(testing::internal::RE::FullMatch(run.out, "qx [0-9]+\\.[0-9]+\\.[0-9]+\n"))
      << run.out;
}

// Everything that help names is in the manual page too.
TEST(Help, AgreesWithTheManualPage) {
  const std::string page = contentOf(std::string(QX_TESTS_DIR) + "/../tools/qx/qx.1");
  ASSERT_FALSE(page.empty());
  for (const char* option : {"where", "arg", "arg\\-json", "keys", "limit", "count", "output",
                             "json", "dot", "help", "version"}) {
    EXPECT_NE(page.find(std::string("Fl \\-") + option), std::string::npos) << option;
  }
  for (const char* command : {"select", "explain", "date", "size", "fraction"}) {
    EXPECT_NE(page.find(std::string(".It Nm Cm ") + command + '\n'), std::string::npos) << command;
  }
}

}  // namespace
}  // namespace qx_tests

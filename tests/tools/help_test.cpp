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
  expectShown(runTool({"--help"}),
              {"Usage: qx", "\n  select ", "\n  explain ", "\n  plist ", "--version"});
}

TEST(Help, ShowsOptionsAndExamplesOfACommand) {
  expectShown(
      runTool({"select", "--help"}),
      {"Usage: qx select [OPTIONS] FILE", "--where FORMAT", "--arg TEXT", "--arg-json JSON",
       "--keys K1,K2", "--limit N", "--count", "--output FORM", "\nExamples:\n  qx select "});
  expectShown(runTool({"explain", "--help"}),
              {"Usage: qx explain [OPTIONS] FORMAT", "--arg TEXT", "--arg-json JSON", "--json",
               "--dot", "\nExamples:\n  qx explain "});
  expectShown(runTool({"plist", "--help"}), {"Usage: qx plist [OPTIONS] FILE", "--to FORM",
                                             "--out FILE", "--check", "\nExamples:\n  qx plist "});
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
                             "json", "dot", "to", "out", "check", "help", "version"}) {
    EXPECT_NE(page.find(std::string("Fl \\-") + option), std::string::npos) << option;
  }
}

}  // namespace
}  // namespace qx_tests

// Help and version.

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

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
  expectShown(runTool({"--help"}), {"Usage: qx", "\n  select ", "\n  explain ", "\n  plist ",
                                    "\n  date ", "\n  size ", "\n  fraction ", "\n  lock ",
                                    "\n  identity ", "\n  tags ", "\n  attributes ", "--version"});
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
  expectShown(runTool({"plist", "--help"}), {"Usage: qx plist [OPTIONS] FILE", "--to FORM",
                                             "--out FILE", "--check", "\nExamples:\n  qx plist "});
  expectShown(runTool({"prefs", "--help"}),
              {"Usage: qx prefs [OPTIONS] [FILE] [ACTION] [KEYPATH] [VALUE]", "--application NAME",
               "--type TYPE", "--json", "\nExamples:\n  qx prefs "});
  expectShown(runTool({"tags", "--help"}),
              {"Usage: qx tags [OPTIONS] FILE...", "--set NAME[:COLOUR]", "--add NAME[:COLOUR]",
               "--remove NAME", "--clear", "--json", "\nExamples:\n  qx tags "});
  expectShown(runTool({"attributes", "--help"}),
              {"Usage: qx attributes [OPTIONS] FILE [ACTION] [NAME] [VALUE]", "--type TYPE",
               "--raw", "\nExamples:\n  qx attributes "});
}

TEST(Help, ShowsTheVersion) {
  const ProgramRun run = runTool({"--version"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_TRUE(testing::internal::RE::FullMatch(run.out, "qx [0-9]+\\.[0-9]+\\.[0-9]+\n"))
      << run.out;
}

std::vector<std::string> commands() {
  std::vector<std::string> names;
  std::istringstream lines(runTool({"--help"}).out);
  bool inCommands = false;
  for (std::string line; std::getline(lines, line);) {
    if (line == "Subcommands:") {
      inCommands = true;
    } else if (line.empty()) {
      inCommands = false;
    } else if (inCommands && line.starts_with("  ") && line[2] != ' ') {
      names.push_back(line.substr(2, line.find(' ', 2) - 2));
    }
  }
  return names;
}

std::string manualPage() { return contentOf(std::string(QX_TESTS_DIR) + "/../tools/qx/qx.1"); }

std::set<std::string> matches(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  std::set<std::string> found;
  for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) {
    found.insert((*at)[1]);
  }
  return found;
}

std::string plain(std::string text) {
  text = std::regex_replace(text, std::regex(R"(\\\(aq)"), "'");
  return std::regex_replace(text, std::regex(R"(\\-)"), "-");
}

// The options and commands of help are those of the manual page.
TEST(Help, AgreesWithTheManualPage) {
  const std::string page = plain(manualPage());
  ASSERT_FALSE(page.empty());
  ASSERT_GE(commands().size(), 2U);
  std::string helps = runTool({"--help"}).out;
  for (const std::string& command : commands()) {
    helps += runTool({command, "--help"}).out;
    EXPECT_NE(page.find(".It Nm Cm " + command + '\n'), std::string::npos) << command;
  }
  // Options stand at the beginning of their lines.
  const std::set<std::string> shown = matches(helps, R"(\n  (?:-[a-z],)?--([a-z-]+))");
  EXPECT_TRUE(shown.contains("where"));
  EXPECT_EQ(shown, matches(page, R"(Fl -([a-z-]+))"));
}

// The shell line without where its output goes, as the tool's own path runs it.
std::string runnable(std::string line) {
  line = std::regex_replace(line, std::regex(R"( \| .*| >\S+$)"), "");
  return "'" + std::string(QX_TOOL_PATH) + "'" + line.substr(line.find("qx ") + 2);
}

TEST(Help, ShowsExamplesThatRun) {
  const TemporaryFolder folder;
  folder.file(
      "people.json",
      R"([{"name": "Jim", "age": 31, "score": 1, "email": null, "address": {"city": "Oslo"}},
                  {"name": "Ann", "age": 20, "score": 2, "email": "a@b", "address": {}}])");
  folder.file("people.plist",
              runTool({"select", folder.file("some.json", R"([{"name": "Jim", "age": 31}])"),
                       "--output", "plist"})
                  .out);
  std::set<std::string> examples =
      matches(plain(manualPage()), R"(\n\.Dl (qx (?:select|explain) [^\n]*))");
  for (const char* command : {"select", "explain"}) {
    examples.merge(matches(runTool({command, "--help"}).out, R"(\n  (qx [^\n]*))"));
  }
  ASSERT_GE(examples.size(), 6U);
  for (const std::string& example : examples) {
    const ProgramRun run =
        runProgram({"/bin/sh", "-c", "cd '" + folder.path("") + "' && " + runnable(example)});
    EXPECT_EQ(run.exitCode, 0) << example << '\n' << run.err;
    EXPECT_NE(run.out, "") << example;
  }
}

}  // namespace
}  // namespace qx_tests

#pragma once

// A command of the tool on a file of the test.

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "tests/tools/run_program.h"

namespace qx_tests {

class FileCommand : public testing::Test {
 protected:
  // What is run begins with `leading_`.
  ProgramRun run(std::vector<std::string> words) const {
    words.insert(words.begin(), leading_.begin(), leading_.end());
    return runTool(words);
  }
  // The output of what succeeds and has nothing to tell.
  std::string shown(const std::vector<std::string>& words) const {
    const ProgramRun done = run(words);
    EXPECT_EQ(done.exitCode, 0) << done.err;
    EXPECT_EQ(done.err, "");
    return done.out;
  }
  void expectFailure(const std::vector<std::string>& words, const std::string& reason,
                     int exitCode = 2) const {
    const ProgramRun done = run(words);
    EXPECT_EQ(done.exitCode, exitCode) << reason;
    EXPECT_EQ(done.out, "");
    EXPECT_EQ(done.err, "qx: " + reason + "\n");
  }

  TemporaryFolder folder_;
  std::vector<std::string> leading_;
};

// Runs the examples of a command's help in the folder, one after the other; their outputs.
inline std::vector<std::string> outputsOfExamples(const std::string& command,
                                                  const TemporaryFolder& folder) {
  std::vector<std::string> outputs;
  const std::string help = runTool({command, "--help"}).out;
  const std::regex example("\n  qx (" + command + " [^\n]*)");
  for (std::sregex_iterator at(help.begin(), help.end(), example), end; at != end; ++at) {
    const std::string line = (*at)[1];
    const ProgramRun done =
        runProgram({"/bin/sh", "-c", "cd '" + folder.path("") + "' && '" QX_TOOL_PATH "' " + line});
    EXPECT_EQ(done.exitCode, 0) << line << '\n' << done.err;
    outputs.push_back(done.out);
  }
  return outputs;
}

}  // namespace qx_tests

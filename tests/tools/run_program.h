#pragma once

// Runs a program as a process, and tells what came of it.

#include <filesystem>
#include <string>
#include <vector>

namespace qx_tests {

struct ProgramRun {
  int exitCode = -1;  // -1: ended by a signal
  int signal = 0;
  std::string out;
  std::string err;
};

// How a program is run beside its arguments.
struct Surroundings {
  std::string input;
  // Where output goes instead of into `ProgramRun::out`: "closed" for nowhere, else a file that
  // exists.
  std::string output;
  // Standard input is not open.
  bool withoutInput = false;
};

// argv[0] is the path of the program.
ProgramRun runProgram(const std::vector<std::string>& argv, const Surroundings& surroundings = {});

// The tool, and the driver of conformance cases that is built beside it.
ProgramRun runTool(const std::vector<std::string>& arguments,
                   const Surroundings& surroundings = {});
ProgramRun runDriver(const std::vector<std::string>& arguments);

// A folder that is removed in the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  // Writes a file and gives its path.
  std::string file(const std::string& name, const std::string& content) const;

 private:
  std::filesystem::path folder_;
};

std::string contentOf(const std::string& path);

}  // namespace qx_tests

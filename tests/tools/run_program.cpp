#include "tests/tools/run_program.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace qx_tests {
namespace {

// In the child: only what is safe between fork and exec.
void redirect(int descriptor, const std::string& path, int flags) {
  ::close(descriptor);
  if (path == "closed") return;
  const int opened = ::open(path.c_str(), flags, 0600);
  if (opened != descriptor) {
    ::dup2(opened, descriptor);
    ::close(opened);
  }
}

[[noreturn]] void execute(const std::vector<char*>& argv, const TemporaryFolder& folder,
                          const Surroundings& surroundings) {
  redirect(STDIN_FILENO, surroundings.withoutInput ? "closed" : folder.path("in"), O_RDONLY);
  redirect(STDOUT_FILENO, surroundings.output.empty() ? folder.path("out") : surroundings.output,
           O_WRONLY);
  redirect(STDERR_FILENO, folder.path("err"), O_WRONLY);
  ::signal(SIGPIPE, SIG_DFL);
  ::execv(argv[0], argv.data());
  ::_exit(127);
}

}  // namespace

ProgramRun runProgram(const std::vector<std::string>& arguments, const Surroundings& surroundings) {
  const TemporaryFolder folder;
  folder.file("in", surroundings.input);
  folder.file("out", "");
  folder.file("err", "");
  std::vector<char*> argv;
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) execute(argv, folder, surroundings);
  int status = 0;
  if (::waitpid(child, &status, 0) != child) throw std::runtime_error("waitpid failed");
  ProgramRun run;
  if (WIFEXITED(status)) run.exitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) run.signal = WTERMSIG(status);
  run.out = contentOf(folder.path("out"));
  run.err = contentOf(folder.path("err"));
  return run;
}

ProgramRun runTool(const std::vector<std::string>& arguments, const Surroundings& surroundings) {
  std::vector<std::string> argv = {QX_TOOL_PATH};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  return runProgram(argv, surroundings);
}

ProgramRun runDriver(const std::vector<std::string>& arguments) {
  const auto driver = std::filesystem::path(QX_TOOL_PATH).parent_path() / "vector_check";
  std::vector<std::string> argv = {driver.string()};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  return runProgram(argv);
}

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "qx_test_XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  folder_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string TemporaryFolder::file(const std::string& name, const std::string& content) const {
  std::ofstream(folder_ / name, std::ios::binary) << content;
  return path(name);
}

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace qx_tests

// qx lock and qx identity: commands under the lock of a file, and what a lock file tells.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/tools/run_program.h"

namespace qx_tests {
namespace {

class LockCommand : public testing::Test {
 protected:
  bool isLocked() const { return std::filesystem::exists(path_ + ".lock"); }
  ProgramRun under(std::vector<std::string> command) const {
    command.insert(command.begin(), {"lock", path_, "--"});
    return runTool(command);
  }
  // A lock file as another program would leave it.
  void leaveLock(const std::string& host, const std::string& process) const {
    folder_.file("f.lock",
                 "<plist version=\"1.0\"><dict><key>hostIdentifier</key><string>" + host +
                     "</string><key>hostName</key><string>elsewhere</string>"
                     "<key>userName</key><string>ann\xE2\x80\xAE</string><key>processNumber</key>"
                     "<integer>" +
                     process + "</integer></dict></plist>");
  }

  TemporaryFolder folder_;
  std::string path_ = folder_.path("f");
};

std::string machine() {
  const std::string out = runTool({"identity"}).out;
  const std::size_t begin = out.find_first_not_of(' ', out.find(' '));
  return out.substr(begin, out.find('\n') - begin);
}

// A number that no process has: of a child that has ended and was waited for.
std::string endedProcess() {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(0);
  ::waitpid(child, nullptr, 0);
  return std::to_string(child);
}

TEST_F(LockCommand, HoldsTheLockWhileTheCommandRuns) {
  const ProgramRun run = under({"cat", path_ + ".lock"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.out.find("<key>processNumber</key>"), std::string::npos) << run.out;
  EXPECT_EQ(run.err, "");
  EXPECT_FALSE(isLocked());
}

TEST_F(LockCommand, PassesTheExitStatusOn) {
  EXPECT_EQ(under({"sh", "-c", "exit 41"}).exitCode, 41);
  EXPECT_EQ(under({"sh", "-c", "kill -KILL $$"}).exitCode, 128 + SIGKILL);
  EXPECT_FALSE(isLocked());
}

TEST_F(LockCommand, TellsOfCommandsThatCannotBeRun) {
  EXPECT_EQ(under({"/nowhere/at all"}).exitCode, 127);
  const ProgramRun run = under({folder_.file("text", "")});
  EXPECT_EQ(run.exitCode, 126);
  EXPECT_NE(run.err.find("cannot run"), std::string::npos) << run.err;
  EXPECT_FALSE(isLocked());
}

TEST_F(LockCommand, IsRefusedWithTheRecordWhileAnotherHoldsTheLock) {
  leaveLock("another machine", "77");
  const ProgramRun run = under({"touch", folder_.path("touched")});
  EXPECT_EQ(run.exitCode, 75);
  EXPECT_EQ(run.err, "qx: " + path_ +
                         " is locked by ann\\u202E on elsewhere (another machine), process 77\n");
  EXPECT_FALSE(std::filesystem::exists(folder_.path("touched")));
  EXPECT_TRUE(isLocked());
  EXPECT_EQ(runTool({"lock", path_, "--override", "--", "true"}).exitCode, 0);
  EXPECT_FALSE(isLocked());
}

TEST_F(LockCommand, OverridesNoFolderAndWhatLeadsNowhere) {
  std::filesystem::create_directory(path_ + ".lock");
  const std::string kept = folder_.file("f.lock/kept", "");
  const ProgramRun run = runTool({"lock", path_, "--override", "--", "true"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err, "qx: cannot lock " + path_ + ": Is a directory\n");
  EXPECT_TRUE(std::filesystem::exists(kept));
  std::filesystem::remove_all(path_ + ".lock");
  std::filesystem::create_symlink("nowhere", path_ + ".lock");
  EXPECT_EQ(under({"true"}).exitCode, 75);
  EXPECT_EQ(runTool({"lock", path_, "--override", "--", "true"}).exitCode, 0);
  EXPECT_FALSE(std::filesystem::is_symlink(path_ + ".lock"));
}

TEST_F(LockCommand, IsRefusedByACommandThatRunsUnderTheLock) {
  EXPECT_EQ(under({QX_TOOL_PATH, "lock", path_, "--", "true"}).exitCode, 75);
}

TEST_F(LockCommand, TakesOverFromWhatIsGone) {
  leaveLock(machine(), endedProcess());
  EXPECT_EQ(under({"true"}).exitCode, 0);
  EXPECT_FALSE(isLocked());
}

TEST_F(LockCommand, GivesTheLockBackWhenItIsEnded) {
  for (const char* signal : {"HUP", "INT", "QUIT", "TERM", "USR1"}) {
    // The command ends the program that runs it, which hands the signal back.
    const std::string script = "kill -" + std::string(signal) + " $PPID; exec sleep 20";
    EXPECT_GT(under({"sh", "-c", script}).exitCode, 128) << signal;
    EXPECT_FALSE(isLocked()) << signal;
  }
}

TEST_F(LockCommand, ShowsTheRecordAndWhetherItsHolderLives) {
  struct Case {
    std::string host, process, holder;
  };
  const Case cases[] = {{machine(), std::to_string(::getpid()), "alive"},
                        {machine(), endedProcess(), "gone"},
                        {machine(), "0", "cannot be judged from here"},
                        {"another machine", "77", "cannot be judged from here"}};
  for (const Case& each : cases) {
    leaveLock(each.host, each.process);
    const ProgramRun run = runTool({"lock", path_, "--show"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "lock     " + path_ + ".lock\nuser     ann\\u202E\nhost     elsewhere\n" +
                           "machine  " + each.host + "\nprocess  " + each.process + "\nholder   " +
                           each.holder + "\n");
  }
}

TEST_F(LockCommand, ShowsThatNothingIsKnownOrNothingThere) {
  EXPECT_EQ(runTool({"lock", path_, "--show"}).exitCode, 1);
  folder_.file("f.lock", "garbage");
  const ProgramRun run = runTool({"lock", path_, "--show"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.out.find("process  unknown\nholder   cannot be judged"), std::string::npos);
  EXPECT_EQ(under({"true"}).exitCode, 75);
}

TEST_F(LockCommand, WantsEitherACommandOrShow) {
  EXPECT_EQ(runTool({"lock", path_}).exitCode, 2);
  EXPECT_EQ(runTool({"lock", path_, "--show", "--", "true"}).exitCode, 2);
  EXPECT_FALSE(isLocked());
}

TEST(IdentityCommand, ShowsTheMachineAndItsName) {
  const ProgramRun run = runTool({"identity"});
  EXPECT_EQ(run.exitCode, 0);
  char name[257] = {};
  ASSERT_EQ(::gethostname(name, 256), 0);
  EXPECT_TRUE(run.out.starts_with("identifier  ")) << run.out;
  EXPECT_TRUE(run.out.ends_with("\nhost        " + std::string(name) + "\n")) << run.out;
}

}  // namespace
}  // namespace qx_tests

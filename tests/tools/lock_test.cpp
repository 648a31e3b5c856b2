// qx lock and qx identity: commands under the lock of a file, and what a lock file tells.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
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

// Whatever stands in the place of the lock file keeps the lock from everybody, and is shown.
TEST_F(LockCommand, ShowsAndNamesWhatCanNotBeReadAsItRefusesTheLock) {
  const std::string lock = path_ + ".lock";
  const auto expectBoth = [&](const std::string& fault) {
    const ProgramRun refused = under({"true"});
    EXPECT_EQ(refused.exitCode, 75);
    EXPECT_EQ(refused.err, "qx: " + path_ + " is locked, by whom cannot be read in " + lock + ": " +
                               fault + "\n");
    const ProgramRun shown = runTool({"lock", path_, "--show"});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_TRUE(shown.out.starts_with("lock     " + lock + "\nuser     unknown\n")) << shown.out;
    EXPECT_TRUE(shown.out.ends_with("\nfault    " + fault + "\n")) << shown.out;
  };
  folder_.file("f.lock", "garbage");
  expectBoth("it is no record of a lock");
  if (::geteuid() != 0) {
    std::filesystem::permissions(lock, std::filesystem::perms::none);
    expectBoth("Permission denied");
  }
  std::filesystem::remove(lock);
  std::filesystem::create_symlink("nowhere", lock);
  expectBoth("it is a symbolic link");
  std::filesystem::remove(lock);
  leaveLock("another machine", "77");
  std::filesystem::rename(lock, folder_.path("elsewhere"));
  std::filesystem::create_symlink("elsewhere", lock);
  expectBoth("it is a symbolic link");
  std::filesystem::remove(lock);
  std::filesystem::create_directory(lock);
  expectBoth("Is a directory");
  std::filesystem::remove(lock);
  ASSERT_EQ(::mkfifo(lock.c_str(), 0600), 0);
  expectBoth("it is no regular file");
}

TEST_F(LockCommand, ShowsTheRecordAsJson) {
  leaveLock(machine(), std::to_string(::getpid()));
  EXPECT_EQ(runTool({"lock", path_, "--show", "--json"}).out,
            "{\"lock\": \"" + path_ +
                ".lock\", \"user\": \"ann\\u202E\", \"host\": \"elsewhere\", " + "\"machine\": \"" +
                machine() + "\", \"process\": " + std::to_string(::getpid()) +
                ", \"holder\": \"alive\"}\n");
  folder_.file("f.lock", "garbage");
  EXPECT_EQ(runTool({"lock", path_, "--show", "--json"}).out,
            "{\"lock\": \"" + path_ +
                ".lock\", \"user\": null, \"host\": null, \"machine\": null, \"process\": null, "
                "\"holder\": \"unknown\", \"fault\": \"it is no record of a lock\"}\n");
  std::filesystem::remove(path_ + ".lock");
  const ProgramRun none = runTool({"lock", path_, "--show", "--json"});
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_EQ(none.out, "");
}

TEST_F(LockCommand, TellsThatTheLockWasLostWhateverTheCommandGave) {
  const std::string told =
      "qx: somebody took or removed the lock of " + path_ + " while the command ran\n";
  for (const int status : {0, 3}) {
    const ProgramRun run =
        under({"sh", "-c", "rm '" + path_ + ".lock'; exit " + std::to_string(status)});
    EXPECT_EQ(run.exitCode, status == 0 ? 2 : status);
    EXPECT_EQ(run.err, told);
  }
  const ProgramRun taken =
      under({QX_TOOL_PATH, "lock", path_, "--override", "--", "sh", "-c", "exit 4"});
  EXPECT_EQ(taken.exitCode, 4);
  EXPECT_EQ(taken.err, told);
}

TEST_F(LockCommand, WantsAPathAndEitherACommandOrShow) {
  const struct {
    std::vector<std::string> words;
    const char* reason;
  } cases[] = {
      {{path_}, "no command is given; it stands behind --, or use --show"},
      {{path_, "--show", "--", "true"}, "--show runs no command"},
      {{path_, "--show", "--override"}, "--show overrides nothing"},
      {{path_, "--json", "--", "true"}, "--json goes with --show"},
      {{"", "--", "true"}, "PATH is empty"},
      {{"", "--show"}, "PATH is empty"},
      {{"\xFF", "--show", "--json"}, "JSON has no form for a name that is not UTF-8: \\xFF"},
  };
  for (const auto& c : cases) {
    std::vector<std::string> words = c.words;
    words.insert(words.begin(), "lock");
    const ProgramRun run = runTool(words);
    EXPECT_EQ(run.exitCode, 2) << c.reason;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, std::string("qx: ") + c.reason + "\n");
  }
  EXPECT_FALSE(isLocked());
}

TEST(IdentityCommand, ShowsTheMachineAndItsName) {
  const ProgramRun run = runTool({"identity"});
  EXPECT_EQ(run.exitCode, 0);
  char name[257] = {};
  ASSERT_EQ(::gethostname(name, 256), 0);
  EXPECT_TRUE(run.out.starts_with("identifier  ")) << run.out;
  EXPECT_TRUE(run.out.ends_with("\nhost        " + std::string(name) + "\n")) << run.out;
  EXPECT_EQ(runTool({"identity", "--json"}).out,
            "{\"identifier\": \"" + machine() + "\", \"host\": \"" + name + "\"}\n");
}

}  // namespace
}  // namespace qx_tests

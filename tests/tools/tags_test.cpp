// qx tags: tags of files, on the real file system.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/scoped_environment.h"
#include "tests/tools/file_command.h"
#include "tests/tools/run_program.h"
#include "tests/tools/stored_attributes.h"
#include "tests/tools/terminal.h"

namespace qx_tests {
namespace {

using test_support::ScopedEnvironment;

constexpr char kStored[] = "user.com.apple.metadata:_kMDItemUserTags";
constexpr char kColours[] =
    "a colour is a number, or grey, green, purple, blue, yellow, red or orange; a name with a "
    "colon in it has one behind it as well";

// Two files; skipped where they can have no tags.
class Tags : public FileCommand {
 protected:
  void SetUp() override {
    leading_ = {"tags"};
    if (!storeAttribute(a_, "user.probe", "1")) {
      GTEST_SKIP() << "no attributes here: " << ::strerror(errno);
    }
  }

  std::string a_ = folder_.file("a", "content");
  std::string b_ = folder_.file("b", "content");
};

TEST_F(Tags, AreStoredAsOtherProgramsReadThem) {
  EXPECT_EQ(shown({a_, "--set", "Work", "--set", "Home:red", "--set", "x:-5"}), "");
  EXPECT_EQ(listOfAttribute(a_, kStored), "['Work', 'Home\\n6', 'x\\n-5']");
  EXPECT_EQ(shown({a_}), "Work\nHome:red\nx:-5\n");
  EXPECT_EQ(contentOf(a_), "content");
}

TEST_F(Tags, OfOtherProgramsAreShown) {
  ASSERT_TRUE(storeList(a_, kStored, R"(["Work", "Home\n6", "A\nB\n3", "at 12:30", "\u00e9\n9"])"));
  EXPECT_EQ(shown({a_}), "Work\nHome:red\nA\nat 12:30:\n\u00e9:9\n");
}

TEST_F(Tags, TakeColoursByNameAndByNumber) {
  const char* const names[] = {"grey", "green", "purple", "blue", "yellow", "red", "orange"};
  for (int number = 1; number <= 7; ++number) {
    const std::string word = std::string("t:") + names[number - 1];
    shown({a_, "--set", word});
    shown({b_, "--set", "t:" + std::to_string(number)});
    for (const std::string& file : {a_, b_}) {
      const std::string color = "\"color\": " + std::to_string(number) + "}";
      EXPECT_NE(shown({file, "--json"}).find(color), std::string::npos) << word;
      EXPECT_EQ(shown({file}), word + "\n");
    }
  }
  EXPECT_EQ(listOfAttribute(a_, kStored), "['t\\n7']");
  for (const char* none : {"t", "t:", "t:0"}) {
    shown({a_, "--set", none});
    EXPECT_EQ(listOfAttribute(a_, kStored), "['t']") << none;
  }
  shown({a_, "--set", "t:2147483647", "--set", "u:-2147483648"});
  EXPECT_EQ(listOfAttribute(a_, kStored), "['t\\n2147483647', 'u\\n-2147483648']");
}

TEST_F(Tags, AreReadFromTheWordsThatTheyAreShownAs) {
  const std::vector<std::string> words = {"12:30:", "12:30:blue", "-dash", "a b", "\u00e9:7"};
  std::vector<std::string> command = {a_};
  std::string lines;
  for (const std::string& word : words) {
    command.push_back("--set=" + word);
    lines += (word == "\u00e9:7" ? "\u00e9:orange" : word) + "\n";
  }
  // Two words of one name: the later one counts, in the place of the first.
  lines.erase(0, std::string("12:30:\n").size());
  shown(command);
  EXPECT_EQ(shown({a_}), lines);
}

TEST_F(Tags, AreAddedBehindOrInPlaceOfTheirName) {
  shown({a_, "--add", "One", "--add", "Two:red"});
  shown({a_, "--add", "one:blue", "--add", "Three"});
  EXPECT_EQ(shown({a_}), "one:blue\nTwo:red\nThree\n");
  // The same tag but for the case of its name: it stays as it is.
  shown({a_, "--add", "THREE"});
  EXPECT_EQ(shown({a_}), "one:blue\nTwo:red\nThree\n");
  // One name, with its accent as a character of its own and without.
  shown({b_, "--add", "Caf\u00e9"});
  shown({b_, "--add", "cafe\u0301:green"});
  EXPECT_EQ(shown({b_}), "cafe\u0301:green\n");
}

TEST_F(Tags, AreRemovedByNameAndTheLastOneWithTheAttribute) {
  shown({a_, "--set", "One:1", "--set", "a:b:", "--set", "Three"});
  shown({a_, "--remove", "ONE", "--remove", "a:b"});
  EXPECT_EQ(shown({a_}), "Three\n");
  shown({a_, "--remove", "Three"});
  EXPECT_EQ(storedAttribute(a_, kStored), "absent");
}

TEST_F(Tags, ThatAreToBeRemovedAndNowhereHaveAnExitCodeOfTheirOwn) {
  shown({a_, "--set", "One:red"});
  expectFailure({a_, "--remove", "Two"}, a_ + " has no tag Two", 1);
  expectFailure({b_, "--remove", "One"}, b_ + " has no tag One", 1);
  expectFailure({a_, "--remove", "One:red"},
                a_ + " has no tag One:red; --remove takes the name alone, without a colour", 1);
  EXPECT_EQ(shown({a_}), "One:red\n");
  expectFailure({a_, b_, "--remove", "Two"}, "no file has the tag Two", 1);
  // One of the files has it; the other things are done; what is cleared is not looked at.
  shown({a_, b_, "--remove", "One", "--add", "New"});
  expectFailure({a_, b_, "--remove", "Two", "--add", "Newer"}, "no file has the tag Two", 1);
  EXPECT_EQ(shown({a_, b_}), a_ + ": New\n" + a_ + ": Newer\n" + b_ + ": New\n" + b_ + ": Newer\n");
  shown({a_, "--clear", "--remove", "Two"});
  EXPECT_EQ(storedAttribute(a_, kStored), "absent");
  const ProgramRun some = run({a_, folder_.path("none"), "--remove", "Two"});
  EXPECT_EQ(some.exitCode, 2);
  EXPECT_EQ(some.err, "qx: cannot read the tags of " + folder_.path("none") +
                          ": No such file or directory\n");
}

TEST_F(Tags, AreClearedFirstAndAddedLast) {
  shown({a_, "--set", "One", "--set", "Two"});
  shown({a_, "--add", "Two:red", "--remove", "two"});
  EXPECT_EQ(shown({a_}), "One\nTwo:red\n");
  shown({a_, "--clear", "--add", "New"});
  EXPECT_EQ(shown({a_}), "New\n");
  shown({a_, "--clear"});
  EXPECT_EQ(storedAttribute(a_, kStored), "absent");
  shown({a_, "--clear"});
}

// What another program may have meant by more lines than name and colour.
TEST_F(Tags, ThatStayKeepWhatIsStoredOfThem) {
  ASSERT_TRUE(storeList(a_, kStored, R"(["A\nB\n3", "", "C\n06", "D\n0"])"));
  shown({a_, "--add", "New:1"});
  EXPECT_EQ(listOfAttribute(a_, kStored), R"(['A\nB\n3', '', 'C\n06', 'D\n0', 'New\n1'])");
  shown({a_, "--remove", "c"});
  EXPECT_EQ(listOfAttribute(a_, kStored), R"(['A\nB\n3', '', 'D\n0', 'New\n1'])");
}

// Python's binary lists are not those of the library, byte for byte.
TEST_F(Tags, ThatDoNotChangeAreNotWritten) {
  ASSERT_TRUE(storeList(a_, kStored, R"(["Work", "Home\n6"])"));
  ASSERT_TRUE(storeAttribute(b_, kStored,
                             "<plist version=\"1.0\"><array><string>x</string></array></plist>"));
  const std::string before = storedAttribute(b_, kStored);
  shown({b_, "--add", "x"});
  expectFailure({b_, "--remove", "y"}, b_ + " has no tag y", 1);
  EXPECT_EQ(storedAttribute(b_, kStored), before);
  shown({b_, "--add", "y"});
  EXPECT_EQ(listOfAttribute(b_, kStored), "['x', 'y']");
}

TEST_F(Tags, AreShownAsJson) {
  shown({a_, "--set", "Work", "--set", "a\"b:6"});
  EXPECT_EQ(shown({a_, b_, "--json"}),
            "[\n{\"file\": \"" + a_ +
                "\", \"tags\": [{\"name\": \"Work\", \"color\": 0}, "
                "{\"name\": \"a\\\"b\", \"color\": 6}]},\n{\"file\": \"" +
                b_ + "\", \"tags\": []}\n]\n");
  EXPECT_EQ(shown({b_, "--add", "New:blue", "--json"}),
            "[\n{\"file\": \"" + b_ + "\", \"tags\": [{\"name\": \"New\", \"color\": 4}]}\n]\n");
}

TEST_F(Tags, OfSeveralFilesNameTheFile) {
  shown({a_, b_, "--add", "Both"});
  shown({b_, "--add", "Red:red"});
  EXPECT_EQ(shown({a_, b_}), a_ + ": Both\n" + b_ + ": Both\n" + b_ + ": Red:red\n");
  const std::string subfolder = folder_.path("folder");
  std::filesystem::create_directory(subfolder);
  shown({subfolder, "--add", "Folder"});
  EXPECT_EQ(shown({subfolder}), "Folder\n");
}

TEST_F(Tags, OfTheOtherFilesAreDoneWhereSomeFail) {
  const std::string absent = folder_.path("absent");
  ASSERT_TRUE(storeAttribute(b_, kStored, "junk"));
  const std::string c = folder_.file("c", "");
  const ProgramRun done = run({absent, a_, b_, c, "--add", "New"});
  EXPECT_EQ(done.exitCode, 2);
  EXPECT_EQ(done.out, "");
  EXPECT_EQ(done.err,
            "qx: cannot read the tags of " + absent + ": No such file or directory\n" +
                "qx: cannot read the tags of " + b_ +
                ": The property list can not be read: the bytes are neither XML nor binary.\n");
  EXPECT_EQ(shown({a_, c}), a_ + ": New\n" + c + ": New\n");
  const ProgramRun both = run({a_, absent, "--json"});
  EXPECT_EQ(both.exitCode, 2);
  EXPECT_EQ(both.out,
            "[\n{\"file\": \"" + a_ + "\", \"tags\": [{\"name\": \"New\", \"color\": 0}]}\n]\n");
  EXPECT_FALSE(std::filesystem::exists(absent));
}

TEST_F(Tags, ThatAreNoneAreToldAndLeftAsTheyAre) {
  for (const char* list : {"{'a': 1}", "'Work'", "['Work', 5]", "[['Work']]"}) {
    ASSERT_TRUE(storeList(a_, kStored, list));
    const std::string before = storedAttribute(a_, kStored);
    for (const std::vector<std::string>& change :
         {std::vector<std::string>{}, {"--add", "x"}, {"--set", "x"}, {"--remove", "Work"}}) {
      std::vector<std::string> words = {a_};
      words.insert(words.end(), change.begin(), change.end());
      expectFailure(words, "the tags of " + a_ + " are no list of texts; --clear gives them up");
    }
    EXPECT_EQ(storedAttribute(a_, kStored), before);
    EXPECT_EQ(contentOf(a_), "content");
  }
  shown({a_, "--clear", "--set", "x"});
  EXPECT_EQ(shown({a_}), "x\n");
}

TEST_F(Tags, ThatTheSystemRefusesAreTold) {
  const std::string link = folder_.path("link");
  std::filesystem::create_symlink("a", link);
  expectFailure({link, "--set", "x"},
                "cannot write the tags of " + link + ": Operation not permitted");
  expectFailure({a_, "--set", std::string(100000, 'x')},
                "cannot write the tags of " + a_ + ": Attribute too big");
  EXPECT_EQ(storedAttribute(a_, kStored), "absent");
  expectFailure({"/proc/self/stat"},
                "cannot read the tags of /proc/self/stat: Operation not supported");
}

TEST_F(Tags, OfFilesWhoseNamesAreNoTextAreShownButNotAsJson) {
  const std::string odd = folder_.file("\xFF\n", "");
  shown({odd, "--set", "x"});
  EXPECT_EQ(shown({odd}), "x\n");
  EXPECT_EQ(shown({odd, a_}), folder_.path("") + "\\xFF\\n: x\n");
  expectFailure({odd, "--json"},
                "JSON has no form for a name that is not UTF-8: " + folder_.path("") + "\\xFF\\n");
  const ProgramRun change = run({odd, a_, "--set", "y", "--json"});
  EXPECT_EQ(change.exitCode, 2);
  EXPECT_EQ(change.out,
            "[\n{\"file\": \"" + a_ + "\", \"tags\": [{\"name\": \"y\", \"color\": 0}]}\n]\n");
  EXPECT_EQ(shown({odd}), "x\n");
}

TEST_F(Tags, WantWordsThatMakeATag) {
  expectFailure({a_, "--set", "t:pink"}, std::string("t:pink: ") + kColours);
  expectFailure({a_, "--add", "t:2147483648"}, std::string("t:2147483648: ") + kColours);
  expectFailure({a_, "--add", ""}, "a tag has a name, unlike \"\"");
  expectFailure({a_, "--add", ":red"}, "a tag has a name, unlike \":red\"");
  expectFailure({a_, "--add", "a\nb"}, "the name of a tag is one line, unlike a\\nb");
  expectFailure({a_, "--add", "\xFF"}, "the name of a tag is not UTF-8: \\xFF");
  expectFailure({a_, "--remove", "\xFF"}, "the name of a tag is not UTF-8: \\xFF");
  expectFailure({""}, "FILE is empty");
  EXPECT_EQ(run({}).exitCode, 2);
  EXPECT_EQ(storedAttribute(a_, kStored), "absent");
}

// Where output goes to a terminal.
class TagsOnATerminal : public Tags {
 protected:
  std::string seen() const {
    Terminal terminal;
    terminal.output = terminal.messages = true;
    return runOnTerminal({QX_TOOL_PATH, "tags", a_}, terminal, {}, 0).shown;
  }
  const ScopedEnvironment terminal_{"TERM", "xterm"};
  const ScopedEnvironment colours_{"NO_COLOR", nullptr};
};

TEST_F(TagsOnATerminal, HaveTheirColours) {
  shown(
      {a_, "--set", "plain", "--set", "g:grey", "--set", "r:red", "--set", "o:7", "--set", "x:8"});
  EXPECT_EQ(seen(),
            "plain\r\n\033[90mg:grey\033[0m\r\n\033[31mr:red\033[0m\r\n"
            "\033[38;5;208mo:orange\033[0m\r\nx:8\r\n");
  EXPECT_EQ(shown({a_}), "plain\ng:grey\nr:red\no:orange\nx:8\n");
}

TEST_F(TagsOnATerminal, HaveNoColoursWhereTheyAreNotWanted) {
  shown({a_, "--set", "r:red"});
  const ScopedEnvironment empty("NO_COLOR", "");
  EXPECT_EQ(seen(), "\033[31mr:red\033[0m\r\n");
  {
    const ScopedEnvironment refused("NO_COLOR", "1");
    EXPECT_EQ(seen(), "r:red\r\n");
  }
  const ScopedEnvironment dumb("TERM", "dumb");
  EXPECT_EQ(seen(), "r:red\r\n");
}

TEST_F(TagsOnATerminal, CanNotCommandIt) {
  ASSERT_TRUE(storeList(a_, kStored, R"(["\x1b[2J\n6"])"));
  EXPECT_EQ(seen(), "\033[31m\\u001B[2J:red\033[0m\r\n");
}

TEST_F(Tags, HelpShowsExamplesThatRunInTheirOrder) {
  folder_.file("report.txt", "");
  folder_.file("letter.txt", "");
  EXPECT_EQ(outputsOfExamples("tags", folder_).size(), 5U);
  EXPECT_EQ(shown({folder_.path("report.txt")}), "Done:green\n");
  EXPECT_EQ(shown({folder_.path("letter.txt")}), "");
}

}  // namespace
}  // namespace qx_tests

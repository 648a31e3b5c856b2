// qx prefs: settings of files and of applications.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/data.h>
#include <QXFoundation/date.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/property_list.h>

#include "tests/support/scoped_environment.h"
#include "tests/tools/file_command.h"
#include "tests/tools/run_program.h"
#include "tests/tools/terminal.h"

namespace qx_tests {
namespace {

using test_support::ScopedEnvironment;

// The tool on one file.
class Prefs : public FileCommand {
 protected:
  Prefs() { leading_ = {"prefs", path()}; }
  std::string path() const { return folder_.path("s.plist"); }

  void write(const qx::PropertyValue& list,
             qx::PropertyListFormat format = qx::PropertyListFormat::xml) const {
    const auto bytes = qx::PropertyListSerialization::dataWithPropertyList(list, format);
    folder_.file("s.plist", std::string(bytes->view()));
  }
  qx::PropertyValue content() const {
    return qx::PropertyListSerialization::propertyListWithData(
        qx::Data::from(contentOf(path())), qx::PropertyListMutability::immutable, nullptr);
  }
};

struct TypeCase {
  std::string type;
  std::string text;
  qx::PropertyValue value;
  std::string shown;
  std::string json;
};

TEST_F(Prefs, SetsAndGetsValuesOfEachType) {
  const TypeCase cases[] = {
      {"string", "12", "12", "12", R"("12")"},
      {"string", "", "", "", R"("")"},
      {"string", "[a]", "[a]", "[a]", R"("[a]")"},
      {"int", "-5", -5, "-5", "-5"},
      {"int", "9223372036854775807", INT64_MAX, "9223372036854775807", "9223372036854775807"},
      {"float", "0.5", 0.5, "0.5", "0.5"},
      {"double", "2", 2.0, "2.0", "2.0"},
      {"double", "-.25", -0.25, "-0.25", "-0.25"},
      {"bool", "yes", true, "true", "true"},
      {"bool", "0", false, "false", "false"},
      {"date", "2021-03-04T05:06:07+02:00", qx::Date::dateWithTimeIntervalSince1970(1614827167),
       "2021-03-04T03:06:07Z", R"("2021-03-04T03:06:07Z")"},
      {"data", "00fFa0", qx::Data::from(std::string("\0\xFF\xA0", 3)), "00ffa0", R"("00ffa0")"},
      {"data", "", qx::Data::from(""), "", R"("")"},
      {"json", R"([1, {"a": [2.5, true, "x"]}])",
       qx::array(1, qx::dict({{"a", qx::array(2.5, true, "x")}})),
       R"([1, {"a": [2.5, true, "x"]}])", R"([1, {"a": [2.5, true, "x"]}])"},
      {"json", "18446744073709551615", UINT64_MAX, "18446744073709551615", "18446744073709551615"},
  };
  for (const TypeCase& c : cases) {
    std::filesystem::remove(path());
    EXPECT_EQ(shown({"set", "a.b", "--type", c.type, "--", c.text}), "");
    EXPECT_EQ(content(), qx::dict({{"a", qx::dict({{"b", c.value}})}})) << c.type << ' ' << c.text;
    EXPECT_EQ(shown({"get", "a.b"}), c.shown + "\n");
    EXPECT_EQ(shown({"get", "a.b", "--json"}), c.json + "\n");
  }
}

TEST_F(Prefs, TakesAValueAsAStringWithoutAType) {
  shown({"set", "size", "12"});
  EXPECT_EQ(content(), qx::dict({{"size", "12"}}));
}

TEST_F(Prefs, TakesNegativeNumbersAsTheyStand) {
  shown({"set", "size", "-12", "--type", "int"});
  EXPECT_EQ(content(), qx::dict({{"size", -12}}));
}

TEST_F(Prefs, RefusesTextThatIsNotOfTheType) {
  const struct {
    const char* type;
    const char* text;
    const char* reason;
  } cases[] = {
      {"int", "1.5", "VALUE (1.5) must be an integer of 64 bits"},
      {"int", "9223372036854775808", "VALUE (9223372036854775808) must be an integer of 64 bits"},
      {"float", "1e39", "VALUE (1e39) must be a real number within single precision"},
      {"double", "nan", "VALUE (nan) must be a real number"},
      {"double", "1e999", "VALUE (1e999) must be a real number"},
      {"double", "", "VALUE () must be a real number"},
      {"bool", "maybe", "VALUE (maybe) must be true or false, yes or no, 1 or 0"},
      {"date", "yesterday",
       "VALUE (yesterday) must be a date as in RFC 3339, such as 2021-03-04T05:06:07Z"},
      {"date", "2021-03-04T05:06:07.5Z",
       "VALUE (2021-03-04T05:06:07.5Z) must be a date of whole seconds"},
      {"data", "0", "VALUE (0) must be pairs of hexadecimal digits"},
      {"data", "0g", "VALUE (0g) must be pairs of hexadecimal digits"},
      {"wish", "x", "--type takes string, int, float, double, bool, date, data or json, not wish"},
  };
  for (const auto& c : cases) expectFailure({"set", "a", "--type", c.type, "--", c.text}, c.reason);
  const ProgramRun json = run({"set", "a", "{", "--type", "json"});
  EXPECT_EQ(json.exitCode, 2);
  EXPECT_TRUE(json.err.starts_with("qx: VALUE ({) is no JSON: ")) << json.err;
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(Prefs, RefusesJsonThatWouldBeKeptAsAnotherValue) {
  const struct {
    const char* text;
    const char* reason;
  } cases[] = {
      {"18446744073709551616", "an integer that 64 bits do not hold: 18446744073709551616"},
      {"[-9223372036854775809]", "an integer that 64 bits do not hold: -9223372036854775809"},
      {"{\"a\": 1, \"b\": 2, \"a\": 1}", "the key \"a\" is given twice"},
      {"[{\"\\u001b\": {}, \"\\u001b\": 0}]", "the key \"\\u001B\" is given twice"},
  };
  for (const auto& c : cases) {
    expectFailure({"set", "a", "--type", "json", "--", c.text},
                  "VALUE (" + std::string(c.text) + ") can not be kept: " + c.reason);
  }
  const std::string many(50, '7');
  expectFailure({"set", "a", many, "--type", "json"},
                "VALUE (" + std::string(39, '7') +
                    "\u2026) can not be kept: an integer that 64 bits do not hold: " +
                    std::string(39, '7') + "\u2026");
  EXPECT_FALSE(std::filesystem::exists(path()));
  shown({"set", "a", R"([{"a": 1}, {"a": {"a": -9223372036854775808}}, 1e30])", "--type", "json"});
  EXPECT_EQ(shown({"get", "a"}), "[{\"a\": 1}, {\"a\": {\"a\": -9223372036854775808}}, 1e+30]\n");
}

TEST_F(Prefs, RefusesWhatAPropertyListCanNotHold) {
  const ProgramRun null = run({"set", "a", "[null]", "--type", "json"});
  EXPECT_EQ(null.exitCode, 2);
  EXPECT_TRUE(null.err.starts_with("qx: VALUE can not be kept: ")) << null.err;
  const ProgramRun control = run({"set", "a", "\x01"});
  EXPECT_EQ(control.exitCode, 2);
  EXPECT_TRUE(control.err.starts_with("qx: VALUE can not be kept: ")) << control.err;
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(Prefs, EndsWithOneWhereNothingStandsAtThePath) {
  write(qx::dict({{"a", qx::dict({{"b", 1}})}}));
  const std::string before = contentOf(path());
  expectFailure({"get", "a.c"}, path() + ": nothing stands at a.c", 1);
  expectFailure({"get", "x.y"}, path() + ": nothing stands at x.y", 1);
  expectFailure({"remove", "x.y"}, path() + ": nothing stands at x.y", 1);
  expectFailure({"list", "x"}, path() + ": nothing stands at x", 1);
  EXPECT_EQ(contentOf(path()), before);
}

TEST_F(Prefs, Removes) {
  write(qx::dict({{"a", qx::dict({{"b", 1}, {"c", 2}})}, {"d", 3}}));
  EXPECT_EQ(shown({"remove", "a.b"}), "");
  EXPECT_EQ(content(), qx::dict({{"a", qx::dict({{"c", 2}})}, {"d", 3}}));
  EXPECT_EQ(shown({"remove", "a"}), "");
  EXPECT_EQ(content(), qx::dict({{"d", 3}}));
}

TEST_F(Prefs, ListsALineForEachValue) {
  write(qx::dict({{"ui", qx::dict({{"font", qx::dict({{"size", 11}})}, {"none", qx::dict({})}})},
                  {"recent", qx::array("a", qx::dict({{"b", 1.0}}))},
                  {"text", "two\nlines \x1B[31m"},
                  {"org.example.key", qx::dict({{"x", true}})},
                  {"a[0]", 1},
                  {"", qx::dict({{"", 2}})},
                  {"big", qx::array(1.0 / 0.0)}}),
        qx::PropertyListFormat::binary);
  EXPECT_EQ(shown({"list"}),
            "ui.font.size = 11\n"
            "ui.none = {}\n"
            "recent = [\"a\", {\"b\": 1.0}]\n"
            "text = two\\nlines \\u001B[31m\n"
            "\"org.example.key\" = {\"x\": true}\n"
            "\"a[0]\" = 1\n"
            "\"\" = {\"\": 2}\n"
            "big = [\"inf\"]\n");
  EXPECT_EQ(shown({"list", "ui"}), "ui.font.size = 11\nui.none = {}\n");
  EXPECT_EQ(shown({"list", "ui.font.size"}), "ui.font.size = 11\n");
  EXPECT_EQ(shown({"list", "ui", "--json"}), "{\"font\": {\"size\": 11}, \"none\": {}}\n");
}

TEST_F(Prefs, ListsNothingOfAnEmptyDictionaryOrFile) {
  write(qx::dict({}));
  EXPECT_EQ(shown({"list"}), "");
  EXPECT_EQ(shown({"list", "--json"}), "{}\n");
  folder_.file("s.plist", "");
  EXPECT_EQ(shown({"list", "--json"}), "{}\n");
}

TEST_F(Prefs, ShowsAStringAsItStandsButSafelyOnATerminal) {
  write(qx::dict({{"a", "\x1B[31m\n"}}), qx::PropertyListFormat::binary);
  EXPECT_EQ(shown({"get", "a"}), "\x1B[31m\n\n");
  const TerminalRun seen =
      runOnTerminal({QX_TOOL_PATH, "prefs", path(), "get", "a"}, {.output = true}, {}, 0);
  EXPECT_EQ(seen.exitCode, 0);
  EXPECT_EQ(seen.shown, "\\u001B[31m\\n\r\n");
}

TEST_F(Prefs, WritesBelowArraysByTheirWeightedIndex) {
  qx::Ref<qx::MutableArray> list = qx::MutableArray::init();
  for (int i = 0; i < 11; ++i) list->addObject(qx::dict({{"n", i}}));
  write(qx::dict({{"list", list}}));
  shown({"set", "list[1].n", "x"});
  EXPECT_EQ(shown({"get", "list[1].n"}), "x\n");
  EXPECT_EQ(shown({"get", "list[1]", "--json"}), "{\"n\": \"x\"}\n");
  const auto stored = content().as<qx::Dictionary>()->objectForKey("list").as<qx::Array>();
  EXPECT_EQ(stored->objectAtIndex(10), qx::dict({{"n", "x"}}));
}

// A store would drop them, or set something else, without a word.
TEST_F(Prefs, RefusesToSetWhereTheValueWouldNotStandAfterwards) {
  write(qx::dict({{"list", qx::array(qx::dict({{"n", 1}}))}}));
  const std::string before = contentOf(path());
  expectFailure({"set", "list[3].n", "x"},
                "no value can be set at list[3].n: its index stands for no place");
  expectFailure({"set", "list[0]", "x"},
                "no value can be set at list[0]: its index stands for no place");
  for (const char* path :
       {"list[zero]", "list[0]more", "list[", "list]", "list[]", "[0", "list[0][0]"}) {
    expectFailure({"set", path, "x"}, std::string("no value can be set at ") + path +
                                          ": brackets hold a number, at the end of a key");
  }
  EXPECT_EQ(contentOf(path()), before);
}

TEST_F(Prefs, LeavesTheFileWhereThePathLeadsThroughAValue) {
  write(qx::dict({{"a", 1}, {"list", qx::array(1)}}));
  const std::string before = contentOf(path());
  for (const char* keyPath : {"a.b", "a.b.c", "a[0].b", "list.b", "list[0].b"}) {
    expectFailure({"set", keyPath, "x"}, "no value can be set at " + std::string(keyPath) +
                                             ": it leads through what is no dictionary");
  }
  expectFailure({"set", "a.", "x"}, "no value can be set at a.: a key path ends with a key");
  for (const char* keyPath : {"a.b", "a.b.c", "a.", "list.b", "list[0].b"}) {
    for (const char* action : {"get", "remove", "list"}) {
      expectFailure({action, keyPath}, path() + ": nothing stands at " + keyPath, 1);
    }
  }
  expectFailure({"get", ""}, path() + ": nothing stands at \"\"", 1);
  for (const char* action : {"get", "remove", "list"}) {
    for (const char* keyPath : {"abc]", "list[!]"}) {
      expectFailure({action, keyPath}, std::string(keyPath) +
                                           " is no key path: brackets hold a "
                                           "number, at the end of a key");
    }
  }
  expectFailure({"remove", "list[0]"},
                "nothing can be removed at list[0]: it is an element of an array, or its key is "
                "empty");
  EXPECT_EQ(contentOf(path()), before);
}

TEST_F(Prefs, NamesAMalformedFileAndLeavesItUntouched) {
  for (const char* bytes :
       {"<plist><dict><key>a</key>", "no list at all", "<plist version=\"1.0\"><array/></plist>"}) {
    folder_.file("s.plist", bytes);
    const std::vector<std::string> actions[] = {
        {"get", "a"}, {"set", "a", "1"}, {"remove", "a"}, {"list"}};
    for (const auto& words : actions) {
      const ProgramRun done = run(words);
      EXPECT_EQ(done.exitCode, 2) << bytes;
      EXPECT_EQ(done.out, "");
      EXPECT_TRUE(done.err.starts_with("qx: " + path() + ": ")) << done.err;
      EXPECT_EQ(contentOf(path()), bytes);
      EXPECT_FALSE(std::filesystem::exists(path() + ".damaged"));
    }
  }
}

TEST_F(Prefs, MakesAMissingFileWhenItSetsAndNamesItOtherwise) {
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"get", "a"}, {"remove", "a"}, {"list"}}) {
    expectFailure(words, "cannot read " + path() + ": No such file or directory");
    EXPECT_FALSE(std::filesystem::exists(path()));
  }
  shown({"set", "a", "1"});
  EXPECT_EQ(content(), qx::dict({{"a", "1"}}));
}

TEST_F(Prefs, TellsThatAFileCanNotBeReadOrWritten) {
  std::filesystem::create_directory(path());
  expectFailure({"list"}, "cannot read " + path() + ": Is a directory");
  std::filesystem::remove(path());
  ASSERT_EQ(::mkfifo(path().c_str(), 0600), 0);
  expectFailure({"list"}, path() + " is no regular file");
  const std::string missing = folder_.path("no/s.plist");
  const ProgramRun done = runTool({"prefs", missing, "set", "a", "1"});
  EXPECT_EQ(done.exitCode, 2);
  EXPECT_EQ(done.err, "qx: " + missing +
                          " could not be written, and is as it was: No such file or directory\n");
}

TEST_F(Prefs, KeepsASymbolicLinkAndTheModeOfItsFile) {
  write(qx::dict({{"a", 1}}));
  ASSERT_EQ(::chmod(path().c_str(), 0640), 0);
  const std::string link = folder_.path("link.plist");
  std::filesystem::create_symlink("s.plist", link);
  EXPECT_EQ(runTool({"prefs", link, "set", "b", "2", "--type", "int"}).exitCode, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(content(), qx::dict({{"a", 1}, {"b", 2}}));
  struct stat about{};
  ASSERT_EQ(::stat(path().c_str(), &about), 0);
  EXPECT_EQ(about.st_mode & 07777, 0640U);
}

TEST(PrefsUsage, IsRefusedWithAReason) {
  const struct {
    std::vector<std::string> words;
    const char* reason;
  } cases[] = {
      {{}, "FILE or --application is missing"},
      {{"f"}, "an action is missing: get, set, remove or list"},
      {{"f", "show"}, "the action is get, set, remove or list, not show"},
      {{"f", "get"}, "get needs a KEYPATH"},
      {{"f", "set", "a"}, "set needs a VALUE"},
      {{"f", "remove"}, "remove needs a KEYPATH"},
      {{"f", "get", "a", "b"}, "get takes no VALUE"},
      {{"f", "get", "a", "--type", "int"}, "get takes no --type"},
      {{"f", "set", "a", "b", "--json"}, "set shows nothing, and takes no --json"},
      {{"f", "set", "a", "b", "c"}, "The following argument was not expected: c"},
      {{"f", "get", "a\xFF"}, "a\\xFF is not UTF-8"},
      {{"f", "set", "a", "\xFF"}, "\\xFF is not UTF-8"},
      {{"", "list"}, "FILE is empty"},
      {{"-", "list"}, "settings are kept in files; one of the name - is ./-"},
      {{"\xFF", "list"}, "the name of FILE is not UTF-8: \\xFF"},
      {{"--application", "a/b", "list"},
       "the name of the application can not be that of a file: a/b"},
      {{"--application", "a\xFF", "list"}, "the name of the application is not UTF-8: a\\xFF"},
      {{"--application", "app", "f", "set", "a", "b"},
       "with --application there is no FILE: get, set, remove or list comes first"},
  };
  for (const auto& c : cases) {
    std::vector<std::string> words = c.words;
    words.insert(words.begin(), "prefs");
    const ProgramRun run = runTool(words);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, std::string("qx: ") + c.reason + "\n");
  }
}

// The user defaults of applications, in a folder of the test.
class ApplicationPrefs : public testing::Test {
 protected:
  ProgramRun run(std::vector<std::string> words) const {
    words.insert(words.begin(), {"prefs", "--application", "my editor"});
    return runTool(words);
  }
  std::string path() const { return folder_.path("my editor.plist"); }

  TemporaryFolder folder_;
  const std::string config_ = folder_.path("");
  const ScopedEnvironment home_{"XDG_CONFIG_HOME", config_.c_str()};
};

TEST_F(ApplicationPrefs, AreThoseThatTheApplicationReads) {
  EXPECT_EQ(run({"list"}).out, "");
  EXPECT_EQ(run({"get", "font.size"}).exitCode, 1);
  EXPECT_EQ(run({"set", "font.size", "11", "--type", "int"}).exitCode, 0);
  EXPECT_EQ(run({"set", "theme", "dark"}).exitCode, 0);
  const auto stored = qx::PropertyListSerialization::propertyListWithData(
      qx::Data::from(contentOf(path())), qx::PropertyListMutability::immutable, nullptr);
  EXPECT_EQ(stored, qx::dict({{"font", qx::dict({{"size", 11}})}, {"theme", "dark"}}));
  EXPECT_EQ(run({"list"}).out, "font.size = 11\ntheme = dark\n");
  EXPECT_EQ(run({"get", "font", "--json"}).out, "{\"size\": 11}\n");
  EXPECT_EQ(run({"remove", "theme"}).exitCode, 0);
  EXPECT_EQ(run({"remove", "font.size"}).exitCode, 0);
  EXPECT_EQ(run({"list"}).out, "font = {}\n");
}

TEST_F(ApplicationPrefs, NameAMalformedFileAndLeaveItUntouched) {
  folder_.file("my editor.plist", "damage");
  const std::vector<std::string> actions[] = {
      {"get", "a"}, {"set", "a", "1"}, {"remove", "a"}, {"list"}};
  for (const auto& words : actions) {
    const ProgramRun done = run(words);
    EXPECT_EQ(done.exitCode, 2);
    EXPECT_NE(done.err.find("my editor.plist: "), std::string::npos) << done.err;
    EXPECT_EQ(contentOf(path()), "damage");
    EXPECT_FALSE(std::filesystem::exists(path() + ".damaged"));
  }
}

TEST_F(ApplicationPrefs, HelpShowsExamplesThatRunInTheirOrder) {
  EXPECT_GE(outputsOfExamples("prefs", folder_).size(), 6U);
}

}  // namespace
}  // namespace qx_tests

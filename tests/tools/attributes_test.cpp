// qx attributes: extended attributes, on the real file system.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/tools/file_command.h"
#include "tests/tools/run_program.h"
#include "tests/tools/stored_attributes.h"
#include "tests/tools/terminal.h"

namespace qx_tests {
namespace {

// The tool on one file; skipped where that can have no attributes.
class Attributes : public FileCommand {
 protected:
  void SetUp() override {
    leading_ = {"attributes", file_};
    if (!storeAttribute(file_, "user.a", "1")) {
      GTEST_SKIP() << "no attributes here: " << ::strerror(errno);
    }
    ASSERT_EQ(::removexattr(file_.c_str(), "user.a"), 0);
  }

  std::string file_ = folder_.file("f", "content");
};

TEST_F(Attributes, OfEachTypeAreSetShownAndReadByAnotherProgram) {
  const struct {
    const char* type;
    const char* text;
    const char* shown;
    const char* python;
  } cases[] = {
      {"string", "a \u00e9", "a \u00e9", "a \u00e9"},
      {"int", "-12", "-12", "-12"},
      {"float", "0.1", "0.10000000149011612", "0.10000000149011612"},
      {"double", "2", "2.0", "2.0"},
      {"bool", "yes", "true", "True"},
      {"date", "2021-03-04T05:06:07+01:00", "2021-03-04T04:06:07Z", "2021-03-04 04:06:07"},
      {"data", "00fF", "00ff", R"(b'\x00\xff')"},
      {"json", R"({"k": [1, "x"]})", R"({"k": [1, "x"]})", "{'k': [1, 'x']}"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(shown({"set", "a", c.text, "--type", c.type}), "");
    EXPECT_EQ(shown({"get", "a"}), c.shown + std::string("\n"));
    EXPECT_EQ(listOfAttribute(file_, "user.a"), c.python);
    EXPECT_EQ(storedAttribute(file_, "user.a").substr(0, 8), "bplist00");
  }
  shown({"set", "a", "12"});
  EXPECT_EQ(shown({"list"}), "a (string) = 12\n");
  EXPECT_EQ(contentOf(file_), "content");
}

TEST_F(Attributes, OfAnotherProgramAreReadInEitherForm) {
  ASSERT_TRUE(storeList(file_, "user.a", "{'n': [1.5, True]}"));
  EXPECT_EQ(shown({"get", "a"}), "{\"n\": [1.5, true]}\n");
  ASSERT_TRUE(storeAttribute(file_, "user.a",
                             "<plist version=\"1.0\"><array><string>x</string></array></plist>"));
  EXPECT_EQ(shown({"get", "a"}), "[\"x\"]\n");
}

TEST_F(Attributes, AreListedByName) {
  EXPECT_EQ(shown({}), "");
  shown({"set", "b", "two\nlines"});
  shown({"set", "a", "1", "--type", "int"});
  ASSERT_TRUE(storeAttribute(file_, "user.\xC3\xA9\n", "no\tlist"));
  ASSERT_TRUE(storeAttribute(file_, "user.c", ""));
  EXPECT_EQ(shown({}),
            "a (int) = 1\nb (string) = two\\nlines\nc: no property list, 0 bytes\n"
            "\xC3\xA9\\n: no property list, 7 bytes\n");
  EXPECT_EQ(shown({"list"}), shown({}));
  const std::string raw = shown({"list", "--raw"});
  EXPECT_NE(raw.find("\nc = \n\xC3\xA9\\n = 6e6f096c697374\n"), std::string::npos) << raw;
}

TEST_F(Attributes, AreShownAsJsonWithTheirTypes) {
  EXPECT_EQ(shown({"list", "--json"}), "[]\n");
  const struct {
    const char* type;
    const char* text;
    const char* shownType;
    const char* json;
  } cases[] = {
      {"string", "12", "string", R"("12")"},
      {"int", "12", "int", "12"},
      {"float", "0.5", "float", "0.5"},
      {"double", "0.5", "double", "0.5"},
      {"bool", "no", "bool", "false"},
      {"date", "2021-03-04T05:06:07Z", "date", R"("2021-03-04T05:06:07Z")"},
      {"data", "00ff", "data", R"("00ff")"},
      {"json", "[1]", "array", "[1]"},
      {"json", "{}", "dictionary", "{}"},
  };
  for (const auto& c : cases) {
    shown({"set", "a", c.text, "--type", c.type});
    EXPECT_EQ(shown({"get", "a", "--json"}), c.json + std::string("\n"));
    EXPECT_EQ(shown({"list", "--json"}), std::string("[\n{\"name\": \"a\", \"type\": \"") +
                                             c.shownType + "\", \"value\": " + c.json + "}\n]\n");
  }
  ASSERT_TRUE(storeAttribute(file_, "user.b", "\xFF"));
  EXPECT_EQ(shown({"get", "b", "--raw", "--json"}), "\"ff\"\n");
  EXPECT_TRUE(shown({"list", "--raw", "--json"})
                  .ends_with("\n{\"name\": \"b\", \"type\": \"data\", \"value\": \"ff\"}\n]\n"));
  ASSERT_TRUE(storeAttribute(file_, "user.\xFF", "x"));
  EXPECT_TRUE(shown({}).ends_with("\n\uFFFD: its name is not UTF-8\n")) << shown({});
}

TEST_F(Attributes, RawBytesAreKeptAsTheyAre) {
  shown({"set", "a", "as\xFF\n", "--raw"});
  EXPECT_EQ(storedAttribute(file_, "user.a"), "as\xFF\n");
  EXPECT_EQ(shown({"get", "a", "--raw"}), "as\xFF\n");
  shown({"set", "a", "00fe0A", "--raw", "--type", "data"});
  EXPECT_EQ(storedAttribute(file_, "user.a"), std::string("\0\xFE\n", 3));
  EXPECT_EQ(shown({"get", "a", "--raw"}), std::string("\0\xFE\n", 3));
  shown({"set", "a", "", "--raw", "--type", "string"});
  EXPECT_EQ(storedAttribute(file_, "user.a"), "");
  EXPECT_EQ(shown({"get", "a", "--raw"}), "");
  shown({"set", "a", "list"});
  EXPECT_EQ(shown({"get", "a", "--raw"}), storedAttribute(file_, "user.a"));
}

TEST_F(Attributes, ThatAreNoPropertyListsAreToldAndLeftAsTheyAre) {
  shown({"set", "a", "junk", "--raw"});
  expectFailure({"get", "a"}, "cannot read the attribute a of " + file_ +
                                  ": The property list can not be read: the bytes are neither XML "
                                  "nor binary. --raw shows its bytes.");
  EXPECT_EQ(storedAttribute(file_, "user.a"), "junk");
}

TEST_F(Attributes, AreRemoved) {
  shown({"set", "a", "1"});
  shown({"set", "b", "junk", "--raw"});
  EXPECT_EQ(shown({"remove", "a"}), "");
  EXPECT_EQ(storedAttribute(file_, "user.a"), "absent");
  shown({"remove", "b"});
  EXPECT_EQ(shown({}), "");
}

TEST_F(Attributes, ThatAreNotThereHaveAnExitCodeOfTheirOwn) {
  for (const char* action : {"get", "remove"}) {
    expectFailure({action, "a"}, file_ + " has no attribute a", 1);
  }
  expectFailure({"get", "a", "--raw"}, file_ + " has no attribute a", 1);
}

TEST_F(Attributes, TakeTheirNamespaceFromTheName) {
  shown({"set", "user.a", "1", "--raw"});
  EXPECT_EQ(storedAttribute(file_, "user.a"), "1");
  EXPECT_EQ(shown({"get", "a", "--raw"}), "1");
  if (::getuid() == 0) {
    shown({"set", "trusted.a", "2", "--raw"});
    EXPECT_EQ(storedAttribute(file_, "trusted.a"), "2");
    EXPECT_EQ(shown({"list", "--raw"}), "a = 31\ntrusted.a = 32\n");
  }
}

TEST_F(Attributes, ThatTheSystemRefusesAreTold) {
  const std::string name(251, 'n');
  expectFailure({"set", name, "1"},
                "cannot set the attribute " + name + " of " + file_ + ": Attribute name too long");
  expectFailure({"get", name},
                "cannot read the attribute " + name + " of " + file_ + ": Attribute name too long");
  expectFailure({"set", "a", std::string(100000, 'x'), "--raw"},
                "cannot set the attribute a of " + file_ + ": Attribute too big");
  const std::string absent = folder_.path("absent");
  const std::vector<std::string> actions[] = {{"set", "a", "1"}, {"get", "a"}, {"remove", "a"}, {}};
  for (const auto& action : actions) {
    std::vector<std::string> words = {"attributes", absent};
    words.insert(words.end(), action.begin(), action.end());
    const ProgramRun done = runTool(words);
    EXPECT_EQ(done.exitCode, 2);
    EXPECT_EQ(done.out, "");
    EXPECT_TRUE(done.err.ends_with(" of " + absent + ": No such file or directory\n")) << done.err;
    EXPECT_FALSE(std::filesystem::exists(absent));
  }
}

// Data is written as it came; what a list has no form for is not written at all.
TEST_F(Attributes, ThatNoListCanHoldAreNotSet) {
  shown({"set", "a", "before"});
  expectFailure({"set", "a", "null", "--type", "json"},
                "VALUE can not be kept: The value can not be written as a property list: value: "
                "null is no value of a property list.");
  expectFailure({"set", "a", "{\"k\": [null]}", "--type", "json"},
                "VALUE can not be kept: The value can not be written as a property list: "
                "value.k[0]: null is no value of a property list.");
  EXPECT_EQ(shown({"get", "a"}), "before\n");
}

TEST_F(Attributes, OnATerminalCanNotCommandIt) {
  shown({"set", "a", "\033[2J", "--raw"});
  shown({"set", "b", "\033[2J"});
  Terminal terminal;
  terminal.output = terminal.messages = true;
  EXPECT_EQ(runOnTerminal({QX_TOOL_PATH, "attributes", file_, "get", "a", "--raw"}, terminal, {}, 0)
                .shown,
            "\\u001B[2J\r\n");
  EXPECT_EQ(runOnTerminal({QX_TOOL_PATH, "attributes", file_, "get", "b"}, terminal, {}, 0).shown,
            "\\u001B[2J\r\n");
}

TEST_F(Attributes, UsageIsRefusedWithAReason) {
  const struct {
    std::vector<std::string> words;
    const char* reason;
  } cases[] = {
      {{"show"}, "the action is get, set, remove or list, not show"},
      {{"get"}, "get needs a NAME"},
      {{"get", ""}, "NAME is empty"},
      {{"set", "a"}, "set needs a VALUE"},
      {{"remove"}, "remove needs a NAME"},
      {{"list", "a"}, "list takes no NAME"},
      {{"get", "a", "b"}, "get takes no VALUE"},
      {{"get", "a", "--type", "int"}, "get takes no --type"},
      {{"remove", "a", "--raw"}, "remove takes no --raw"},
      {{"remove", "a", "--json"}, "remove shows nothing, and takes no --json"},
      {{"set", "a", "1", "--json"}, "set shows nothing, and takes no --json"},
      {{"set", "a", "1", "--raw", "--type", "int"},
       "with --raw, VALUE is of the type string or data"},
      {{"set", "a", "1", "--type", "text"},
       "--type takes string, int, float, double, bool, date, data or json, not text"},
      {{"set", "a", "x", "--type", "int"}, "VALUE (x) must be an integer of 64 bits"},
      {{"set", "a", "0", "--raw", "--type", "data"},
       "VALUE (0) must be pairs of hexadecimal digits"},
      {{"set", "a", "\xFF"}, "\\xFF is not UTF-8"},
      {{"set", "a", "b", "c"}, "The following argument was not expected: c"},
  };
  for (const auto& c : cases) expectFailure(c.words, c.reason);
  EXPECT_EQ(runTool({"attributes"}).exitCode, 2);
  EXPECT_EQ(runTool({"attributes", ""}).err, "qx: FILE is empty\n");
  EXPECT_EQ(shown({}), "");
}

TEST_F(Attributes, HelpShowsExamplesThatRunInTheirOrder) {
  folder_.file("report.txt", "");
  const std::vector<std::string> outputs = outputsOfExamples("attributes", folder_);
  EXPECT_EQ(outputs.size(), 8U);
  std::string shownByAll;
  for (const std::string& output : outputs) shownByAll += output;
  EXPECT_EQ(shownByAll,
            "org.example.authors (array) = [\"Ann\", \"Bob\"]\norg.example.page (int) = 12\n"
            "xdg.comment: no property list, 12 bytes\n"
            "[\n{\"name\": \"org.example.authors\", \"type\": \"array\", \"value\": [\"Ann\", "
            "\"Bob\"]},\n"
            "{\"name\": \"org.example.page\", \"type\": \"int\", \"value\": 12},\n"
            "{\"name\": \"xdg.comment\", \"fault\": \"no property list, 12 bytes\"}\n]\n12\nas it "
            "stands");
}

}  // namespace
}  // namespace qx_tests

// qx plist, and property lists as what qx select reads and writes.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/support/xml_list.h"
#include "tests/tools/run_program.h"

namespace qx_tests {
namespace {

const std::string kHead = test_support::kXmlHead;
const std::string kFoot = test_support::kXmlFoot;

const std::string kSettings = kHead +
                              "<dict>\n"
                              "\t<key>name</key>\n"
                              "\t<string>a &amp; b</string>\n"
                              "\t<key>sizes</key>\n"
                              "\t<array>\n"
                              "\t\t<integer>-1</integer>\n"
                              "\t\t<integer>18446744073709551615</integer>\n"
                              "\t\t<real>0.5</real>\n"
                              "\t\t<real>3</real>\n"
                              "\t\t<true/>\n"
                              "\t</array>\n"
                              "</dict>\n" +
                              kFoot;

const std::string kPeople = kHead +
                            "<array>\n"
                            "\t<dict>\n"
                            "\t\t<key>name</key>\n"
                            "\t\t<string>Jim</string>\n"
                            "\t\t<key>age</key>\n"
                            "\t\t<integer>30</integer>\n"
                            "\t\t<key>joined</key>\n"
                            "\t\t<date>2001-02-03T04:05:06Z</date>\n"
                            "\t\t<key>more</key>\n"
                            "\t\t<dict>\n"
                            "\t\t\t<key>token</key>\n"
                            "\t\t\t<data>\n"
                            "\t\t\tAAEC\n"
                            "\t\t\t</data>\n"
                            "\t\t</dict>\n"
                            "\t</dict>\n"
                            "\t<dict>\n"
                            "\t\t<key>name</key>\n"
                            "\t\t<string>Jo</string>\n"
                            "\t\t<key>age</key>\n"
                            "\t\t<integer>55</integer>\n"
                            "\t</dict>\n"
                            "</array>\n" +
                            kFoot;

ProgramRun runWith(const std::string& input, const std::vector<std::string>& arguments) {
  Surroundings surroundings;
  surroundings.input = input;
  return runTool(arguments, surroundings);
}

// What the tool writes, and nothing else.
std::string outputOf(const std::string& input, const std::vector<std::string>& arguments) {
  const ProgramRun run = runWith(input, arguments);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, "");
  return run.out;
}

void expectFailure(const ProgramRun& run, const std::string& reason) {
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "qx: " + reason + "\n");
}

std::string binaryOf(const std::string& xml) {
  return outputOf(xml, {"plist", "-", "--to", "binary"});
}

// ---- qx plist

TEST(Plist, ConvertsEachWay) {
  const std::string binary = binaryOf(kSettings);
  EXPECT_EQ(binary.substr(0, 8), "bplist00");
  for (const std::string& list : {kSettings, binary}) {
    EXPECT_EQ(outputOf(list, {"plist", "-"}), kSettings);
    EXPECT_EQ(outputOf(list, {"plist", "-", "--to", "xml"}), kSettings);
    EXPECT_EQ(outputOf(list, {"plist", "-", "--to", "binary"}), binary);
    EXPECT_EQ(outputOf(list, {"plist", "-", "--to", "json"}),
              "{\n"
              "\"name\": \"a & b\",\n"
              "\"sizes\": [-1, 18446744073709551615, 0.5, 3.0, true]\n"
              "}\n");
  }
}

TEST(Plist, WritesAnyRootAsJson) {
  const auto jsonOf = [](const std::string& value) {
    return outputOf("<plist>" + value + "</plist>", {"plist", "-", "--to", "json"});
  };
  EXPECT_EQ(jsonOf("<array><integer>1</integer><string>x</string></array>"), "[\n1,\n\"x\"\n]\n");
  EXPECT_EQ(jsonOf("<array/>"), "[]\n");
  EXPECT_EQ(jsonOf("<dict/>"), "{}\n");
  EXPECT_EQ(jsonOf("<string>x</string>"), "\"x\"\n");
}

TEST(Plist, SaysWhatJsonCannotHold) {
  const std::vector<std::string> toJson = {"plist", "-", "--to", "json"};
  expectFailure(runWith(kPeople, toJson), "[0].joined: a date has no form in JSON");
  const auto inPlist = [](const std::string& value) { return "<plist>" + value + "</plist>"; };
  expectFailure(runWith(inPlist("<data/>"), toJson), "data has no form in JSON");
  expectFailure(runWith(inPlist("<dict><key>a</key><array><true/><dict><key>b</key><data/></dict>"
                                "</array></dict>"),
                        toJson),
                "a[1].b: data has no form in JSON");
  expectFailure(runWith(inPlist("<array><real>nan</real></array>"), toJson),
                "[0]: a number that is not finite has no form in JSON");
}

TEST(Plist, SaysWhatXmlCannotHold) {
  // A string of one control character.
  const std::string binary(
      "bplist00\x51\x01\x08\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x01\0\0\0\0\0\0\0\0"
      "\0\0\0\0\0\0\0\x0A",
      43);
  expectFailure(runWith(binary, {"plist", "-", "--to", "xml"}),
                "The value can not be written as a property list: a string holds the character "
                "U+0001, which XML can not carry.");
  EXPECT_EQ(outputOf(binary, {"plist", "-", "--to", "json"}), "\"\\u0001\"\n");
}

TEST(Plist, ChecksBothForms) {
  const TemporaryFolder folder;
  const std::string xml = folder.file("a.plist", kSettings);
  const std::string binary = folder.file("b.plist", binaryOf(kSettings));
  EXPECT_EQ(outputOf("", {"plist", "--check", xml}), xml + ": an XML property list\n");
  EXPECT_EQ(outputOf("", {"plist", "--check", binary}), binary + ": a binary property list\n");
  EXPECT_EQ(outputOf(kSettings, {"plist", "--check", "-"}),
            "standard input: an XML property list\n");
}

TEST(Plist, TellsWhereAListIsWrong) {
  const auto expectWrong = [](const std::string& list, const std::string& reason) {
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"plist", "--check", "-"}, {"plist", "-"}, {"plist", "-", "--to", "binary"}}) {
      expectFailure(runWith(list, arguments), "standard input: " + reason);
    }
  };
  expectWrong("<plist>\n <true/>x</plist>",
              "The property list can not be read: line 2, column 9: text stands outside of the "
              "values.");
  expectWrong(binaryOf(kSettings).substr(0, 60) + std::string(40, '\0'),
              "The property list can not be read: byte 74: offsets are not 1 to 8 bytes wide.");
  expectWrong("", "The property list can not be read: there are no bytes.");
  expectWrong("{\"a\": 1}",
              "The property list can not be read: the bytes are neither XML nor binary.");
}

TEST(Plist, RefusesOptionsThatContradict) {
  expectFailure(runWith(kSettings, {"plist", "-", "--check", "--to", "xml"}),
                "--to excludes --check");
  expectFailure(runWith(kSettings, {"plist", "-", "--check", "--out", "x"}),
                "--out excludes --check");
  expectFailure(runWith(kSettings, {"plist", "-", "--to", "yaml"}),
                "--to takes xml, binary or json, not yaml");
  expectFailure(runTool({"plist"}), "FILE is required");
  expectFailure(runTool({"plist", "--check", "/no/such"}),
                "cannot read /no/such: No such file or directory");
}

// ---- --out

TEST(PlistOut, WritesAFileOfItsOwn) {
  const TemporaryFolder folder;
  const std::string to = folder.path("to.plist");
  EXPECT_EQ(outputOf(binaryOf(kSettings), {"plist", "-", "--out", to}), "");
  EXPECT_EQ(contentOf(to), kSettings);
  EXPECT_EQ(outputOf(kSettings, {"plist", "-", "--out", "-"}), kSettings);
}

TEST(PlistOut, ReplacesTheFileItself) {
  const TemporaryFolder folder;
  const std::string file = folder.file("a.plist", kSettings);
  ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
  const std::string link = folder.path("link.plist");
  ASSERT_EQ(::symlink("a.plist", link.c_str()), 0);
  EXPECT_EQ(outputOf("", {"plist", link, "--to", "binary", "--out", link}), "");
  EXPECT_EQ(contentOf(file), binaryOf(kSettings));
  struct stat status{};
  ASSERT_EQ(::lstat(link.c_str(), &status), 0);
  EXPECT_TRUE(S_ISLNK(status.st_mode));
  ASSERT_EQ(::stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST(PlistOut, LeavesTheFileAloneWhenItFails) {
  const TemporaryFolder folder;
  const std::string file = folder.file("a.plist", "before");
  const std::string people = folder.file("people.plist", kPeople);
  expectFailure(runTool({"plist", people, "--to", "json", "--out", file}),
                "[0].joined: a date has no form in JSON");
  EXPECT_EQ(contentOf(file), "before");
  const std::string missing = folder.path("no/such.plist");
  expectFailure(runTool({"plist", people, "--out", missing}),
                "cannot write " + missing + ": No such file or directory");
  expectFailure(runTool({"plist", people, "--out", folder.path("")}),
                "cannot write " + folder.path("") + ": Is a directory");
  expectFailure(runTool({"plist", people, "--out", "/dev/full"}),
                "cannot write /dev/full: No space left on device");
  std::size_t files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path(""))) {
    ++files;
  }
  EXPECT_EQ(files, 2U);
}

// ---- qx select

TEST(SelectFromPlist, ReadsBothFormsByTheirContent) {
  for (const std::string& list : {kPeople, binaryOf(kPeople), "\xEF\xBB\xBF" + kPeople,
                                  "\n \n<plist>" + kPeople.substr(kHead.size())}) {
    EXPECT_EQ(
        outputOf(list, {"select", "-", "--where", "age > %d", "--arg", "40", "--keys", "name"}),
        "name\nJo\n");
  }
  std::string utf16 = "\xFF\xFE";
  for (const char c :
       std::string("<plist><array><dict><key>a</key><true/></dict></array></plist>")) {
    utf16 += c;
    utf16 += '\0';
  }
  EXPECT_EQ(outputOf(utf16, {"select", "-"}), "a\ntrue\n");
}

TEST(SelectFromPlist, ShowsDatesAndDataInATable) {
  EXPECT_EQ(outputOf(kPeople, {"select", "-"}),
            "name  age  joined                     more\n"
            "Jim    30  2001-02-03 04:05:06 +0000  {\"token\": <000102>}\n"
            "Jo     55\n");
}

TEST(SelectFromPlist, SaysWhichRecordJsonCannotHold) {
  expectFailure(runWith(kPeople, {"select", "-", "--output", "json"}),
                "record 1: joined: a date has no form in JSON");
  EXPECT_EQ(outputOf(kPeople, {"select", "-", "--output", "json", "--keys", "name,age"}),
            "[\n{\"name\": \"Jim\", \"age\": 30},\n{\"name\": \"Jo\", \"age\": 55}\n]\n");
}

TEST(SelectFromPlist, RefusesWhatIsNoArrayOfDictionaries) {
  const auto reasonFor = [](const std::string& value) {
    return runWith("<plist>" + value + "</plist>", {"select", "-"}).err;
  };
  const std::string start = "qx: standard input: ";
  EXPECT_EQ(reasonFor("<dict/>"),
            start + "the root is a dictionary, not an array of dictionaries\n");
  EXPECT_EQ(reasonFor("<true/>"), start + "the root is not an array of dictionaries\n");
  EXPECT_EQ(reasonFor("<array><dict/><array/></array>"),
            start + "element 2 of the array is not a dictionary\n");
  EXPECT_EQ(reasonFor("<array><dict></array>"),
            start +
                "The property list can not be read: line 1, column 21: </array> stands where "
                "</dict> is expected.\n");
}

TEST(SelectToPlist, WritesTheRecordsInBothForms) {
  EXPECT_EQ(outputOf(kPeople, {"select", "-", "--output", "plist"}), kPeople);
  EXPECT_EQ(outputOf(kPeople, {"select", "-", "--output", "binary"}), binaryOf(kPeople));
  EXPECT_EQ(outputOf("[]", {"select", "-", "--output", "plist"}), kHead + "<array/>\n" + kFoot);
}

TEST(SelectToPlist, WritesKeysAsJsonDoes) {
  const std::string json = R"([{"a": {"b": 1}, "c": "x"}, {"c": 2.5}])";
  const std::string list = outputOf(json, {"select", "-", "--keys", "c,a.b", "--output", "binary"});
  EXPECT_EQ(outputOf(list, {"select", "-", "--output", "json"}),
            "[\n{\"a.b\": 1, \"c\": \"x\"},\n{\"c\": 2.5}\n]\n");
  EXPECT_EQ(outputOf(json, {"select", "-", "--keys", "c,a.b", "--output", "json"}),
            "[\n{\"a.b\": 1, \"c\": \"x\"},\n{\"c\": 2.5}\n]\n");
}

TEST(SelectToPlist, SaysWhatAPropertyListCannotHold) {
  expectFailure(runWith(R"([{"a": 1}, {"b": [null]}])", {"select", "-", "--output", "plist"}),
                "The value can not be written as a property list: [1].b[0]: null is no value of a "
                "property list.");
}

}  // namespace
}  // namespace qx_tests

// Two independent readers and writers of the format, both ways: Python's plistlib, and plistutil.

#include <gtest/gtest.h>

#include <limits>

#include "platform/property_list_io.h"
#include "tests/platform/property_list/dump.h"
#include "tests/platform/property_list/programs.h"

namespace qx {
namespace {

using plist::dump;
using plist::Folder;
using plist::outputOf;

const std::string kPython = "python3 '" QX_TESTS_DIR "/platform/property_list/peer.py' ";

std::string written(const PropertyValue& v, PropertyListFormat format) {
  Ref<Error> error;
  const auto data = PropertyListSerialization::dataWithPropertyList(v, format, &error);
  EXPECT_EQ(error, nullptr) << error->localizedDescription();
  return data == nullptr ? "" : std::string(data->view());
}

std::string dumpOfFile(const std::string& path) {
  Ref<Error> error;
  const PropertyValue v = detail::readPropertyList(
      plist::readFile(path), PropertyListMutability::immutable, nullptr, &error);
  return error != nullptr ? error->localizedDescription() : dump(v);
}

std::string pythonDump(const std::string& paths) {
  std::string text = outputOf(kPython + "dump " + paths);
  if (!text.empty()) text.pop_back();
  return text;
}

// Another program's conversion of the file to the other format, as this library reads it.
std::string dumpOfConversion(const std::string& path, const std::string& format) {
  const std::string converted = path + ".converted";
  outputOf("plistutil -i '" + path + "' -o '" + converted + "' -f " + format);
  return dumpOfFile(converted);
}

// Every kind, and every width that a kind comes in.
Ref<MutableArray> everything() {
  constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
  constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
  const auto list = MutableArray::init();
  for (const std::uint64_t n :
       {std::uint64_t{0}, std::uint64_t{127}, std::uint64_t{128}, std::uint64_t{255},
        std::uint64_t{256}, std::uint64_t{65535}, std::uint64_t{65536}, std::uint64_t{4294967295},
        std::uint64_t{4294967296}, kMost >> 1, (kMost >> 1) + 1, kMost}) {
    list->addObject(n);
  }
  for (const std::int64_t n : {std::int64_t{-1}, std::int64_t{-128}, std::int64_t{-129},
                               std::int64_t{-2147483648}, kLeast}) {
    list->addObject(n);
  }
  for (const double d :
       {0.1, -2.5, 1e22, 1e-7, 5e-324, 1.7976931348623157e308,
        std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN()}) {
    list->addObject(d);
  }
  list->addObject(1.5F);
  list->addObject(0.1F);
  list->addObject(true);
  list->addObject(false);
  for (const double seconds : {-3187296000.0, 0.0, 978307200.0, 7258118399.0}) {
    list->addObject(Date::dateWithTimeIntervalSince1970(seconds));
  }
  for (const std::size_t n : {0U, 1U, 2U, 3U, 14U, 15U, 57U, 255U, 256U, 70000U}) {
    list->addObject(Data::from(std::string(n, '\xA7')));
    list->addObject(std::string(n, 'x'));
  }
  list->addObject("a & b < c > d \"e\" 'f'\ttab\nline");
  list->addObject("  spaces around  ");
  list->addObject("na\xC3\xAFve \xE2\x82\xAC \xF0\x9F\x98\x80 \x7F\xC2\x85");
  list->addObject(array());
  list->addObject(dict());
  list->addObject(dict({{"", 1}, {"a<&>", array("x")}, {"\xE2\x82\xAC", dict({{"k", "v"}})}}));
  const auto large = MutableDictionary::init();
  for (int i = 0; i < 300; ++i) large->setObject(i, "key" + std::to_string(i));
  list->addObject(large);
  return list;
}

TEST(PropertyListPeers, PythonReadsEverythingThatIsWritten) {
  const Folder folder;
  const Ref<MutableArray> list = everything();
  plist::writeFile(folder / "list.xml", written(list, PropertyListFormat::xml));
  plist::writeFile(folder / "list.bin", written(list, PropertyListFormat::binary));
  EXPECT_EQ(pythonDump("'" + folder / "list.xml" + "'"), dump(list));
  EXPECT_EQ(pythonDump("'" + folder / "list.bin" + "'"), dump(list));
}

// The other reader's own XML loses carriage returns, and the sign of a zero.
TEST(PropertyListPeers, CarriageReturnsAndSignedZerosArrive) {
  const Folder folder;
  const auto list = array("\r carriage \r\n returns \r", dict({{"\r", -0.0}}));
  plist::writeFile(folder / "list.xml", written(list, PropertyListFormat::xml));
  plist::writeFile(folder / "list.bin", written(list, PropertyListFormat::binary));
  EXPECT_EQ(pythonDump("'" + folder / "list.xml" + "'"), dump(list));
  EXPECT_EQ(pythonDump("'" + folder / "list.bin" + "'"), dump(list));
  EXPECT_EQ(dumpOfConversion(folder / "list.xml", "bin"), dump(list));
}

TEST(PropertyListPeers, PlistutilReadsEverythingThatIsWritten) {
  const Folder folder;
  const Ref<MutableArray> list = everything();
  plist::writeFile(folder / "list.xml", written(list, PropertyListFormat::xml));
  plist::writeFile(folder / "list.bin", written(list, PropertyListFormat::binary));
  EXPECT_EQ(dumpOfConversion(folder / "list.xml", "bin"), dump(list));
  EXPECT_EQ(dumpOfConversion(folder / "list.bin", "xml"), dump(list));
}

// Fills the folder with lists, each in both formats, and gives what stands in them.
std::vector<std::string> listsMadeByPython(const Folder& folder, int count) {
  return plist::linesOf(
      outputOf(kPython + "make '" + folder.path() + "' " + std::to_string(count)));
}

TEST(PropertyListPeers, ListsMadeByPythonAreRead) {
  const Folder folder;
  const auto lines = listsMadeByPython(folder, 150);
  ASSERT_EQ(lines.size(), 150);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string name = std::to_string(i);
    EXPECT_EQ(dumpOfFile(folder / (name + ".xml")), lines[i]) << name;
    EXPECT_EQ(dumpOfFile(folder / (name + ".bin")), lines[i]) << name;
  }
}

TEST(PropertyListPeers, ListsMadeByPlistutilAreRead) {
  const Folder folder;
  const auto lines = listsMadeByPython(folder, 40);
  ASSERT_EQ(lines.size(), 40);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string name = std::to_string(i);
    EXPECT_EQ(dumpOfConversion(folder / (name + ".xml"), "bin"), lines[i]) << name;
    EXPECT_EQ(dumpOfConversion(folder / (name + ".bin"), "xml"), lines[i]) << name;
  }
}

TEST(PropertyListPeers, ListsThatWentThroughHereAreReadByBoth) {
  constexpr int kCount = 40;
  const Folder folder;
  const auto lines =
      plist::linesOf(outputOf(kPython + "make '" + folder.path() + "' " + std::to_string(kCount)));
  std::string paths;
  std::string wanted;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string path = folder / std::to_string(i);
    for (const auto format : {PropertyListFormat::xml, PropertyListFormat::binary}) {
      const PropertyValue v = detail::readPropertyList(
          plist::readFile(path + ".bin"), PropertyListMutability::immutable, nullptr, nullptr);
      const std::string copy = path + (format == PropertyListFormat::xml ? ".x" : ".b");
      plist::writeFile(copy, written(v, format));
      EXPECT_EQ(dumpOfConversion(copy, format == PropertyListFormat::xml ? "bin" : "xml"),
                lines[i]);
      paths += "'" + copy + "' ";
      wanted += (wanted.empty() ? "" : "\n") + lines[i];
    }
  }
  EXPECT_EQ(pythonDump(paths), wanted);
}

TEST(PropertyListPeers, DatesFrom1869To2199AgreeEachWay) {
  const Folder folder;
  const std::string line = plist::linesOf(outputOf(kPython + "dates '" + folder.path() + "'"))[0];
  EXPECT_GT(line.size(), 25000U);
  for (const char* const name : {"dates.xml", "dates.bin"}) {
    EXPECT_EQ(dumpOfFile(folder / name), line);
  }
  EXPECT_EQ(dumpOfConversion(folder / "dates.xml", "bin"), line);
  EXPECT_EQ(dumpOfConversion(folder / "dates.bin", "xml"), line);
  const PropertyValue dates = detail::readPropertyList(
      plist::readFile(folder / "dates.bin"), PropertyListMutability::immutable, nullptr, nullptr);
  plist::writeFile(folder / "own.xml", written(dates, PropertyListFormat::xml));
  plist::writeFile(folder / "own.bin", written(dates, PropertyListFormat::binary));
  EXPECT_EQ(pythonDump("'" + folder / "own.xml" + "'"), line);
  EXPECT_EQ(pythonDump("'" + folder / "own.bin" + "'"), line);
}

TEST(PropertyListPeers, FractionsOfSecondsAreKeptInBinary) {
  const Folder folder;
  const auto list = array(Date::dateWithTimeIntervalSinceReferenceDate(0.5),
                          Date::dateWithTimeIntervalSinceReferenceDate(-3e9 - 0.25));
  plist::writeFile(folder / "list.bin", written(list, PropertyListFormat::binary));
  EXPECT_EQ(pythonDump("'" + folder / "list.bin" + "'"), "[d500000,d-3000000000250000,]");
}

}  // namespace
}  // namespace qx

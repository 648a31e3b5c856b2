// Lists made by hand and lists at the edges of their widths, as this library and two independent
// readers see them: Python's plistlib, and plistutil.

#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "platform/property_list_io.h"
#include "tests/platform/property_list/binary_maker.h"
#include "tests/platform/property_list/dump.h"
#include "tests/platform/property_list/programs.h"
#include "tests/platform/property_list/reading.h"

namespace qx {
namespace {

using plist::BinaryMaker;
using plist::eachWidthOfOffsetsAndReferences;
using plist::Folder;
using plist::listOfOne;
using plist::wide;

// Lists in files of one folder, numbered in the order of adding.
class Lists {
 public:
  void add(const std::string& bytes) {
    plist::writeFile(path(lines_.size()), bytes);
    lines_.push_back(plist::readingOf(bytes));
  }

  void expectThatPythonAgrees() const {
    std::string command = "python3 '" QX_TESTS_DIR "/platform/property_list/peer.py' dump";
    for (std::size_t i = 0; i < lines_.size(); ++i) command += " '" + path(i) + "'";
    EXPECT_EQ(plist::linesOf(plist::outputOf(command)), lines_);
  }

  // Plistutil's conversion to the other format is read here again.
  void expectThatPlistutilAgrees(const std::string& format) const {
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      const std::string converted = path(i) + ".converted";
      plist::outputOf("plistutil -i '" + path(i) + "' -o '" + converted + "' -f " + format);
      EXPECT_EQ(plist::readingOf(plist::readFile(converted)), lines_[i]) << i;
    }
  }

 private:
  std::string path(std::size_t number) const { return folder_ / std::to_string(number); }

  Folder folder_;
  std::vector<std::string> lines_;
};

TEST(HandMadePropertyListPeers, AgreeOnEveryWidthOfOffsetsAndReferences) {
  Lists lists;
  eachWidthOfOffsetsAndReferences([&](const std::string& list) { lists.add(list); });
  lists.expectThatPythonAgrees();
  lists.expectThatPlistutilAgrees("xml");
}

TEST(HandMadePropertyListPeers, AgreeOnEveryWidthOfNumbersAndSizes) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  Lists lists;
  for (const std::size_t width : {1U, 2U, 4U, 8U}) {
    for (const std::uint64_t n :
         {std::uint64_t{0}, std::uint64_t{0x7F}, kMost >> 1 >> (64 - 8 * width)}) {
      lists.add(listOfOne(BinaryMaker::integer(width, n)));
    }
    lists.add(listOfOne("\x5F" + BinaryMaker::integer(width, 3) + "abc"));
    lists.add(listOfOne("\x6F" + BinaryMaker::integer(width, 1) + wide(0x20AC, 2)));
    lists.add(listOfOne("\x4F" + BinaryMaker::integer(width, 2) + "xy"));
  }
  for (const std::size_t width : {1U, 2U, 4U})
    lists.add(listOfOne(BinaryMaker::integer(width, kMost)));
  lists.add(listOfOne(BinaryMaker::integer(8, kMost)));
  lists.add(listOfOne(BinaryMaker::integer(8, (kMost >> 1) + 1)));
  lists.add(listOfOne(BinaryMaker::longInteger(0, (kMost >> 1) + 1)));
  lists.add(listOfOne(BinaryMaker::longInteger(0, kMost)));
  lists.add(listOfOne("\x22" + wide(0x3DCCCCCD, 4)));
  lists.add(listOfOne(BinaryMaker::real(0.1)));
  lists.add(listOfOne(BinaryMaker::date(-4165000000.0)));
  lists.expectThatPythonAgrees();
  lists.expectThatPlistutilAgrees("xml");
}

TEST(HandMadePropertyListPeers, AgreeOnUtf16) {
  Lists lists;
  for (const std::u16string_view text :
       {u"a", u"na\u00EFve", u"\u20AC", u"\U0001F600", u"\U0010FFFD\U00010000", u"\uFFFD\uE000"}) {
    lists.add(listOfOne(BinaryMaker::utf16(text)));
    BinaryMaker key;
    key.add(key.dictionary({1}, {1}));
    key.add(BinaryMaker::utf16(text));
    lists.add(key.bytes());
  }
  for (const std::size_t size : {14U, 15U, 255U, 256U, 65535U, 65536U}) {
    lists.add(listOfOne(BinaryMaker::utf16(std::u16string(size, u'\u20AC'))));
  }
  lists.expectThatPlistutilAgrees("xml");
  lists.add(listOfOne(BinaryMaker::utf16(u"")));  // of which plistutil makes no XML
  lists.expectThatPythonAgrees();
}

// Around the places where the writer takes the next width of references and offsets.
TEST(HandMadePropertyListPeers, ReadWhatIsWrittenInEveryWidth) {
  Lists lists;
  const auto add = [&](const PropertyValue& v, std::size_t offsetWidth,
                       std::size_t referenceWidth) {
    const std::string bytes = plist::writingOf(v, PropertyListFormat::binary);
    EXPECT_EQ(static_cast<std::size_t>(bytes[bytes.size() - 26]), offsetWidth);
    EXPECT_EQ(static_cast<std::size_t>(bytes[bytes.size() - 25]), referenceWidth);
    lists.add(bytes);
  };
  const auto numbers = [](int count) {
    const auto list = MutableArray::init();
    for (int i = 0; i < count; ++i) list->addObject(i);
    return list;
  };
  add(array(1, dict({{"a", "b"}})), 1, 1);
  add(array(Data::from(std::string(300, 'x')), "y"), 2, 1);
  add(numbers(255), 2, 1);
  add(numbers(256), 2, 2);
  add(array(Data::from(std::string(70000, 'x')), "y"), 4, 1);
  add(numbers(65535), 4, 2);
  add(numbers(65536), 4, 4);
  lists.expectThatPythonAgrees();
  lists.expectThatPlistutilAgrees("xml");
}

struct Document {
  const char* name;
  std::string text;
  bool isReadByPlistutil = true;
};

std::string inPlist(const std::string& content) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + content +
         "</plist>\n";
}
std::string utf16(std::u16string_view text, bool bigEndian) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(bigEndian ? unit >> 8 : unit);
    bytes += static_cast<char>(bigEndian ? unit : unit >> 8);
  }
  return bytes;
}

TEST(HandMadePropertyListPeers, AgreeOnXml) {
  const std::u16string wideList =
      u"<?xml version=\"1.0\" encoding=\"UTF-16\"?><plist "
      u"version=\"1.0\"><dict><key>\u00E4\u20AC</key>"
      u"<string>\U0001F600</string></dict></plist>";
  const Document kDocuments[] = {
      {"Nested",
       inPlist("<dict><key>a</key><array><dict><key>b</key><true/></dict></array></dict>")},
      {"Empty", inPlist("<array><string/><string></string><array/><dict/><data></data></array>")},
      {"References", inPlist("<string>&lt;&amp;&gt;&quot;&apos;&#65;&#x20AC;&#x1F600;</string>")},
      {"Comments", inPlist("<!-- a --><array><!-- <true/> --><true/></array><!-- b -->")},
      {"Sections", inPlist("<array><string><![CDATA[<b>&amp;]]></string></array>")},
      {"Space", inPlist("\n\t<array>\n\t\t<string>  a  </string>\r\n</array>\n")},
      {"Integers", inPlist("<array><integer>0</integer><integer>-1</integer>"
                           "<integer>9223372036854775807</integer>"
                           "<integer>18446744073709551615</integer>"
                           "<integer>-9223372036854775808</integer></array>")},
      {"Hexadecimal", inPlist("<array><integer>0x1F</integer></array>")},
      {"Reals", inPlist("<array><real>0.1</real><real>-1.5e300</real><real>5e-324</real></array>")},
      {"RealsThatAreNoNumbers",
       inPlist("<array><real>nan</real><real>inf</real><real>-infinity</real></array>"), false},
      {"Dates", inPlist("<array><date>1869-01-01T00:00:00Z</date>"
                        "<date>2199-12-31T23:59:59Z</date></array>")},
      {"Data", inPlist("<array><data>\n\tAAEC\n\tAw==\n\t</data></array>")},
      {"Utf8WithAMark", "\xEF\xBB\xBF" + inPlist("<string>\xC3\xA4\xE2\x82\xAC</string>"), false},
      {"Utf16LittleEndian", utf16(u"\uFEFF" + wideList, false), false},
      {"Utf16BigEndian", utf16(u"\uFEFF" + wideList, true), false},
  };
  Lists all;
  Lists some;
  for (const Document& d : kDocuments) {
    all.add(d.text);
    if (d.isReadByPlistutil) some.add(d.text);
  }
  all.expectThatPythonAgrees();
  some.expectThatPlistutilAgrees("bin");
}

}  // namespace
}  // namespace qx

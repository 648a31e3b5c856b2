// XML property lists that are damaged, hostile or foreign: each gives a clear error with its line
// and column, soon and in little memory.

#include <gtest/gtest.h>

#include "tests/platform/property_list/bounded.h"
#include "tests/platform/property_list/reading.h"
#include "tests/platform/property_list/round_trip.h"

namespace qx {
namespace {

using namespace std::string_literals;
using plist::readBytes;

struct BadList {
  const char* name;
  std::string bytes;
  std::string outcome;  // what follows "The property list can not be read: " and the code
};
void PrintTo(const BadList& list, std::ostream* out) { *out << list.name; }

std::string inPlist(const std::string& content) { return "<plist>\n " + content + "\n</plist>"; }
std::string repeated(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}
std::string withEncoding(const std::string& name) {
  return "<?xml version='1.0' encoding='" + name + "'?><plist><string>a</string></plist>";
}
std::string utf16(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

const std::string kLaughs =
    "<!DOCTYPE plist [<!ENTITY a \"ha\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\">"
    "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;\">]><plist><string>&c;</string></plist>";
const std::string kNotAnInteger = "the text of <integer> is no integer of 64 bits.";
const std::string kNotAReal = "the text of <real> is no number of the range of doubles.";
const std::string kNotADate = "the text of <date> is no date of the form 2001-02-03T04:05:06Z.";
const std::string kNotData = "the text of <data> is no data in base 64.";

const BadList kBadLists[] = {
    // ---- no property list at all
    {"Nothing", "", "1 there are no bytes."},
    {"Text", "hello", "1 the bytes are neither XML nor binary."},
    {"OldTextForm", "{ a = b; }", "1 the bytes are neither XML nor binary."},
    {"Zeros", std::string(100, '\0'), "1 the bytes are neither XML nor binary."},
    {"SpaceAlone", " \n ", "1 the bytes are neither XML nor binary."},
    {"OtherXml", "<html><body/></html>",
     "2 line 1, column 2: <html> is no element of property lists."},
    {"NoPlist", "<dict/>", "2 line 1, column 1: the root element is not <plist>."},
    {"EmptyPlist", "<plist/>", "2 line 1, column 1: there is no value."},
    {"PlistWithoutValue", inPlist(""), "2 line 3, column 1: there is no value."},
    // ---- roots
    {"TextBehindTheRoot", inPlist("<true/>") + "x",
     "2 line 3, column 9: something stands behind the root element."},
    {"ElementBehindTheRoot", inPlist("<true/>") + "<true/>",
     "2 line 3, column 9: something stands behind the root element."},
    {"ZeroBehindTheRoot", inPlist("<true/>") + "\0"s,
     "2 line 3, column 9: the character is none of XML's."},
    {"TwoRoots", inPlist("<true/>") + inPlist("<true/>"),
     "2 line 3, column 9: something stands behind the root element."},
    {"TwoValues", inPlist("<true/><true/>"), "2 line 2, column 9: there is more than one value."},
    {"TextBehindTheValue", inPlist("<true/>x"),
     "2 line 2, column 9: text stands outside of the values."},
    {"SectionBehindTheValue", inPlist("<true/><![CDATA[ ]]>"),
     "2 line 2, column 10: a name is missing in a tag."},
    // ---- elements
    {"Unclosed", "<plist><array>", "2 line 1, column 15: the document ends too early."},
    {"UnclosedText", "<plist><string>abc", "2 line 1, column 19: the document ends within a text."},
    {"Mismatched", inPlist("<array></dict>"),
     "2 line 2, column 9: </dict> stands where </array> is expected."},
    {"MismatchedText", inPlist("<string>a</key>"),
     "2 line 2, column 11: </string> is missing here."},
    {"PrefixOfAnElement", inPlist("<string>a</strin>"),
     "2 line 2, column 11: </string> is missing here."},
    {"MoreThanAnElement", inPlist("<string>a</strings>"),
     "2 line 2, column 11: </string> is missing here."},
    {"CloseWithoutOpen", inPlist("</array>"), "2 line 2, column 2: there is no value."},
    {"UnknownElement", inPlist("<null/>"),
     "2 line 2, column 3: <null> is no element of property lists."},
    {"CapitalElement", inPlist("<Dict/>"),
     "2 line 2, column 3: <Dict> is no element of property lists."},
    {"ElementBeyondAscii", inPlist("<str\xC3\xAFng/>"),
     "3 line 2, column 6: names beyond ASCII are not read."},
    {"ElementWithinText", inPlist("<string><b>a</b></string>"),
     "2 line 2, column 10: an element stands within a text."},
    {"PlistWithinPlist", inPlist("<plist><true/></plist>"),
     "2 line 2, column 2: <plist> stands where a value is expected."},
    {"AttributeOfAValue", inPlist("<array a='b'/>"),
     "2 line 2, column 2: the tag of <array> is malformed, or has attributes, which only <plist> "
     "may have."},
    {"TagWithinTag", inPlist("<array <true/>>"),
     "2 line 2, column 2: the tag of <array> is malformed, or has attributes, which only <plist> "
     "may have."},
    {"TextInArray", inPlist("<array>x</array>"),
     "2 line 2, column 9: text stands outside of the values."},
    {"TextInBool", inPlist("<true>yes</true>"), "2 line 2, column 2: <true> holds text."},
    {"AttributeTwice", "<plist a='1' a='1'><true/></plist>",
     "2 line 1, column 14: an attribute stands twice."},
    {"AttributeWithoutValue", "<plist a><true/></plist>",
     "2 line 1, column 9: an attribute has no value."},
    {"AttributesThatTouch", "<plist a='1'b='2'><true/></plist>",
     "2 line 1, column 1: the tag of <plist> is malformed, or has attributes, which only <plist> "
     "may have."},
    {"ManyAttributes",
     [] {
       std::string tag = "<plist";
       for (int i = 0; i < 100; ++i) tag += " a" + std::to_string(i) + "='1'";
       return tag + "><true/></plist>";
     }(),
     "3 line 1, column 126: there are too many attributes."},
    // ---- dictionaries
    {"KeyThatIsNoString", inPlist("<dict><integer>1</integer><true/></dict>"),
     "2 line 2, column 8: <integer> stands where a <key> is expected."},
    {"ValueWithoutKey", inPlist("<dict><key>a</key><true/><true/></dict>"),
     "2 line 2, column 27: <true> stands where a <key> is expected."},
    {"KeyWithoutValue", inPlist("<dict><key>a</key></dict>"),
     "2 line 2, column 20: the last key has no value."},
    {"TwoKeys", inPlist("<dict><key>a</key><key>b</key></dict>"),
     "2 line 2, column 20: a <key> stands where a value is expected."},
    {"KeyInArray", inPlist("<array><key>a</key></array>"),
     "2 line 2, column 9: a <key> stands outside of a <dict>."},
    {"KeyAsRoot", inPlist("<key>a</key>"),
     "2 line 2, column 2: a <key> stands outside of a <dict>."},
    {"RepeatedKey", inPlist("<dict><key>a</key><true/>\n<key>&#97;</key><true/></dict>"),
     "2 line 3, column 1: the key \"a\" stands twice."},
    // ---- entities and references
    {"EntityDeclaration", "<!DOCTYPE plist [<!ENTITY a 'b'>]><plist><string>&a;</string></plist>",
     "3 line 1, column 17: declarations within the document type, such as entities, are not read."},
    {"ExternalEntity",
     "<!DOCTYPE plist [<!ENTITY a SYSTEM '/etc/passwd'>]><plist><string>&a;</string></plist>",
     "3 line 1, column 17: declarations within the document type, such as entities, are not read."},
    {"BillionLaughs", kLaughs,
     "3 line 1, column 17: declarations within the document type, such as entities, are not read."},
    {"EntityReference", inPlist("<string>&nbsp;</string>"),
     "2 line 2, column 10: the entity \"nbsp\" is not known."},
    {"EntityWithoutEnd", inPlist("<string>&amp</string>"),
     "2 line 2, column 10: the entity \"amp\" is not known."},
    {"LoneAmpersand", inPlist("<string>a & b</string>"),
     "2 line 2, column 13: a name is missing in a reference."},
    {"CharacterReferenceToNul", inPlist("<string>&#0;</string>"),
     "2 line 2, column 10: the character reference is malformed."},
    {"CharacterReferenceToControl", inPlist("<string>&#x1F;</string>"),
     "2 line 2, column 10: the character reference is malformed."},
    {"CharacterReferenceToSurrogate", inPlist("<string>&#xD83D;&#xDE00;</string>"),
     "2 line 2, column 10: the character reference is malformed."},
    {"CharacterReferenceToNonCharacter", inPlist("<string>&#xFFFE;</string>"),
     "2 line 2, column 10: the character reference is malformed."},
    {"CharacterReferenceBeyondUnicode", inPlist("<string>&#x110000;</string>"),
     "2 line 2, column 10: the character reference is malformed."},
    {"CharacterReferenceThatWraps", inPlist("<string>&#4294967361;</string>"),
     "2 line 2, column 10: the character reference is malformed."},
    {"CharacterReferenceWithoutDigits", inPlist("<string>&#;</string>"),
     "2 line 2, column 10: the character reference is malformed."},
    {"CharacterReferenceWithCapitalX", inPlist("<string>&#X41;</string>"),
     "2 line 2, column 10: the character reference is malformed."},
    {"CharacterReferenceWithoutEnd", inPlist("<string>&#65 </string>"),
     "2 line 2, column 10: the character reference is malformed."},
    {"ReferenceOutsideOfText", inPlist("&amp;"),
     "2 line 2, column 2: text stands outside of the values."},
    // ---- characters and encodings
    {"ControlCharacter", inPlist("<string>a\x01</string>"),
     "2 line 2, column 11: the character is none of XML's."},
    {"NonCharacter", inPlist("<string>a\xEF\xBF\xBF</string>"),
     "2 line 2, column 11: the character is none of XML's."},
    {"BadUtf8", inPlist("<string>\xC3\xA9\x80</string>"),
     "2 line 2, column 11: the bytes are no UTF-8."},
    {"OverlongUtf8", inPlist("<string>\xC0\x80</string>"),
     "2 line 2, column 10: the bytes are no UTF-8."},
    {"SurrogateInUtf8", inPlist("<string>\xED\xA0\x80</string>"),
     "2 line 2, column 10: the bytes are no UTF-8."},
    {"CutUtf8", "<plist><string>\xF0\x9F\x98", "2 line 1, column 16: the bytes are no UTF-8."},
    {"Latin1AsUtf8", inPlist("<string>na\xEFve</string>"),
     "2 line 2, column 12: the bytes are no UTF-8."},
    {"LoneHighSurrogate", utf16(u"\uFEFF<plist>\n<string>\xD800</string></plist>"),
     "2 line 2, column 9: a lone surrogate is no character."},
    {"LoneLowSurrogate", utf16(u"<plist>\n<string>\xDC00</string></plist>"),
     "2 line 2, column 9: a lone surrogate is no character."},
    {"OddUtf16", utf16(u"\uFEFF<plist><true/></plist>") + " ",
     "2 line 1, column 23: the last character is cut off."},
    {"Utf32LittleEndian", "\xFF\xFE\0\0<\0\0\0"s,
     "3 line 1, column 1: the encoding UTF-32 is not read."},
    {"Utf32BigEndian", "\0\0\xFE\xFF\0\0\0<"s,
     "3 line 1, column 1: the encoding UTF-32 is not read."},
    {"Utf32WithoutAMark", "<\0\0\0p\0\0\0"s, "2 line 1, column 2: the character is none of XML's."},
    {"Utf32OfTheOtherOrderWithoutAMark", "\0\0\0<\0\0\0p"s,
     "1 the bytes are neither XML nor binary."},
    {"Ebcdic", "\x4C\x6F\xA7\x94\x93", "1 the bytes are neither XML nor binary."},
    {"Utf7WithItsMark", "+/v8-<plist/>", "1 the bytes are neither XML nor binary."},
    {"OtherEncoding", withEncoding("windows-1252"),
     "3 line 1, column 1: the encoding \"WINDOWS-1252\" is not read."},
    {"MadeUpEncoding", withEncoding("x"), "3 line 1, column 1: the encoding \"X\" is not read."},
    {"BytesThatDeclareUtf16", withEncoding("UTF-16"),
     "3 line 1, column 1: the bytes contradict the declared encoding \"UTF-16\"."},
    {"Utf8MarkAndLatin1", "\xEF\xBB\xBF" + withEncoding("ISO-8859-1"),
     "3 line 1, column 1: the bytes contradict the declared encoding \"ISO-8859-1\"."},
    {"Utf16ThatDeclaresUtf8",
     utf16(u"\uFEFF<?xml version='1.0' encoding='UTF-8'?><plist><true/></plist>"),
     "3 line 1, column 1: the text is UTF-16, and declares the encoding \"UTF-8\"."},
    {"Utf16OfTheOtherOrder",
     utf16(u"\uFEFF<?xml version='1.0' encoding='UTF-16BE'?><plist><true/></plist>"),
     "3 line 1, column 1: the text is UTF-16, and declares the encoding \"UTF-16BE\"."},
    {"AsciiWithOtherBytes", withEncoding("US-ASCII") + "<!-- \xC3\xA9 -->",
     "2 line 1, column 80: the byte is no character of US-ASCII."},
    // ---- prolog
    {"OtherVersion", "<?xml version='1.1'?><plist><true/></plist>",
     "3 line 1, column 1: XML \"1.1\" is not read."},
    {"DeclarationWithoutVersion", "<?xml encoding='UTF-8'?><plist><true/></plist>",
     "2 line 1, column 1: the XML declaration is malformed."},
    {"DeclarationCutOff", "<?xml version='1.0'",
     "2 line 1, column 1: the XML declaration is malformed."},
    {"DeclarationBehindSpace", " <?xml version='1.0'?><plist><true/></plist>",
     "2 line 1, column 2: an XML declaration stands elsewhere than at the start."},
    {"DocumentTypeTwice", "<!DOCTYPE a><!DOCTYPE a><plist><true/></plist>",
     "2 line 1, column 14: a name is missing in a tag."},
    {"DocumentTypeCutOff", "<!DOCTYPE plist",
     "2 line 1, column 16: the document type is malformed."},
    {"DocumentTypeWithoutName", "<!DOCTYPE><plist><true/></plist>",
     "2 line 1, column 10: a space is missing in the document type."},
    {"DocumentTypeWithHalfAnIdentifier", "<!DOCTYPE plist PUBLIC 'a'><plist><true/></plist>",
     "2 line 1, column 27: the system identifier is missing."},
    {"PublicIdentifierOfOtherCharacters", "<!DOCTYPE plist PUBLIC '{' 'a'><plist><true/></plist>",
     "2 line 1, column 25: the public identifier holds a character that may not stand there."},
    {"CommentWithoutEnd", "<plist><!-- a", "2 line 1, column 8: the comment does not end."},
    {"CommentWithHyphens", "<plist><!-- a -- b --><true/></plist>",
     "2 line 1, column 15: two hyphens stand within a comment."},
    {"InstructionWithoutEnd", "<plist><?a b",
     "2 line 1, column 8: the processing instruction does not end."},
    {"SectionWithoutEnd", inPlist("<string><![CDATA[ a</string>"),
     "2 line 2, column 10: the CDATA section does not end."},
    {"EndOfASectionInText", inPlist("<string>a ]]> b</string>"),
     "2 line 2, column 12: \"]]>\" stands in a text."},
    // ---- texts of values
    {"IntegerTooLarge", inPlist("<integer>18446744073709551616</integer>"),
     "2 line 2, column 2: " + kNotAnInteger},
    {"IntegerTooSmall", inPlist("<integer>-9223372036854775809</integer>"),
     "2 line 2, column 2: " + kNotAnInteger},
    {"EmptyInteger", inPlist("<integer/>"), "2 line 2, column 2: " + kNotAnInteger},
    {"IntegerWithPoint", inPlist("<integer>1.0</integer>"), "2 line 2, column 2: " + kNotAnInteger},
    {"IntegerOfAMillionDigits", inPlist("<integer>" + std::string(1000000, '9') + "</integer>"),
     "2 line 2, column 2: " + kNotAnInteger},
    {"IntegerFarTooLarge", inPlist("<integer>0x1FFFFFFFFFFFFFFFF</integer>"),
     "2 line 2, column 2: " + kNotAnInteger},
    {"EmptyReal", inPlist("<real></real>"), "2 line 2, column 2: " + kNotAReal},
    {"RealTooLarge", inPlist("<real>1e400</real>"), "2 line 2, column 2: " + kNotAReal},
    {"RealWithComma", inPlist("<real>1,5</real>"), "2 line 2, column 2: " + kNotAReal},
    {"RealOfAMillionDigits", inPlist("<real>1" + std::string(1000000, '0') + "</real>"),
     "2 line 2, column 2: " + kNotAReal},
    {"EmptyDate", inPlist("<date/>"), "2 line 2, column 2: " + kNotADate},
    {"DayThatIsNone", inPlist("<date>2001-02-29T00:00:00Z</date>"),
     "2 line 2, column 2: " + kNotADate},
    {"DateWithoutZone", inPlist("<date>2001-02-28T00:00:00</date>"),
     "2 line 2, column 2: " + kNotADate},
    {"Base64WithOtherCharacters", inPlist("<data>AA*A</data>"), "2 line 2, column 2: " + kNotData},
    {"Base64WithoutPadding", inPlist("<data>AA</data>"), "2 line 2, column 2: " + kNotData},
    {"Base64BehindPadding", inPlist("<data>AA==AAAA</data>"), "2 line 2, column 2: " + kNotData},
};

class BadXmlList : public testing::TestWithParam<BadList> {};

TEST_P(BadXmlList, GivesAClearErrorSoonAndInLittleMemory) {
  const std::string& wanted = GetParam().outcome;
  for (const auto mutability :
       {PropertyListMutability::immutable, PropertyListMutability::mutableContainersAndLeaves}) {
    EXPECT_EQ(readBytes(GetParam().bytes, mutability).text(),
              wanted.substr(0, 2) + "The property list can not be read: " + wanted.substr(2));
  }
  plist::expectBoundedReading(GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(PropertyLists, BadXmlList, testing::ValuesIn(kBadLists),
                         [](const auto& list) { return std::string(list.param.name); });

TEST(BadXmlLists, EveryTruncationIsAnError) {
  const std::string whole = plist::writingOf(dict({{"text", "a<b\r\xE2\x82\xAC"},
                                                   {"numbers", array(1, -1, 1.5, true)},
                                                   {"date", Date::dateWithTimeIntervalSince1970(0)},
                                                   {"data", Data::from("bytes")},
                                                   {"empty", array(array(), dict())}}),
                                             PropertyListFormat::xml);
  ASSERT_EQ(readBytes(whole).error, nullptr);
  ASSERT_EQ(readBytes(whole.substr(0, whole.size() - 1)).error, nullptr) << "only a line feed less";
  for (std::size_t size = 0; size + 1 < whole.size(); ++size) {
    EXPECT_NE(readBytes(whole.substr(0, size)).error, nullptr) << size;
  }
  const auto cost = plist::costOf([&] {
    for (std::size_t size = 0; size < whole.size(); ++size) (void)readBytes(whole.substr(0, size));
  });
  EXPECT_LT(cost.memory, plist::memoryFor(whole.size(), 40));
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const char c : {'<', '>', '/', '&', ' ', '\0', 'x', '\x80', '\xFF', ']'}) {
      std::string bytes = whole;
      bytes[at] = c;
      EXPECT_EQ(plist::checkBytes(bytes).what, "") << at << " " << c;
    }
  }
}

TEST(BadXmlLists, AMillionNestedContainersAreRefusedSoon) {
  const std::string limit = "4 A limit of property lists is passed: line 1, column ";
  const std::string tooDeep = ": containers are nested more than 512 deep.";
  const std::string arrays = "<plist>" + repeated("<array>", 1000000);
  const std::string closed = arrays + repeated("</array>", 1000000) + "</plist>";
  const std::string dictionaries = "<plist>" + repeated("<dict><key>a</key>", 1000000);
  EXPECT_EQ(readBytes(arrays).text(), limit + "3592" + tooDeep);
  EXPECT_EQ(readBytes(closed).text(), limit + "3592" + tooDeep);
  EXPECT_EQ(readBytes(dictionaries).text(), limit + "9224" + tooDeep);
  for (const std::string& list : {arrays, closed, dictionaries}) plist::expectBoundedReading(list);
}

// Texts that a careless reader would go through again and again.
TEST(BadXmlLists, LongDocumentsTakeTimeInProportion) {
  const std::string kHalf = std::string(2000000, '-');
  for (const std::string& document :
       {inPlist("<!-- " + repeated("- ", 1000000) + "--><true/>"), inPlist("<!--" + kHalf),
        inPlist(repeated("<!---->", 300000) + "<true/>"),
        inPlist("<string>" + repeated("<![CDATA[]]>", 200000) + "</string>"),
        inPlist("<string>" + repeated("]", 2000000) + "</string>"),
        inPlist("<string>" + repeated("&#65;", 400000) + "</string>"),
        inPlist("<string>" + repeated("\r", 2000000) + "</string>"),
        inPlist("<string><![CDATA[" + repeated("\r", 2000000) + "]]></string>"),
        inPlist("<string><![CDATA[" + repeated("]", 2000000)),
        inPlist("<data>" + repeated(" ", 2000000) + "</data>"),
        "<plist a='" + repeated("&lt;", 500000) + "'><true/></plist>",
        "<" + std::string(2000000, 'a') + ">", inPlist(repeated("\xEF\xBF\xBD", 600000))}) {
    plist::expectBoundedReading(document);
  }
}

TEST(BadXmlLists, ManyKeysThatAreAllEqualOrAllDifferentTakeTimeInProportion) {
  std::string distinct;
  for (int i = 0; i < 200000; ++i) distinct += "<key>" + std::to_string(i) + "</key><true/>";
  auto o = readBytes(inPlist("<dict>" + distinct + "</dict>"));
  EXPECT_EQ(o.error, nullptr);
  EXPECT_LT(o.seconds, 1.0);
  o = readBytes(inPlist("<dict>" + repeated("<key>a</key><true/>", 200000) + "</dict>"));
  EXPECT_EQ(o.error->code(), 2);
  EXPECT_LT(o.seconds, 1.0);
}

}  // namespace
}  // namespace qx

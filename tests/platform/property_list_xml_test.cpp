// XML property lists: what is read, in which encodings, and what exactly is written.

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "tests/platform/property_list/reading.h"
#include "tests/platform/property_list/same_list.h"
#include "tests/platform/property_list/well_formed.h"
#include "tests/support/xml_list.h"

namespace qx {
namespace {

using plist::dump;
using plist::readBytes;
using plist::readingOf;

const std::string kHead = test_support::kXmlHead;
const std::string kFoot = test_support::kXmlFoot;

std::string xmlOf(const PropertyValue& v) { return plist::writingOf(v, PropertyListFormat::xml); }
std::string listOf(const std::string& content) { return kHead + content + kFoot; }
std::string textOf(std::string_view text) { return dump(PropertyValue(text)); }

struct Accepted {
  const char* name;
  std::string document;
  std::string read;
};
void PrintTo(const Accepted& a, std::ostream* out) { *out << a.name; }

const Accepted kAccepted[] = {
    {"AllKinds",
     listOf("<dict>\n\t<key>s</key>\n\t<string>text</string>\n\t<key>i</key>\n\t<integer>-5</"
            "integer>\n"
            "\t<key>r</key>\n\t<real>1.5</real>\n\t<key>t</key>\n\t<true/>\n\t<key>f</"
            "key>\n\t<false/>\n"
            "\t<key>d</key>\n\t<date>2001-01-01T00:00:01Z</date>\n\t<key>b</"
            "key>\n\t<data>\n\tAAEC\n\t</data>\n"
            "\t<key>a</key>\n\t<array>\n\t\t<integer>1</integer>\n\t</array>\n</dict>\n"),
     "{73=s74657874,69=i-5,72=r3ff8000000000000,74=true,66=false,64=d1000000,62=b000102,61=[i1,],"
     "}"},
    {"NothingButTheElements", "<plist><true/></plist>", "true"},
    {"SystemIdentifier", "<!DOCTYPE plist SYSTEM 'file://dtd'><plist><true/></plist>", "true"},
    {"DocumentTypeAlone", "<!DOCTYPE plist ><plist><true/></plist>", "true"},
    {"AttributesOfTheRoot", "<plist version = '1.1' a=\"&lt;&#65;'\"\n b:c='\"'><true/></plist>",
     "true"},
    {"SpacesInTags", "<plist ><array ><true /></array\n></plist\t>", "[true,]"},
    {"EmptyElements", "<plist><array><string/><data/><array/><dict/></array></plist>",
     "[s,b,[],{},]"},
    {"EmptyPairs",
     "<plist><array><string></string><data> </data><array></array><dict> </dict><true></true>"
     "<false> \n</false></array></plist>",
     "[s,b,[],{},true,false,]"},
    {"EmptyKey", "<plist><dict><key/><true/></dict></plist>", "{=true,}"},
    {"CommentsAndInstructions",
     "<!-- a - b --><?a?><plist><?b c ? >?><!----><array><!-- <true/> --><true/><?d?></array><!-- "
     "e -->"
     "</plist><?f g?>\n<!-- h -->\n",
     "[true,]"},
    {"CommentsWithinTexts",
     "<plist><array><string>a<!-- b -->c<?d e?>f</string><integer>1<!-- "
     "-->2</integer></array></plist>",
     "[" + textOf("acf") + ",i12,]"},
    {"Sections", "<plist><string>a<![CDATA[<b>&amp;]]]]><![CDATA[>\r\nc]]></string></plist>",
     textOf("a<b>&amp;]]>\nc")},
    {"PredefinedEntities", "<plist><string>&lt;&gt;&amp;&quot;&apos;</string></plist>",
     textOf("<>&\"'")},
    {"CharacterReferences",
     "<plist><string>&#65;&#x42;&#x1F600;&#9;&#13;&#0010;&#xfffd;</string></plist>",
     textOf("AB\xF0\x9F\x98\x80\t\r\n\xEF\xBF\xBD")},
    {"LineEnds", "<plist><string>a\r\nb\rc\n\r\nd</string>\r\n</plist>", textOf("a\nb\nc\n\nd")},
    {"BracketsInText", "<plist><string>a]b]]c] ]></string></plist>", textOf("a]b]]c] ]>")},
    {"SpaceAroundText", "<plist><string> \t a \n</string></plist>", textOf(" \t a \n")},
    {"SpaceAroundNumbers",
     "<plist><array><integer>\n 5 </integer><real> 1e3\t</real><date> 2001-01-01T00:00:00Z </date>"
     "</array></plist>",
     "[i5,r408f400000000000,d0,]"},
    {"OtherNumbers",
     "<plist><array><integer>0xFF</integer><integer>18446744073709551615</integer><real>nan</real>"
     "<real>-Infinity</real></array></plist>",
     "[i255,i18446744073709551615,rnan,rfff0000000000000,]"},
    {"ReferencesInNumbersAndData",
     "<plist><array><integer>&#49;2</integer><data>AA&#69;C</data></array></plist>",
     "[i12,b000102,]"},
    {"ControlCharactersOfLatin1", "<plist><string>&#x80;\xC2\x85\x7F</string></plist>",
     textOf("\xC2\x80\xC2\x85\x7F")},
    {"LeadingSpace", " \n<plist><true/></plist>", "true"},
    {"DeclarationWithAll",
     "<?xml version='1.0' encoding = 'utf-8' standalone=\"yes\" ?><plist><true/></plist>", "true"},
    {"DeclarationOfTheVersionAlone", "<?xml version=\"1.0\"?><plist><true/></plist>", "true"},
};

class XmlPropertyListReading : public testing::TestWithParam<Accepted> {};

TEST_P(XmlPropertyListReading, Accepts) {
  EXPECT_EQ(readingOf(GetParam().document), GetParam().read);
  EXPECT_EQ(plist::xmlComplaint(GetParam().document), "");
}

INSTANTIATE_TEST_SUITE_P(PropertyLists, XmlPropertyListReading, testing::ValuesIn(kAccepted),
                         [](const auto& accepted) { return std::string(accepted.param.name); });

// ---- encodings

std::string utf16(std::u16string_view text, bool bigEndian) {
  std::string bytes;
  for (const char16_t unit : text) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

std::u16string declared(const std::u16string& encoding) {
  return u"<?xml version=\"1.0\" encoding=\"" + encoding +
         u"\"?><plist><string>\u00E4\u20AC\U0001F600</string></plist>";
}
const std::string kUnicode = textOf("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");

TEST(XmlPropertyListEncoding, Utf16IsReadWithAndWithoutAMark) {
  for (const bool bigEndian : {false, true}) {
    const std::u16string own = bigEndian ? u"UTF-16BE" : u"UTF-16LE";
    EXPECT_EQ(readingOf(utf16(u"\uFEFF" + declared(u"UTF-16"), bigEndian)), kUnicode);
    EXPECT_EQ(readingOf(utf16(u"\uFEFF" + declared(own), bigEndian)), kUnicode);
    EXPECT_EQ(readingOf(utf16(declared(u"utf-16"), bigEndian)), kUnicode);
    EXPECT_EQ(
        readingOf(utf16(u"<plist><string>\u00E4\u20AC\U0001F600</string></plist>", bigEndian)),
        kUnicode);
  }
}

TEST(XmlPropertyListEncoding, Utf8IsReadWithAndWithoutAMark) {
  const std::string list = "<plist><string>\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80</string></plist>";
  for (const char* const mark : {"", "\xEF\xBB\xBF"}) {
    EXPECT_EQ(readingOf(mark + list), kUnicode);
    EXPECT_EQ(readingOf(mark + ("<?xml version='1.0' encoding='utf-8'?>" + list)), kUnicode);
  }
}

TEST(XmlPropertyListEncoding, Latin1AndAsciiAreReadWhereDeclared) {
  EXPECT_EQ(readingOf("<?xml version='1.0' encoding='iso-8859-1'?><plist><dict><key>\xE4</key>"
                      "<string>\xA4\x80</string></dict></plist>"),
            "{c3a4=sc2a4c280,}");
  EXPECT_EQ(readingOf("<?xml version='1.0' encoding='US-ASCII'?><plist><string>a</string></plist>"),
            textOf("a"));
}

// ---- writing

TEST(XmlPropertyListWriting, GivesTheUsualForm) {
  const auto list = dict({{"string", "a<b>&c\"'\r\n\t"},
                          {"", 18446744073709551615U},
                          {"real", array(0.1, 3.0, 1.5F, 0.1F)},
                          {"bools", array(true, false)},
                          {"date", Date::dateWithTimeIntervalSince1970(-0.5)},
                          {"data", Data::from("foobar")},
                          {"empty", array("", Data::from(""), array(), dict())}});
  EXPECT_EQ(xmlOf(list), listOf("<dict>\n"
                                "\t<key>string</key>\n"
                                "\t<string>a&lt;b&gt;&amp;c\"'&#13;\n\t</string>\n"
                                "\t<key></key>\n"
                                "\t<integer>18446744073709551615</integer>\n"
                                "\t<key>real</key>\n"
                                "\t<array>\n"
                                "\t\t<real>0.1</real>\n"
                                "\t\t<real>3</real>\n"
                                "\t\t<real>1.5</real>\n"
                                "\t\t<real>0.10000000149011612</real>\n"
                                "\t</array>\n"
                                "\t<key>bools</key>\n"
                                "\t<array>\n"
                                "\t\t<true/>\n"
                                "\t\t<false/>\n"
                                "\t</array>\n"
                                "\t<key>date</key>\n"
                                "\t<date>1969-12-31T23:59:59Z</date>\n"
                                "\t<key>data</key>\n"
                                "\t<data>\n"
                                "\tZm9vYmFy\n"
                                "\t</data>\n"
                                "\t<key>empty</key>\n"
                                "\t<array>\n"
                                "\t\t<string></string>\n"
                                "\t\t<data>\n"
                                "\t\t</data>\n"
                                "\t\t<array/>\n"
                                "\t\t<dict/>\n"
                                "\t</array>\n"
                                "</dict>\n"));
}

TEST(XmlPropertyListWriting, TakesAnyRoot) {
  EXPECT_EQ(xmlOf("x"), listOf("<string>x</string>\n"));
  EXPECT_EQ(xmlOf(true), listOf("<true/>\n"));
  EXPECT_EQ(xmlOf(array()), listOf("<array/>\n"));
  EXPECT_EQ(xmlOf(Data::from("f")), listOf("<data>\nZg==\n</data>\n"));
}

TEST(XmlPropertyListWriting, DataStandsInLinesOf76Columns) {
  PropertyValue v = Data::from(std::string(200, 'x'));
  for (std::size_t depth = 0; depth < 12; ++depth, v = array(v)) {
    const std::string xml = xmlOf(v);
    const std::size_t longest =
        std::max<std::size_t>(76 - std::min<std::size_t>(76, 8 * depth), 16);
    std::size_t length = 0;
    for (std::size_t at = xml.find("<data>\n") + 7, end = 0; xml[at + depth] != '<'; at = end + 1) {
      end = xml.find('\n', at);
      EXPECT_EQ(xml.substr(at, depth), std::string(depth, '\t'));
      length = std::max(length, end - at - depth);
    }
    EXPECT_EQ(length, longest / 4 * 4) << depth;
    EXPECT_EQ(dump(readBytes(xml).value), dump(v));
  }
}

TEST(XmlPropertyListWriting, LongTextsReadBackTheSame) {
  // Longer than the pieces that are written at once, with what is escaped at their ends.
  std::string text;
  for (std::size_t i = 0; i < 5000; ++i) text += i % 7 == 0 ? "\xF0\x9F\x98\x80" : "&\r<x";
  for (std::size_t i = 0; i < 8; ++i) {
    EXPECT_EQ(readBytes(xmlOf(text.substr(5 * i))).value, text.substr(5 * i));
  }
  std::string latin1;
  for (std::size_t i = 0; i < 20000; ++i) latin1 += "\xC3\xA9";
  EXPECT_EQ(readBytes(xmlOf(latin1)).value, latin1);
}

TEST(XmlPropertyListWriting, EveryCharacterIsCarriedOrRefused) {
  // All of them where the rules change, and some between.
  for (char32_t c = 0; c <= 0x10FFFF; c += c < 0x3000 || (c > 0xD700 && c < 0x10010) ? 1 : 0xFF) {
    std::u16string units(1, u'a');
    detail::appendCodePoint(units, c);
    const PropertyValue v = String::fromUtf16(units);
    const bool isXml = c == '\t' || c == '\n' || c == '\r' ||
                       (c >= 0x20 && !detail::isSurrogate(c) && c != 0xFFFE && c != 0xFFFF);
    ASSERT_EQ(PropertyListSerialization::propertyList(v, PropertyListFormat::xml), isXml)
        << static_cast<unsigned>(c);
    if (isXml) {
      ASSERT_EQ(readBytes(xmlOf(v)).value, v) << static_cast<unsigned>(c);
    } else {
      ASSERT_EQ(xmlOf(v)[0], '5') << static_cast<unsigned>(c);
    }
  }
}

TEST(XmlPropertyListWriting, OrderOfDictionariesIsKept) {
  const auto d = MutableDictionary::init();
  for (int i = 0; i < 100; ++i) d->setObject(i, std::to_string(i * 7919 % 1000));
  EXPECT_EQ(readingOf(xmlOf(d)), dump(d));
}

TEST(XmlPropertyListReading, DictionariesOfAListShareTheirKeys) {
  std::string content;
  for (int i = 0; i < 3; ++i)
    content += "<dict><key>a</key><true/><key>\xC3\xA4</key><array/></dict>";
  const auto list = readBytes("<plist><array>" + content + "</array></plist>").value.as<Array>();
  const auto keyAt = [&](std::size_t i, std::size_t k) {
    return list->objectAtIndex(i).as<Dictionary>()->allKeys()->objectAtIndex(k);
  };
  for (std::size_t k = 0; k < 2; ++k) EXPECT_TRUE(isSame(keyAt(0, k), keyAt(2, k)));
}

// What an independent parser refuses is refused here; random pieces of markup find the corners.
TEST(XmlPropertyListReading, AcceptsNothingThatIsNotWellFormed) {
  const char* const kPieces[] = {"<plist>",
                                 "</plist>",
                                 "<plist version='1'>",
                                 "<array>",
                                 "</array>",
                                 "<array/>",
                                 "<string>",
                                 "</string>",
                                 "<string/>",
                                 "<true/>",
                                 "a",
                                 " ",
                                 "\n",
                                 "<!-- c -->",
                                 "<!--",
                                 "-->",
                                 "--",
                                 "<?p i?>",
                                 "<?",
                                 "?>",
                                 "<![CDATA[",
                                 "]]>",
                                 "]]",
                                 "&amp;",
                                 "&#65;",
                                 "&#0;",
                                 "&x;",
                                 "&",
                                 ";",
                                 "<",
                                 ">",
                                 "'",
                                 "\"",
                                 "=",
                                 "<!DOCTYPE plist>",
                                 "<!DOCTYPE plist PUBLIC 'a' 'b'>",
                                 "<?xml version='1.0'?>",
                                 "\xC3\xA9",
                                 "\xEF\xBB\xBF",
                                 "\r",
                                 "\x01",
                                 "/"};
  std::mt19937_64 random(7);
  int accepted = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string document = random() % 2 == 0 ? "<plist><array>" : "";
    for (std::uint64_t n = 1 + random() % 6; n > 0; --n)
      document += kPieces[random() % std::size(kPieces)];
    if (document.starts_with("<plist><array>")) document += "</array></plist>";
    if (readBytes(document).value.isNil()) continue;
    ++accepted;
    ASSERT_EQ(plist::xmlComplaint(document), "") << document;
  }
  EXPECT_GT(accepted, 300);
}

}  // namespace
}  // namespace qx

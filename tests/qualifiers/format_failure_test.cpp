// Formats and arguments that raise, with the reason given.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include <QXFoundation/exception.h>
#include <QXFoundation/number.h>
#include <QXFoundation/qualifier.h>

#include "tests/qualifiers/parse.h"

namespace qx {
namespace {

struct Raise {
  std::string format;
  std::vector<PropertyValue> arguments;
  std::string reason;
};

void expectRaises(const std::vector<Raise>& cases) {
  for (const Raise& c : cases) {
    try {
      (void)parse(c.format, c.arguments);
      ADD_FAILURE() << c.format << " does not raise";
    } catch (const InvalidArgumentException& e) {
      EXPECT_STREQ(e.name(), "NSInvalidArgumentException");
      EXPECT_EQ(e.reason(), c.reason) << c.format;
    }
  }
}

std::string unrecognized(const std::string& character) {
  return "qualifierParser -- QXQualifier: unrecognized character (" + character +
         ") in the conversion specification";
}

TEST(FormatFailure, UnrecognizedConversions) {
  const std::string x = unrecognized("x");
  const std::string none = unrecognized("");
  const std::string blank = unrecognized(" ");
  const std::string umlaut = unrecognized("\xC3\xA4");
  const std::string emoji = unrecognized("\xF0\x9F\x98\x80");
  const std::string broken = unrecognized("\xEF\xBF\xBD");
  expectRaises({
      {"a = %x", {}, x},
      {"%x = a", {}, x},
      {"a%x = a", {}, x},
      {"a = b%x", {}, x},
      {"a = (NSString)%x", {}, x},
      {"a = %D", {}, unrecognized("D")},
      {"a = %", {}, none},
      {"%", {}, none},
      {"a = % d", {}, blank},
      {"a = %\xC3\xA4", {}, umlaut},
      {"a = %\xF0\x9F\x98\x80 and", {}, emoji},
      {"a = %\xFF", {}, broken},
      {"a = %\xC3", {}, broken},
      {std::string("a = %\0", 6), {}, none},
      {"a = %%%", {}, none},
      {"a = %d and b = %x", {1}, x},
  });
}

TEST(FormatFailure, MissingArguments) {
  expectRaises({
      {"a = %d",
       {},
       "qualifierParser -- QXQualifier: the conversion specification (%d) at column 5 has no "
       "argument: "
       "there are 0"},
      {"a \xC3\xA4 %d and b = %f",
       {1},
       "qualifierParser -- QXQualifier: the conversion specification (%f) at column 16 has no "
       "argument: there are 1"},
  });
}

TEST(FormatFailure, ArgumentsOfTheWrongKind) {
  const std::string at = "qualifierParser -- QXQualifier: the conversion specification ";
  const std::string d =
      at + "(%d) at column 5 takes an integer of 32 bits and was given a value of the class ";
  const std::string f =
      at + "(%f) at column 5 takes a floating-point number and was given a value of the class ";
  const std::string s = at + "(%s) at column 5 takes text and was given a value of the class ";
  expectRaises({
      {"a = %d", {"x"}, (d + "NSString")},
      {"a = %d", {true}, (d + "NSNumber: 1")},
      {"a = %d", {1.0}, (d + "NSNumber: 1")},
      {"a = %d", {std::int64_t{1} << 31}, (d + "NSNumber: 2147483648")},
      {"a = %d", {3000000000U}, (d + "NSNumber: 3000000000")},
      {"a = %d", {nullptr}, (d + "nil")},
      {"a = %d", {null}, (d + "NSNull")},
      {"a = %f", {1}, (f + "NSNumber: 1")},
      {"a = %f", {"1.5"}, (f + "NSString")},
      {"a = %f", {DecimalNumber::initWithString("1.5")}, (f + "NSDecimalNumber: 1.5")},
      {"a = %s", {1}, (s + "NSNumber: 1")},
      {"a = %s", {nullptr}, (s + "nil")},
      {"a = %s", {array()}, (s + "NSArray")},
  });
}

}  // namespace
}  // namespace qx

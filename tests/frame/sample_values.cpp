#include "tests/frame/sample_values.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include <QXFoundation/QXFoundation.h>

namespace frame_test {
namespace {

using qx::array;
using qx::dict;
using qx::PropertyValue;

using Samples = std::vector<Sample>;

PropertyValue decimal(const char* text) { return qx::DecimalNumber::initWithString(text); }

template <class... T>
qx::Ref<qx::MutableArray> mutableArray(T... values) {
  const auto fixed = array(values...);
  return qx::MutableArray::from(fixed->begin(), fixed->count());
}

template <class... T>
qx::Ref<qx::Set> set(T... values) {
  return qx::Set::from(array(values...));
}

// A Latin-1 text in the wide form, which only a mutable string keeps.
qx::Ref<qx::MutableString> wideForm(const char* text) {
  auto s = qx::MutableString::from("\xE6\xBC\xA2");
  s->setString(text);
  return s;
}

void addNumbers(Samples& all) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  constexpr std::uint64_t kMostUnsigned = std::numeric_limits<std::uint64_t>::max();
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  const std::int64_t two53 = std::int64_t{1} << 53;
  const auto add = [&](const char* group, std::initializer_list<PropertyValue> values) {
    for (const PropertyValue& v : values) all.push_back({group, v});
  };
  add("0", {0, 0U, 0.0, -0.0, 0.0F, -0.0F, false, decimal("0"), decimal("-0.00")});
  add("1", {1, 1U, 1.0, 1.0F, true, decimal("1"), decimal("1.000")});
  add("-1", {-1, -1.0, -1.0F, decimal("-1")});
  add("2", {2, 2.0});
  add("0.5", {0.5, 0.5F, decimal("0.5")});
  add("double 0.1", {0.1});
  add("float 0.1", {0.1F, static_cast<double>(0.1F)});
  add("decimal 0.1", {decimal("0.1"), decimal("0.10")});
  add("2^53", {two53, static_cast<double>(two53), decimal("9007199254740992")});
  add("2^53+1", {two53 + 1, decimal("9007199254740993")});
  add("2^60-1", {(std::int64_t{1} << 60) - 1, (std::uint64_t{1} << 60) - 1});
  add("2^60", {std::int64_t{1} << 60, std::uint64_t{1} << 60, std::ldexp(1.0, 60)});
  add("2^63-1", {kMost, static_cast<std::uint64_t>(kMost), decimal("9223372036854775807")});
  add("2^63", {std::uint64_t{1} << 63, std::ldexp(1.0, 63), std::ldexp(1.0F, 63),
               decimal("9223372036854775808")});
  add("-2^63", {kLeast, -std::ldexp(1.0, 63), decimal("-9223372036854775808")});
  add("2^64-1", {kMostUnsigned, decimal("18446744073709551615")});
  add("2^64", {std::ldexp(1.0, 64), decimal("18446744073709551616")});
  add("1e300", {1e300, 1e300});
  add("1e-300", {1e-300});
  add("1e30", {decimal("1e30")});
  add("double 1e30", {1e30});
  add("38 digits", {decimal("12345678901234567890123456789012345678")});
  add("infinity", {kInfinity, std::numeric_limits<float>::infinity()});
  add("-infinity", {-kInfinity, -std::numeric_limits<float>::infinity()});
  add("NaN", {kNaN, -kNaN, std::numeric_limits<float>::quiet_NaN(), decimal("no number")});
}

void addTexts(Samples& all) {
  const char16_t lone[] = {0xD800};
  const auto add = [&](const char* group, std::initializer_list<PropertyValue> values) {
    for (const PropertyValue& v : values) all.push_back({group, v});
  };
  add("text", {"", qx::MutableString::init(), wideForm("")});
  add("text a", {"a", qx::MutableString::from("a"), wideForm("a"), std::string("a")});
  add("text A", {"A"});
  add("text 1", {"1"});
  add("text true", {"true"});
  add("text e acute", {"\xC3\xA9", qx::MutableString::from("\xC3\xA9"), wideForm("\xC3\xA9")});
  add("text e, acute", {"e\xCC\x81"});
  add("text wide", {"a\xE6\xBC\xA2", qx::MutableString::from("a\xE6\xBC\xA2")});
  add("text emoji", {"\xF0\x9F\x98\x80"});
  add("text lone surrogate", {qx::String::fromUtf16({lone, 1})});
  add("text replacement", {"\xEF\xBF\xBD"});
  add("text with zero", {std::string("a\0", 2)});
  add("text long", {std::string(1000, 'x'), qx::MutableString::from(std::string(1000, 'x'))});
  add("data", {qx::Data::from(""), qx::MutableData::init()});
  add("data a", {qx::Data::from("a"), qx::MutableData::from("a")});
  add("data aa", {qx::Data::from("aa")});
  add("date 0",
      {qx::Date::dateWithTimeIntervalSince1970(0), qx::Date::dateWithTimeIntervalSince1970(-0.0)});
  add("date 1", {qx::Date::dateWithTimeIntervalSince1970(1)});
  add("date NaN", {qx::Date::dateWithTimeIntervalSince1970(std::nan(""))});
}

void addContainers(Samples& all) {
  const auto add = [&](const char* group, std::initializer_list<PropertyValue> values) {
    for (const PropertyValue& v : values) all.push_back({group, v});
  };
  const auto entries = [](std::initializer_list<qx::Entry> list) {
    return qx::MutableDictionary::dictionaryWithDictionary(dict(list));
  };
  add("array", {array(), mutableArray()});
  add("array 1", {array(1), array(1.0), array(true), mutableArray(decimal("1"))});
  add("array 2", {array(2)});
  add("array 1 2", {array(1, 2), mutableArray(1U, 2.0F)});
  add("array 2 1", {array(2, 1)});
  add("array a", {array("a"), mutableArray(wideForm("a"))});
  add("array null", {array(qx::null)});
  add("array array", {array(array()), mutableArray(mutableArray())});
  add("array array 1", {array(array(1)), array(mutableArray(1.0))});
  add("array point", {array(qx::make<Point>(1, 2)), mutableArray(qx::make<Point>(1, 2))});
  add("array set", {array(set(1, 2)), array(set(2, 1))});
  add("array dictionary", {array(dict({{"a", 1}})), array(entries({{"a", 1.0}}))});
  add("dictionary", {dict(), entries({})});
  add("dictionary a=1", {dict({{"a", 1}}), entries({{"a", true}})});
  add("dictionary a=2", {dict({{"a", 2}})});
  add("dictionary b=1", {dict({{"b", 1}})});
  add("dictionary ab",
      {dict({{"a", 1}, {"b", 2}}), dict({{"b", 2}, {"a", 1}}), entries({{"b", 2.0}, {"a", 1}})});
  add("dictionary ba", {dict({{"a", 2}, {"b", 1}})});
  add("dictionary a=dictionary",
      {dict({{"a", dict({{"a", 1}})}}), dict({{"a", entries({{"a", 1}})}})});
  add("set", {set(), qx::MutableSet::init()});
  add("set 1", {set(1), set(1, 1.0, true), qx::MutableSet::from(array(1U))});
  add("set 1 2", {set(1, 2), set(2, 1, 2), qx::MutableSet::from(array(2, 1))});
  add("set 1 3", {set(1, 3)});
  add("set a", {set("a"), set(wideForm("a"))});
  add("set array", {set(array(1)), set(mutableArray(1.0))});
  add("set set", {set(set(1, 2)), set(set(2, 1))});
}

void addObjects(Samples& all) {
  all.push_back({"null", qx::null});
  all.push_back({"class NSString", qx::classOf<qx::String>()});
  all.push_back({"class NSObject", qx::classOf<qx::Object>()});
  all.push_back({"point 1 2", qx::make<Point>(1, 2)});
  all.push_back({"point 1 2", qx::make<Point>(1, 2)});
  all.push_back({"point 2 1", qx::make<Point>(2, 1)});
  const auto info = dict({{"k", 1}});
  all.push_back({"error", qx::Error::errorWithDomain("D", 1, info)});
  all.push_back({"error", qx::Error::errorWithDomain("D", 1, dict({{"k", 1.0}}))});
  all.push_back({"error 2", qx::Error::errorWithDomain("D", 2, info)});
  all.push_back({"error E", qx::Error::errorWithDomain("E", 1, info)});
  all.push_back({"error without", qx::Error::errorWithDomain("D", 1, nullptr)});
}

}  // namespace

std::vector<Sample> sampleValues() {
  Samples all;
  addNumbers(all);
  addTexts(all);
  addContainers(all);
  addObjects(all);
  return all;
}

}  // namespace frame_test

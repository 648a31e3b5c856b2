// Every operation that is added to a value type can be performed by selector, on every class that
// has it, and does what the function does.

#include <gtest/gtest.h>

#include "tests/collections/sample_objects.h"

namespace {

using qx::array;
using qx::performSelector;
using qx::PropertyValue;
using qx::Selector;
using samples::mutableArrayOf;

struct Performance {
  const char* selector;
  PropertyValue receiver;
  std::vector<PropertyValue> arguments;
  PropertyValue result;
};

PropertyValue perform(const Performance& p) {
  return qx::detail::performSelectorImpl(p.receiver, Selector::named(p.selector),
                                         p.arguments.data(), p.arguments.size());
}

void expectAll(const std::vector<Performance>& all) {
  for (const Performance& p : all) {
    SCOPED_TRACE(std::string(p.receiver.cls()->name()) + " " + p.selector);
    EXPECT_TRUE(p.receiver.respondsToSelector(Selector::named(p.selector)));
    EXPECT_EQ(perform(p), p.result);
  }
}

PropertyValue dashes() { return qx::CharacterSet::characterSetWithCharactersInString("-"); }

TEST(BySelector, StringsOfBothClasses) {
  for (const bool isMutable : {false, true}) {
    const auto s = [&](const char* text) {
      return isMutable ? PropertyValue(qx::MutableString::from(text)) : PropertyValue(text);
    };
    expectAll({{"localPath", s("/a/b"), {}, "a/b"},
               {"qxBoolValue", s("yes"), {}, true},
               {"unsignedIntValue", s("-1"), {}, 4294967295U},
               {"containsCharacterInSet:", s("a-b"), {dashes()}, true},
               {"containsString:", s("abc"), {"bc"}, true},
               {"containsString:", s("abc"), {nullptr}, true},
               {"containsString:options:", s("abc"), {"BC", 1}, true},
               {"containsString:options:", s("abc"), {"BC", 2}, false},
               {"stringByReplacingAllOccurrencesOfString:withString:", s("aXa"), {"a", "b"}, "bXb"},
               {"stringByReplacingCharactersInSet:withString:", s("a--b"), {dashes(), "_"}, "a__b"},
               {"hfsPathFromPOSIXPath", s(""), {}, nullptr}});
  }
  EXPECT_TRUE(performSelector("/", "hfsPathFromPOSIXPath").isString());
  const PropertyValue s = qx::MutableString::from("a--b");
  EXPECT_EQ(performSelector(s, "replaceAllOccurrencesOfCharactersInSet:withString:", dashes(), ""),
            nullptr);
  EXPECT_EQ(s, "ab");
  EXPECT_FALSE(
      PropertyValue("a").respondsToSelector("replaceAllOccurrencesOfCharactersInSet:withString:"));
}

TEST(BySelector, ArraysOfBothClasses) {
  for (const bool isMutable : {false, true}) {
    const auto a = [&](const samples::Values& values) {
      return isMutable ? PropertyValue(mutableArrayOf(values))
                       : PropertyValue(samples::arrayOf(values));
    };
    expectAll(
        {{"subarrayWithoutObject:", a({"a", "b", "a"}), {"a"}, array("b")},
         {"subarrayByIntersectingWithArray:", a({"a", "b"}), {array("b")}, array("b")},
         {"subarrayByDifferenceWithArray:", a({"a", "b"}), {array("b")}, array("a")},
         {"subarrayByPerformingSelector:equalTo:", a({"/a", "b"}), {"localPath", "a"}, array("/a")},
         {"firstObjectByPerformingSelector:equalTo:", a({"/a", "b"}), {"localPath", "b"}, "b"},
         {"arrayByPerformingSelector:", a({"/a", "a", "~b"}), {"localPath"}, array("a", "b")},
         {"kwContainsArray:", a({"a", "b"}), {array("b")}, true},
         {"kwContainsArray:", a({"a", "b"}), {nullptr}, true}});
  }
  EXPECT_EQ(performSelector(array("a"), "kwRandomize"), PropertyValue(array("a")));
}

TEST(BySelector, MutableArrays) {
  const PropertyValue a = mutableArrayOf({"a", "b"});
  expectAll({{"addObjectCheckNil:", a, {nullptr}, nullptr},
             {"addObjectIfAbsent:", a, {"b"}, false},
             {"addObjectIfAbsent:", a, {"c"}, true},
             {"addObjectIfMissing:", a, {"d"}, nullptr},
             {"addObjectsFromArrayIfAbsent:", a, {array("d", "e")}, nullptr},
             {"insertObjectIfAbsent:atIndex:", a, {"f", 0}, true},
             {"removeObjectsNotInArray:", a, {array("a", "c", "e", "f")}, nullptr},
             {"removeObjectsInArrayUsingIsEqual:", a, {array("c")}, nullptr}});
  EXPECT_EQ(a, PropertyValue(array("f", "a", "e")));
  EXPECT_FALSE(PropertyValue(array(1)).respondsToSelector("addObjectIfAbsent:"));
}

TEST(BySelector, DictionariesOfBothClasses) {
  const auto fixed = qx::dict({{"n", 7}, {"t", "YES"}});
  for (const PropertyValue& d : {PropertyValue(fixed), PropertyValue(fixed).mutableCopy()}) {
    expectAll({{"objectForKey:defaultObject:", d, {"n", 1}, 7},
               {"objectForKey:defaultObject:", d, {"x", "d"}, "d"},
               {"boolForKey:defaultValue:", d, {"x", true}, true},
               {"boolForKey:", d, {"t"}, true},
               {"intForKey:defaultValue:", d, {"x", -1}, -1},
               {"intForKey:", d, {"n"}, 7},
               {"unsignedIntForKey:defaultValue:", d, {"x", 4294967295U}, 4294967295U},
               {"unsignedIntForKey:", d, {"n"}, 7U}});
  }
}

TEST(BySelector, PointerArrays) {
  const PropertyValue a = qx::PointerArray::strongObjectsPointerArray();
  const PropertyValue x = "x";
  expectAll({{"addObject:", a, {x}, nullptr},
             {"addObject:", a, {nullptr}, nullptr},
             {"containsObject:", a, {x}, true},
             {"containsObject:", a, {"x"}, false},
             {"removeAllNulls", a, {}, nullptr},
             {"count", a, {}, 1},
             {"removeObject:", a, {x}, nullptr},
             {"addObject:", a, {x}, nullptr},
             {"removeObjectIdenticalTo:", a, {x}, nullptr},
             {"addObject:", a, {x}, nullptr},
             {"removeAllObjects", a, {}, nullptr},
             {"count", a, {}, 0}});
  // A number has no object of its own to point to.
  EXPECT_THROW(performSelector(a, "addObject:", 7), qx::InvalidArgumentException);
}

TEST(BySelector, ArgumentsOfAWrongKindRaise) {
  EXPECT_THROW(performSelector("a", "containsString:", 7), qx::InvalidArgumentException);
  EXPECT_THROW(performSelector("a", "containsString:options:", "b", 1024),
               qx::InvalidArgumentException);
  EXPECT_THROW(performSelector("a", "containsString:options:", "b", -1),
               qx::InvalidArgumentException);
  EXPECT_THROW(performSelector(array("a"), "kwContainsArray:", "a"), qx::InvalidArgumentException);
  EXPECT_THROW(performSelector(array("a"), "arrayByPerformingSelector:", nullptr),
               qx::InvalidArgumentException);
  EXPECT_THROW(performSelector(mutableArrayOf({}), "insertObjectIfAbsent:atIndex:", "x", -1),
               qx::InvalidArgumentException);
}

}  // namespace

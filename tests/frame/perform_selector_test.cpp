#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/counted.h"
#include "tests/frame/person.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

using frame_test::Counted;
using frame_test::Person;

PropertyValue person() { return make<Person>("Bob", 42); }

TEST(PerformSelector, PassesUpToTwoArguments) {
  const PropertyValue bob = person();
  EXPECT_EQ(performSelector(bob, "adult"), PropertyValue(true));
  EXPECT_EQ(performSelector(bob, "greet:", "you"), PropertyValue("hello you, Bob"));
  EXPECT_EQ(performSelector(bob, "sum:with:", 2, 3), PropertyValue(5));
  EXPECT_EQ(performSelector(bob, Selector::named("sum:with:"), 2, 3), PropertyValue(5));
  EXPECT_TRUE(performSelector(bob, "rename:", "Al").isNil());
  EXPECT_EQ(bob["name"], PropertyValue("Al"));
}

TEST(PerformSelector, ReachesPropertiesAsGettersAndSetters) {
  const PropertyValue bob = person();
  EXPECT_EQ(performSelector(bob, "age"), PropertyValue(42));
  EXPECT_TRUE(performSelector(bob, "setAge:", 7).isNil());
  EXPECT_EQ(performSelector(bob, "age"), PropertyValue(7));
  EXPECT_TRUE(performSelector(bob, "setBoss:", person()).isNil());
  EXPECT_EQ(performSelector(performSelector(bob, "boss"), "name"), PropertyValue("Bob"));
  performSelector(bob, "setBoss:", nullptr);
  EXPECT_TRUE(performSelector(bob, "boss").isNil());
  performSelector(bob, "setHeight:", 1.75);
  EXPECT_EQ(performSelector(bob, "height"), PropertyValue(1.75));
  EXPECT_TRUE(bob.respondsToSelector("age"));
  EXPECT_TRUE(bob.respondsToSelector("setAge:"));
  EXPECT_TRUE(bob.respondsToSelector("setHeight:"));
  EXPECT_FALSE(bob.respondsToSelector("setage:"));
  EXPECT_FALSE(bob.respondsToSelector("setAge"));
  EXPECT_FALSE(bob.respondsToSelector("set:"));
  EXPECT_FALSE(bob.respondsToSelector("setAge:to:"));
  EXPECT_FALSE(bob.respondsToSelector("setAdult:"));  // read-only
  EXPECT_FALSE(bob.respondsToSelector("setBorn:"));   // const
  EXPECT_FALSE(bob.respondsToSelector("age:"));
}

TEST(PerformSelector, ServesEveryValue) {
  EXPECT_EQ(performSelector(5, "isLessThan:", 6.5), PropertyValue(true));
  EXPECT_EQ(performSelector(5, "stringValue"), PropertyValue("5"));
  EXPECT_EQ(performSelector(2.5, "intValue"), PropertyValue(2));
  EXPECT_EQ(performSelector(true, "isEqual:", 1), PropertyValue(true));
  EXPECT_EQ(performSelector(null, "description"), PropertyValue("<null>"));
  EXPECT_EQ(performSelector(null, "isEqualTo:", null), PropertyValue(true));
  EXPECT_EQ(performSelector("abc", "length"), PropertyValue(3));
  EXPECT_EQ(performSelector("abc", "hasPrefix:", "ab"), PropertyValue(true));
  EXPECT_EQ(performSelector("n\xC3\xA4h", "UTF8String"), PropertyValue("n\xC3\xA4h"));
  EXPECT_EQ(performSelector(array(1, 2), "count"), PropertyValue(2));
  EXPECT_EQ(performSelector(array("x", "y"), "objectAtIndex:", 1), PropertyValue("y"));
  EXPECT_EQ(performSelector(dict({{"a", 1}}), "objectForKey:", "a"), PropertyValue(1));
  EXPECT_EQ(performSelector(Data::from("xyz"), "length"), PropertyValue(3));
  EXPECT_EQ(performSelector(Date::dateWithTimeIntervalSince1970(5), "timeIntervalSince1970"),
            PropertyValue(5.0));
  EXPECT_EQ(performSelector(Set::from(array(1, 2)), "member:", 2.0), PropertyValue(2));
}

TEST(PerformSelector, GivesWhatEveryObjectAnswers) {
  const PropertyValue values[] = {1,
                                  2.5,
                                  true,
                                  null,
                                  "text",
                                  array(1),
                                  dict({{"a", 1}}),
                                  person(),
                                  Data::from("x"),
                                  MutableSet::init()};
  for (const PropertyValue& v : values) {
    SCOPED_TRACE(v.description());
    EXPECT_TRUE(isSame(performSelector(v, "self"), v));
    EXPECT_TRUE(isSame(performSelector(v, "class"), v.cls()));
    EXPECT_EQ(performSelector(v, "hash").unsignedIntegerValue(), v.hash());
    EXPECT_EQ(performSelector(v, "description"), PropertyValue(v.description()));
    EXPECT_EQ(performSelector(v, "isKindOfClass:", classOf<Object>()), PropertyValue(true));
    EXPECT_EQ(performSelector(v, "isKindOfClass:", classOf<Error>()), PropertyValue(false));
    EXPECT_EQ(performSelector(v, "isKindOfClass:", nullptr), PropertyValue(false));
    EXPECT_EQ(performSelector(v, "respondsToSelector:", "hash"), PropertyValue(true));
    EXPECT_EQ(performSelector(v, "respondsToSelector:", "flyAway"), PropertyValue(false));
    EXPECT_EQ(performSelector(v, "respondsToSelector:", 5), PropertyValue(false));
    EXPECT_EQ(performSelector(v, "respondsToSelector:", ""), PropertyValue(false));
    EXPECT_EQ(performSelector(v, "respondsToSelector:", nullptr), PropertyValue(false));
    EXPECT_EQ(performSelector(v, "conformsToProtocol:", "FlyingThing"), PropertyValue(false));
    EXPECT_EQ(performSelector(v, "conformsToProtocol:", nullptr), PropertyValue(false));
    EXPECT_EQ(performSelector(v, "isEqual:", v), PropertyValue(true));
  }
  EXPECT_EQ(performSelector(person(), "respondsToSelector:", "setAge:"), PropertyValue(true));
  EXPECT_EQ(performSelector("text", "respondsToSelector:", MutableString::from("length")),
            PropertyValue(true));
  EXPECT_EQ(performSelector(array(1), "copy"), PropertyValue(array(1)));
  EXPECT_STREQ(performSelector(array(1), "mutableCopy").cls()->name(), "NSMutableArray");
}

TEST(PerformSelector, ReachesKeyAccess) {
  const PropertyValue bob = person();
  EXPECT_EQ(performSelector(bob, "valueForKey:", "age"), PropertyValue(42));
  EXPECT_TRUE(performSelector(bob, "setValue:forKey:", 7, "age").isNil());
  EXPECT_EQ(performSelector(dict({{"b", bob}}), "valueForKeyPath:", "b.age"), PropertyValue(7));
}

TEST(PerformSelector, ChangesMutableArrays) {
  const PropertyValue a = MutableArray::init();
  performSelector(a, "addObject:", 1);
  performSelector(a, "insertObject:atIndex:", 0, 0U);
  performSelector(a, "addObjectsFromArray:", array(2, 3, 4));
  performSelector(a, "replaceObjectAtIndex:withObject:", 1, "one");
  performSelector(a, "removeObjectAtIndex:", 0);
  performSelector(a, "removeObject:", 3);
  performSelector(a, "removeLastObject");
  EXPECT_EQ(a, PropertyValue(array("one", 2)));
  EXPECT_EQ(performSelector(a, "indexOfObject:", 2), PropertyValue(1));
  EXPECT_EQ(performSelector(a, "containsObject:", 9), PropertyValue(false));
  EXPECT_EQ(performSelector(a, "firstObject"), PropertyValue("one"));
  EXPECT_EQ(performSelector(a, "lastObject"), PropertyValue(2));
  EXPECT_EQ(performSelector(a, "isEqualToArray:", array("one", 2)), PropertyValue(true));
  EXPECT_EQ(performSelector(a, "arrayByAddingObject:", 3), PropertyValue(array("one", 2, 3)));
  performSelector(a, "removeAllObjects");
  EXPECT_EQ(performSelector(a, "count"), PropertyValue(0));
}

TEST(PerformSelector, ChangesMutableDictionaries) {
  const PropertyValue d = MutableDictionary::init();
  performSelector(d, "setObject:forKey:", 1, "a");
  performSelector(d, "addEntriesFromDictionary:", dict({{"b", 2}, {"c", 3}}));
  performSelector(d, "removeObjectForKey:", "b");
  EXPECT_EQ(d, PropertyValue(dict({{"a", 1}, {"c", 3}})));
  EXPECT_EQ(performSelector(d, "allKeys"), PropertyValue(array("a", "c")));
  EXPECT_EQ(performSelector(d, "allValues"), PropertyValue(array(1, 3)));
  EXPECT_EQ(performSelector(d, "isEqualToDictionary:", dict({{"c", 3}, {"a", 1}})),
            PropertyValue(true));
  performSelector(d, "setDictionary:", dict({{"z", 26}}));
  EXPECT_EQ(performSelector(d, "count"), PropertyValue(1));
  performSelector(d, "removeAllObjects");
  EXPECT_EQ(performSelector(d, "count"), PropertyValue(0));
}

TEST(PerformSelector, ChangesMutableSetsAndStrings) {
  const PropertyValue s = MutableSet::init();
  performSelector(s, "addObject:", 1);
  performSelector(s, "addObject:", 2);
  performSelector(s, "removeObject:", 1.0);
  EXPECT_EQ(performSelector(s, "allObjects"), PropertyValue(array(2)));
  performSelector(s, "removeAllObjects");
  EXPECT_EQ(performSelector(s, "count"), PropertyValue(0));

  const PropertyValue text = MutableString::from("a");
  performSelector(text, "appendString:", "b");
  EXPECT_EQ(text, PropertyValue("ab"));
  performSelector(text, "setString:", "z");
  EXPECT_EQ(text, PropertyValue("z"));
}

TEST(PerformSelector, TransformsTexts) {
  const struct {
    const char* selector;
    PropertyValue expected;
  } cases[] = {{"lowercaseString", "a,b 12"},
               {"uppercaseString", "A,B 12"},
               {"capitalizedString", "A,b 12"},
               {"intValue", 0},
               {"doubleValue", 0.0},
               {"floatValue", 0.0F},
               {"boolValue", false},
               {"integerValue", 0},
               {"unsignedIntegerValue", 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(performSelector("a,B 12", Selector::named(c.selector)), c.expected) << c.selector;
  }
  EXPECT_EQ(performSelector("a,b", "componentsSeparatedByString:", ","),
            PropertyValue(array("a", "b")));
  EXPECT_EQ(performSelector("a", "stringByAppendingString:", "b"), PropertyValue("ab"));
  EXPECT_EQ(performSelector("ab", "hasSuffix:", "b"), PropertyValue(true));
  EXPECT_EQ(performSelector("ab", "isEqualToString:", "ab"), PropertyValue(true));
  EXPECT_FALSE(PropertyValue("1").respondsToSelector("longLongValue"));
}

TEST(PerformSelector, ServesDecimals) {
  const auto d = [](const char* s) { return PropertyValue(DecimalNumber::initWithString(s)); };
  EXPECT_EQ(performSelector(d("0.1"), "decimalNumberByAdding:", d("0.2")), d("0.3"));
  EXPECT_EQ(performSelector(d("0.1"), "decimalNumberBySubtracting:", d("0.2")), d("-0.1"));
  EXPECT_EQ(performSelector(d("0.1"), "decimalNumberByMultiplyingBy:", d("0.2")), d("0.02"));
  EXPECT_EQ(performSelector(d("1"), "decimalNumberByDividingBy:", d("8")), d("0.125"));
  EXPECT_THROW(performSelector(d("1"), "decimalNumberByAdding:", 1), InvalidArgumentException);
  for (const char* name : {"decimalNumberByAdding:", "decimalNumberBySubtracting:",
                           "decimalNumberByMultiplyingBy:", "decimalNumberByDividingBy:"}) {
    EXPECT_EQ(reasonOf<InvalidArgumentException>(
                  [&] { performSelector(d("1"), Selector::named(name), nullptr); }),
              std::string("nil was used as an object in -[NSDecimalNumber ") + name + "]");
  }
  const Class& decimals = classOf<DecimalNumber>();
  EXPECT_EQ(performSelector(decimals, "decimalNumberWithString:", "2.50"), d("2.5"));
  EXPECT_TRUE(performSelector(decimals, "decimalNumberWithString:", nullptr).isNil());
  EXPECT_EQ(performSelector(d("2.50"), "stringValue"), PropertyValue("2.5"));
}

TEST(PerformSelector, TakesClassObjectsAsReceivers) {
  const Class& cls = classOf<Person>();
  EXPECT_EQ(performSelector(cls, "name"), PropertyValue("FrameTestPerson"));
  EXPECT_EQ(performSelector(cls, "description"), PropertyValue("FrameTestPerson"));
  EXPECT_TRUE(isSame(performSelector(cls, "superclass"), classOf<Object>()));
  EXPECT_TRUE(performSelector(classOf<Object>(), "superclass").isNil());
  EXPECT_TRUE(isSame(performSelector(cls, "class"), classOf<Class>()));
  EXPECT_EQ(performSelector(cls, "isEqual:", cls), PropertyValue(true));
  EXPECT_TRUE(isSame(performSelector(cls, "copy"), cls));
  EXPECT_FALSE(PropertyValue(cls).respondsToSelector("greet:"));
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { performSelector(cls, "greet:", "you"); }),
            "+[FrameTestPerson greet:]: the receiver has no such operation");
}

TEST(PerformSelector, GivesNilForNil) {
  EXPECT_TRUE(performSelector(nullptr, "anything").isNil());
  EXPECT_TRUE(performSelector(PropertyValue(), "greet:", 1).isNil());
  EXPECT_TRUE(performSelector(Ref<Person>(), "sum:with:", 1, 2).isNil());
  EXPECT_TRUE(performSelector(nullptr, Selector()).isNil());
  EXPECT_FALSE(PropertyValue().respondsToSelector("description"));
}

TEST(PerformSelector, RaisesForWhatIsNotThere) {
  const PropertyValue bob = person();
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { performSelector(bob, "flyAway"); }),
            "-[FrameTestPerson flyAway]: the receiver has no such operation");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { performSelector(bob, Selector()); }),
            "-[FrameTestPerson (null)]: the receiver has no such operation");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { performSelector(5, "length"); }),
            "-[NSNumber length]: the receiver has no such operation");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { performSelector(null, "count"); }),
            "-[NSNull count]: the receiver has no such operation");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { performSelector(bob, "setAdult:", true); }),
            "-[FrameTestPerson setAdult:]: the receiver has no such operation");
}

TEST(PerformSelector, RaisesForAWrongNumberOfArguments) {
  const PropertyValue bob = person();
  EXPECT_EQ(
      reasonOf<InvalidArgumentException>([&] { performSelector(bob, Selector::named("greet:")); }),
      "performSelector: greet: takes 1 argument and was given 0");
  EXPECT_EQ(
      reasonOf<InvalidArgumentException>([&] { performSelector(bob, Selector::named("age"), 1); }),
      "performSelector: age takes 0 arguments and was given 1");
  EXPECT_EQ(reasonOf<InvalidArgumentException>(
                [&] { performSelector(bob, Selector::named("setAge:"), 1, 2); }),
            "performSelector: setAge: takes 1 argument and was given 2");
  EXPECT_EQ(bob["age"], PropertyValue(42));
}

TEST(PerformSelector, RaisesForArgumentsOfAnotherKind) {
  const PropertyValue bob = person();
  const struct {
    PropertyValue argument;
    const char* reason;
  } cases[] = {
      {5, "-[FrameTestPerson greet:]: a value of class NSNumber (5) can not stand for a string"},
      {nullptr, "-[FrameTestPerson greet:]: nil can not stand for a string"},
      {array("a"),
       "-[FrameTestPerson greet:]: a value of class NSArray can not stand for a string"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(
        reasonOf<InvalidArgumentException>([&] { performSelector(bob, "greet:", c.argument); }),
        c.reason);
  }
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { performSelector(bob, "sum:with:", 1, 2.5); }),
            "-[FrameTestPerson sum:with:]: a value of class NSNumber (2.5) can not stand for an "
            "integer that fits");
  EXPECT_EQ(reasonOf<InvalidArgumentException>(
                [&] { performSelector(bob, "sum:with:", 1, std::int64_t{1} << 40); }),
            "-[FrameTestPerson sum:with:]: a value of class NSNumber (1099511627776) can not stand "
            "for an integer that fits");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { performSelector(bob, "bossOf:", "Al"); }),
            "-[FrameTestPerson bossOf:]: a value of class NSString (Al) can not stand for "
            "FrameTestPerson");
  EXPECT_TRUE(performSelector(bob, "bossOf:", nullptr).isNil());
}

TEST(PerformSelector, PassesNilWhereTheOperationTakesIt) {
  const PropertyValue bob = person();
  EXPECT_TRUE(performSelector(bob, "echo:", nullptr).isNil());
  EXPECT_EQ(performSelector(bob, "echo:", null), PropertyValue(null));
  EXPECT_TRUE(performSelector(bob, "rankPlus:", 1).isNil());
  bob.setValue(3, "rank");
  EXPECT_EQ(performSelector(bob, "rankPlus:", 1), PropertyValue(4));
}

// The operation may let go of the last other reference to its receiver.
class Leaver : public Object {
 public:
  int leave() {
    *place = nullptr;
    return number;
  }
  PropertyValue* place = nullptr;
  int number = 7;
};
void describe(ClassBuilder<Leaver>& c) {
  c.name("FrameTestLeaver").operation("leave", &Leaver::leave);
}

TEST(PerformSelector, HoldsItsReceiver) {
  PropertyValue v;
  {
    const auto leaver = make<Leaver>();
    leaver->place = &v;
    v = leaver;
  }
  EXPECT_EQ(performSelector(v, "leave"), PropertyValue(7));
  EXPECT_TRUE(v.isNil());
}

TEST(PerformSelector, LeavesNoReferencesBehind) {
  {
    const PropertyValue target = make<Counted>();
    performSelector(target, "setHeld:", array(make<Counted>()));
    EXPECT_EQ(performSelector(target, "held").as<Array>()->count(), 1U);
    EXPECT_THROW(performSelector(target, "nothing:", make<Counted>()), InvalidArgumentException);
    EXPECT_EQ(Counted::alive, 2);
  }
  EXPECT_EQ(Counted::alive, 0);
}

}  // namespace
}  // namespace qx

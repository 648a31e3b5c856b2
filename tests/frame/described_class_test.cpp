// Classes that an application declares: properties, inheritance, text initialisers, refusals.

#include <gtest/gtest.h>

#include <limits>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/person.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace shop {

using frame_test::Person;

class Employee : public Person {
 public:
  Employee() = default;
  Employee(std::string n, int a, int s) : Person(std::move(n), a), salary(s) {}
  int salary = 0;
  std::string greet(const std::string& whom) const { return "good day " + whom; }
  double heightInFeet() const { return heightInMetres_ * 3.28; }
  bool isEqual(const qx::PropertyValue& other) const override {
    const auto* e = other.peek<Employee>();
    return e != nullptr && e->name == name;
  }
  std::size_t hash() const override { return name.size(); }
  std::string description() const override { return "employee " + name; }
};
void describe(qx::ClassBuilder<Employee>& c) {
  c.name("ShopEmployee").inherits<Person>();
  c.property("salary", &Employee::salary).operation("greet:", &Employee::greet);
  c.property("height", &Employee::heightInFeet);  // replaces the inherited pair
}

class Manager : public Employee {};
void describe(qx::ClassBuilder<Manager>& c) { c.name("ShopManager").inherits<Employee>(); }

// Describes itself without naming its described base.
class Stranger : public Person {};
void describe(qx::ClassBuilder<Stranger>& c) {
  c.name("ShopStranger").property("name", &Stranger::name);
}

}  // namespace shop

namespace qx {
namespace {

using frame_test::Person;
using shop::Employee;
using shop::Manager;
using shop::Stranger;

TEST(DescribedClass, ReadsEveryTypeOfField) {
  const auto bob = make<Person>("Bob", 42);
  bob->score = 2.5;
  bob->factor = 0.5F;
  bob->active = true;
  bob->level = 200;
  bob->identity = std::numeric_limits<std::uint64_t>::max();
  bob->tag = array(1);
  bob->note = String::from("note");
  bob->rank = 3;
  const struct {
    const char* key;
    PropertyValue expected;
  } cases[] = {{"name", "Bob"},   {"age", 42},
               {"score", 2.5},    {"factor", 0.5F},
               {"active", true},  {"level", static_cast<unsigned char>(200)},
               {"boss", nullptr}, {"identity", std::numeric_limits<std::uint64_t>::max()},
               {"tag", bob->tag}, {"note", bob->note},
               {"rank", 3},       {"born", 1970},
               {"adult", true},   {"height", 0.0},
               {"nickname", ""},  {"unknown", nullptr}};
  const PropertyValue v = bob;
  for (const auto& c : cases) {
    EXPECT_EQ(v.valueForKey(c.key), c.expected) << c.key;
    EXPECT_TRUE(!c.expected.isNumber() || c.expected.object() != nullptr ||
                isSame(v[c.key], c.expected))
        << c.key;
  }
  EXPECT_TRUE(isSame(v["tag"], bob->tag));
  EXPECT_TRUE(isSame(v["note"], bob->note));
  bob->rank.reset();
  EXPECT_TRUE(v["rank"].isNil());
}

TEST(DescribedClass, StoresEveryTypeOfField) {
  const auto bob = make<Person>("Bob", 42);
  const PropertyValue v = bob;
  v.setValue("Al", "name");
  v.setValue(7U, "age");
  v.setValue(3, "score");
  v.setValue(DecimalNumber::initWithString("0.25"), "factor");
  v.setValue(true, "active");
  v.setValue(255, "level");
  v.setValue(std::numeric_limits<std::uint64_t>::max(), "identity");
  v.setValue(make<Employee>("Eve", 50, 1), "boss");
  v.setValue(null, "tag");
  v.setValue("n", "note");
  v.setValue(9, "rank");
  v.setValue(1.75, "height");
  v.setValue("nick", "nickname");
  EXPECT_EQ(bob->name, "Al");
  EXPECT_EQ(bob->age, 7);
  EXPECT_EQ(bob->score, 3.0);
  EXPECT_EQ(bob->factor, 0.25F);
  EXPECT_TRUE(bob->active);
  EXPECT_EQ(bob->level, 255);
  EXPECT_EQ(bob->identity, std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(bob->boss->name, "Eve");
  EXPECT_TRUE(bob->tag.isNull());
  EXPECT_EQ(bob->note->utf8(), "n");
  EXPECT_EQ(bob->rank, 9);
  EXPECT_EQ(bob->height(), 1.75);
  EXPECT_EQ(bob->nickname(), "nick!");
  for (const char* key : {"boss", "tag", "note", "rank"}) v.setValue(nullptr, key);
  EXPECT_EQ(bob->boss, nullptr);
  EXPECT_TRUE(bob->tag.isNil());
  EXPECT_EQ(bob->note, nullptr);
  EXPECT_EQ(bob->rank, std::nullopt);
}

TEST(DescribedClass, RefusesWhatAFieldDoesNotHold) {
  const auto bob = make<Person>("Bob", 42);
  const struct {
    const char* key;
    PropertyValue value;
    const char* reason;
  } cases[] = {
      {"name", 5, "a value of class NSNumber (5), only a string"},
      {"name", nullptr, "nil, only a string"},
      {"age", "5", "a value of class NSString (5), only an integer that fits"},
      {"age", 1.0, "a value of class NSNumber (1), only an integer that fits"},
      {"age", true, "a value of class NSNumber (1), only an integer that fits"},
      {"age", 3000000000LL, "a value of class NSNumber (3000000000), only an integer that fits"},
      {"level", 256, "a value of class NSNumber (256), only an integer that fits"},
      {"level", -1, "a value of class NSNumber (-1), only an integer that fits"},
      {"active", 1, "a value of class NSNumber (1), only a bool"},
      {"score", "1", "a value of class NSString (1), only a number"},
      {"boss", "Eve", "a value of class NSString (Eve), only FrameTestPerson"},
      {"boss", null, "a value of class NSNull, only FrameTestPerson"},
      {"note", 1, "a value of class NSNumber (1), only NSString"},
      {"rank", "1", "a value of class NSString (1), only an integer that fits"},
      {"height", "tall", "a value of class NSString (tall), only a number"},
      {"nickname", 5, "a value of class NSNumber (5), only a string"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(
        reasonOf<InvalidArgumentException>([&] { PropertyValue(bob).setValue(c.value, c.key); }),
        std::string("-[FrameTestPerson setValue:forKey:]: the property \"") + c.key +
            "\" does not take " + c.reason);
  }
  EXPECT_EQ(bob->age, 42);
}

TEST(DescribedClass, RefusesWhatItDoesNotSet) {
  const auto bob = make<Person>("Bob", 42);
  const struct {
    const char* key;
    PropertyValue value;
    const char* reason;
  } cases[] = {
      {"height", -1.0, "a height is not negative"},
      {"born", 1980,
       "-[FrameTestPerson setValue:forKey:]: there is no property \"born\" that can be set"},
      {"adult", true,
       "-[FrameTestPerson setValue:forKey:]: there is no property \"adult\" that can be set"},
      {"unknown", 1,
       "-[FrameTestPerson setValue:forKey:]: there is no property \"unknown\" that can be set"},
      // An operation alone is no property.
      {"name:", "x",
       "-[FrameTestPerson setValue:forKey:]: there is no property \"name:\" that can be set"},
      {"", 1, "-[FrameTestPerson setValue:forKey:]: there is no property \"\" that can be set"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(
        reasonOf<InvalidArgumentException>([&] { PropertyValue(bob).setValue(c.value, c.key); }),
        c.reason);
  }
  EXPECT_EQ(bob->name, "Bob");
  EXPECT_EQ(bob->age, 42);
  EXPECT_EQ(bob->level, 0);
}

TEST(DescribedClass, InheritsPropertiesAndOperations) {
  const auto eve = make<Employee>("Eve", 50, 1000);
  const PropertyValue v = eve;
  EXPECT_EQ(v["name"], PropertyValue("Eve"));
  EXPECT_EQ(v["salary"], PropertyValue(1000));
  v.setValue(51, "age");
  EXPECT_EQ(eve->age, 51);
  EXPECT_EQ(performSelector(v, "sum:with:", 1, 2), PropertyValue(3));
  EXPECT_EQ(performSelector(v, "setSalary:", 5).isNil(), true);
  EXPECT_EQ(eve->salary, 5);
  EXPECT_FALSE(PropertyValue(make<Person>()).respondsToSelector("setSalary:"));
}

TEST(DescribedClass, OverridesOperationsAndProperties) {
  const auto eve = make<Employee>("Eve", 50, 1000);
  const PropertyValue v = eve;
  EXPECT_EQ(performSelector(v, "greet:", "you"), PropertyValue("good day you"));
  EXPECT_EQ(performSelector(make<Person>("Bob", 1), "greet:", "you"),
            PropertyValue("hello you, Bob"));
  eve->setHeight(2);
  EXPECT_EQ(v["height"], PropertyValue(2 * 3.28));
  v.setValue(3.0, "height");  // the inherited setter still stands
  EXPECT_EQ(eve->height(), 3.0);
  EXPECT_EQ(v.description(), "employee Eve");
}

TEST(DescribedClass, UsesOverriddenEqualityEverywhere) {
  const auto eve = make<Employee>("Eve", 50, 1000);
  const auto other = make<Manager>();
  other->name = "Eve";
  EXPECT_TRUE(PropertyValue(eve) == PropertyValue(other));
  EXPECT_TRUE(PropertyValue(eve).isEqualTo(other));
  EXPECT_FALSE(PropertyValue(eve).isNotEqualTo(other));
  EXPECT_TRUE(array(eve)->containsObject(other));
  EXPECT_TRUE(Set::from(array(other))->containsObject(eve));
  EXPECT_EQ(performSelector(eve, "hash"), PropertyValue(3));
  const PropertyValue bob = make<Person>("Bob", 1);
  EXPECT_FALSE(bob == PropertyValue(make<Person>("Bob", 1)));  // identity by default
  EXPECT_TRUE(bob == bob);
  EXPECT_EQ(bob.hash(), bob.hash());
}

TEST(DescribedClass, KnowsItsLine) {
  const PropertyValue v = make<Manager>();
  EXPECT_STREQ(v.cls()->name(), "ShopManager");
  for (const Class* c :
       {&classOf<Manager>(), &classOf<Employee>(), &classOf<Person>(), &classOf<Object>()}) {
    EXPECT_TRUE(v.isKindOfClass(*c)) << c->name();
    EXPECT_TRUE(v.cls()->isSubclassOf(*c)) << c->name();
  }
  EXPECT_FALSE(v.isKindOfClass(classOf<Stranger>()));
  EXPECT_FALSE(classOf<Person>().isSubclassOf(classOf<Manager>()));
  EXPECT_EQ(classOf<Manager>().superclass(), &classOf<Employee>());
  EXPECT_EQ(classOf<Person>().superclass(), &classOf<Object>());
  EXPECT_EQ(classOf<Object>().superclass(), nullptr);
  EXPECT_TRUE(classOf<Manager>().instancesRespondToSelector("greet:"));
  EXPECT_FALSE(classOf<Manager>().instancesRespondToSelector("flyAway"));
}

TEST(DescribedClass, IsAnObjectWithoutNamingABase) {
  const PropertyValue v = make<Stranger>();
  EXPECT_EQ(classOf<Stranger>().superclass(), &classOf<Object>());
  EXPECT_TRUE(v.isKindOfClass(classOf<Object>()));
  EXPECT_FALSE(v.isKindOfClass(classOf<Person>()));
  EXPECT_TRUE(v.respondsToSelector("isEqual:"));
  EXPECT_TRUE(v.respondsToSelector("isLessThan:"));
  EXPECT_TRUE(v["age"].isNil());
  EXPECT_NE(v.as<Person>(), nullptr);  // in C++ it is one
}

TEST(DescribedClass, MakesInstancesFromText) {
  const PropertyValue made = classOf<Person>().initWithString("Zoe");
  EXPECT_EQ(made["name"], PropertyValue("Zoe"));
  EXPECT_TRUE(classOf<Person>().initWithString("").isNil());  // refused
  EXPECT_TRUE(classOf<Person>().initWithString(nullptr).isNil());
  EXPECT_TRUE(classOf<Employee>().initWithString("Zoe").isNil());  // would be no Employee
  EXPECT_TRUE(classOf<Employee>().initWithString("Zoe").isNil());  // not inherited
}

TEST(DescribedClass, OfTheLibraryMakesInstancesFromText) {
  const struct {
    const Class& cls;
    PropertyValue expected;
  } cases[] = {{classOf<String>(), "12"},      {classOf<MutableString>(), "12"},
               {classOf<DecimalNumber>(), 12}, {classOf<Number>(), nullptr},
               {classOf<Array>(), nullptr},    {classOf<Date>(), nullptr},
               {classOf<Object>(), nullptr},   {classOf<Class>(), nullptr}};
  for (const auto& c : cases) {
    const PropertyValue made = c.cls.initWithString("12");
    EXPECT_EQ(made, c.expected) << c.cls.name();
    EXPECT_TRUE(made.isNil() || made.isKindOfClass(c.cls)) << c.cls.name();
  }
}

TEST(DescribedClass, HasNoCopiesUnlessItOffersThem) {
  const PropertyValue v = make<Person>("Bob", 1);
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)v.copy(); }),
            "-[FrameTestPerson copy]: the receiver has no such operation");
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)v.mutableCopy(); }),
            "-[FrameTestPerson mutableCopy]: the receiver has no such operation");
}

TEST(DescribedClass, ShowsItsNameAndAddress) {
  const auto bob = make<Person>();
  const std::string text = bob->description();
  EXPECT_EQ(text.rfind("<FrameTestPerson: 0x", 0), 0U) << text;
  EXPECT_EQ(text.back(), '>');
}

// Only ever a base: it is described, but never made.
class Shape2D : public Object {
 public:
  virtual double area() const = 0;
};
void describe(ClassBuilder<Shape2D>& c) {
  c.name("FrameTestShape2D").property("area", &Shape2D::area);
}

class Square : public Shape2D {
 public:
  double side = 2;
  double area() const override { return side * side; }
};
void describe(ClassBuilder<Square>& c) {
  c.name("FrameTestSquare").inherits<Shape2D>().property("side", &Square::side);
}

TEST(DescribedClass, MayBeAnAbstractBase) {
  const PropertyValue v = make<Square>();
  EXPECT_EQ(v["area"], PropertyValue(4.0));
  EXPECT_TRUE(v.isKindOfClass(classOf<Shape2D>()));
  EXPECT_EQ(classNamed("FrameTestShape2D"), &classOf<Shape2D>());
  EXPECT_TRUE(classOf<Shape2D>().initWithString("x").isNil());
}

// Keys that the class does not declare are its own affair.
class Open : public Object {
 public:
  Ref<MutableDictionary> extra = MutableDictionary::init();
  PropertyValue valueForUndefinedKey(StringArg key) const override {
    return extra->objectForKey(key);
  }
  void setValueForUndefinedKey(const PropertyValue& value, StringArg key) override {
    extra->setValueForKey(value, key);
  }
};
void describe(ClassBuilder<Open>& c) { c.name("FrameTestOpen").property("extra", &Open::extra); }

TEST(DescribedClass, MayAnswerUndefinedKeys) {
  const PropertyValue v = make<Open>();
  EXPECT_TRUE(v["color"].isNil());
  v.setValue("red", "color");
  EXPECT_EQ(v["color"], PropertyValue("red"));
  EXPECT_EQ(v.valueForKeyPath("color"), PropertyValue("red"));
  EXPECT_EQ(v.valueForKeyPath("extra.color"), PropertyValue("red"));
  EXPECT_EQ(v[String::from("color")], PropertyValue("red"));
  v.setValue(nullptr, "color");
  EXPECT_TRUE(v["color"].isNil());
}

// Aligned beyond what plain allocation gives.
class alignas(64) Aligned : public Object {
 public:
  char bytes[64] = {};
};
void describe(ClassBuilder<Aligned>& c) { c.name("FrameTestAligned"); }

TEST(DescribedClass, MayBeAlignedBeyondTheUsual) {
  for (int i = 0; i < 8; ++i) {
    const auto a = make<Aligned>();
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a.get()) % 64, 0U);
  }
}

// Names that are no plain words.
class Odd : public Object {
 public:
  int upper = 1;
  int lower = 2;
  int underscore = 3;
  int accent = 4;
};
void describe(ClassBuilder<Odd>& c) {
  c.name("FrameTestOdd").property("Name", &Odd::upper).property("name", &Odd::lower);
  c.property("_x", &Odd::underscore).property("\xC3\xA4hnlich", &Odd::accent);
  c.property("URL", &Odd::upper);
}

TEST(DescribedClass, SetsPropertiesOfUnusualNames) {
  const auto odd = make<Odd>();
  const PropertyValue v = odd;
  performSelector(v, "setName:", 20);
  EXPECT_EQ(odd->lower, 20);
  performSelector(v, "set_x:", 30);
  EXPECT_EQ(odd->underscore, 30);
  performSelector(v, "set\xC3\xA4hnlich:", 40);
  EXPECT_EQ(odd->accent, 40);
  performSelector(v, "setURL:", 50);
  EXPECT_EQ(odd->upper, 50);
  v.setValue(60, "Name");
  EXPECT_EQ(odd->upper, 60);
  EXPECT_EQ(v["\xC3\xA4hnlich"], PropertyValue(40));
  EXPECT_EQ(v[String::from("\xC3\xA4hnlich")], PropertyValue(40));
}

}  // namespace
}  // namespace qx

// Classes by name and by C++ type.

#include <gtest/gtest.h>

#include <stdexcept>

#include <QXFoundation/QXFoundation.h>

#include "frame/class_record.h"
#include "tests/frame/print_values.h"
#include "tests/frame/same_named.h"

namespace qx {
namespace {

TEST(ClassNames, FindTheLibrarysClasses) {
  const struct {
    const char* name;
    const Class& cls;
    const Class* super;
  } cases[] = {
      {"NSObject", classOf<Object>(), nullptr},
      {"Class", classOf<Class>(), &classOf<Object>()},
      {"NSNull", *PropertyValue(null).cls(), &classOf<Object>()},
      {"NSString", classOf<String>(), &classOf<Object>()},
      {"NSMutableString", classOf<MutableString>(), &classOf<String>()},
      {"NSNumber", classOf<Number>(), &classOf<Object>()},
      {"NSDecimalNumber", classOf<DecimalNumber>(), &classOf<Number>()},
      {"NSData", classOf<Data>(), &classOf<Object>()},
      {"NSMutableData", classOf<MutableData>(), &classOf<Data>()},
      {"NSDate", classOf<Date>(), &classOf<Object>()},
      {"NSArray", classOf<Array>(), &classOf<Object>()},
      {"NSMutableArray", classOf<MutableArray>(), &classOf<Array>()},
      {"NSDictionary", classOf<Dictionary>(), &classOf<Object>()},
      {"NSMutableDictionary", classOf<MutableDictionary>(), &classOf<Dictionary>()},
      {"NSSet", classOf<Set>(), &classOf<Object>()},
      {"NSMutableSet", classOf<MutableSet>(), &classOf<Set>()},
      {"NSError", classOf<Error>(), &classOf<Object>()},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(classNamed(c.name), &c.cls) << c.name;
    EXPECT_STREQ(c.cls.name(), c.name);
    EXPECT_EQ(c.cls.superclass(), c.super) << c.name;
  }
}

TEST(ClassNames, AreThoseOfTheValues) {
  const struct {
    PropertyValue value;
    const char* name;
  } cases[] = {
      {null, "NSNull"},
      {true, "NSNumber"},
      {1, "NSNumber"},
      {1.5, "NSNumber"},
      {1e300, "NSNumber"},
      {DecimalNumber::initWithString("1"), "NSDecimalNumber"},
      {"a", "NSString"},
      {MutableString::init(), "NSMutableString"},
      {Data::from(""), "NSData"},
      {MutableData::init(), "NSMutableData"},
      {Date::date(), "NSDate"},
      {array(), "NSArray"},
      {MutableArray::init(), "NSMutableArray"},
      {dict(), "NSDictionary"},
      {MutableDictionary::init(), "NSMutableDictionary"},
      {Set::from(array()), "NSSet"},
      {MutableSet::init(), "NSMutableSet"},
      {Error::posixError(1), "NSError"},
      {classOf<String>(), "Class"},
  };
  for (const auto& c : cases) {
    EXPECT_STREQ(c.value.cls()->name(), c.name);
    EXPECT_TRUE(c.value.isKindOfClass(*classNamed(c.name)));
    EXPECT_TRUE(c.value.isKindOfClass(classOf<Object>()));
  }
}

TEST(ClassNames, AreFoundFromEveryFormOfText) {
  EXPECT_EQ(classNamed(String::from("NSString")), &classOf<String>());
  EXPECT_EQ(classNamed(MutableString::from("NSString")), &classOf<String>());
  EXPECT_EQ(classNamed(std::string("NSString")), &classOf<String>());
  for (const char* name : {"", "nsstring", "NSString ", "NoSuchClass"}) {
    EXPECT_EQ(classNamed(name), nullptr) << name;
  }
  EXPECT_EQ(classNamed(nullptr), nullptr);
  EXPECT_EQ(classNamed(std::string("NSString\0", 9)), nullptr);
}

// An application class is found by name without having been used: `make` in the program is enough.
class NeverMade : public Object {};
void describe(ClassBuilder<NeverMade>& c) { c.name("FrameTestNeverMade"); }
[[maybe_unused]] Ref<NeverMade> makeIt() { return make<NeverMade>(); }

class OnlyRegistered : public Object {};
void describe(ClassBuilder<OnlyRegistered>& c) { c.name("FrameTestOnlyRegistered"); }

TEST(ClassNames, AreKnownOnceAProgramMakesInstances) {
  ASSERT_NE(classNamed("FrameTestNeverMade"), nullptr);
  EXPECT_EQ(classNamed("FrameTestNeverMade"), &classOf<NeverMade>());
  EXPECT_EQ(classNamed("FrameTestOnlyRegistered"), nullptr);
  registerClass<OnlyRegistered>();
  EXPECT_EQ(classNamed("FrameTestOnlyRegistered"), &classOf<OnlyRegistered>());
}

class First : public Object {};
void describe(ClassBuilder<First>& c) { c.name("FrameTestDoubleName"); }
class Second : public Object {};
void describe(ClassBuilder<Second>& c) { c.name("FrameTestDoubleName"); }

TEST(ClassNames, BelongToTheFirstThatTakesThem) {
  registerClass<First>();
  registerClass<Second>();
  EXPECT_EQ(classNamed("FrameTestDoubleName"), &classOf<First>());
  EXPECT_NE(&classOf<First>(), &classOf<Second>());
  EXPECT_STREQ(classOf<Second>().name(), "FrameTestDoubleName");
}

class Impostor : public Object {
 public:
  int count = 5;
};
void describe(ClassBuilder<Impostor>& c) {
  c.name("NSMutableDictionary").property("count", &Impostor::count);
}
class ArrayImpostor : public Object {};
void describe(ClassBuilder<ArrayImpostor>& c) { c.name("NSArray"); }

TEST(ClassNames, OfTheLibraryStayTheLibrarys) {
  registerClass<Impostor>();
  EXPECT_EQ(classNamed("NSMutableDictionary"), &classOf<MutableDictionary>());
  EXPECT_EQ(PropertyValue(make<Impostor>())["count"], PropertyValue(5));
  // What subsystems add to the library's class does not go to a namesake.
  EXPECT_EQ(classOf<ArrayImpostor>().record().operations.size(),
            classOf<Object>().record().operations.size());
}

class Nameless : public Object {
 public:
  int n = 1;
};
void describe(ClassBuilder<Nameless>& c) { c.property("n", &Nameless::n); }

TEST(ClassNames, MayBeMissing) {
  const PropertyValue v = make<Nameless>();
  EXPECT_EQ(v["n"], PropertyValue(1));
  EXPECT_STREQ(v.cls()->name(), "qx::(anonymous namespace)::Nameless");
  EXPECT_EQ(classNamed(v.cls()->name()), nullptr);
  EXPECT_EQ(classNamed(""), nullptr);
}

// Two classes of one spelling in unnamed namespaces of two files are two classes.
class Twin : public Object {
 public:
  int left = 1;
};
void describe(ClassBuilder<Twin>& c) { c.name("FrameTestTwinHere").property("left", &Twin::left); }

TEST(ClassTypes, OfUnnamedNamespacesAreTheirOwn) {
  const PropertyValue here = make<Twin>();
  const PropertyValue there = frame_test::twinOfAnotherFile();
  EXPECT_NE(here.cls(), there.cls());
  EXPECT_EQ(here["left"], PropertyValue(1));
  EXPECT_TRUE(here["right"].isNil());
  EXPECT_EQ(there["right"], PropertyValue("right"));
  EXPECT_TRUE(there["left"].isNil());
  EXPECT_STREQ(there.cls()->name(), "FrameTestTwinThere");
}

class Reluctant : public Object {
 public:
  int n = 3;
};
int refusals = 2;
void describe(ClassBuilder<Reluctant>& c) {
  c.name("FrameTestReluctant");
  if (refusals-- > 0) throw std::runtime_error("not yet");
  c.property("n", &Reluctant::n);
}

TEST(ClassTypes, AreDescribedAgainAfterAFailure) {
  EXPECT_THROW((void)classOf<Reluctant>(), std::runtime_error);
  EXPECT_EQ(classNamed("FrameTestReluctant"), nullptr);
  EXPECT_THROW((void)classOf<Reluctant>(), std::runtime_error);
  EXPECT_STREQ(classOf<Reluctant>().name(), "FrameTestReluctant");
  EXPECT_NE(classOf<Reluctant>().record().findProperty(detail::KeyText("n")), nullptr);
}

TEST(ClassObjects, AreImmortalObjects) {
  const PropertyValue c = classOf<String>();
  const std::size_t hash = c.hash();
  for (int i = 0; i < 3; ++i) {
    const Ref<Class> held = c.as<Class>();
    EXPECT_EQ(held.get(), &classOf<String>());
  }
  EXPECT_EQ(c.hash(), hash);
  EXPECT_EQ(c.description(), "NSString");
  EXPECT_EQ(c["name"], PropertyValue("NSString"));
  EXPECT_TRUE(isSame(c.copy(), c));
  EXPECT_TRUE(c == PropertyValue(&classOf<String>()));
  EXPECT_FALSE(c == PropertyValue(classOf<Object>()));
  EXPECT_TRUE(c.isKindOfClass(classOf<Class>()));
  const auto d = MutableDictionary::init();
  d->setObject(c, "class");
  EXPECT_TRUE(isSame(d->objectForKey("class"), c));
  EXPECT_TRUE(Set::from(array(c, classOf<Object>(), c))->count() == 2);
}

TEST(ClassRecords, LookUpPropertiesAndOperations) {
  const detail::ClassRecord& record = classOf<String>().record();
  EXPECT_TRUE(record.core);
  EXPECT_NE(record.findProperty(detail::KeyText("length")), nullptr);
  EXPECT_EQ(record.findProperty(detail::KeyText("size")), nullptr);
  EXPECT_NE(record.findOperation("isLike:"), nullptr);
  EXPECT_NE(record.findOperation("isEqual:"), nullptr);
  EXPECT_EQ(record.findOperation("isLike"), nullptr);
  EXPECT_EQ(record.findOperation(Selector()), nullptr);
  EXPECT_EQ(record.findClassOperation("isLike:"), nullptr);
}

}  // namespace
}  // namespace qx

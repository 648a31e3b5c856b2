// valueForKey, valueForKeyPath and setValue on every kind of value.

#include <gtest/gtest.h>

#include <limits>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/person.h"
#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

using frame_test::Person;

Ref<Person> person(const char* name, int age) { return make<Person>(name, age); }

TEST(ValueForKey, ReadsEntriesAndProperties) {
  const struct {
    PropertyValue receiver;
    const char* key;
    PropertyValue expected;
  } cases[] = {
      {dict({{"a", 1}, {"b", null}}), "a", 1},
      {dict({{"a", 1}, {"b", null}}), "b", null},
      {dict({{"a", 1}}), "c", nullptr},
      {dict({{"", 1}}), "", 1},
      {dict({{"a.b", 1}}), "a.b", 1},
      {dict({{"\xC3\xA9", 1}, {"\xE6\xBC\xA2", 2}}), "\xC3\xA9", 1},
      {dict({{"\xC3\xA9", 1}, {"\xE6\xBC\xA2", 2}}), "\xE6\xBC\xA2", 2},
      {dict({{"count", 7}}), "count", 7},
      {dict(), "count", nullptr},
      {MutableDictionary::dictionaryWithDictionary(dict({{"a", 1}})), "a", 1},
      {person("Bob", 42), "age", 42},
      {person("Bob", 42), "boss", nullptr},
      {person("Bob", 42), "unknown", nullptr},
      {person("Bob", 42), "", nullptr},
      {"text", "length", 4},
      {"text", "unknown", nullptr},
      {Data::from("ab"), "length", 2},
      {MutableData::from("abc"), "length", 3},
      {Date::dateWithTimeIntervalSince1970(978307205), "timeIntervalSince1970", 978307205.0},
      {Date::dateWithTimeIntervalSince1970(978307205), "timeIntervalSinceReferenceDate", 5.0},
      {classOf<String>(), "superclass", classOf<Object>()},
      {Error::errorWithDomain("D", 3, nullptr), "code", std::int64_t{3}},
      {Error::errorWithDomain("D", 3, nullptr), "domain", "D"},
      {classOf<String>(), "name", "NSString"},
      {5, "intValue", nullptr},
      {std::numeric_limits<std::uint64_t>::max(), "intValue", nullptr},
      {null, "a", nullptr},
      {true, "a", nullptr},
      {nullptr, "a", nullptr},
      {Data::from("x"), "bytes", nullptr},
      {Date::date(), "seconds", nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.receiver) + " " + c.key);
    EXPECT_EQ(c.receiver.valueForKey(c.key), c.expected);
    EXPECT_EQ(c.receiver[c.key], c.expected);
    EXPECT_EQ(c.receiver.valueForKey(String::from(c.key)), c.expected);
    EXPECT_EQ(c.receiver.valueForKey(MutableString::from(c.key)), c.expected);
    EXPECT_EQ(c.receiver.valueForKey(std::string(c.key)), c.expected);
    EXPECT_TRUE(c.receiver.valueForKey(nullptr).isNil());
  }
}

TEST(ValueForKey, FindsKeysInEveryForm) {
  auto wide = MutableString::from("\xE6\xBC\xA2");
  wide->setString("n\xC3\xA4me");
  const PropertyValue d = dict({{"n\xC3\xA4me", 1}});
  EXPECT_EQ(d[wide], PropertyValue(1));
  EXPECT_EQ(d[String::fromLatin1("n\xE4me")], PropertyValue(1));
  EXPECT_EQ(d[String::fromUtf16(u"n\u00E4me")], PropertyValue(1));
}

TEST(ValueForKey, MapsArrays) {
  const PropertyValue people =
      array(person("Bob", 42), dict({{"name", "Cy"}}), dict({{"age", 7}}), null, 5, "text");
  EXPECT_EQ(people["name"], PropertyValue(array("Bob", "Cy", null, null, null, null)));
  EXPECT_EQ(people["age"], PropertyValue(array(42, null, 7, null, null, null)));
  EXPECT_EQ(people["length"], PropertyValue(array(null, null, null, null, null, 4)));
  EXPECT_STREQ(people["name"].cls()->name(), "NSArray");
  EXPECT_EQ(PropertyValue(array())["x"], PropertyValue(array()));
  const auto changing = MutableArray::init();
  changing->addObject(dict({{"a", 1}}));
  EXPECT_EQ(PropertyValue(changing)["a"], PropertyValue(array(1)));
  EXPECT_EQ(PropertyValue(array(array(dict({{"a", 1}})), dict({{"a", 2}})))["a"],
            PropertyValue(array(array(1), 2)));
}

TEST(ValueForKey, MapsSets) {
  const PropertyValue s =
      Set::from(array(dict({{"a", 1}}), dict({{"a", 1.0}, {"b", 2}}), dict({{"c", 3}})));
  EXPECT_EQ(s["a"], PropertyValue(Set::from(array(1, null))));
  EXPECT_EQ(PropertyValue(array(s))["a"], PropertyValue(array(Set::from(array(1, null)))));
}

TEST(ValueForKeyPath, FollowsTheSteps) {
  const auto boss = person("Eve", 60);
  const auto bob = person("Bob", 42);
  bob->boss = boss;
  bob->tag = dict({{"x", dict({{"y", 5}})}});
  const PropertyValue root = dict({{"a", dict({{"b", 1}, {"n", null}})},
                                   {"p", bob},
                                   {"list", array(bob, boss)},
                                   {"", dict({{"", 7}})},
                                   {"t", "text"}});
  const struct {
    const char* path;
    PropertyValue expected;
  } cases[] = {
      {"a", dict({{"b", 1}, {"n", null}})},
      {"a.b", 1},
      {"a.c", nullptr},
      {"a.c.d", nullptr},
      {"a.b.c", nullptr},
      {"a.n", null},
      {"a.n.x", nullptr},
      {"p.name", "Bob"},
      {"p.boss.name", "Eve"},
      {"p.boss.boss", nullptr},
      {"p.boss.boss.name", nullptr},
      {"p.tag.x.y", 5},
      {"list.name", array("Bob", "Eve")},
      {"list.boss.name", array("Eve", null)},
      {"t.length", 4},
      {"", dict({{"", 7}})},
      {".", 7},
      {"..", nullptr},
      {"a.", nullptr},
      {".a", nullptr},
      {"a..b", nullptr},
      {"x", nullptr},
      {"x.y", nullptr},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(root.valueForKeyPath(c.path), c.expected) << c.path;
    EXPECT_EQ(root.valueForKeyPath(MutableString::from(c.path)), c.expected) << c.path;
  }
  EXPECT_TRUE(root.valueForKeyPath(nullptr).isNil());
  EXPECT_TRUE(PropertyValue().valueForKeyPath("a.b").isNil());
  EXPECT_TRUE(PropertyValue(5).valueForKeyPath("a.b").isNil());
}

TEST(ValueForKeyPath, ReadsPathsInEveryForm) {
  const PropertyValue root = dict({{"\xC3\xA4", dict({{"\xE6\xBC\xA2", 1}, {"b", 2}})}});
  EXPECT_EQ(root.valueForKeyPath("\xC3\xA4.\xE6\xBC\xA2"), PropertyValue(1));
  EXPECT_EQ(root.valueForKeyPath("\xC3\xA4.b"), PropertyValue(2));
  EXPECT_EQ(root.valueForKeyPath(String::fromUtf16(u"\u00E4.\u6F22")), PropertyValue(1));
  EXPECT_EQ(root.valueForKeyPath(String::from("\xC3\xA4.b")), PropertyValue(2));
}

TEST(SetValue, StoresUnderPropertiesAndEntries) {
  const auto d = MutableDictionary::init();
  PropertyValue(d).setValue(1, "a");
  PropertyValue(d).setValue("two", "b");
  PropertyValue(d).setValue(null, "a");
  EXPECT_EQ(d->objectForKey("a"), PropertyValue(null));
  PropertyValue(d).setValue(nullptr, "a");  // nil removes
  EXPECT_EQ(d->count(), 1U);
  PropertyValue(d).setValue(nullptr, "absent");
  PropertyValue(d).setValue(3, MutableString::from("m"));
  EXPECT_EQ(PropertyValue(d), PropertyValue(dict({{"b", "two"}, {"m", 3}})));
}

TEST(SetValue, StoresOnEveryElementOfAnArray) {
  const auto bob = person("Bob", 42);
  const auto d = MutableDictionary::init();
  PropertyValue(array(bob, d, array(d))).setValue(7, "age");
  EXPECT_EQ(bob->age, 7);
  EXPECT_EQ(d->objectForKey("age"), PropertyValue(7));
  const auto changing = MutableArray::init();
  changing->addObject(bob);
  PropertyValue(changing).setValue(8, "age");
  EXPECT_EQ(bob->age, 8);
  PropertyValue(array()).setValue(1, "anything");
}

TEST(SetValue, RaisesWhereNothingCanBeSet) {
  const struct {
    PropertyValue receiver;
    const char* reason;
  } cases[] = {
      {dict(), "-[NSDictionary setValue:forKey:]: there is no property \"age\" that can be set"},
      {"text", "-[NSString setValue:forKey:]: there is no property \"age\" that can be set"},
      {5, "-[NSNumber setValue:forKey:]: there is no property \"age\" that can be set"},
      {1e300, "-[NSNumber setValue:forKey:]: there is no property \"age\" that can be set"},
      {null, "-[NSNull setValue:forKey:]: there is no property \"age\" that can be set"},
      {MutableSet::init(),
       "-[NSMutableSet setValue:forKey:]: there is no property \"age\" that can be set"},
      {MutableSet::from(array(MutableDictionary::init())),  // read from members, never stored there
       "-[NSMutableSet setValue:forKey:]: there is no property \"age\" that can be set"},
      {array(person("Bob", 1), 5),
       "-[NSNumber setValue:forKey:]: there is no property \"age\" that can be set"},
      {classOf<String>(),
       "-[Class setValue:forKey:]: there is no property \"age\" that can be set"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { c.receiver.setValue(1, "age"); }), c.reason);
  }
  EXPECT_EQ(reasonOf<InvalidArgumentException>(
                [] { PropertyValue(MutableDictionary::init()).setValue(1, nullptr); }),
            "nil was used as an object in -[NSObject setValue:forKey:]");
  EXPECT_THROW(PropertyValue("text").setValue(1, "length"), InvalidArgumentException);
  EXPECT_THROW(PropertyValue(Data::from("x")).setValue(1, "length"), InvalidArgumentException);
  PropertyValue().setValue(1, "age");  // nil does nothing
}

// Getters and setters are application code: they may let go of everything around them.
class Careless : public Object {
 public:
  PropertyValue look() const {
    if (container != nullptr) container->removeAllObjects();
    if (key != nullptr) key->setString("something else entirely, and longer than it was");
    return "seen";
  }
  void change(const std::string&) {
    if (container != nullptr) container->removeAllObjects();
  }
  Ref<MutableArray> container;
  Ref<MutableString> key;
};
void describe(ClassBuilder<Careless>& c) {
  c.name("FrameTestCareless").property("look", &Careless::look, &Careless::change);
}

TEST(KeyAccess, HoldsWhatItWorksOn) {
  const auto list = MutableArray::init();
  for (int i = 0; i < 3; ++i) {
    const auto careless = make<Careless>();
    careless->container = list;
    list->addObject(careless);
  }
  EXPECT_EQ(PropertyValue(list)["look"], PropertyValue(array("seen", "seen", "seen")));
  EXPECT_EQ(list->count(), 0U);

  for (int i = 0; i < 3; ++i) {
    const auto careless = make<Careless>();
    careless->container = list;
    list->addObject(careless);
  }
  PropertyValue(list).setValue("x", "look");
  EXPECT_EQ(list->count(), 0U);
}

TEST(KeyAccess, HoldsItsKey) {
  const auto key = MutableString::from("look");
  const auto careless = make<Careless>();
  careless->key = key;
  EXPECT_EQ(PropertyValue(array(careless, careless)).valueForKey(key),
            PropertyValue(array("seen", "seen")));
  key->setString("look.length");
  EXPECT_EQ(PropertyValue(careless).valueForKeyPath(key), PropertyValue(4));
}

}  // namespace
}  // namespace qx

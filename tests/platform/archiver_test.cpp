#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/archiver.h>

namespace coded {

// A person with a boss, so that cycles can be made.
class Person : public qx::Object {
 public:
  Person() { all().insert(this); }
  static std::set<Person*>& all() {
    static std::set<Person*> people;
    return people;
  }
  // Cuts every person's references, so that cycles end.
  static void letGo() {
    const std::vector<qx::Ref<Person>> people(all().begin(), all().end());
    for (const auto& p : people) {
      p->boss = nullptr;
      p->friends = nullptr;
    }
  }

  std::string name;
  int age = 0;
  qx::Ref<Person> boss;
  qx::Ref<qx::Array> friends;

  void encodeWithCoder(qx::Archiver& a) const {
    a.encodeObject(name);
    a.encodeObject(age);
    a.encodeObject(boss);
    a.encodeObject(friends);
  }
  void decodeWithCoder(qx::Unarchiver& u) {
    name = u.decode<std::string>();
    age = u.decode<int>();
    boss = u.decode<qx::Ref<Person>>();
    friends = u.decode<qx::Ref<qx::Array>>();
  }

 protected:
  ~Person() override { all().erase(this); }
};
void describe(qx::ClassBuilder<Person>& c) { c.name("CodedPerson").archived(); }

// Encodes two values, decodes one.
class Greedy : public qx::Object {
 public:
  void encodeWithCoder(qx::Archiver& a) const {
    a.encodeObject(1);
    a.encodeObject(2);
  }
  void decodeWithCoder(qx::Unarchiver& u) { (void)u.decodeObject(); }
};
void describe(qx::ClassBuilder<Greedy>& c) { c.name("Greedy").archived(); }

class Plain : public qx::Object {};
void describe(qx::ClassBuilder<Plain>& c) { c.name("Plain"); }

}  // namespace coded

namespace qx {
namespace {

PropertyValue roundTrip(const PropertyValue& v) {
  return Unarchiver::unarchiveObjectWithData(Archiver::archivedDataWithRootObject(v));
}

std::string failureOf(std::string_view bytes) {
  Ref<Error> error;
  const PropertyValue v = Unarchiver::unarchiveObjectWithData(Data::from(bytes), &error);
  EXPECT_TRUE(v.isNil());
  if (error == nullptr) return "";
  EXPECT_EQ(error->domain()->utf8(), QXArchiveErrorDomain);
  EXPECT_EQ(error->code(), 1);
  return error->localizedDescription();
}

std::string archive(std::string_view values) {
  return std::string("QXArchive\x01") + std::string(values);
}

TEST(Archiver, KeepsEveryKindOfValue) {
  const auto nested = dict({{"a", array(1, "x", null)}, {"é漢", dict()}});
  const PropertyValue values[] = {
      nullptr,
      null,
      true,
      false,
      0,
      -1,
      std::numeric_limits<std::int64_t>::min(),
      std::numeric_limits<std::int64_t>::max(),
      0U,
      std::numeric_limits<std::uint64_t>::max(),
      1.5F,
      0.0,
      -0.0,
      0.1,
      5e-324,
      1e308,
      std::numeric_limits<double>::infinity(),
      std::numeric_limits<double>::quiet_NaN(),
      "",
      "plain",
      "naïve",
      "漢字😀",
      Data::from(std::string_view("\0\xff", 2)),
      Date::dateWithTimeIntervalSince1970(-1.25),
      DecimalNumber::initWithString("-12.5"),
      DecimalNumber::notANumber(),
      array(),
      nested,
      Set::from(array(1, "a", array(2))),
  };
  for (const PropertyValue& v : values) {
    const PropertyValue again = roundTrip(v);
    EXPECT_EQ(again, v) << v.description();
    EXPECT_EQ(again.cls(), v.cls()) << v.description();
    EXPECT_EQ(again.isNumber() ? again.as<Number>()->kind() : NumberKind::decimal,
              v.isNumber() ? v.as<Number>()->kind() : NumberKind::decimal)
        << v.description();
  }
  EXPECT_TRUE(std::signbit(roundTrip(-0.0).doubleValue()));
}

TEST(Archiver, KeepsLoneSurrogates) {
  const auto s = String::fromUtf16(u"a\xD800z");
  EXPECT_EQ(roundTrip(s), PropertyValue(s));
}

TEST(Archiver, KeepsTheMutableVariants) {
  const auto list = MutableArray::init();
  list->addObject(MutableString::from("x"));
  list->addObject(MutableData::from("y"));
  list->addObject(MutableDictionary::dictionaryWithDictionary(dict({{"k", 1}})));
  list->addObject(MutableSet::from(array(1)));
  const auto again = roundTrip(list).as<MutableArray>();
  ASSERT_TRUE(again);
  EXPECT_EQ(PropertyValue(again), PropertyValue(list));
  for (std::size_t i = 0; i < list->count(); ++i) {
    EXPECT_EQ(again->objectAtIndex(i).cls(), list->objectAtIndex(i).cls()) << i;
  }
}

TEST(Archiver, KeepsIdentity) {
  const auto shared = String::from("shared");
  const auto twice = String::from("shared");
  const auto again = roundTrip(array(shared, shared, twice)).as<Array>();
  EXPECT_TRUE(isSame(again->objectAtIndex(0), again->objectAtIndex(1)));
  EXPECT_FALSE(isSame(again->objectAtIndex(0), again->objectAtIndex(2)));
}

TEST(Archiver, KeepsClassesAsObjects) {
  const auto& c = classOf<coded::Person>();
  EXPECT_EQ(roundTrip(const_cast<Class*>(&c)).object(), &c);
}

TEST(Archiver, KeepsApplicationObjectsAndCycles) {
  const auto ann = make<coded::Person>();
  const auto bob = make<coded::Person>();
  ann->name = "Ann";
  bob->name = "Bob";
  bob->age = 42;
  ann->boss = bob;
  bob->boss = ann;
  bob->friends = array(ann, bob);
  const auto again = roundTrip(bob).as<coded::Person>();
  ASSERT_TRUE(again);
  EXPECT_EQ(again->name, "Bob");
  EXPECT_EQ(again->age, 42);
  EXPECT_EQ(again->boss->name, "Ann");
  EXPECT_EQ(again->boss->boss.get(), again.get());
  EXPECT_EQ(again->friends->objectAtIndex(1).object(), again.get());
  coded::Person::letGo();
}

TEST(Archiver, KeepsAnArrayThatHoldsItself) {
  const auto list = MutableArray::init();
  list->addObject(list);
  const auto again = roundTrip(list).as<MutableArray>();
  EXPECT_EQ(again->objectAtIndex(0).object(), again.get());
  again->removeAllObjects();
  list->removeAllObjects();
}

TEST(Archiver, WritesSeveralRootsInOrder) {
  Archiver a;
  a.encodeObject("one");
  a.encodeObject(nullptr);
  a.encodeObject(3);
  EXPECT_EQ(a.objectCount(), 3U);
  Unarchiver u(a.archiverData());
  EXPECT_EQ(u.decode<std::string>(), "one");
  EXPECT_FALSE(u.isAtEnd());
  EXPECT_TRUE(u.decodeObject().isNil());
  EXPECT_EQ(u.decode<int>(), 3);
  EXPECT_TRUE(u.isAtEnd());
  EXPECT_THROW(u.decodeObject(), InvalidArgumentException);
}

TEST(Archiver, RefusesClassesThatDeclareNoArchiving) {
  try {
    (void)Archiver::archivedDataWithRootObject(array(make<coded::Plain>()));
    FAIL();
  } catch (const InvalidArgumentException& e) {
    EXPECT_EQ(e.reason(), "-[NSArchiver encodeObject:]: the class Plain declares no archiving");
  }
}

TEST(Archiver, RefusesWhatIsNestedTooDeep) {
  Ref<Array> deep = array();
  for (std::size_t i = 1; i < kMaxArchiveDepth; ++i) deep = array(deep);
  EXPECT_EQ(roundTrip(deep), PropertyValue(deep));
  EXPECT_THROW((void)Archiver::archivedDataWithRootObject(array(deep)), InvalidArgumentException);
  for (int i = 0; i < 1'000'000; ++i) deep = array(deep);
  EXPECT_THROW((void)Archiver::archivedDataWithRootObject(deep), InvalidArgumentException);
  const std::string nested = archive(std::string(1'000'000, '\x0f') + "\x01");
  EXPECT_NE(failureOf(nested), "");
}

TEST(Unarchiver, RefusesBadBytesWithPlaceAndReason) {
  using namespace std::string_literals;
  const struct {
    std::string bytes;
    std::string reason;
  } rows[] = {
      {"", "archive, byte 0: these bytes are no archive"},
      {"bplist00", "archive, byte 0: these bytes are no archive"},
      {"QXArchive", "archive, byte 9: it ends within a value"},
      {"QXArchive\x02", "archive, byte 10: the archive is of a version that is not known here"},
      {archive(""), "archive, byte 10: it ends within a value"},
      {archive("\x01\x01"), "archive, byte 11: there are bytes after the root object"},
      {archive("\x14"), "archive, byte 11: a value of an unknown kind"},
      {archive("\x41"), "archive, byte 11: a value of an unknown kind"},
      {archive("\x13"), "archive, byte 11: a value of an unknown kind"},
      {archive("\x08\x00"s), "archive, byte 12: a reference to an object that is not there"},
      {archive("\x0f\x01\x08\x00"s), "archive, byte 14: an immutable container holds itself"},
      {archive("\x0f\x01\x0f\x01\x08\x00"s),
       "archive, byte 16: an immutable container holds itself"},
      {archive("\x0f\x01\x00"s), "archive, byte 13: a container holds nil"},
      {archive("\x0f\xff\xff\xff\xff\x0f"),
       "archive, byte 16: a count is larger than what follows"},
      {archive("\x0a\x05"
               "abcd"),
       "archive, byte 12: a count is larger than what follows"},
      {archive("\x05\xff\xff\xff\xff\xff\xff\xff\xff\xff\x02"),
       "archive, byte 21: a number is too large"},
      {archive("\x10\x01\x04\x02\x01"), "archive, byte 14: a key is no string"},
      {archive("\x10\x02\x0a\x01k\x0a\x01k\x01\x01"),
       "archive, byte 18: a key stands twice in a dictionary"},
      {archive("\x12\x00\x04Nope\x13"s), "archive, byte 17: the class Nope is not known"},
      {archive("\x12\x00\x05Plain\x13"s),
       "archive, byte 18: the class Plain declares no archiving"},
      {archive("\x12\x01\x05Plain\x13"s), "archive, byte 12: a class that is not there"},
  };
  registerClass<coded::Plain>();
  for (const auto& row : rows) EXPECT_EQ(failureOf(row.bytes), row.reason);
  EXPECT_EQ(failureOf(Archiver::archivedDataWithRootObject(make<coded::Greedy>())->view()),
            "archive, byte 22: an object of the class Greedy holds more than it decodes");
}

TEST(Unarchiver, RaisesWhereNoErrorIsAskedFor) {
  EXPECT_THROW((void)Unarchiver::unarchiveObjectWithData(Data::from("x")),
               InvalidArgumentException);
  EXPECT_THROW((void)Unarchiver::unarchiveObjectWithData(nullptr), InvalidArgumentException);
}

std::string sample() {
  const auto bob = make<coded::Person>();
  bob->name = "Bob";
  bob->friends =
      array("x", 1, 2.5, dict({{"k", true}, {"l", Data::from("abc")}}), Set::from(array(1, 2)),
            String::from("漢"), Date::dateWithTimeIntervalSince1970(5));
  return std::string(Archiver::archivedDataWithRootObject(array(bob, bob))->view());
}

TEST(Unarchiver, RefusesEveryTruncation) {
  const std::string whole = sample();
  for (std::size_t n = 0; n < whole.size(); ++n) EXPECT_NE(failureOf(whole.substr(0, n)), "") << n;
}

// A flipped byte gives an error or another value, and never more than that.
TEST(Unarchiver, SurvivesEveryFlippedByte) {
  const std::string whole = sample();
  for (std::size_t i = 0; i < whole.size(); ++i) {
    for (int bit = 0; bit < 8; ++bit) {
      std::string damaged = whole;
      damaged[i] = static_cast<char>(damaged[i] ^ (1 << bit));
      Ref<Error> error;
      const PropertyValue v = Unarchiver::unarchiveObjectWithData(Data::from(damaged), &error);
      EXPECT_TRUE(v.isNil() || error == nullptr);
      coded::Person::letGo();
    }
  }
}

}  // namespace
}  // namespace qx

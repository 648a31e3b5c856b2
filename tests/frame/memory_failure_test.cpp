// Where memory runs out, nothing is lost, and what was there before is whole.

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "frame/class_record.h"
#include "frame/dictionary_storage.h"
#include "tests/frame/counted.h"
#include "tests/frame/person.h"
#include "tests/frame/print_values.h"
#include "tests/support/failing_memory/failing_memory.h"

namespace qx {
namespace {

using frame_test::Counted;
using frame_test::Person;
using test_support::failAllocationAfter;
using test_support::failEveryAllocation;

void nothing() {}

TEST(MemoryFailure, WhileValuesAreMadeLosesNothing) {
  const auto counted = make<Counted>();
  std::string longText(100, 'x');
  longText += "\xE6\xBC\xA2";
  void (*const makers[])(const PropertyValue&) = {
      [](const PropertyValue& v) { (void)array(v, "text", 1e300, make<Counted>()); },
      [](const PropertyValue& v) { (void)dict({{"own key of this test", v}, {"b", 1e300}}); },
      [](const PropertyValue& v) { (void)Set::from(array(v, "text", make<Counted>())); },
      [](const PropertyValue& v) { (void)PropertyValue(dict({{"own key 2", v}})).mutableCopy(); },
      [](const PropertyValue& v) { (void)array(v)->arrayByAddingObject("x"); },
      [](const PropertyValue& v) { (void)PropertyValue(array(v, dict({{"a", v}}))).description(); },
      [](const PropertyValue& v) { (void)PropertyValue(array(v, dict({{"a", v}})))["a"]; },
      [](const PropertyValue& v) {
        (void)Error::errorWithDomain("D", 1, dict({{"k", v}}))->description();
      },
      [](const PropertyValue&) { (void)DecimalNumber::initWithString("1.5")->description(); },
      [](const PropertyValue&) { (void)Data::from("bytes")->mutableCopy(); },
      [](const PropertyValue& v) { const WeakRef<Counted> weak(v.peek<Counted>()); },
  };
  for (const auto maker : makers) {
    const long failures =
        failEveryAllocation([&] { maker(counted); }, [] { EXPECT_EQ(Counted::alive, 1); });
    EXPECT_GT(failures, 0);
    EXPECT_EQ(Counted::alive, 1);
  }
  void (*const textMakers[])(const String&) = {
      [](const String& s) { (void)s.stringByAppendingString("\xC3\xA9"); },
      [](const String& s) { (void)s.componentsSeparatedByString("x"); },
      [](const String& s) { (void)s.uppercaseString(); },
      [](const String& s) { (void)s.normalizedString(NormalForm::d); },
      [](const String& s) { (void)s.mutableCopy(); },
      [](const String& s) { (void)s.utf8(); },
  };
  const auto text = String::from(longText);
  for (const auto maker : textMakers) {
    EXPECT_GT(failEveryAllocation([&] { maker(*text); }, nothing), 0);
  }
}

std::string key(std::size_t n) { return "failing key " + std::to_string(n); }

// Every entry is where it should be, found by key and by walking.
void expectEntries(const MutableDictionary& d, const std::vector<std::size_t>& numbers) {
  ASSERT_EQ(d.count(), numbers.size());
  std::size_t i = 0;
  for (const auto& [k, v] : d) {
    ASSERT_LT(i, numbers.size());
    ASSERT_EQ(k.utf8(), key(numbers[i]));
    ASSERT_FALSE(v.isNil());
    ASSERT_EQ(v.peek<Counted>()->held, PropertyValue(numbers[i]));
    ASSERT_TRUE(isSame(*d.find(key(numbers[i])), v));
    ++i;
  }
}

TEST(MemoryFailure, LeavesDictionariesAsTheyWere) {
  {
    const auto d = MutableDictionary::init();
    std::vector<std::size_t> numbers;
    for (std::size_t n = 0; n < 70; ++n) {  // across both kinds of shapes
      const std::string k = key(n);
      const PropertyValue v = make<Counted>(n);
      failEveryAllocation([&] { d->setObject(v, k); }, [&] { expectEntries(*d, numbers); });
      numbers.push_back(n);
      expectEntries(*d, numbers);
    }
    for (std::size_t n = 0; n < 68; n += 1 + n % 3) {  // across the closing of holes
      const std::string k = key(n);
      failEveryAllocation([&] { d->removeObjectForKey(k); }, [&] { expectEntries(*d, numbers); });
      std::erase(numbers, n);
      expectEntries(*d, numbers);
    }
    PropertyValue copy;
    failEveryAllocation([&] { copy = PropertyValue(d).copy().mutableCopy(); },
                        [&] { expectEntries(*d, numbers); });
    expectEntries(*copy.as<MutableDictionary>(), numbers);
  }
  {
    const auto d = MutableDictionary::init();
    std::vector<std::size_t> numbers;
    for (std::size_t n = 0; n < 16; ++n) {
      d->setObject(make<Counted>(n), key(n));
      numbers.push_back(n);
    }
    for (std::size_t n = 0; n < 16; n += 2) {  // of a shared shape
      const std::string k = key(n);
      failEveryAllocation([&] { d->removeObjectForKey(k); }, [&] { expectEntries(*d, numbers); });
      std::erase(numbers, n);
      expectEntries(*d, numbers);
    }
    failEveryAllocation([&] { d->removeAllObjects(); }, [&] { expectEntries(*d, numbers); });
    EXPECT_EQ(d->count(), 0U);
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(MemoryFailure, LeavesSetsAsTheyWere) {
  {
    const auto s = MutableSet::init();
    std::vector<PropertyValue> members;
    const auto expectMembers = [&] {
      ASSERT_EQ(s->count(), members.size());
      const auto all = s->allObjects();
      for (std::size_t i = 0; i < members.size(); ++i) {
        ASSERT_TRUE(isSame(all->objectAtIndex(i), members[i]));
        ASSERT_TRUE(s->containsObject(members[i]));
      }
    };
    for (int n = 0; n < 70; ++n) {
      const PropertyValue v = make<Counted>(n);
      failEveryAllocation([&] { s->addObject(v); }, expectMembers);
      members.push_back(v);
      expectMembers();
    }
    while (members.size() > 5) {
      const PropertyValue v = members[members.size() / 2];
      failEveryAllocation([&] { s->removeObject(v); }, expectMembers);
      std::erase_if(members, [&](const PropertyValue& m) { return isSame(m, v); });
      expectMembers();
    }
    failEveryAllocation([&] { s->removeAllObjects(); }, expectMembers);
    EXPECT_EQ(s->count(), 0U);
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(MemoryFailure, WhileComparingLeavesNothingBehind) {
  PropertyValue a = Set::from(array(1, array(2)));
  PropertyValue b = Set::from(array(1, array(2)));
  for (int i = 0; i < 1200; ++i) {
    a = array(a, dict({{"k", i}}));
    b = array(b, dict({{"k", i}}));
  }
  EXPECT_GT(failEveryAllocation([&] { EXPECT_TRUE(a == b); }, nothing), 0);
  EXPECT_TRUE(a == b);
}

// Described for the first time while memory runs out.
template <int N>
class Late : public Object {
 public:
  int number = N;
  Ref<Object> other;
};
template <int N>
void describe(ClassBuilder<Late<N>>& c) {
  static const std::string name = "FrameTestLate" + std::to_string(N);
  c.name(name.c_str()).property("number", &Late<N>::number).property("other", &Late<N>::other);
}

TEST(MemoryFailure, WhileAClassIsDescribedLetsItBeDescribedAgain) {
  EXPECT_GT(failEveryAllocation([] { (void)classOf<Late<1>>(); },
                                [] { EXPECT_EQ(classNamed("FrameTestLate1"), nullptr); }),
            5);
  EXPECT_EQ(classNamed("FrameTestLate1"), &classOf<Late<1>>());
  EXPECT_EQ(classOf<Late<1>>().superclass(), &classOf<Object>());
  EXPECT_NE(classOf<Late<1>>().record().findProperty(detail::KeyText("number")), nullptr);
}

TEST(MemoryFailure, WhileSelectorsAreNamedLetsThemBeNamedAgain) {
  const char* const name = "a selector that is named while memory runs out:";
  EXPECT_GT(failEveryAllocation([&] { (void)Selector::named(name); }, nothing), 0);
  EXPECT_EQ(Selector::named(name).text(), name);
}

TEST(MemoryFailure, WhileStoringLeavesTheObjectAsItWas) {
  const auto bob = make<Person>("Bob", 1);
  const std::string longName(100, 'n');
  const PropertyValue name = longName;
  failEveryAllocation([&] { PropertyValue(bob).setValue(name, "name"); },
                      [&] { EXPECT_EQ(bob->name, "Bob"); });
  EXPECT_EQ(bob->name, longName);
}

}  // namespace
}  // namespace qx

#include <gtest/gtest.h>

#include <QXFoundation/dictionary_operations.h>

#include "tests/collections/sample_objects.h"

namespace {

using qx::dict;
using qx::PropertyValue;

// A class of the application that has numeric views of its own.
class Gauge : public qx::Object {
 public:
  int intValue() const { return -5; }
  unsigned unsignedIntValue() const { return 4000000000U; }
};
void describe(qx::ClassBuilder<Gauge>& c) {
  c.name("Gauge").operation("intValue", &Gauge::intValue);
  c.operation("unsignedIntValue", &Gauge::unsignedIntValue);
}

qx::Ref<qx::Dictionary> sample() {
  return dict({{"yes", "YES"},
               {"no", "NO"},
               {"text", "12 apples"},
               {"minus", "-1"},
               {"one", 1},
               {"zero", 0},
               {"half", 0.5},
               {"big", 5000000000},
               {"date", qx::Date::dateWithTimeIntervalSince1970(0)},
               {"null", qx::null},
               {"list", qx::array(1)},
               {"gauge", qx::make<Gauge>()}});
}

TEST(DictionaryOperations, ObjectOrDefault) {
  const auto d = sample();
  EXPECT_EQ(objectForKey(d, "one", "d"), 1);
  EXPECT_EQ(objectForKey(d, "none", "d"), "d");
  EXPECT_EQ(objectForKey(d, "none", nullptr), nullptr);
  EXPECT_TRUE(objectForKey(d, "null", "d").isNull());
  EXPECT_EQ(objectForKey(d, nullptr, "d"), "d");
}

TEST(DictionaryOperations, BoolOfStringsAndNumbersAlone) {
  const auto d = sample();
  EXPECT_TRUE(boolForKey(d, "yes", false));
  EXPECT_FALSE(boolForKey(d, "no", true));
  EXPECT_TRUE(boolForKey(d, "text", false));
  EXPECT_TRUE(boolForKey(d, "one", false));
  EXPECT_FALSE(boolForKey(d, "zero", true));
  EXPECT_TRUE(boolForKey(d, "half", false));
  for (const char* key : {"date", "null", "list", "gauge", "none"}) {
    EXPECT_TRUE(boolForKey(d, key, true)) << key;
    EXPECT_FALSE(boolForKey(d, key, false)) << key;
    EXPECT_FALSE(boolForKey(d, key)) << key;
  }
  EXPECT_TRUE(boolForKey(d, "one"));
}

TEST(DictionaryOperations, IntAsksWhateverIsThere) {
  const auto d = sample();
  EXPECT_EQ(intForKey(d, "one", 7), 1);
  EXPECT_EQ(intForKey(d, "text", 7), 12);
  EXPECT_EQ(intForKey(d, "yes", 7), 0);
  EXPECT_EQ(intForKey(d, "half", 7), 0);
  EXPECT_EQ(intForKey(d, "big", 7), static_cast<int>(5000000000 - 4294967296));
  EXPECT_EQ(intForKey(d, "gauge", 7), -5);
  EXPECT_EQ(intForKey(d, "none", 7), 7);
  EXPECT_EQ(intForKey(d, "none"), 0);
  EXPECT_EQ(intForKey(d, "minus"), -1);
  for (const char* key : {"date", "null", "list"})
    EXPECT_THROW(intForKey(d, key, 7), qx::InvalidArgumentException) << key;
}

TEST(DictionaryOperations, UnsignedIntOfStringsToo) {
  const auto d = sample();
  EXPECT_EQ(unsignedIntForKey(d, "minus", 7), 4294967295U);
  EXPECT_EQ(unsignedIntForKey(d, "one", 7), 1U);
  EXPECT_EQ(unsignedIntForKey(d, "gauge", 7), 4000000000U);
  EXPECT_EQ(unsignedIntForKey(d, "none", 7), 7U);
  EXPECT_EQ(unsignedIntForKey(d, "none"), 0U);
  EXPECT_EQ(unsignedIntForKey(dict({{"k", -1}}), "k"), 4294967295U);
  EXPECT_THROW(unsignedIntForKey(d, "date", 7), qx::InvalidArgumentException);
}

TEST(DictionaryOperations, FractionsAreNumbers) {
  const auto d = dict({{"f", qx::QXFractionNumber::initWithNumerator(7, 2)}});
  EXPECT_EQ(intForKey(d, "f"), 3);
  EXPECT_EQ(unsignedIntForKey(d, "f"), 3U);
  EXPECT_TRUE(boolForKey(d, "f"));
}

TEST(DictionaryOperations, NilDictionariesGiveNothing) {
  const qx::Ref<qx::Dictionary> nil;
  EXPECT_EQ(objectForKey(nil, "k", "d"), nullptr);
  EXPECT_FALSE(boolForKey(nil, "k", true));
  EXPECT_EQ(intForKey(nil, "k", 7), 0);
  EXPECT_EQ(unsignedIntForKey(nil, "k", 7), 0U);
  setObject(qx::Ref<qx::MutableDictionary>(), 1, "k", 2);
}

TEST(DictionaryOperations, StoringTheDefaultItselfRemovesTheEntry) {
  const auto d = qx::MutableDictionary::init();
  const PropertyValue standard = "standard";
  setObject(d, "other", "k", standard);
  EXPECT_EQ(d->objectForKey("k"), "other");
  setObject(d, qx::String::from("standard"), "k", standard);
  EXPECT_EQ(d->objectForKey("k"), "standard");
  setObject(d, standard, "k", standard);
  EXPECT_EQ(d->objectForKey("k"), nullptr);
  setObject(d, qx::null, "k", standard);
  EXPECT_TRUE(d->objectForKey("k").isNull());
  setObject(d, nullptr, "k", standard);
  EXPECT_EQ(d->count(), 0U);
  setObject(d, nullptr, "k", nullptr);
  EXPECT_EQ(d->count(), 0U);
  setObject(d, 1, "k", 1.0);
  EXPECT_EQ(d->objectForKey("k"), 1);
  setObject(d, 1, "k", 1);
  EXPECT_EQ(d->count(), 0U);
}

TEST(DictionaryOperations, NilKeysAreRefused) {
  const auto d = qx::MutableDictionary::init();
  EXPECT_THROW(setObject(d, 1, nullptr, 2), qx::InvalidArgumentException);
  EXPECT_THROW(setObject(d, nullptr, nullptr, 2), qx::InvalidArgumentException);
}

}  // namespace

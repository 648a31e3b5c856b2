// Texts of up to eight bytes are compared as a word: whatever stands behind a text plays no part.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier.h>
#include <QXFoundation/qualifier_key.h>

namespace qx {
namespace {

// Of few characters, a zero among them, so that many begin or are alike; the last is none of
// Latin-1.
PropertyValue randomText(std::mt19937& random) {
  const char* const characters[] = {"a", "b", "\0", "\u00e9", "\u20ac"};
  std::string text;
  const std::size_t most = random() % 3 == 0 ? 3 : 10;
  const std::size_t known = random() % 20 == 0 ? 5 : 4;
  for (std::size_t left = random() % (most + 1); left != 0; --left) {
    const std::size_t c = random() % known;
    text += c == 2 ? std::string(1, '\0') : std::string(characters[c]);
  }
  return String::from(text);
}

Ref<QXQualifier> oneOf(std::mt19937& random, bool isNegated) {
  auto texts = MutableArray::init();
  const std::size_t count = isNegated ? 1 : 1 + random() % 10;
  for (std::size_t i = 0; i < count; ++i) {
    const Ref<QXQualifier> equal = key("city") == randomText(random);
    texts->addObject(isNegated ? PropertyValue(QXNotQualifier::initWithQualifier(equal))
                               : PropertyValue(equal));
  }
  return QXOrQualifier::initWithQualifierArray(texts);
}

TEST(ShortTexts, AreEqualByTheirOwnBytesAlone) {
  std::mt19937 random(17);
  std::vector<PropertyValue> made;
  for (int i = 0; i < 500; ++i) made.push_back(dict({{"city", randomText(random)}, {"number", i}}));
  const auto all = Array::from(made.data(), made.size());
  std::size_t hits = 0;
  for (int round = 0; round < 400; ++round) {
    const auto qualifier = oneOf(random, round % 4 == 0);
    auto expected = MutableArray::init();
    for (const PropertyValue& one : made) {
      if (qualifier->evaluateWithObject(one)) expected->addObject(one);
    }
    hits += expected->count();
    ASSERT_EQ(PropertyValue(filteredArrayUsingQualifier(all, qualifier)), PropertyValue(expected))
        << qualifier->description();
  }
  EXPECT_GT(hits, 10000U);
}

}  // namespace
}  // namespace qx

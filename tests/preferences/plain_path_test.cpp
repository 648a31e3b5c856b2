#include "preferences/plain_path.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <QXFoundation/QXFoundation.h>

namespace qx::detail {
namespace {

using Keys = std::vector<std::string>;

// The components, character by character; nothing where one of them is not plain.
std::optional<Keys> expectedKeys(const std::string& path) {
  Keys keys(1);
  for (const char c : path) {
    if (c == '[' || static_cast<unsigned char>(c) >= 0x80) return std::nullopt;
    if (c == '.') {
      keys.emplace_back();
    } else {
      keys.back() += c;
    }
  }
  const bool endsInBracket = std::any_of(
      keys.begin(), keys.end(), [](const auto& k) { return k.size() >= 4 && k.back() == ']'; });
  return endsInBracket ? std::nullopt : std::optional(keys);
}

std::optional<Keys> visitedKeys(StringArg path) {
  Keys keys;
  bool wasLast = false;
  const bool isPlain = eachPlainKey(path, [&](TextSpan key, bool isLast) {
    EXPECT_FALSE(wasLast);
    wasLast = isLast;
    keys.emplace_back(key.latin1View());
    return true;
  });
  if (isPlain) {
    EXPECT_TRUE(wasLast);
  }
  return isPlain ? std::optional(keys) : std::nullopt;
}

TEST(PlainPaths, AreSplitAtEveryDot) {
  EXPECT_EQ(visitedKeys(""), Keys({""}));
  EXPECT_EQ(visitedKeys("a"), Keys({"a"}));
  EXPECT_EQ(visitedKeys("..a."), Keys({"", "", "a", ""}));
  EXPECT_EQ(visitedKeys("window7.panel7.setting7"), Keys({"window7", "panel7", "setting7"}));
  EXPECT_EQ(visitedKeys("ab].c"), Keys({"ab]", "c"}));
}

TEST(PlainPaths, AreNoneWithIndexesOrCharactersBeyondAscii) {
  EXPECT_EQ(visitedKeys("a.b[0]"), std::nullopt);
  EXPECT_EQ(visitedKeys("a.abc]"), std::nullopt);
  EXPECT_EQ(visitedKeys("abc].a"), std::nullopt);
  EXPECT_EQ(visitedKeys("caf\u00E9.a"), std::nullopt);
  EXPECT_EQ(visitedKeys(String::from("\u4E2D.a")), std::nullopt);
}

// Every length around a word, every place of a dot and a bracket in it; as bytes and as an object.
TEST(PlainPaths, AreTheSameCharacterByCharacter) {
  std::mt19937 random(5);
  const std::string letters = "abcXYZ\\^_/-,.....]\x01\x7F";
  for (int round = 0; round < 20'000; ++round) {
    std::string path(random() % 40, ' ');
    for (char& c : path) c = letters[random() % letters.size()];
    if (!path.empty() && random() % 8 == 0) path[random() % path.size()] = '[';
    ASSERT_EQ(visitedKeys(path), expectedKeys(path)) << path;
    ASSERT_EQ(visitedKeys(String::from(path)), expectedKeys(path)) << path;
  }
}

TEST(PlainPaths, EndWhereTheVisitGivesUp) {
  int visits = 0;
  EXPECT_FALSE(eachPlainKey("a.b.c", [&](TextSpan, bool) { return ++visits < 2; }));
  EXPECT_EQ(visits, 2);
}

}  // namespace
}  // namespace qx::detail

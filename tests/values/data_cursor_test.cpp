#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <vector>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/data_cursor.h>

#include "tests/support/processor_time.h"

namespace qx {
namespace {

using Lines = std::vector<std::string>;

Ref<QXDataCursor> cursorOver(std::string_view bytes) {
  return QXDataCursor::initWithData(Data::from(bytes));
}

Lines linesOf(const Ref<QXDataCursor>& cursor) {
  Lines lines;
  while (const auto line = cursor->readLine()) lines.push_back(line->utf8());
  return lines;
}

TEST(DataCursor, ReadsLinesOfEveryEnding) {
  const std::pair<std::string_view, Lines> cases[] = {
      {"a\nb", {"a", "b"}},
      {"a\r\n\r\nb", {"a", "", "b"}},
      {"a\n", {"a"}},
      {"\n", {""}},
      {"\r", {""}},
      {"\r\n", {""}},
      {"\n\r", {"", ""}},
      {"\r\r\n\n", {"", "", ""}},
      {"a\rb\nc\r\nd", {"a", "b", "c", "d"}},
      {"a\n\rb", {"a", "", "b"}},
      {"", {}},
      {"a", {"a"}},
      {std::string_view("a\0b\nc", 5), {std::string("a\0b", 3), "c"}},
  };
  for (const auto& [bytes, lines] : cases) EXPECT_EQ(linesOf(cursorOver(bytes)), lines) << bytes;
}

TEST(DataCursor, KnowsWhetherAnythingIsLeft) {
  const auto cursor = cursorOver("a\nb");
  EXPECT_TRUE(cursor->hasAvailableData());
  EXPECT_EQ(cursor->readLine()->utf8(), "a");
  EXPECT_TRUE(cursor->hasAvailableData());
  EXPECT_EQ(cursor->readLine()->utf8(), "b");
  EXPECT_FALSE(cursor->hasAvailableData());
  EXPECT_EQ(cursor->readLine(), nullptr);
  EXPECT_EQ(cursor->readLine(), nullptr);
  EXPECT_FALSE(cursorOver("")->hasAvailableData());
}

TEST(DataCursor, ReadsEveryByteAsOneCharacter) {
  EXPECT_EQ(cursorOver("\xE9")->readLine()->characterAtIndex(0), u'\u00E9');
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  const auto text = cursorOver(all)->readStringOfLength(256);
  for (unsigned byte = 0; byte < 256; ++byte) EXPECT_EQ(text->characterAtIndex(byte), byte);
  EXPECT_EQ(cursorOver("")->stringEncoding(), 5U);
}

void expectOverRead(const Ref<QXDataCursor>& cursor, std::size_t length) {
  try {
    (void)cursor->readStringOfLength(length);
    ADD_FAILURE() << "nothing was raised";
  } catch (const RangeException& e) {
    EXPECT_STREQ(e.name(), "NSRangeException");
    EXPECT_EQ(e.reason(), "Attempted to read past to end of data.");
  }
}

TEST(DataCursor, RaisesAtTheEndAndStaysWhereItIs) {
  const auto cursor = cursorOver("abc");
  expectOverRead(cursor, 4);
  expectOverRead(cursor, ~std::size_t{0});
  EXPECT_EQ(cursor->readStringOfLength(1)->utf8(), "a");
  expectOverRead(cursor, 3);
  EXPECT_EQ(cursor->readStringOfLength(0)->utf8(), "");
  EXPECT_EQ(cursor->readStringOfLength(2)->utf8(), "bc");
  EXPECT_EQ(cursor->readStringOfLength(0)->utf8(), "");
  expectOverRead(cursor, 1);
}

TEST(DataCursor, MixesStringsAndLines) {
  const auto cursor = cursorOver("ab\r\ncd\nef");
  EXPECT_EQ(cursor->readLine()->utf8(), "ab");
  EXPECT_EQ(cursor->readStringOfLength(1)->utf8(), "c");
  EXPECT_EQ(cursor->readLine()->utf8(), "d");
  EXPECT_EQ(cursor->readStringOfLength(2)->utf8(), "ef");
  const auto within = cursorOver("ab\r\ncd\n");
  EXPECT_EQ(within->readStringOfLength(3)->utf8(), "ab\r");  // ends between CR and LF
  EXPECT_EQ(within->readLine()->utf8(), "");
  EXPECT_EQ(within->readLine()->utf8(), "cd");
}

// The rules as they are laid down, on the bytes that are left.
std::optional<std::string> takeLine(std::string& rest) {
  if (rest.empty()) return std::nullopt;
  std::size_t length = 0;
  while (length < rest.size() && rest[length] != '\n' && rest[length] != '\r') ++length;
  std::string line = rest.substr(0, length);
  rest.erase(0, length);
  if (rest.starts_with("\r\n")) {
    rest.erase(0, 2);
  } else if (!rest.empty()) {
    rest.erase(0, 1);
  }
  return line;
}

TEST(DataCursor, FollowsTheRulesInAnyOrderOfOperations) {
  std::mt19937_64 random(59);
  for (int round = 0; round < 5000; ++round) {
    std::string rest;
    for (auto length = random() % 40; length > 0; --length) rest += "ab\n\r"[random() % 4];
    const auto cursor = cursorOver(rest);
    for (int step = 0; step < 30; ++step) {
      ASSERT_EQ(cursor->hasAvailableData(), !rest.empty());
      if (random() % 3 != 0) {
        const auto expected = takeLine(rest);
        const auto line = cursor->readLine();
        ASSERT_EQ(line != nullptr, expected.has_value());
        if (line != nullptr) {
          ASSERT_EQ(line->utf8(), *expected);
        }
      } else {
        const std::size_t length = random() % 6;
        if (length > rest.size()) {
          expectOverRead(cursor, length);
        } else {
          ASSERT_EQ(cursor->readStringOfLength(length)->utf8(), rest.substr(0, length));
          rest.erase(0, length);
        }
      }
    }
  }
}

TEST(DataCursor, KeepsTheBytesAlive) {
  auto data = Data::from("one\ntwo");
  const auto cursor = QXDataCursor::initWithData(data);
  data = nullptr;
  EXPECT_EQ(linesOf(cursor), (Lines{"one", "two"}));
}

TEST(DataCursor, ReadsMutableDataAsItWas) {
  const auto data = MutableData::from("one\ntwo");
  const auto cursor = QXDataCursor::initWithData(data);
  data->setData(std::string(100000, 'x'));
  EXPECT_EQ(linesOf(cursor), (Lines{"one", "two"}));
}

TEST(DataCursor, HasNothingToReadWithoutData) {
  const auto cursor = QXDataCursor::initWithData(nullptr);
  EXPECT_FALSE(cursor->hasAvailableData());
  EXPECT_EQ(cursor->readLine(), nullptr);
  EXPECT_EQ(cursor->readStringOfLength(0)->length(), 0U);
  expectOverRead(cursor, 1);
}

TEST(DataCursor, ReadsManyLinesWithoutOneOfTheEndingsInLinearTime) {
  for (const char ending : {'\n', '\r'}) {
    std::string bytes;
    for (int i = 0; i < 1000000; ++i) bytes += std::string("ab") + ending;
    const double start = processorTime();
    EXPECT_EQ(linesOf(cursorOver(bytes)).size(), 1000000U);
    EXPECT_LT(processorTime() - start, 20.0);
  }
}

TEST(DataCursor, AnswersSelectors) {
  const PropertyValue cursor = cursorOver("ab\ncd");
  EXPECT_EQ(performSelector(cursor, "hasAvailableData"), true);
  EXPECT_EQ(performSelector(cursor, "readStringOfLength:", 1), "a");
  EXPECT_EQ(performSelector(cursor, "readLine"), "b");
  EXPECT_EQ(performSelector(cursor, "stringEncoding"), 5);
  EXPECT_THROW(performSelector(cursor, "readStringOfLength:", -1), InvalidArgumentException);
}

}  // namespace
}  // namespace qx

#include "preferences/tree_path.h"

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "frame/key_text.h"

namespace qx::detail {
namespace {

std::int32_t indexOf(StringArg component) { return indexOfComponent(ArgText(component)); }

TEST(KeyPathIndex, WeighsDigitsFromTheLastToTheFirst) {
  const struct {
    const char* component;
    std::int32_t index;
  } rows[] = {
      {"", -1},
      {"a", -1},
      {"[0]", -1},
      {"l[]", -1},
      {"abcd", -1},
      {"a[0", -1},
      {"a0]x", -1},
      {"a[0]", 0},
      {"ab[]", 0},
      {"list[]", 0},
      {"list[1]", 10},
      {"list[3]", 30},
      {"list[12]", 31},
      {"list[9]", 90},
      {"list[10]", 11},
      {"list[100]", 8},
      {"list[1000]", 9},
      {"list[10000]", 14},
      {"list[100000]", 15},
      {"list[1000000]", 12},
      {"list[10000000]", 13},
      {"list[100000000]", 2},
      {"list[1000000000]", 3},
      {"list[10000000000]", 0},
      {"list[100000000000]", 1},
      {"a[1[2]", 20},  // from the last opening bracket on
      {"a[1][2]", 20},
      {"a[]]", 10 * (']' - 48)},
      {"a[x]", 10 * ('x' - 48)},
      {"a[-1]", 10 + 11 * ('-' - 48)},
      {"a[/]", -10},
      {"a[/1]", -1},  // reads as no index
      {"a[é]", 10 * (0xE9 - 48)},
      {"a[漢]", 10 * (0x6F22 - 48)},
  };
  for (const auto& row : rows) EXPECT_EQ(indexOf(row.component), row.index) << row.component;
}

TEST(KeyPathIndex, WrapsAt32Bits) {
  const std::string digits(100'000'000, '9');
  std::uint32_t sum = 0;
  for (std::uint32_t k = 0; k < digits.size(); ++k) sum += 9U * (k ^ 10U);
  EXPECT_EQ(indexOf("a[" + digits + "]"), static_cast<std::int32_t>(sum));
}

TEST(KeyPathIndex, FailsWithoutAnOpeningBracket) {
  EXPECT_THROW(indexOf("abc]"), RangeException);
  EXPECT_THROW(indexOf("]]]]"), RangeException);
  EXPECT_EQ(indexOf("ab]"), -1);
  try {
    indexOf("漢bc]");
    FAIL();
  } catch (const RangeException& e) {
    EXPECT_EQ(e.reason(),
              "the key \"漢bc]\" of a key path has a closing bracket without an opening one");
  }
}

TEST(StandardizedKeyPath, CutsEachComponentByTheWholePath) {
  const struct {
    const char* path;
    const char* standardized;
  } rows[] = {
      {"", ""},
      {"a", "a"},
      {"a[0]", "a"},
      {"[0]", ""},
      {"x.list[0]", "x.list[0"},
      {"a[0].bcdef", "a.b"},
      {"panel.frame", "panel.frame"},
      {".", "."},
      {"..a", "..a"},
      {"a[0].b[1].c", "a.b.c"},
      {"a]", "a]"},
      {"[", ""},
      {"[].x", "."},
      {
          "[.abc",
          ".",
      },
      {"[.a", "."},
      {"é[0].漢字", "é.漢"},
      {"漢[0].abcd", "漢.a"},
  };
  for (const auto& row : rows) {
    const Ref<String> result = standardizedKeyPath(row.path);
    EXPECT_EQ(result->utf8(), row.standardized) << row.path;
    const Ref<String> wide = standardizedKeyPath(String::from(row.path));
    EXPECT_EQ(wide->utf8(), row.standardized) << row.path;
  }
  EXPECT_TRUE(standardizedKeyPath(nullptr) == nullptr);
}

TEST(StandardizedKeyPath, GivesAPathWithoutIndexItself) {
  const auto path = String::from("panel.frame");
  EXPECT_EQ(standardizedKeyPath(path).get(), path.get());
}

Ref<QXPreferencesDictionary> tree(const Ref<Dictionary>& contents) {
  return QXPreferencesDictionary::initWithDictionary(contents, nullptr);
}

Ref<Array> numbers(int count) {
  const auto a = MutableArray::init();
  for (int i = 0; i < count; ++i) a->addObject(100 + i);
  return a;
}

TEST(ValueAtPath, FollowsKeysAndIndexes) {
  const auto root = tree(dict({{"a", dict({{"b", dict({{"c", 1}})}, {"", "empty"}})},
                               {"list", numbers(40)},
                               {"l", numbers(2)},
                               {"rows", array(dict({{"x", 1}}), dict({{"x", 2}}))},
                               {"name", "text"},
                               {"漢.", 1},
                               {"é", dict({{"漢", 7}})},
                               {"", dict({{"", "nested"}})}}));
  const struct {
    const char* path;
    PropertyValue value;
  } rows[] = {
      {"a.b.c", 1},
      {"a.b.d", nullptr},
      {"a.x.y.z", nullptr},
      {"a.", "empty"},
      {"é.漢", 7},
      {"漢.", nullptr},
      {".", "nested"},
      {"list[0]", 100},
      {"list[1]", 110},
      {"list[3]", 130},
      {"list[]", 100},
      {"list[4]", nullptr},
      {"list[4].deeper.still", nullptr},
      {"l[]", root->objectForKey("l")},
      {"rows[0].x", 1},
      {"rows[0]", dict({{"x", 1}})},
      {"name[0]", "text"},
      {"a[0].b[9].c[5]", 1},
      {"none[0].x", nullptr},
  };
  for (const auto& row : rows) {
    const PropertyValue* found = valueAtPath(*root, row.path);
    EXPECT_EQ(found == nullptr ? PropertyValue() : *found, row.value) << row.path;
    const PathEnd end = walkPath(root, row.path, false);
    EXPECT_EQ(end.value, row.value) << row.path;
  }
}

TEST(ValueAtPath, FailsOnAValueThatIsNoDictionary) {
  const auto root = tree(dict({{"name", "text"}, {"list", array(1)}, {"n", 5}, {"z", null}}));
  for (const char* path : {"name.first", "list.x", "list[0].x", "n.x.y", "z.x", "name[0].x"}) {
    EXPECT_THROW(valueAtPath(*root, path), InvalidArgumentException) << path;
    EXPECT_THROW(walkPath(root, path, false), InvalidArgumentException) << path;
  }
  EXPECT_THROW(valueAtPath(*root, "abc]"), RangeException);
  EXPECT_THROW(valueAtPath(*root, "none.abc]"), RangeException);
  EXPECT_THROW(valueAtPath(*root, "list[/]"), RangeException);
  EXPECT_THROW(walkPath(root, "list[/]", false), RangeException);
}

TEST(WalkPath, GivesTheRootForNoPath) {
  const auto root = tree(dict({{"a", 1}}));
  const PathEnd end = walkPath(root, nullptr, true);
  EXPECT_TRUE(isSame(end.value, root));
  EXPECT_TRUE(isSame(end.parent, root));
}

TEST(WalkPath, GivesTheParent) {
  const auto root = tree(dict({{"a", dict({{"b", 1}, {"list", array(1, 2)}})}}));
  const PropertyValue a = root->objectForKey("a");
  const PropertyValue list = a["list"];
  const struct {
    const char* path;
    PropertyValue parent;
  } rows[] = {
      {"a", root},   {"a.b", a},          {"a.none", a},       {"none", root}, {"none.x", nullptr},
      {"a.list", a}, {"a.list[0]", list}, {"a.list[1]", list}, {"a.b[0]", a},  {"none[0]", root},
  };
  for (const auto& row : rows) {
    const PathEnd end = walkPath(root, row.path, false);
    EXPECT_TRUE(isSame(end.parent, row.parent)) << row.path;
  }
}

PropertyValue afterCreating(const Ref<Dictionary>& contents, const char* path) {
  const auto root = tree(contents);
  (void)walkPath(root, path, true);
  return root;
}

TEST(WalkPath, CreatesWhatIsMissingButTheLast) {
  const struct {
    Ref<Dictionary> before;
    const char* path;
    Ref<Dictionary> after;
  } rows[] = {
      {dict(), "a", dict()},
      {dict(), "a.b", dict({{"a", dict()}})},
      {dict(), "a.b.c", dict({{"a", dict({{"b", dict()}})}})},
      {dict(), "a[0].b", dict({{"a", array(dict())}})},
      {dict(), "a[1].b", dict({{"a", array()}})},
      {dict(), "a[0].b[0].c", dict({{"a", array(dict({{"b", array(dict())}}))}})},
      {dict({{"a", numbers(10)}}), "a[1].b",
       dict({{"a", numbers(10)->arrayByAddingObject(dict())}})},
      {dict({{"a", numbers(9)}}), "a[1].b", dict({{"a", numbers(9)}})},
      {dict({{"a", array(dict({{"x", 1}}))}}), "a[0].b", dict({{"a", array(dict({{"x", 1}}))}})},
      {dict(), ".b", dict({{"", dict()}})},
      {dict({{"a", dict({{"k", 1}, {"l", 2}})}}), "a[1].b",  // beyond the count of a dictionary
       dict({{"a", dict({{"k", 1}, {"l", 2}})}})},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(afterCreating(row.before, row.path), row.after) << row.path;
  }
}

TEST(WalkPath, FailsToCreateThroughOtherValues) {
  for (const char* path :
       {"n.x", "s.x.y", "list.x", "list[0].x", "d[0].x", "e[0].x", "list[/].x"}) {
    EXPECT_THROW(afterCreating(dict({{"n", 1},
                                     {"s", "text"},
                                     {"list", array(1)},
                                     {"d", dict({{"x", 1}})},
                                     {"e", dict()}}),
                               path),
                 Exception)
        << path;
  }
}

TEST(WalkPath, ConvertsPlainContainersOnTheWay) {
  const auto root = QXPreferencesDictionary::init();
  root->setDictionary(
      dict({{"a", dict({{"b", dict({{"x", 1}})}})}, {"list", array(dict({{"y", 1}}))}}));
  const PathEnd end = walkPath(root, "a.b.c", true);
  end.parent.setValue(2, "c");
  EXPECT_EQ(PropertyValue(root).valueForKeyPath("a.b"), dict({{"x", 1}, {"c", 2}}));
  // A plain array is not stored again itself, and keeps what it holds.
  EXPECT_THROW(walkPath(root, "list[0].y", true), InvalidArgumentException);
  const auto mutableList = MutableArray::init();
  mutableList->addObject(dict({{"y", 1}}));
  root->setDictionary(dict({{"list", mutableList}}));
  (void)walkPath(root, "list[0].y", true);
  EXPECT_TRUE(isSame(root->objectForKey("list"), mutableList));
}

TEST(SetInParent, PutsByKeyOrByIndex) {
  const auto map = QXPreferencesDictionary::init();
  setInParent(map, 1, "k", kNoIndex);
  EXPECT_EQ(PropertyValue(map), dict({{"k", 1}}));
  const auto list = QXPreferencesArray::init();
  setInParent(list, 1, nullptr, 0);
  setInParent(list, 2, nullptr, 1);
  setInParent(list, 3, nullptr, 0);
  setInParent(list, 4, nullptr, 3);
  EXPECT_EQ(PropertyValue(list), array(3, 2));
  EXPECT_THROW(setInParent(list, 4, nullptr, -5), RangeException);
  EXPECT_THROW(setInParent(map, 1, "k", 0), InvalidArgumentException);
  EXPECT_THROW(setInParent(map, 1, "k", 1), InvalidArgumentException);
  setInParent(map, 1, "k", 2);
  EXPECT_THROW(setInParent(dict(), 1, "k", kNoIndex), InvalidArgumentException);
  EXPECT_THROW(setInParent(array(), 1, "k", 0), InvalidArgumentException);
  EXPECT_THROW(setInParent("text", 1, "k", 0), InvalidArgumentException);
}

TEST(NamesOfWrite, TellLeafAndTop) {
  const struct {
    const char* path;
    bool hasPath;
    PropertyValue leaf;
    PropertyValue top;
    bool areOne;
  } rows[] = {
      {"a", false, "a", "a", true},
      {"a[0]", false, "a", "a", true},
      {"a", true, "a", "a", true},
      {"a.b", false, "b", "a", false},
      {"a.b", true, "b", nullptr, false},
      {"a.a", false, "a", "a", false},
      {"a.", false, nullptr, nullptr, true},
      {"a[1].b.c[2]", false, "c", "a", false},
      {"", false, "", "", true},
      {".b", false, "b", "", false},
      {".", false, nullptr, nullptr, true},
  };
  for (const auto& row : rows) {
    const WrittenNames names = namesOfWrite(row.path, row.hasPath);
    EXPECT_EQ(PropertyValue(names.leaf), row.leaf) << row.path;
    EXPECT_EQ(PropertyValue(names.top), row.top) << row.path;
    EXPECT_EQ(names.areOne, row.areOne) << row.path;
  }
}

}  // namespace
}  // namespace qx::detail

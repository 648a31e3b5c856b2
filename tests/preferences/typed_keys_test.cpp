#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/support/memory_user_defaults.h"

namespace qx {
namespace {

constexpr PreferenceKey<int> kWidth{"ui.width", 80};
constexpr PreferenceKey<bool> kVisible{"ui.visible", true};
constexpr PreferenceKey<double> kScale{"ui.scale", 1.5};
constexpr PreferenceKey<float> kRatio{"ui.ratio", 0.5F};
constexpr PreferenceKey<std::string> kTitle{"ui.title", "untitled"};
constexpr PreferenceKey<std::uint64_t> kSize{"ui.size", 7};

class TypedKeys : public testing::Test {
 protected:
  test_support::WithMemoryUserDefaults memory;
  Ref<QXPreferences> store = QXPreferences::initForCustomInfo();
};

TEST_F(TypedKeys, GiveTheirOwnValueWhereNothingOfTheirKindIsStored) {
  EXPECT_EQ(store->get(kWidth), 80);
  EXPECT_EQ(store->get(kVisible), true);
  EXPECT_EQ(store->get(kScale), 1.5);
  EXPECT_EQ(store->get(kRatio), 0.5F);
  EXPECT_EQ(store->get(kTitle), "untitled");
  EXPECT_EQ(store->get(kSize), 7U);
  store->setObject("wide", "ui.width");
  store->setObject(1, "ui.visible");
  EXPECT_EQ(store->get(kWidth), 80);
  EXPECT_EQ(store->get(kVisible), true);
  store->setObject(std::int64_t{1} << 40, "ui.width");
  EXPECT_EQ(store->get(kWidth), 80) << "beyond the range";
  store->setDefaultObject(90, "ui.width");
  store->removeObjectForKeyPath("ui.width");
  EXPECT_EQ(store->get(kWidth), 90) << "a registered default comes before the key's own";
}

// Somebody else may have put a value where the application has a branch.
TEST_F(TypedKeys, GiveTheirOwnValueWhereThePathLeadsThroughALeaf) {
  const PropertyValue leaves[] = {5, "text", Data::from("d"), array(1), null};
  for (const PropertyValue& leaf : leaves) {
    store->setObject(leaf, "ui");
    EXPECT_EQ(store->get(kWidth), 80);
    EXPECT_EQ(store->get(kTitle), "untitled");
    EXPECT_EQ(store->get<int>("ui.width"), std::nullopt);
    EXPECT_EQ(store->get<int>("ui.frames[0].width"), std::nullopt);
    EXPECT_EQ(store->get<int>("ui.a.b"), std::nullopt);
    EXPECT_THROW((void)store->integerForKeyPath("ui.width"), InvalidArgumentException);
    EXPECT_THROW((void)store->objectForKeyPath("ui.a.b"), InvalidArgumentException);
  }
  store->setDefaultObject(90, "ui.width");
  EXPECT_EQ(store->get(kWidth), 90);
  store->setObject(array(1), "ui");
  EXPECT_EQ(store->get<int>("ui[0]"), 1);
  EXPECT_EQ(store->get<int>("ui[0].width"), std::nullopt);
  EXPECT_THROW((void)store->get<int>("width]"), RangeException) << "no key path at all";
}

TEST_F(TypedKeys, KeepWhatIsSet) {
  store->set(kWidth, 100);
  store->set(kVisible, false);
  store->set(kScale, 2.0);
  store->set(kScale, 2.5F);
  store->set(kRatio, 0.25F);
  store->set(kTitle, "text");
  store->set(kSize, std::uint64_t{1} << 63);
  EXPECT_EQ(store->get(kWidth), 100);
  EXPECT_EQ(store->get(kVisible), false);
  EXPECT_EQ(store->get(kScale), 2.5);
  EXPECT_EQ(store->get(kRatio), 0.25F);
  EXPECT_EQ(store->get(kTitle), "text");
  EXPECT_EQ(store->get(kSize), std::uint64_t{1} << 63);
  store->set(kTitle, std::string("string"));
  EXPECT_EQ(store->get(kTitle), "string");
  store->set(kWidth, short{5});
  EXPECT_EQ(store->get(kWidth), 5);
  store->setInteger(3, "ui.scale");
  EXPECT_EQ(store->get(kScale), 3.0) << "integers read as real numbers";
}

TEST_F(TypedKeys, StandBesideOptionalReading) {
  store->setInteger(5, "a.b");
  store->setObject("text", "a.s");
  store->setBool(true, "a.t");
  EXPECT_EQ(store->get<int>("a.b"), 5);
  EXPECT_EQ(store->get<double>("a.b"), 5.0);
  EXPECT_EQ(store->get<std::string>("a.s"), "text");
  EXPECT_EQ(store->get<bool>("a.t"), true);
  EXPECT_EQ(store->get<int>("a.s"), std::nullopt);
  EXPECT_EQ(store->get<int>("a.t"), std::nullopt);
  EXPECT_EQ(store->get<int>("none"), std::nullopt);
}

template <class T, class V>
concept CanSet = requires(QXPreferences& p, const PreferenceKey<T>& k, const V& v) { p.set(k, v); };

TEST_F(TypedKeys, RefuseTheWrongKindWhenCompiled) {
  static_assert(CanSet<int, int> && CanSet<int, short> && CanSet<std::int64_t, int>);
  static_assert(!CanSet<int, double> && !CanSet<int, bool> && !CanSet<int, std::int64_t>);
  static_assert(!CanSet<int, unsigned> && !CanSet<unsigned, int> && !CanSet<int, std::string>);
  static_assert(!CanSet<bool, int> && !CanSet<bool, const char*> && !CanSet<int, char>);
  static_assert(CanSet<double, double> && CanSet<double, float> && !CanSet<double, int>);
  static_assert(!CanSet<float, double>);
  static_assert(CanSet<std::string, std::string_view> && !CanSet<std::string, std::nullptr_t>);
}

}  // namespace
}  // namespace qx

// Operations of class objects, and the names that no operation may have.

#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace shop {

class Coin : public qx::Object {
 public:
  explicit Coin(int c) : cents(c) {}
  int cents;
  static qx::Ref<Coin> ofCents(int c) { return c > 0 ? qx::make<Coin>(c) : nullptr; }
  static int total(const qx::Ref<Coin>& a, const qx::Ref<Coin>& b) {
    return (a == nullptr ? 0 : a->cents) + (b == nullptr ? 0 : b->cents);
  }
  static void mint() { ++minted; }
  static inline int minted = 0;
};
void describe(qx::ClassBuilder<Coin>& c) {
  c.name("ShopCoin").property("cents", &Coin::cents);
  c.classOperation("coinOfCents:", &Coin::ofCents).classOperation("totalOf:and:", &Coin::total);
  c.classOperation("mint", &Coin::mint);
  c.classOperation("currency", +[] { return std::string("ducat"); });
}

class OldCoin : public Coin {
 public:
  using Coin::Coin;
};
void describe(qx::ClassBuilder<OldCoin>& c) {
  c.name("ShopOldCoin").inherits<Coin>();
  c.classOperation("currency", +[] { return std::string("florin"); });
}

}  // namespace shop

namespace qx {
namespace {

using shop::Coin;
using shop::OldCoin;

TEST(ClassOperations, ArePerformedByTheClassObject) {
  const PropertyValue coins = classOf<Coin>();
  const PropertyValue two = performSelector(coins, "coinOfCents:", 2);
  EXPECT_EQ(two["cents"], PropertyValue(2));
  EXPECT_TRUE(performSelector(coins, "coinOfCents:", 0).isNil());
  EXPECT_EQ(performSelector(coins, "totalOf:and:", two, nullptr), PropertyValue(2));
  EXPECT_TRUE(performSelector(coins, "mint").isNil());
  EXPECT_EQ(Coin::minted, 1);
  EXPECT_TRUE(coins.respondsToSelector("coinOfCents:"));
  EXPECT_EQ(performSelector(coins, "respondsToSelector:", "mint"), PropertyValue(true));
}

TEST(ClassOperations, AreInherited) {
  EXPECT_EQ(performSelector(classOf<Coin>(), "currency"), PropertyValue("ducat"));
  EXPECT_EQ(performSelector(classOf<OldCoin>(), "currency"), PropertyValue("florin"));
  EXPECT_STREQ(performSelector(classOf<OldCoin>(), "coinOfCents:", 3).cls()->name(), "ShopCoin");
}

TEST(ClassOperations, AreNoneOfItsInstances) {
  const PropertyValue coin = make<Coin>(1);
  EXPECT_FALSE(coin.respondsToSelector("mint"));
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { performSelector(coin, "mint"); }),
            "-[ShopCoin mint]: the receiver has no such operation");
  EXPECT_EQ(reasonOf<InvalidArgumentException>(
                [] { performSelector(classOf<Coin>(), "coinOfCents:", "x"); }),
            "+[ShopCoin coinOfCents:]: a value of class NSString (x) can not stand for an integer "
            "that fits");
  EXPECT_EQ(reasonOf<InvalidArgumentException>(
                [] { performSelector(classOf<Coin>(), Selector::named("mint"), 1); }),
            "performSelector: mint takes 0 arguments and was given 1");
}

// No instance is made, which would describe the class when the program is loaded.
class Secretive : public Object {
 public:
  bool same(const PropertyValue&) const { return true; }
};
const char* secretName = "isEqual:";
void describe(ClassBuilder<Secretive>& c) {
  c.name("ShopSecretive").operation(Selector::named(secretName), &Secretive::same);
}

TEST(DeclaredOperations, AreNoneOfTheVirtualFunctions) {
  EXPECT_EQ(reasonOf<InvalidArgumentException>([] { (void)classOf<Secretive>(); }),
            "ClassBuilder::operation: isEqual: is a virtual function of Object, which is to be "
            "overridden instead");
  secretName = "isEqualToSecret:";
  EXPECT_TRUE(classOf<Secretive>().instancesRespondToSelector("isEqualToSecret:"));
}

}  // namespace
}  // namespace qx

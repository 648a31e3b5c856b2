#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/person.h"

namespace shop {

struct Payable {
  virtual ~Payable() = default;
  virtual int price() const = 0;
  static const qx::Protocol& protocol() {
    static constexpr qx::Protocol p("Payable");
    return p;
  }
};
struct Named {
  virtual ~Named() = default;
  virtual std::string label() const { return "label"; }
  static const qx::Protocol& protocol() {
    static constexpr qx::Protocol p("Named");
    return p;
  }
};

// The interfaces stand before and behind the object.
class Item : public Named, public qx::Object, public Payable {
 public:
  explicit Item(int p) : price_(p) {}
  int price() const override { return price_; }

 private:
  int price_;
};
void describe(qx::ClassBuilder<Item>& c) {
  c.name("ShopItem").conforms<Payable>().conforms<Named>().property("price", &Item::price);
}

class Offer : public Item {
 public:
  using Item::Item;
  int price() const override { return Item::price() / 2; }
};
void describe(qx::ClassBuilder<Offer>& c) { c.name("ShopOffer").inherits<Item>(); }

}  // namespace shop

namespace qx {
namespace {

using shop::Item;
using shop::Named;
using shop::Offer;
using shop::Payable;

TEST(Protocols, AreReachedAsInterfaces) {
  const PropertyValue item = make<Item>(10);
  ASSERT_NE(asProtocol<Payable>(item), nullptr);
  EXPECT_EQ(asProtocol<Payable>(item)->price(), 10);
  EXPECT_EQ(asProtocol<Named>(item)->label(), "label");
  EXPECT_TRUE(item.conformsToProtocol(Payable::protocol()));
  EXPECT_TRUE(item.cls()->conformsToProtocol(Named::protocol()));
  EXPECT_EQ(item["price"], PropertyValue(10));
}

TEST(Protocols, AreInherited) {
  const PropertyValue offer = make<Offer>(10);
  EXPECT_TRUE(offer.conformsToProtocol(Payable::protocol()));
  EXPECT_EQ(asProtocol<Payable>(offer)->price(), 5);
  EXPECT_EQ(offer["price"], PropertyValue(5));
}

TEST(Protocols, AreNotConformedToByOthers) {
  const PropertyValue values[] = {
      PropertyValue(), 1, null, "text", array(), make<frame_test::Person>(), classOf<Item>()};
  for (const PropertyValue& v : values) {
    EXPECT_EQ(asProtocol<Payable>(v), nullptr) << v.description();
    EXPECT_FALSE(v.conformsToProtocol(Payable::protocol())) << v.description();
  }
}

TEST(Protocols, LeaveObjectsWhole) {
  const auto item = make<Item>(3);
  const PropertyValue v = item;
  EXPECT_EQ(v.peek<Item>(), item.get());
  EXPECT_EQ(v.object(), static_cast<Object*>(item.get()));
  EXPECT_TRUE(isSame(v, Ref<Object>(item)));
  WeakRef<Item> weak = item;
  EXPECT_EQ(weak.lock().get(), item.get());
}

TEST(Protocols, AreAskedForByName) {
  const PropertyValue item = make<Item>(10);
  EXPECT_EQ(performSelector(item, "conformsToProtocol:", "Payable"), PropertyValue(true));
  EXPECT_EQ(performSelector(make<Offer>(10), "conformsToProtocol:", "Named"), PropertyValue(true));
  EXPECT_EQ(performSelector(item, "conformsToProtocol:", "Payabl"), PropertyValue(false));
  EXPECT_EQ(performSelector("text", "conformsToProtocol:", "Payable"), PropertyValue(false));
  EXPECT_EQ(performSelector(5, "conformsToProtocol:", "Payable"), PropertyValue(false));
  EXPECT_TRUE(performSelector(nullptr, "conformsToProtocol:", "Payable").isNil());
}

}  // namespace
}  // namespace qx

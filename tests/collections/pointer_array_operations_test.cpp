#include <gtest/gtest.h>

#include <random>
#include <vector>

#include <QXFoundation/pointer_array_operations.h>

#include "tests/collections/sample_objects.h"

namespace {

using qx::PointerArray;
using qx::Ref;
using qx::String;

std::vector<qx::Object*> slotsOf(const Ref<PointerArray>& a) {
  std::vector<qx::Object*> slots;
  for (std::size_t i = 0; i < a->count(); ++i) slots.push_back(a->pointerAtIndex(i));
  return slots;
}

TEST(PointerArrayOperations, NumbersAreInNoSlotByName) {
  const qx::PropertyValue a = PointerArray::strongObjectsPointerArray();
  qx::performSelector(a, "addObject:", String::from("x"));
  EXPECT_EQ(qx::performSelector(a, "containsObject:", 1), false);
  qx::performSelector(a, "removeObject:", true);
  qx::performSelector(a, "removeObjectIdenticalTo:", 2.5);
  EXPECT_EQ(qx::performSelector(a, "count"), 1);
}

TEST(PointerArrayOperations, RemovesTheOnlyNull) {
  const auto p = String::from("p");
  const auto q = String::from("q");
  const auto a = PointerArray::strongObjectsPointerArray();
  a->addPointer(p.get());
  a->addPointer(nullptr);
  a->addPointer(q.get());
  removeAllNulls(a);
  EXPECT_EQ(slotsOf(a), (std::vector<qx::Object*>{p.get(), q.get()}));
}

TEST(PointerArrayOperations, NullsAloneAreRemoved) {
  const auto p = String::from("p");
  const auto q = String::from("q");
  const auto a = PointerArray::init();
  for (qx::Object* x :
       std::vector<qx::Object*>{nullptr, p.get(), nullptr, nullptr, q.get(), nullptr})
    a->addPointer(x);
  removeAllNulls(a);
  EXPECT_EQ(slotsOf(a), (std::vector<qx::Object*>{p.get(), q.get()}));
  removeAllNulls(a);
  EXPECT_EQ(a->count(), 2U);
}

TEST(PointerArrayOperations, ObjectsAreToldApartByIdentity) {
  const auto p = String::from("x");
  const auto q = String::from("x");
  const auto a = PointerArray::init();
  addObject(a, p);
  addObject(a, p);
  EXPECT_TRUE(containsObject(a, p));
  EXPECT_FALSE(containsObject(a, q));
  removeObject(a, q);
  EXPECT_EQ(a->count(), 2U);
  removeObject(a, p);
  EXPECT_EQ(a->count(), 1U);
  removeObjectIdenticalTo(a, p);
  EXPECT_EQ(a->count(), 0U);
}

TEST(PointerArrayOperations, NilIsWhatANullSlotHolds) {
  const auto a = PointerArray::init();
  EXPECT_FALSE(containsObject(a, nullptr));
  addObject(a, nullptr);
  addObject(a, nullptr);
  EXPECT_TRUE(containsObject(a, nullptr));
  removeObject(a, nullptr);
  EXPECT_EQ(a->count(), 1U);
}

// Tells when it goes.
class Teller : public qx::Object {
 public:
  Teller(std::string name, std::string& told) : name_(std::move(name)), told_(told) {}
  ~Teller() override { told_ += name_; }

 private:
  std::string name_;
  std::string& told_;
};
void describe(qx::ClassBuilder<Teller>& c) { c.name("PointerArrayTeller"); }

TEST(PointerArrayOperations, RemovingAllGoesFromTheLastToTheFirst) {
  std::string told;
  const auto a = PointerArray::strongObjectsPointerArray();
  for (const char* name : {"1", "2", "3"}) addObject(a, qx::make<Teller>(name, told));
  removeAllObjects(a);
  EXPECT_EQ(told, "321");
  EXPECT_EQ(a->count(), 0U);
}

TEST(PointerArrayOperations, WeakObjectsThatAreGoneAreNulls) {
  const auto a = PointerArray::weakObjectsPointerArray();
  const auto stays = String::from("stays");
  auto goes = String::from("goes");
  addObject(a, goes);
  addObject(a, stays);
  goes = nullptr;
  EXPECT_TRUE(containsObject(a, nullptr));
  removeAllNulls(a);
  EXPECT_EQ(slotsOf(a), std::vector<qx::Object*>{stays.get()});
}

TEST(PointerArrayOperations, NilArraysDoNothing) {
  const Ref<PointerArray> nil;
  addObject(nil, nullptr);
  removeObject(nil, nullptr);
  removeObjectIdenticalTo(nil, nullptr);
  removeAllObjects(nil);
  removeAllNulls(nil);
  EXPECT_FALSE(containsObject(nil, nullptr));
}

TEST(PointerArrayOperations, AgreeWithTheirDefinitionOnRandomArrays) {
  std::mt19937 random(4);
  const Ref<String> objects[] = {String::from("a"), String::from("a"), String::from("b")};
  for (int i = 0; i < 2000; ++i) {
    const auto a = PointerArray::init();
    std::vector<qx::Object*> plain;
    for (int step = 0; step < 30; ++step) {
      qx::Object* x = random() % 4 == 0 ? nullptr : objects[random() % 3].get();
      const auto found = std::find(plain.begin(), plain.end(), x);
      switch (random() % 8) {
        case 0:
          ASSERT_EQ(containsObject(a, x), found != plain.end());
          break;
        case 1:
          removeObject(a, x);
          if (found != plain.end()) plain.erase(found);
          break;
        case 2:
          if (random() % 4 != 0) break;
          removeAllNulls(a);
          std::erase(plain, nullptr);
          break;
        default:
          addObject(a, x);
          plain.push_back(x);
      }
      ASSERT_EQ(slotsOf(a), plain);
    }
  }
}

}  // namespace

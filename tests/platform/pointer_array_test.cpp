#include <gtest/gtest.h>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/pointer_array.h>
#include <QXFoundation/selector.h>

namespace {

using qx::Object;
using qx::PointerArray;
using qx::Ref;
using qx::String;

TEST(PointerArray, KeepsPointersInOrderNullsIncluded) {
  const auto p = String::from("p");
  const auto q = String::from("q");
  const auto a = PointerArray::init();
  a->addPointer(p.get());
  a->addPointer(nullptr);
  a->insertPointer(q.get(), 2);
  a->insertPointer(q.get(), 0);
  EXPECT_EQ(a->count(), 4U);
  EXPECT_EQ(a->pointerAtIndex(0), q.get());
  EXPECT_EQ(a->pointerAtIndex(1), p.get());
  EXPECT_EQ(a->pointerAtIndex(2), nullptr);
  a->replacePointerAtIndex(2, p.get());
  EXPECT_EQ(a->objectAtIndex(2).get(), p.get());
  a->removePointerAtIndex(0);
  EXPECT_EQ(a->count(), 3U);
  EXPECT_EQ(a->pointerAtIndex(0), p.get());
}

TEST(PointerArray, IndexesOutOfRangeRaise) {
  const auto a = PointerArray::init();
  a->addPointer(nullptr);
  EXPECT_THROW((void)a->pointerAtIndex(1), qx::RangeException);
  EXPECT_THROW((void)a->objectAtIndex(1), qx::RangeException);
  EXPECT_THROW(a->insertPointer(nullptr, 2), qx::RangeException);
  EXPECT_THROW(a->replacePointerAtIndex(1, nullptr), qx::RangeException);
  EXPECT_THROW(a->removePointerAtIndex(1), qx::RangeException);
  EXPECT_EQ(a->count(), 1U);
}

TEST(PointerArray, MemoryIsAsChosen) {
  const auto raw = PointerArray::init();
  const auto strong = PointerArray::strongObjectsPointerArray();
  const auto weak = PointerArray::weakObjectsPointerArray();
  auto kept = String::from("kept by the strong one");
  auto lost = String::from("kept by none");
  const Object* address = lost.get();
  strong->addPointer(kept.get());
  weak->addPointer(kept.get());
  weak->addPointer(lost.get());
  raw->addPointer(lost.get());
  kept = lost = nullptr;
  EXPECT_EQ(strong->objectAtIndex(0)->description(), "kept by the strong one");
  EXPECT_EQ(weak->pointerAtIndex(0), strong->pointerAtIndex(0));
  EXPECT_EQ(weak->pointerAtIndex(1), nullptr);
  EXPECT_EQ(weak->objectAtIndex(1), nullptr);
  EXPECT_EQ(raw->pointerAtIndex(0), address);
  strong->removePointerAtIndex(0);
  EXPECT_EQ(weak->pointerAtIndex(0), nullptr);
  weak->compact();
  EXPECT_EQ(weak->count(), 0U);
}

// An object that changes the array which lets go of it.
class Leaver : public Object {
 public:
  explicit Leaver(PointerArray* a) : array_(a) {}
  ~Leaver() override { array_->addPointer(nullptr); }

 private:
  PointerArray* array_;
};
void describe(qx::ClassBuilder<Leaver>& c) { c.name("PointerArrayLeaver"); }

TEST(PointerArray, ReleasesWhatItHeldWhenItIsWholeAgain) {
  const auto a = PointerArray::strongObjectsPointerArray();
  a->addPointer(qx::make<Leaver>(a.get()).get());
  a->removePointerAtIndex(0);
  ASSERT_EQ(a->count(), 1U);
  a->replacePointerAtIndex(0, qx::make<Leaver>(a.get()).get());
  a->replacePointerAtIndex(0, nullptr);
  EXPECT_EQ(a->count(), 2U);
}

TEST(PointerArray, IsReachedBySelector) {
  const qx::PropertyValue a = PointerArray::strongObjectsPointerArray();
  performSelector(a, "addPointer:", "x");
  performSelector(a, "insertPointer:atIndex:", nullptr, 0);
  EXPECT_EQ(performSelector(a, "count"), 2);
  EXPECT_EQ(performSelector(a, "pointerAtIndex:", 1), "x");
  performSelector(a, "compact");
  performSelector(a, "removePointerAtIndex:", 0);
  EXPECT_EQ(performSelector(a, "count"), 0);
}

}  // namespace

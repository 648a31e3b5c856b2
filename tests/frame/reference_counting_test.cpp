// Owning handles, and that nothing is lost or freed twice.

#include <gtest/gtest.h>

#include <stdexcept>

#include <QXFoundation/QXFoundation.h>

#include "tests/frame/counted.h"
#include "tests/frame/print_values.h"

namespace qx {
namespace {

using frame_test::Counted;

class CountedMore : public Counted {
 public:
  using Counted::Counted;
};
void describe(ClassBuilder<CountedMore>& c) { c.name("FrameTestCountedMore").inherits<Counted>(); }

std::uint32_t references(const Object& o) {
  return detail::ObjectAccess::refs(o).load() / detail::ObjectAccess::kOne;
}

TEST(Refs, CountOwners) {
  {
    Ref<Counted> a = make<Counted>();
    EXPECT_EQ(references(*a), 1U);
    Ref<Counted> b = a;
    Ref<Object> base = b;
    EXPECT_EQ(references(*a), 3U);
    Ref<Counted> moved = std::move(b);
    EXPECT_TRUE(b == nullptr);  // NOLINT(bugprone-use-after-move): moved-from handles are nil
    EXPECT_EQ(references(*a), 3U);
    base = nullptr;
    moved = make<Counted>();
    EXPECT_EQ(references(*a), 1U);
    EXPECT_EQ(Counted::alive, 2);
    Ref<Counted>& itself = a;
    a = itself;
    a = std::move(itself);
    EXPECT_EQ(references(*a), 1U);
    base = make<CountedMore>();
    EXPECT_EQ(Counted::alive, 3);
    Counted* raw = a.leak();
    EXPECT_TRUE(a == nullptr);
    EXPECT_EQ(Counted::alive, 3);
    a = Ref<Counted>::adopt(raw);
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(Refs, TellNil) {
  const Ref<Counted> nobody;
  const Ref<Counted> somebody = make<Counted>();
  EXPECT_TRUE(nobody == nullptr);
  EXPECT_TRUE(somebody != nullptr);
  EXPECT_FALSE(static_cast<bool>(nobody));
  EXPECT_TRUE(static_cast<bool>(somebody));
  EXPECT_EQ(nobody.get(), nullptr);
  EXPECT_TRUE(isSame(somebody, Ref<Object>(somebody)));
}

TEST(Refs, BorrowAsParameters) {
  const auto more = make<CountedMore>();
  const In<CountedMore> exact = more;
  const In<Counted> base = more;
  const In<Counted> again = exact;
  const In<Counted> reference = *more;
  EXPECT_EQ(references(*more), 1U);
  EXPECT_EQ(base.get(), more.get());
  EXPECT_EQ(again.get(), more.get());
  EXPECT_EQ(reference.get(), more.get());
  EXPECT_EQ(In<Counted>(nullptr).get(), nullptr);
}

class Thrower : public Object {
 public:
  explicit Thrower(PropertyValue v) : held(std::move(v)) {
    throw std::runtime_error("no object after all");
  }
  PropertyValue held;
};
void describe(ClassBuilder<Thrower>& c) { c.name("FrameTestThrower"); }

TEST(Making, FreesEverythingWhenAConstructorThrows) {
  EXPECT_THROW((void)make<Thrower>(make<Counted>()), std::runtime_error);
  EXPECT_EQ(Counted::alive, 0);
}

// Constructors and destructors may hand their object out as a value.
class Announcer : public Object {
 public:
  Announcer() {
    const PropertyValue itself = this;
    EXPECT_TRUE(isSame(itself, this));
  }
  static inline int farewells = 0;

 protected:
  ~Announcer() override {
    for (int i = 0; i < 3; ++i) {
      const PropertyValue itself = this;
      const auto list = array(itself, itself);
      EXPECT_EQ(list->count(), 2U);
      EXPECT_TRUE(WeakRef<Announcer>(this).lock() == nullptr);
    }
    ++farewells;
  }
};
void describe(ClassBuilder<Announcer>& c) { c.name("FrameTestAnnouncer"); }

TEST(Making, LetsConstructorsAndDestructorsUseTheirObject) {
  {
    const auto a = make<Announcer>();
    EXPECT_EQ(references(*a), 1U);
  }
  EXPECT_EQ(Announcer::farewells, 1);
}

TEST(Containers, ReleaseWhatTheyHeld) {
  {
    const auto held = make<Counted>();
    const auto a = array(held, make<Counted>(), dict({{"k", make<Counted>()}}));
    const auto s = Set::from(a);
    const auto m = MutableArray::from(a->begin(), a->count());
    const auto d = MutableDictionary::init();
    for (int i = 0; i < 40; ++i) d->setObject(make<Counted>(), "k" + std::to_string(i));
    for (int i = 0; i < 20; ++i) d->setObject(make<Counted>(), "k" + std::to_string(i));
    for (int i = 10; i < 40; ++i) d->removeObjectForKey("k" + std::to_string(i));
    EXPECT_EQ(Counted::alive, 13);
    const PropertyValue copies[] = {PropertyValue(a).mutableCopy(), PropertyValue(d).copy(),
                                    PropertyValue(s).mutableCopy(), PropertyValue(m).copy()};
    EXPECT_EQ(copies[0], PropertyValue(a));
    d->removeAllObjects();
    EXPECT_EQ(Counted::alive, 13);
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(Containers, ReleaseWhatRaisedOnTheWay) {
  EXPECT_THROW((void)array(make<Counted>(), nullptr), InvalidArgumentException);
  EXPECT_THROW((void)dict({{"a", make<Counted>()}, {"b", nullptr}}), InvalidArgumentException);
  EXPECT_THROW(PropertyValue(array(make<Counted>(), 5)).setValue(make<Counted>(), "held"),
               InvalidArgumentException);
  EXPECT_EQ(Counted::alive, 0);
}

}  // namespace
}  // namespace qx

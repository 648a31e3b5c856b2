#include "preferences/branch_index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include <QXFoundation/QXFoundation.h>

#include "preferences/containers.h"
#include "tests/support/memory_user_defaults.h"

namespace kept {

// Equal to every container.
class Chameleon : public qx::Object {
 public:
  bool isEqual(const qx::PropertyValue& other) const override {
    return other.isArray() || other.isDictionary() || other.object() == this;
  }
  std::size_t hash() const override { return 0; }
};
void describe(qx::ClassBuilder<Chameleon>& c) { c.name("Chameleon"); }

}  // namespace kept

namespace qx {
namespace {

using test_support::MemoryUserDefaults;
using testing::ElementsAre;
using testing::IsEmpty;

// The search as it is described, without any index.
bool holds(const PropertyValue& container, const PropertyValue& wanted) {
  std::vector<PropertyValue> elements;
  if (const auto* d = detail::treeDictionary(container)) {
    for (const auto& [key, value] : *d) elements.push_back(value);
  } else if (const auto* a = detail::treeArray(container)) {
    elements.assign(a->begin(), a->end());
  }
  for (const PropertyValue& e : elements) {
    if (e == wanted || (detail::linkOf(e) != nullptr && holds(e, wanted))) return true;
  }
  return false;
}

std::vector<std::string> firstBranch(const Ref<QXPreferences>& store, const PropertyValue& wanted) {
  const Ref<Dictionary> root = store->userValues();
  for (const auto& [key, value] : *root) {
    if (value == wanted || holds(value, wanted)) return {key.utf8()};
  }
  return {};
}

class BranchIndex : public testing::Test {
 protected:
  std::vector<std::string> mirrored() {
    auto keys = memory.defaults->set;
    memory.defaults->forget();
    return keys;
  }
  Ref<QXPreferencesDictionary> map(const char* path) {
    return store->objectForKeyPath(path).as<QXPreferencesDictionary>();
  }
  Ref<QXPreferencesArray> list(const char* path) {
    return store->objectForKeyPath(path).as<QXPreferencesArray>();
  }

  test_support::WithMemoryUserDefaults memory;
  Ref<QXPreferences> store = QXPreferences::initForCustomInfo();
};

TEST_F(BranchIndex, TakesTheFirstEqualBranchNotTheChangedOne) {
  store->setObject(dict({{"x", 1}}), "first");
  store->setObject(dict({{"deep", array(dict({{"x", 2}}))}}), "second");
  store->setObject(dict({{"x", 0}}), "third");
  mirrored();
  map("third")->setObject(1, "x");
  EXPECT_THAT(mirrored(), ElementsAre("first"));
  EXPECT_EQ(memory.defaults->values->objectForKey("third"), dict({{"x", 0}}));
  map("third")->setObject(2, "x");
  EXPECT_THAT(mirrored(), ElementsAre("second"));
  map("third")->setObject(3, "x");
  EXPECT_THAT(mirrored(), ElementsAre("third"));
}

TEST_F(BranchIndex, ForgetsWhatHasChangedMeanwhile) {
  store->setObject(dict({{"x", 1}}), "a");
  store->setObject(dict({{"x", 2}}), "b");
  store->setObject(dict({{"x", 3}}), "c");
  mirrored();
  map("c")->setObject(4, "x");  // a and b are known not to match
  map("a")->setObject(5, "x");
  mirrored();
  map("c")->setObject(5, "x");
  EXPECT_THAT(mirrored(), ElementsAre("a"));
  store->setObject(dict({{"x", 6}}), "b");
  mirrored();
  map("c")->setObject(6, "x");
  EXPECT_THAT(mirrored(), ElementsAre("b"));
  store->setUserValues(dict({{"q", dict({{"x", 7}})}, {"c", map("c")}}));
  map("c")->setObject(7, "x");
  EXPECT_THAT(mirrored(), ElementsAre("q"));
}

TEST_F(BranchIndex, SeesQuietChanges) {
  store->setObject(dict({{"inner", dict()}}), "a");
  store->setObject(dict({{"x", 1}}), "b");
  map("b")->setObject(2, "x");
  mirrored();
  map("a.inner")->setDictionary(dict({{"x", 3}}));
  map("b")->setObject(3, "x");
  EXPECT_THAT(mirrored(), ElementsAre("a"));
}

TEST_F(BranchIndex, SeesContainersThatReportElsewhere) {
  store->setObject(dict({{"inner", dict({{"x", 1}})}}), "a");
  store->setObject(dict({{"x", 0}}), "b");
  map("b")->setObject(5, "x");
  const auto inner = map("a.inner");
  inner->setPreferences(nullptr);
  inner->setObject(2, "x");  // nobody is told
  mirrored();
  map("b")->setObject(2, "x");
  EXPECT_THAT(mirrored(), ElementsAre("a"));
  const auto other = QXPreferences::initForCustomInfo();
  other->setObject(inner, "taken");
  inner->setObject(3, "x");
  mirrored();
  map("b")->setObject(3, "x");
  EXPECT_THAT(mirrored(), ElementsAre("a"));
}

TEST_F(BranchIndex, SeesValuesThatChangeOrCompareByThemselves) {
  const auto text = MutableString::from("one");
  store->setObject(array(text), "a");
  store->setObject(array("zero"), "b");
  mirrored();
  list("b")->replaceObjectAtIndex(0, "half");
  EXPECT_THAT(mirrored(), ElementsAre("b"));
  text->setString("two");
  list("b")->replaceObjectAtIndex(0, "two");
  EXPECT_THAT(mirrored(), ElementsAre("a"));
  store->setObject(make<kept::Chameleon>(), "a");
  mirrored();
  list("b")->replaceObjectAtIndex(0, "three");
  EXPECT_THAT(mirrored(), ElementsAre("a"));
}

TEST_F(BranchIndex, ComparesNumbersAcrossKinds) {
  store->setObject(array(1), "a");
  store->setObject(array(5), "b");
  list("b")->replaceObjectAtIndex(0, 6);
  mirrored();
  list("b")->replaceObjectAtIndex(0, 1.0);
  EXPECT_THAT(mirrored(), ElementsAre("a"));
}

TEST_F(BranchIndex, FindsAContainerInSeveralBranches) {
  store->setObject(array(1), "a");
  store->setObject(array(9), "z");
  store->setObject(store->objectForKeyPath("z"), "y");
  mirrored();
  list("z")->addObject(10);
  EXPECT_THAT(mirrored(), ElementsAre("z"));
  store->removeObjectForKeyPath("z");
  mirrored();
  list("y")->addObject(11);
  EXPECT_THAT(mirrored(), ElementsAre("y"));
}

// ---- against the plain search, over random trees

class RandomChanges {
 public:
  RandomChanges(Ref<QXPreferences> store, unsigned seed)
      : store_(std::move(store)), random_(seed) {}

  PropertyValue value(unsigned levels) {
    switch (pick(levels == 0 ? 4 : 6)) {
      case 4: {
        const auto a = MutableArray::init();
        for (unsigned i = pick(3); i > 0; --i) a->addObject(value(levels - 1));
        return a;
      }
      case 5: {
        const auto d = MutableDictionary::init();
        for (unsigned i = pick(3); i > 0; --i) d->setObject(value(levels - 1), key());
        return d;
      }
      case 3:
        return 1.0;
      case 2:
        return MutableString::from("m");
      default:
        return static_cast<int>(pick(3));
    }
  }
  std::string key() { return std::string(1, static_cast<char>('a' + pick(3))); }

  // A container somewhere in the tree; nil when the walk ends elsewhere.
  PropertyValue container() {
    PropertyValue at = store_->userValues();
    for (unsigned depth = 1 + pick(3); depth > 0; --depth) {
      const auto values = at.isDictionary() ? at.as<Dictionary>()->allValues() : at.as<Array>();
      if (values == nullptr || values->count() == 0) return nullptr;
      at = values->objectAtIndex(pick(static_cast<unsigned>(values->count())));
    }
    return detail::linkOf(at) != nullptr ? at : PropertyValue();
  }

  // A change of one step on the container: true when it reported.
  bool changeLeaf(const PropertyValue& at) {
    const PropertyValue leaf = value(0);
    if (const auto d = at.as<QXPreferencesDictionary>()) {
      pick(3) == 0 ? d->removeObjectForKey(key()) : d->setObject(leaf, key());
    } else {
      const auto a = at.as<QXPreferencesArray>();
      if (a->count() > 0 && pick(2) == 0) {
        pick(2) == 0 ? a->removeLastObject() : a->replaceObjectAtIndex(0, leaf);
      } else {
        a->addObject(leaf);
      }
    }
    return (*detail::linkOf(at)).store() == store_.get();
  }

  // Anything that brings the tree into another state.
  void disturb(const Ref<QXPreferences>& other) {
    const PropertyValue at = container();
    switch (pick(7)) {
      case 0:
        if (const auto d = at.as<QXPreferencesDictionary>())
          d->setDictionary(dict({{"a", value(1)}}));
        break;
      case 1:
        if (at != nullptr && pick(4) == 0) other->setObject(at, "taken");
        break;
      case 2:
        if (at != nullptr && !at.as<Object>()->isEqual(store_->userValues()))
          store_->setObject(at.copy(), std::string(1, static_cast<char>('p' + pick(5))));
        break;
      case 3:
        store_->removeObjectForKeyPath(std::string(1, static_cast<char>('p' + pick(5))));
        break;
      default:
        store_->setObject(value(3), std::string(1, static_cast<char>('p' + pick(5))));
    }
  }

  unsigned pick(unsigned count) { return static_cast<unsigned>(random_() % count); }

 private:
  Ref<QXPreferences> store_;
  std::mt19937 random_;
};

TEST_F(BranchIndex, FindsWhatThePlainSearchFinds) {
  const auto other = QXPreferences::initWithPath("/nowhere/at/all.plist");
  int checked = 0;
  for (unsigned seed = 0; seed < 1000; ++seed) {
    store = QXPreferences::initForCustomInfo();
    RandomChanges random(store, seed);
    for (int step = 0; step < 60; ++step) {
      if (random.pick(4) == 0) random.disturb(other);
      const PropertyValue at = random.container();
      if (at.isNil()) continue;
      mirrored();
      const bool reported = random.changeLeaf(at);
      EXPECT_EQ(mirrored(), reported ? firstBranch(store, at) : std::vector<std::string>())
          << "seed " << seed << ", step " << step;
      ++checked;
    }
  }
  EXPECT_GT(checked, 5000);
}

}  // namespace
}  // namespace qx

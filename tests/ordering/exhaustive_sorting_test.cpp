// Every small array, against the steps as they are written down.

#include <gtest/gtest.h>

#include "tests/ordering/sorting_support.h"

namespace {

using sorting::Keys;

struct KeySet {
  const char* name;
  Keys keys;
};

std::vector<KeySet> keySets() {
  return {
      {"missing, null, numbers", {nullptr, qx::null, 1, 2}},
      {"missing, null, texts", {nullptr, qx::null, "a", "B"}},
      {"missing, null, values without a comparison", {nullptr, qx::null, qx::array(1), qx::dict()}},
      {"missing, null, one number and one without a comparison",
       {nullptr, qx::null, 1, qx::array()}},
      {"numbers", {1, 2, 3, 4}},
      {"numbers of all kinds", {1, 1.0, 1.5, qx::DecimalNumber::initWithString("1.5")}},
      {"texts", {"a", "A", "b", ""}},
      {"numbers and texts", {1, 2, "a", "b"}},
      {"dates",
       {qx::Date::dateWithTimeIntervalSince1970(0), qx::Date::dateWithTimeIntervalSince1970(1),
        qx::Date::dateWithTimeIntervalSince1970(0), nullptr}},
  };
}

// Calls f with every list of `length` choices among four.
template <class F>
void forEachChoice(std::size_t length, F f) {
  std::vector<std::size_t> choice(length, 0);
  while (true) {
    f(choice);
    std::size_t at = 0;
    while (at < length && ++choice[at] == 4) choice[at++] = 0;
    if (at == length) return;
  }
}

// Elements for each place and key, so that each array's are told apart.
class Pool {
 public:
  Pool(const Keys& keys, std::size_t places) : keys_(keys) {
    for (std::size_t i = 0; i < places; ++i) elements_.push_back(sorting::dictionariesWith(keys));
  }
  void take(const std::vector<std::size_t>& choice, std::vector<qx::PropertyValue>& elements,
            Keys& keys) const {
    elements.clear();
    keys.clear();
    for (std::size_t i = 0; i < choice.size(); ++i) {
      elements.push_back(elements_[i][choice[i]]);
      keys.push_back(keys_[choice[i]]);
    }
  }

 private:
  const Keys& keys_;
  std::vector<std::vector<qx::PropertyValue>> elements_;
};

class ExhaustiveSorting : public testing::TestWithParam<std::size_t> {};

TEST_P(ExhaustiveSorting, EveryArrayOfUpToSevenElementsInEveryMode) {
  const KeySet set = keySets()[GetParam()];
  SCOPED_TRACE(set.name);
  const Pool pool(set.keys, 7);
  std::vector<qx::PropertyValue> elements;
  Keys keys;
  for (std::size_t length = 0; length <= 7; ++length) {
    forEachChoice(length, [&](const std::vector<std::size_t>& choice) {
      if (HasFatalFailure()) return;
      pool.take(choice, elements, keys);
      for (const reference::Mode& mode : reference::kModes) {
        sorting::expectSortsAsWritten(elements, keys, mode, 0, length);
      }
    });
  }
}

TEST_P(ExhaustiveSorting, EveryRangeOfEveryArrayOfFiveElements) {
  const KeySet set = keySets()[GetParam()];
  SCOPED_TRACE(set.name);
  const Pool pool(set.keys, 5);
  std::vector<qx::PropertyValue> elements;
  Keys keys;
  forEachChoice(5, [&](const std::vector<std::size_t>& choice) {
    if (HasFatalFailure()) return;
    pool.take(choice, elements, keys);
    for (std::size_t first = 0; first <= 5; ++first) {
      for (std::size_t count = 0; count <= 5 - first; ++count) {
        for (const reference::Mode& mode : reference::kModes) {
          sorting::expectSortsAsWritten(elements, keys, mode, first, count);
        }
      }
    }
  });
}

INSTANTIATE_TEST_SUITE_P(KeySets, ExhaustiveSorting,
                         testing::Range(std::size_t{0}, keySets().size()));

}  // namespace

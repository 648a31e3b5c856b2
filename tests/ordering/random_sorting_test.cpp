// Large arrays with many ties, against the steps as they are written down.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "tests/ordering/sorting_support.h"

namespace {

using sorting::Keys;
using Random = std::mt19937_64;

std::uint64_t below(Random& random, std::uint64_t limit) { return random() % limit; }

std::string textOf(Random& random, std::size_t longest, const char* letters) {
  const std::string alphabet = letters;
  std::string text;
  for (std::size_t n = below(random, longest + 1); n > 0; --n)
    text += alphabet[below(random, alphabet.size())];
  return text;
}

// Units from a few places where the order of UTF-8 or of code points would be another.
qx::Ref<qx::String> wideText(Random& random) {
  constexpr char16_t kUnits[] = {u'a',  u'A',  0xDF,   0xE9,   0xC9,   0x3A3,
                                 0x3C2, 0x130, 0xD83D, 0xDE00, 0xFFFD, 0};
  std::u16string text;
  for (std::size_t n = below(random, 9); n > 0; --n)
    text += kUnits[below(random, std::size(kUnits))];
  return qx::String::fromUtf16(text);
}

qx::PropertyValue anyNumber(Random& random) {
  const auto small = static_cast<std::int64_t>(below(random, 9)) - 4;
  switch (below(random, 11)) {
    case 0:
      return static_cast<double>(small) / 2;
    case 1:
      return static_cast<float>(small);
    case 2:
      return below(random, 2) == 0;
    case 3:
      return below(random, 5);
    case 4:
      return std::numeric_limits<std::uint64_t>::max() - below(random, 3);
    case 5:
      return std::numeric_limits<std::int64_t>::max() - small * small;
    case 6:
      return (std::int64_t{1} << 53) + small;
    case 7:
      return 9007199254740992.0 + 2.0 * static_cast<double>(small);
    case 8:
      return qx::DecimalNumber::initWithString(std::to_string(small) + ".5");
    case 9:
      return std::numeric_limits<double>::quiet_NaN();
    default:
      return small;
  }
}

struct Kind {
  const char* name;
  std::function<qx::PropertyValue(Random&)> make;
};

std::vector<Kind> kinds() {
  return {
      {"few integers", [](Random& r) { return qx::PropertyValue(below(r, 7)); }},
      {"a thousand integers",
       [](Random& r) { return qx::PropertyValue(static_cast<int>(below(r, 1000)) - 500); }},
      {"all integers", [](Random& r) { return qx::PropertyValue(static_cast<std::int64_t>(r())); }},
      {"unsigned integers", [](Random& r) { return qx::PropertyValue(r() >> below(r, 64)); }},
      {"one number", [](Random&) { return qx::PropertyValue(5); }},
      {"reals",
       [](Random& r) -> qx::PropertyValue {
         constexpr double kSpecial[] = {0.0, -0.0, NAN, INFINITY, -INFINITY, 1e-310, -1e300};
         const auto at = below(r, 20);
         return at < std::size(kSpecial) ? kSpecial[at]
                                         : std::ldexp(static_cast<double>(below(r, 50)) - 25, 3);
       }},
      {"reals and small integers",
       [](Random& r) -> qx::PropertyValue {
         const auto n = static_cast<int>(below(r, 40)) - 20;
         return below(r, 2) == 0 ? qx::PropertyValue(n) : qx::PropertyValue(n / 2.0);
       }},
      {"numbers of all kinds", &anyNumber},
      {"short texts", [](Random& r) { return qx::PropertyValue(textOf(r, 3, "abAB")); }},
      {"texts that begin alike",
       [](Random& r) { return qx::PropertyValue("customer-number-" + textOf(r, 9, "01")); }},
      {"long texts that are nearly all the same",
       [](Random& r) {
         return qx::PropertyValue(std::string(200, 'x') +
                                  (below(r, 50) == 0 ? textOf(r, 3, "ab") : ""));
       }},
      {"few texts, each one object",
       [](Random& r) -> qx::PropertyValue {
         static const auto* texts =
             new std::vector<qx::PropertyValue>{"Aachen", "Bad Doberan", "Bad Dürrenberg"};
         return (*texts)[below(r, texts->size())];
       }},
      {"texts of one letter",
       [](Random& r) { return qx::PropertyValue(std::string(below(r, 40), 'x')); }},
      {"texts with NUL",
       [](Random& r) {
         return qx::PropertyValue(textOf(r, 12,
                                         "a\x01"
                                         "b") +
                                  std::string(below(r, 4), '\0'));
       }},
      {"Latin-1 texts",
       [](Random& r) {
         return qx::PropertyValue(qx::String::fromLatin1(textOf(r, 10, "a\xDF\xE9\xC9\xB5Zz")));
       }},
      {"wide texts", [](Random& r) { return qx::PropertyValue(wideText(r)); }},
      {"narrow and wide texts",
       [](Random& r) {
         return below(r, 8) == 0 ? qx::PropertyValue(wideText(r))
                                 : qx::PropertyValue(textOf(r, 9, "aAbB"));
       }},
      {"mutable texts",
       [](Random& r) { return qx::PropertyValue(qx::MutableString::from(textOf(r, 4, "ab"))); }},
      {"dates",
       [](Random& r) {
         return qx::PropertyValue(
             qx::Date::dateWithTimeIntervalSince1970(static_cast<double>(below(r, 90)) - 45));
       }},
      {"values without a comparison",
       [](Random& r) -> qx::PropertyValue {
         switch (below(r, 4)) {
           case 0:
             return nullptr;
           case 1:
             return qx::null;
           case 2:
             return qx::array(1);
           default:
             return qx::Data::from("x");
         }
       }},
  };
}

class RandomSorting : public testing::TestWithParam<std::size_t> {};

void expectRandomArraysSort(const Kind& kind, std::size_t largest, int rounds) {
  SCOPED_TRACE(kind.name);
  Random random(largest);
  for (int round = 0; round < rounds; ++round) {
    const std::size_t size = 1 + below(random, largest);
    Keys keys;
    for (std::size_t i = 0; i < size; ++i) keys.push_back(kind.make(random));
    const auto elements = sorting::dictionariesWith(keys);
    const std::size_t first = below(random, size);
    for (const reference::Mode& mode : reference::kModes) {
      sorting::expectSortsAsWritten(elements, keys, mode, 0, size);
      sorting::expectSortsAsWritten(elements, keys, mode, first, below(random, size - first + 1));
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST_P(RandomSorting, SmallArraysSortAsWritten) {
  expectRandomArraysSort(kinds()[GetParam()], 60, 40);
}
TEST_P(RandomSorting, LargeArraysSortAsWritten) {
  expectRandomArraysSort(kinds()[GetParam()], 4000, 3);
}

INSTANTIATE_TEST_SUITE_P(Kinds, RandomSorting, testing::Range(std::size_t{0}, kinds().size()));

TEST(RandomSorting, AHundredThousandElementsWithTies) {
  Random random(1);
  for (const std::uint64_t distinct : {3U, 1000U, 50000U}) {
    Keys keys;
    for (std::size_t i = 0; i < 100000; ++i) keys.push_back(below(random, distinct));
    const auto elements = sorting::dictionariesWith(keys);
    sorting::expectSortsAsWritten(elements, keys, reference::kModes[0], 0, keys.size());
    sorting::expectSortsAsWritten(elements, keys, reference::kModes[1], 17, keys.size() - 40);
  }
}

}  // namespace

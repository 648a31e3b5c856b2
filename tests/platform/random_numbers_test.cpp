#include "platform/random_numbers.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "tests/support/scripted_random.h"

namespace qx::detail {
namespace {

TEST(RandomNumbers, AreTheSystems) {
  ::srandom(5);
  const long first = ::random();
  const long second = ::random();
  ::srandom(5);
  EXPECT_EQ(randomNumbers().next(), first);
  EXPECT_EQ(randomNumbers().next(), second);
}

TEST(RandomNumbers, CanBeReplacedForATime) {
  RandomNumbers& system = randomNumbers();
  {
    const ScriptedRandom outer({1, 2});
    EXPECT_EQ(randomNumbers().next(), 1);
    {
      const ScriptedRandom inner({7});
      EXPECT_EQ(randomNumbers().next(), 7);
    }
    EXPECT_EQ(randomNumbers().next(), 2);
    EXPECT_EQ(outer.calls(), 2U);
  }
  EXPECT_EQ(&randomNumbers(), &system);
}

}  // namespace
}  // namespace qx::detail

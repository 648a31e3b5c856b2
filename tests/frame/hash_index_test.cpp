#include "frame/hash_index.h"

#include <gtest/gtest.h>

#include <random>

namespace qx::detail {
namespace {

TEST(HashIndexes, FindPositionsByHash) {
  HashIndex index;
  const auto any = [](std::size_t) { return true; };
  EXPECT_EQ(index.find(5, any), HashIndex::kAbsent);
  for (std::uint32_t i = 0; i < 1000; ++i) index.insert(i * 7919, i);
  for (std::uint32_t i = 0; i < 1000; ++i) EXPECT_EQ(index.find(i * 7919, any), i);
  EXPECT_EQ(index.find(1, any), HashIndex::kAbsent);
}

TEST(HashIndexes, TellPositionsOfOneHashApart) {
  HashIndex index;
  for (std::uint32_t i = 0; i < 100; ++i) index.insert(42, i);
  for (std::uint32_t i = 0; i < 100; ++i) {
    EXPECT_EQ(index.find(42, [&](std::size_t at) { return at == i; }), i);
  }
  index.erase(42, 50);
  EXPECT_EQ(index.find(42, [](std::size_t at) { return at == 50; }), HashIndex::kAbsent);
  EXPECT_EQ(index.find(42, [](std::size_t at) { return at == 99; }), 99U);
}

TEST(HashIndexes, KeepTheirRoomWhenCleared) {
  HashIndex index;
  for (std::uint32_t i = 0; i < 100; ++i) index.insert(i, i);
  index.clear();
  EXPECT_EQ(index.find(5, [](std::size_t) { return true; }), HashIndex::kAbsent);
  for (std::uint32_t i = 0; i < 100; ++i) index.insert(i, i + 1);
  EXPECT_EQ(index.find(5, [](std::size_t) { return true; }), 6U);
}

// Hashes of few values, so that chains, marks of removal and growth meet.
TEST(HashIndexes, FollowAModel) {
  std::mt19937 random(3);
  HashIndex index;
  std::vector<std::pair<std::uint32_t, std::size_t>> model;
  std::size_t next = 0;
  for (int step = 0; step < 20000; ++step) {
    if (model.empty() || random() % 100 < 55) {
      const auto hash = static_cast<std::uint32_t>(random() % 8 * 1000003 + random() % 3);
      index.insert(hash, next);
      model.emplace_back(hash, next++);
    } else {
      const auto at = static_cast<std::ptrdiff_t>(random() % model.size());
      const auto [hash, position] = model[static_cast<std::size_t>(at)];
      index.erase(hash, position);
      model.erase(model.begin() + at);
      ASSERT_EQ(index.find(hash, [&](std::size_t p) { return p == position; }), HashIndex::kAbsent);
    }
    if (step % 500 != 0) continue;
    for (const auto& [hash, position] : model) {
      ASSERT_EQ(index.find(hash, [&](std::size_t p) { return p == position; }), position);
    }
  }
}

}  // namespace
}  // namespace qx::detail

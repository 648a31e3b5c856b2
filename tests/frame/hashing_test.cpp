#include "frame/hashing.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <unordered_set>

namespace qx::detail {
namespace {

std::string randomBytes(std::mt19937& random, std::size_t size) {
  std::string bytes(size, '\0');
  for (char& c : bytes) c = static_cast<char>(random());
  return bytes;
}

// Short texts are read by loads that overlap, long ones by blocks and an overlapping end.
TEST(HashesOfBytes, DependOnNothingButTheBytes) {
  std::mt19937 random(11);
  for (std::size_t size = 0; size <= 70; ++size) {
    const std::string bytes = randomBytes(random, size);
    const std::uint64_t hash = hashBytes(bytes.data(), size);
    for (std::size_t offset = 0; offset < 9; ++offset) {
      const std::string around = randomBytes(random, offset) + bytes + randomBytes(random, 9);
      EXPECT_EQ(hashBytes(around.data() + offset, size), hash) << size << " bytes at " << offset;
    }
  }
}

TEST(HashesOfBytes, DependOnEveryBitAndOnTheSize) {
  std::mt19937 random(12);
  for (std::size_t size = 0; size <= 70; ++size) {
    std::string bytes = randomBytes(random, size);
    std::unordered_set<std::uint64_t> hashes{hashBytes(bytes.data(), size)};
    for (std::size_t bit = 0; bit < size * 8; ++bit) {
      bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << (bit % 8)));
      EXPECT_TRUE(hashes.insert(hashBytes(bytes.data(), size)).second) << size << ", bit " << bit;
      bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << (bit % 8)));
    }
    const std::string longer = bytes + '\0';
    EXPECT_TRUE(hashes.insert(hashBytes(longer.data(), longer.size())).second) << size;
  }
}

TEST(HashesOfTexts, AreNeverZeroAndSpread) {
  std::unordered_set<std::uint32_t> hashes;
  for (int i = 0; i < 10'000; ++i) {
    const std::string text = "setting" + std::to_string(i);
    const std::uint32_t hash = hashText(TextSpan::latin1(text));
    EXPECT_NE(hash, 0U);
    hashes.insert(hash);
  }
  EXPECT_GE(hashes.size(), 9'990U);  // 10,000 of 2^32 meet 0.01 times
}

}  // namespace
}  // namespace qx::detail

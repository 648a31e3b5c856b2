#pragma once

// That reading bytes takes no more time and memory than is promised, whatever comes of it.

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/property_list_io.h"
#include "tests/platform/property_list/cost.h"

namespace qx::plist {

// Bytes of memory for each byte of a list: containers that are referred to again and again by
// single bytes take the most, and more so where each of them becomes a mutable one of its own.
inline std::size_t memoryPerByte(PropertyListMutability mutability) {
  return mutability == PropertyListMutability::immutable ? 40 : 80;
}

inline void expectBoundedReading(std::string_view bytes) {
  for (const auto mutability :
       {PropertyListMutability::immutable, PropertyListMutability::mutableContainers,
        PropertyListMutability::mutableContainersAndLeaves}) {
    const Cost cost =
        costOf([&] { (void)detail::readPropertyList(bytes, mutability, nullptr, nullptr); });
    EXPECT_LT(cost.seconds, 1.0) << bytes.substr(0, 60);
    EXPECT_LT(cost.memory, memoryFor(bytes.size(), memoryPerByte(mutability)))
        << bytes.size() << " bytes: " << bytes.substr(0, 60);
  }
}

}  // namespace qx::plist

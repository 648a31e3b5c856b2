#pragma once

// What tests of stores stand on: user defaults in memory, and a folder for files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

#include "tests/preferences/store_files.h"
#include "tests/support/memory_user_defaults.h"

namespace qx {

using test_support::MemoryUserDefaults;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class StoreTest : public testing::Test {
 protected:
  MemoryUserDefaults& defaults() { return *memory.defaults; }
  std::vector<std::string> mirrored() {
    auto keys = MemoryUserDefaults::once(defaults().set);
    defaults().set.clear();
    return keys;
  }
  std::vector<std::string> removed() {
    auto keys = MemoryUserDefaults::once(defaults().removed);
    defaults().removed.clear();
    return keys;
  }

  test_support::WithMemoryUserDefaults memory;
  StoreFiles files;
};

}  // namespace qx

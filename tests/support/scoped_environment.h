#pragma once

// A variable of the environment for the length of a test.

#include <cstdlib>
#include <optional>
#include <string>

namespace test_support {

class ScopedEnvironment {
 public:
  // A null value takes the variable away. The name lives as long as this.
  ScopedEnvironment(const char* name, const char* value) : name_(name) {
    if (const char* before = std::getenv(name)) before_ = before;
    put(value);
  }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
  ~ScopedEnvironment() { put(before_ ? before_->c_str() : nullptr); }

 private:
  void put(const char* value) const {
    value != nullptr ? setenv(name_, value, 1) : unsetenv(name_);
  }

  const char* name_;
  std::optional<std::string> before_;
};

}  // namespace test_support

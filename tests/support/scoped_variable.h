#pragma once

// A variable of the environment, for the length of a test.

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace test_support {

class ScopedVariable {
 public:
  // A null value takes the variable away.
  ScopedVariable(std::string name, const char* value) : name_(std::move(name)) {
    if (const char* before = std::getenv(name_.c_str())) before_ = before;
    set(value);
  }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;
  ~ScopedVariable() { set(before_ ? before_->c_str() : nullptr); }

 private:
  void set(const char* value) {
    value != nullptr ? ::setenv(name_.c_str(), value, 1) : ::unsetenv(name_.c_str());
  }

  std::string name_;
  std::optional<std::string> before_;
};

}  // namespace test_support

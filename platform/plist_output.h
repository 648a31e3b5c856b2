#pragma once

// Bytes that grow at the end, for the writers.

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

namespace qx::detail {

// Room is taken first and filled then, without being cleared before.
class PlistOutput {
 public:
  // At least `count` bytes to write to; `commit` takes those that were written.
  char* room(std::size_t count) {
    if (capacity_ - size_ < count) grow(count);
    return bytes_.get() + size_;
  }
  void commit(const char* end) { size_ = static_cast<std::size_t>(end - bytes_.get()); }
  void append(std::string_view text) {
    char* at = room(text.size());
    if (!text.empty()) std::memcpy(at, text.data(), text.size());
    commit(at + text.size());
  }

  std::size_t size() const { return size_; }
  std::string_view view() const { return {bytes_.get(), size_}; }

 private:
  struct Free {
    void operator()(char* p) const { std::free(p); }
  };

  void grow(std::size_t count) {
    if (count > ~std::size_t{0} / 4 - size_) throw std::bad_alloc();
    const std::size_t capacity = (size_ + count) * 2 + 1024;
    void* grown = std::realloc(bytes_.get(), capacity);
    if (grown == nullptr) throw std::bad_alloc();
    (void)bytes_.release();
    bytes_.reset(static_cast<char*>(grown));
    capacity_ = capacity;
  }

  std::unique_ptr<char, Free> bytes_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace qx::detail

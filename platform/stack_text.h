#pragma once

// Bytes that are put together at the end, in memory of the caller's stack as long as they are few.

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace qx::detail {

// Room is taken first and filled then. The first `kOnStack` bytes are the object's own.
template <std::size_t kOnStack>
class BasicStackText {
 public:
  BasicStackText() = default;
  BasicStackText(const BasicStackText&) = delete;
  BasicStackText& operator=(const BasicStackText&) = delete;

  // At least `count` bytes to write to; `commit` takes those that were written.
  char* room(std::size_t count) {
    if (capacity_ - size_ < count) [[unlikely]]
      grow(count);
    return bytes_ + size_;
  }
  void commit(const char* end) { size_ = static_cast<std::size_t>(end - bytes_); }
  void append(std::string_view text) {
    char* at = room(text.size());
    if (!text.empty()) std::memcpy(at, text.data(), text.size());
    commit(at + text.size());
  }

  std::size_t size() const { return size_; }
  std::string_view view() const { return {bytes_, size_}; }

 private:
  // More than the addressable memory can not be asked for: operator new refuses it.
  void grow(std::size_t count) {
    const std::size_t capacity = (size_ + count) * 2;
    std::unique_ptr<char[]> grown(new char[capacity]);
    std::memcpy(grown.get(), bytes_, size_);
    large_ = std::move(grown);
    bytes_ = large_.get();
    capacity_ = capacity;
  }

  char few_[kOnStack];
  std::unique_ptr<char[]> large_;
  char* bytes_ = few_;
  std::size_t size_ = 0;
  std::size_t capacity_ = kOnStack;
};
using StackText = BasicStackText<512>;

}  // namespace qx::detail

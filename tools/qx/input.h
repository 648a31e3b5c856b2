// Input: a file, or standard input, read in blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace qxtool {

class Progress;

// Bytes one after the other. What goes wrong is a Failure that names the file.
class Input {
 public:
  // "-" is standard input. The progress is told of every block.
  Input(const std::string& path, Progress& progress);
  ~Input();
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  // For messages.
  const std::string& name() const { return name_; }
  // Bytes taken so far.
  std::uint64_t position() const { return read_ - static_cast<std::uint64_t>(end_ - next_); }

  bool atEnd() { return next_ == end_ && !readBlock(); }
  // The first bytes, as many as a block holds or there are; before any is taken. Waits for them.
  std::string_view start();
  // Takes all that is left.
  std::string takeRest();
  // Not at the end.
  const char& current() const { return *next_; }
  void advance() { ++next_; }

  // The bytes as a range, to be walked once: the end is the default one.
  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    Iterator() = default;
    explicit Iterator(Input& input) : input_(&input) {}
    reference operator*() const { return input_->current(); }
    Iterator& operator++() {
      input_->advance();
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      input_->advance();
      return before;
    }
    friend bool operator==(const Iterator& a, const Iterator& b) { return a.atEnd() == b.atEnd(); }

   private:
    bool atEnd() const { return input_ == nullptr || input_->atEnd(); }
    Input* input_ = nullptr;
  };

 private:
  bool readBlock();
  // Reads into what is left of the block; false at the end.
  bool readMore();

  std::string name_;
  int file_ = -1;
  Progress& progress_;
  std::uint64_t size_ = 0;  // 0 where it is not known
  std::uint64_t read_ = 0;
  bool ended_ = false;
  std::vector<char> block_;
  const char* next_ = nullptr;
  char* end_ = nullptr;
};

}  // namespace qxtool

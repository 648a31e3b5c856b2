#pragma once

#include <string>

#include <QXFoundation/string_arg.h>

#include "frame/text_span.h"

namespace qx::detail {

// A key to look for: units in the narrowest form, borrowed, and their hash.
struct KeyView {
  TextSpan span;
  std::uint32_t hash = 0;
};

// A text parameter as a key. Borrows from the argument; only text beyond ASCII given as UTF-8 is
// converted.
struct KeyText : KeyView {
  explicit KeyText(StringArg text);
  // Of a part of a text.
  explicit KeyText(TextSpan text) { take(text); }
  KeyText(const KeyText&) = delete;
  KeyText& operator=(const KeyText&) = delete;

 private:
  void take(TextSpan text);

  std::string narrow_;
  std::u16string wide_;
};

// A text parameter as code units, without the hash.
class ArgText {
 public:
  explicit ArgText(StringArg text);
  ArgText(const ArgText&) = delete;
  ArgText& operator=(const ArgText&) = delete;
  operator TextSpan() const { return span_; }
  const TextSpan* operator->() const { return &span_; }

 private:
  TextSpan span_;
  std::string narrow_;
  std::u16string wide_;
};

}  // namespace qx::detail

#pragma once

// Settings of one name stand in many dictionaries of a tree: the last names that were added are
// kept, so that those dictionaries share them. Of bounded size.

#include <array>
#include <cstdint>

#include <QXFoundation/string.h>

#include "frame/string_storage.h"
#include "frame/text_span.h"

namespace qx::detail {

class KeyPool {
 public:
  // The text as a string: the one given before, where it is remembered.
  const Ref<String>& key(TextSpan text, std::uint32_t hash) {
    Ref<String>& kept = keys_[hash % keys_.size()];
    if (kept == nullptr || !isEqual(StringStorage::span(*kept), text)) {
      kept = StringStorage::make(text);
    }
    return kept;
  }

 private:
  static bool isEqual(TextSpan a, TextSpan b) {
    return !a.wide && !b.wide && a.latin1View() == b.latin1View();
  }

  std::array<Ref<String>, 256> keys_;
};

}  // namespace qx::detail

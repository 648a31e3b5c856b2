#pragma once

// A selector for a look-up that outlives nothing: it borrows its text, so that names from outside
// are not kept for ever as Selector::named keeps them.

#include <string_view>

#include <QXFoundation/selector.h>

namespace qx::detail {

struct SelectorAccess {
  // Lives as long as the text, and is only compared: no NUL stands behind it. Null for the empty
  // text.
  static Selector borrowed(std::string_view text) {
    if (text.empty()) return {};
    return Selector(Selector::Interned{}, text.data(), static_cast<std::uint32_t>(text.size()));
  }
};

}  // namespace qx::detail

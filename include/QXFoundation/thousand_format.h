// thousandFormat: an integer in groups.
//
//     qx::thousandFormat(1000000)->utf8();   // "976,576": groups of 1024, not of 1000
#pragma once

#include <cstdint>

#include <QXFoundation/string.h>

namespace qx {

// Groups of the number by powers of 1024 (not 1000), the most significant first, with commas
// between them. All but the first have three digits at least. Of a negative number every group but
// zeros has a minus: -2000 gives "-1,-976". Thread-safe.
[[nodiscard]] QX_EXPORT Ref<String> thousandFormat(std::int64_t n);

}  // namespace qx

#pragma once

// Where weak references find their objects.

#include <QXFoundation/weak_ref.h>

namespace qx::detail {

// The last count of an object that weak references watch is gone: cuts them off. A count of zero is
// never raised again, so that none of them can have taken the object in the meantime.
void unwatch(const Object* object) noexcept;

}  // namespace qx::detail

#include "platform/random_numbers.h"

#include <stdlib.h>

namespace qx::detail {

long RandomNumbers::next() { return ::random(); }

}  // namespace qx::detail

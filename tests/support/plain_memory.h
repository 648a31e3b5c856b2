#pragma once

// For test programs with an operator new of their own: objects, small ones too, come from it. To be
// included by one file of the program; done before any object is made.

#include <cstdlib>

namespace test_support {

[[gnu::constructor(101), gnu::used]] static void takeObjectsFromOperatorNew() {
  setenv("QXFOUNDATION_PLAIN_MEMORY", "1", 1);
}

}  // namespace test_support

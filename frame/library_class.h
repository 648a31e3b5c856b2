#pragma once

// For the definitions of the library's own classes: describe() stands beside the class in its .cpp,
// and `classObject` gives what this builds of it.

#include "frame/class_record.h"

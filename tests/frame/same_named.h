#pragma once

#include <QXFoundation/property_value.h>

namespace frame_test {

// An object of a class "Twin" in that file's unnamed namespace.
qx::PropertyValue twinOfAnotherFile();

}  // namespace frame_test

#include "tests/frame/same_named.h"

#include <QXFoundation/class_builder.h>

namespace qx {
namespace {

// Spelt as the class in class_registry_test.cpp, namespaces included.
class Twin : public Object {
 public:
  std::string right = "right";
};
void describe(ClassBuilder<Twin>& c) {
  c.name("FrameTestTwinThere").property("right", &Twin::right);
}

}  // namespace
}  // namespace qx

namespace frame_test {

qx::PropertyValue twinOfAnotherFile() { return qx::make<qx::Twin>(); }

}  // namespace frame_test

#include "collections/tree_path.h"

#include "frame/raise.h"

namespace qx::detail {

QXTree& NodeTest::look(const PropertyValue& value, Selector operation) {
  auto* node = value.peek<QXTree>();
  if (node == nullptr) raiseUnsupported(value, operation);
  classIndex_ = ObjectAccess::classIndex(*node);
  known_ = true;
  return *node;
}

void CircleWatch::refuse() { raiseInvalidArgument("QXTree: a node stands below itself"); }

}  // namespace qx::detail

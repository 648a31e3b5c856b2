#include "qualifiers/tree_walk.h"

#include "qualifiers/leaf_test.h"

namespace qx::detail {

bool evaluateTree(const Node& root, const PropertyValue& object) {
  auto leaf = [&object](const Node& node, const PropertyValue& member) {
    switch (node.kind) {
      case NodeKind::constantTest:
        return node.constantTest().evaluate(object);
      case NodeKind::keyPairTest:
        return node.keyPairTest().evaluate(object);
      default:
        return evaluateCustom(member, object);
    }
  };
  return TreeWalk(leaf, object.isNil()).evaluate(root);
}

}  // namespace qx::detail

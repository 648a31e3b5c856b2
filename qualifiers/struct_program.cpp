// Running a program over records that are no objects.

#include <unordered_set>
#include <vector>

#include "frame/class_record.h"
#include "frame/key_text.h"
#include "frame/raise.h"
#include "qualifiers/program_run.h"
#include "qualifiers/tree_walk.h"

namespace qx::detail {

StructProgram::StructProgram(const QXQualifier& qualifier, const Class& cls)
    : class_(cls), program_(qualifier) {
  refuseCustom(Node::of(qualifier));
  layout_.bind(program_.keys(), classIndexOf(cls));
}

void StructProgram::refuse(const PropertyValue& custom) const {
  raiseInvalidArgument(std::string("Matching: ") + (custom.isNil() ? "nil" : custom.cls()->name()) +
                       " can be asked about objects alone, and " + class_.name() +
                       " is a plain struct; derive it from qx::Object");
}

// Looks at every node once, also where arrays may change later.
void StructProgram::refuseCustom(const Node& root) const {
  std::vector<Node> open{root};
  std::unordered_set<const Object*> seen;
  while (!open.empty()) {
    const Node node = open.back();
    open.pop_back();
    if (node.kind == NodeKind::custom) refuse(const_cast<Object*>(node.object));
    if (!node.isCompound() || !seen.insert(node.object).second) continue;
    if (node.kind == NodeKind::negation) {
      if (node.inner() != nullptr) open.push_back(Node::of(*node.inner()));
    } else if (const Array* members = node.members()) {
      for (const PropertyValue& member : *members) open.push_back(Node::of(member));
    }
  }
}

bool StructProgram::accepts(const Subject& record) const {
  const auto rest = [&](const Program::Step& step) { return test(step, record); };
  return binding_.of(program_, layout_, record).run(record.address(), WithoutHolding{rest});
}

bool StructProgram::test(const Program::Step& step, const Subject& record) const {
  if (step.test && step.key != Program::kNoKey && step.singleStep) {
    const Place& place = layout_.place(step.key);
    if (place.way == Place::Way::native) {
      return step.test->decide(readField(*place.property, record));
    }
  }
  return testNode(step.node, record);
}

bool StructProgram::testNode(const Node& node, const Subject& record) const {
  if (node.kind == NodeKind::constantTest) {
    const ConstantTest& test = node.constantTest();
    return test.decide(read(test.path, record));
  }
  if (node.kind == NodeKind::keyPairTest) {
    const KeyPairTest& test = node.keyPairTest();
    const PropertyValue left = read(test.left, record);
    return test.decide(left, read(test.right, record));
  }
  if (node.kind == NodeKind::custom) refuse(const_cast<Object*>(node.object));
  auto leaf = [&](const Node& inner, const PropertyValue&) { return testNode(inner, record); };
  return TreeWalk(leaf, false).evaluate(node);
}

PropertyValue StructProgram::read(const KeyPath& path, const Subject& record) const {
  if (path.steps().empty()) return {};
  const Property* property = class_.record().findProperty(KeyText(path.steps()[0]));
  if (property == nullptr) return {};
  const PropertyValue first = property->get(record, property->payload);
  PropertyValue room;
  return path.readFrom(1, first, room);
}

}  // namespace qx::detail

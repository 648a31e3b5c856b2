#include "qualifiers/node.h"

#include "frame/raise.h"

namespace qx::detail {
namespace {

struct NodeClasses {
  std::uint16_t conjunction = classIndexOf(classOf<QXAndQualifier>());
  std::uint16_t disjunction = classIndexOf(classOf<QXOrQualifier>());
  std::uint16_t negation = classIndexOf(classOf<QXNotQualifier>());
  std::uint16_t constantTest = classIndexOf(classOf<QXKeyValueQualifier>());
  std::uint16_t keyPairTest = classIndexOf(classOf<QXKeyComparisonQualifier>());
};

}  // namespace

NodeKind exactKind(const Object& object) {
  static const NodeClasses classes;
  const std::uint16_t index = ObjectAccess::classIndex(object);
  if (index == classes.constantTest) return NodeKind::constantTest;
  if (index == classes.conjunction) return NodeKind::conjunction;
  if (index == classes.disjunction) return NodeKind::disjunction;
  if (index == classes.negation) return NodeKind::negation;
  if (index == classes.keyPairTest) return NodeKind::keyPairTest;
  return NodeKind::custom;
}

void raiseNesting() {
  raiseInvalidArgument("-[QXQualifier evaluateWithObject:]: qualifiers nest deeper than " +
                       std::to_string(kMaxNesting) + ", or one holds itself");
}

bool evaluateCustom(const PropertyValue& member, const PropertyValue& object) {
  if (const auto* evaluator = asProtocol<QXQualifierEvaluation>(member)) {
    return evaluator->evaluateWithObject(object);
  }
  return performSelector(member, "evaluateWithObject:", object).boolValue();
}

}  // namespace qx::detail

// Why an object passes a qualifier or fails it: an evaluation that writes down what it meets.

#include <string>
#include <vector>

#include <QXFoundation/qualifier_explanation.h>

#include "qualifiers/leaf_test.h"
#include "qualifiers/node.h"
#include "qualifiers/tree_printer.h"
#include "qualifiers/tree_walk.h"

namespace qx {
namespace detail {
namespace {

constexpr std::size_t kMaxLines = 200;
constexpr unsigned kMaxDepth = 40;

std::string keyName(const KeyPath& path) {
  return path.text() == nullptr ? "the absent key" : shortened(path.text()->utf8(), kMaxValueText);
}

class Explainer {
 public:
  explicit Explainer(const PropertyValue& object) : object_(object) {}

  bool explain(const Node& node, const PropertyValue& member, unsigned depth) {
    const bool shown = depth < kMaxDepth && lines_.size() < kMaxLines;
    if (!shown) return evaluateMember(node, member);
    const std::size_t line = lines_.size();
    lines_.emplace_back();
    std::string what;
    const bool result = explainShown(node, member, depth, what);
    lines_[line] =
        std::string(2 * std::size_t{depth}, ' ') + (result ? "true: " : "false: ") + what;
    return result;
  }

  std::string text() const {
    std::string all;
    for (const std::string& line : lines_) all += line + '\n';
    return all;
  }

 private:
  bool evaluateMember(const Node& node, const PropertyValue& member) {
    return node.kind == NodeKind::custom ? evaluateCustom(member, object_)
                                         : evaluateTree(node, object_);
  }

  bool explainShown(const Node& node, const PropertyValue& member, unsigned depth,
                    std::string& what) {
    switch (node.kind) {
      case NodeKind::conjunction:
      case NodeKind::disjunction:
        return explainMembers(node, depth, what);
      case NodeKind::negation:
        return explainNegation(node, depth, what);
      case NodeKind::constantTest:
        return explainTest(node.constantTest(), what);
      case NodeKind::keyPairTest:
        return explainTest(node.keyPairTest(), what);
      case NodeKind::custom:
        break;
    }
    what = shortened(member.description(), kMaxValueText);
    return evaluateCustom(member, object_);
  }

  bool explainMembers(const Node& node, unsigned depth, std::string& what) {
    const bool decisive = node.kind == NodeKind::disjunction;
    what = decisive ? "or" : "and";
    if (object_.isNil()) {
      what += " (the object is nil)";
      return false;
    }
    const Array* members = node.members();
    std::size_t asked = 0;
    bool result = !decisive;
    while (result != decisive && members != nullptr && asked < members->count()) {
      const PropertyValue held = members->begin()[asked++];
      result = explain(Node::of(held), held, depth + 1);
    }
    const std::size_t count = members == nullptr ? 0 : members->count();
    if (count == 0) what += " (of nothing)";
    if (asked < count) what += " (" + std::to_string(count - asked) + " more not evaluated)";
    return result;
  }

  bool explainNegation(const Node& node, unsigned depth, std::string& what) {
    what = "not";
    const PropertyValue inner = const_cast<QXQualifier*>(node.inner());
    if (!inner.isNil()) return !explain(Node::of(inner), inner, depth + 1);
    what += " (of nothing)";
    return false;
  }

  // The object's own answer, or that there is no object.
  template <class Test>
  bool answered(const Test& test, std::string& what, bool& result) {
    what = describeLeaf(test);
    if (object_.isNil()) {
      what += " (the object is nil)";
      result = false;
      return true;
    }
    const std::optional<bool> answer = test.askObject(object_);
    if (!answer) return false;
    what += " (the object's own answer)";
    result = *answer;
    return true;
  }

  bool explainTest(const ConstantTest& test, std::string& what) {
    bool result = false;
    if (answered(test, what, result)) return result;
    PropertyValue room;
    const PropertyValue left = test.path.read(object_, room);
    what += " (" + keyName(test.path) + " is " + describeConstant(left);
    const Applied applied = left.isNil() ? Applied{true, test.decideNil()} : test.applyTo(left);
    what += applied.responds ? ")" : ", which has no such operation)";
    return applied.result;
  }

  bool explainTest(const KeyPairTest& test, std::string& what) {
    bool result = false;
    if (answered(test, what, result)) return result;
    PropertyValue room;
    const PropertyValue left = test.left.read(object_, room);
    const PropertyValue right = test.right.read(object_, room);
    const Applied applied = left.isNil() ? Applied{true, false} : test.applyTo(left, right);
    what += " (" + keyName(test.left) + " is " + describeConstant(left);
    if (!applied.responds) what += ", which has no such operation";
    what += ", " + keyName(test.right) + " is " + describeConstant(right) + ")";
    return applied.result;
  }

  const PropertyValue object_;
  std::vector<std::string> lines_;
};

}  // namespace
}  // namespace detail

Explanation explain(In<QXQualifier> qualifier, const PropertyValue& object) {
  if (!qualifier) return {false, "false: no qualifier\n"};
  const Ref<QXQualifier> held(qualifier.get());
  detail::Explainer explainer(object);
  const bool result = explainer.explain(detail::Node::of(*held), held, 0);
  return {result, explainer.text()};
}

}  // namespace qx

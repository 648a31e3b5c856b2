#include "qualifiers/program.h"

#include "frame/array_storage.h"
#include "frame/string_storage.h"
#include "frame/unicode.h"

namespace qx::detail {
namespace {

// Trees may share parts, so that a small one can stand for very many tests. Compound nodes met
// beyond this many steps become steps themselves.
constexpr std::size_t kMaxSteps = std::size_t{1} << 20;
// Comparisons of further keys are evaluated without a layout.
constexpr std::size_t kMaxKeys = 64;

bool canChange(const Node& node) {
  if (node.kind == NodeKind::negation) return false;
  const Array* members = node.members();
  return members != nullptr && ArrayStorage::isMutable(*members);
}

}  // namespace

Program::Program(const QXQualifier& root) : root_(&root) {
  open(Node::of(root), const_cast<QXQualifier*>(&root), kAccept, kReject);
  while (!open_.empty()) compileNext();
}

void Program::open(const Node& node, const PropertyValue& member, Target onTrue, Target onFalse) {
  if (!node.isCompound() || canChange(node) || steps_.size() >= kMaxSteps) {
    addStep(node, member, onTrue, onFalse);
    return;
  }
  if (open_.size() == kMaxNesting) raiseNesting();
  if (node.kind == NodeKind::negation) {
    if (node.inner() == nullptr) {
      entry_ = onFalse;
    } else {
      open_.push_back({node, 1, onFalse, onTrue});
    }
    return;
  }
  const std::size_t count = node.members() == nullptr ? 0 : node.members()->count();
  entry_ = node.kind == NodeKind::conjunction ? onTrue : onFalse;
  if (count != 0) open_.push_back({node, count, onTrue, onFalse});
}

void Program::compileNext() {
  Open& top = open_.back();
  const Node node = top.node;
  const Target onTrue = top.onTrue;
  const Target onFalse = top.onFalse;
  if (node.kind == NodeKind::negation) {
    open_.pop_back();
    const PropertyValue inner = const_cast<QXQualifier*>(node.inner());
    return open(Node::of(inner), inner, onTrue, onFalse);
  }
  const PropertyValue& member = node.members()->begin()[--top.left];
  const bool isLast = top.left + 1 == node.members()->count();
  if (top.left == 0) open_.pop_back();
  // All but the last lead on to the next, which is what was compiled before.
  if (node.kind == NodeKind::conjunction) {
    open(Node::of(member), member, isLast ? onTrue : entry_, onFalse);
  } else {
    open(Node::of(member), member, onTrue, isLast ? onFalse : entry_);
  }
}

void Program::addStep(const Node& node, const PropertyValue& member, Target onTrue,
                      Target onFalse) {
  Step step;
  step.node = node;
  step.held = member;
  step.onTrue = onTrue;
  step.onFalse = onFalse;
  if (node.kind == NodeKind::constantTest) {
    const ConstantTest& test = node.constantTest();
    step.test.emplace(test);
    step.key = keyNumber(test.path);
    step.singleStep = test.path.steps().size() == 1;
  } else if (node.kind == NodeKind::keyPairTest) {
    step.key = keyNumber(node.keyPairTest().left);
    step.rightKey = keyNumber(node.keyPairTest().right);
  }
  entry_ = static_cast<Target>(steps_.size());
  steps_.push_back(std::move(step));
}

std::uint32_t Program::keyNumber(const KeyPath& path) {
  if (path.steps().empty()) return kNoKey;
  const Ref<String>& first = path.steps()[0];
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    if (equalUnits(StringStorage::span(*keys_[i]), StringStorage::span(*first))) {
      return static_cast<std::uint32_t>(i);
    }
  }
  if (keys_.size() == kMaxKeys) return kNoKey;
  keys_.push_back(first);
  return static_cast<std::uint32_t>(keys_.size() - 1);
}

}  // namespace qx::detail

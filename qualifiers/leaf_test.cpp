#include "qualifiers/leaf_test.h"

#include <QXFoundation/qualifier.h>

#include "frame/string_storage.h"
#include "qualifiers/value_kinds.h"

namespace qx::detail {
namespace {

Applied applyOperator(Comparison comparison, Selector selector, const PropertyValue& left,
                      const PropertyValue& right) {
  return comparison == Comparison::none ? apply(selector, left, right)
                                        : apply(comparison, left, right);
}

}  // namespace

ConstantTest::ConstantTest(Ref<String> key, Selector operatorSelector,
                           const PropertyValue& constant)
    : path(std::move(key)),
      selector(operatorSelector),
      comparison(comparisonOf(operatorSelector)),
      value(constant) {
  const bool ignoreCase = comparison == Comparison::isCaseInsensitiveLike;
  if (comparison != Comparison::isLike && !ignoreCase) return;
  const String* text = plainString(value);
  if (text != nullptr && !StringStorage::isMutable(*text)) {
    pattern.emplace(StringStorage::span(*text), ignoreCase);
  }
}

std::optional<bool> ConstantTest::askObject(const PropertyValue& object) const {
  const auto* evaluator = asProtocol<QXKeyValueQualifierEvaluation>(object);
  if (evaluator == nullptr) return std::nullopt;
  const PropertyValue held = object;
  return evaluator->evaluateWithKey(path.text(), selector, value);
}

bool ConstantTest::decideNil() const {
  if (comparison == Comparison::isEqualTo) return value.isNull();
  return comparison == Comparison::isNotEqualTo && !value.isNull();
}

Applied ConstantTest::applyTo(const PropertyValue& left) const {
  if (pattern) {
    if (const String* text = plainString(left))
      return {true, pattern->matches(StringStorage::span(*text))};
  }
  if (comparesQuietly(left)) return applyOperator(comparison, selector, left, value);
  const PropertyValue held = left;
  return applyOperator(comparison, selector, held, value);
}

bool ConstantTest::evaluate(const PropertyValue& object) const {
  if (object.isNil()) return false;
  if (const auto answer = askObject(object)) return *answer;
  PropertyValue room;
  return decide(path.read(object, room));
}

KeyPairTest::KeyPairTest(Ref<String> leftKey, Selector operatorSelector, Ref<String> rightKey)
    : left(std::move(leftKey)),
      selector(operatorSelector),
      comparison(comparisonOf(operatorSelector)),
      right(std::move(rightKey)) {}

std::optional<bool> KeyPairTest::askObject(const PropertyValue& object) const {
  const auto* evaluator = asProtocol<QXKeyComparisonQualifierEvaluation>(object);
  if (evaluator == nullptr) return std::nullopt;
  const PropertyValue held = object;
  return evaluator->evaluateWithLeftKey(left.text(), selector, right.text());
}

Applied KeyPairTest::applyTo(const PropertyValue& leftValue,
                             const PropertyValue& rightValue) const {
  return applyOperator(comparison, selector, leftValue, rightValue);
}

bool KeyPairTest::evaluate(const PropertyValue& object) const {
  if (object.isNil()) return false;
  if (const auto answer = askObject(object)) return *answer;
  // Both are held: reading one, and comparing, may run code that changes where the other was found.
  PropertyValue room;
  const PropertyValue leftValue = left.read(object, room);
  const PropertyValue rightValue = right.read(object, room);
  return decide(leftValue, rightValue);
}

}  // namespace qx::detail

#pragma once

// The two comparisons that qualifiers make of one object: of a value under a key with a constant,
// and of the values under two keys. Prepared once, when the qualifier is made; immutable, and
// usable by several threads at once.

#include <optional>

#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>
#include <QXFoundation/string.h>

#include "frame/comparison.h"
#include "frame/wildcard.h"
#include "qualifiers/key_path.h"

namespace qx::detail {

struct ConstantTest {
  ConstantTest(Ref<String> key, Selector operatorSelector, const PropertyValue& constant);

  // What the object's own evaluator says, where its class declares one.
  std::optional<bool> askObject(const PropertyValue& object) const;
  // The test of what stands under the key, for an object without an evaluator.
  bool decide(const PropertyValue& left) const {
    return left.isNil() ? decideNil() : applyTo(left).result;
  }
  bool decideNil() const;
  // The operation applied to a value that is there.
  Applied applyTo(const PropertyValue& left) const;
  bool evaluate(const PropertyValue& object) const;

  KeyPath path;
  Selector selector;
  Comparison comparison;
  PropertyValue value;
  // For the two wildcard comparisons, when the constant is a string that can not change.
  std::optional<WildcardPattern> pattern;
};

struct KeyPairTest {
  KeyPairTest(Ref<String> leftKey, Selector operatorSelector, Ref<String> rightKey);

  std::optional<bool> askObject(const PropertyValue& object) const;
  bool decide(const PropertyValue& leftValue, const PropertyValue& rightValue) const {
    return !leftValue.isNil() && applyTo(leftValue, rightValue).result;
  }
  // The operation applied to a left value that is there.
  Applied applyTo(const PropertyValue& leftValue, const PropertyValue& rightValue) const;
  bool evaluate(const PropertyValue& object) const;

  KeyPath left;
  Selector selector;
  Comparison comparison;
  KeyPath right;
};

}  // namespace qx::detail

#pragma once

// Qualifiers evaluated by their rules, read off the tree with public operations alone and with no
// thought of speed: what the library's evaluation is compared with.

#include <QXFoundation/class.h>
#include <QXFoundation/qualifier.h>

namespace qx::reference {

bool walk(const PropertyValue& qualifier, const PropertyValue& object);

// The protocol's own answerer, null where the object is none.
template <class P>
const P* answerer(const PropertyValue& object) {
  return dynamic_cast<const P*>(object.object());
}

inline PropertyValue read(const PropertyValue& object, const Ref<String>& key) {
  return key == nullptr ? PropertyValue() : object.valueForKeyPath(key);
}

inline bool applies(Selector selector, const PropertyValue& left, const PropertyValue& right) {
  if (selector.isNull() || !left.respondsToSelector(selector)) return false;
  return performSelector(left, SelectorFor<1>(selector), right).boolValue();
}

inline bool walkConstant(const QXKeyValueQualifier& q, const PropertyValue& object) {
  if (object.isNil()) return false;
  if (const auto* own = answerer<QXKeyValueQualifierEvaluation>(object))
    return own->evaluateWithKey(q.key(), q.selector(), q.value());
  const PropertyValue left = read(object, q.key());
  if (!left.isNil()) return applies(q.selector(), left, q.value());
  if (q.selector() == Selector("isEqualTo:")) return q.value().isNull();
  return q.selector() == Selector("isNotEqualTo:") && !q.value().isNull();
}

inline bool walkKeys(const QXKeyComparisonQualifier& q, const PropertyValue& object) {
  if (object.isNil()) return false;
  if (const auto* own = answerer<QXKeyComparisonQualifierEvaluation>(object))
    return own->evaluateWithLeftKey(q.leftKey(), q.selector(), q.rightKey());
  const PropertyValue left = read(object, q.leftKey());
  return !left.isNil() && applies(q.selector(), left, read(object, q.rightKey()));
}

// Whether a member decides: one that is false for and, one that is true for or.
inline bool hasMember(const Ref<Array>& members, const PropertyValue& object, bool answer) {
  for (std::size_t i = 0; members != nullptr && i < members->count(); ++i) {
    if (walk(members->objectAtIndex(i), object) == answer) return true;
  }
  return false;
}

inline bool walk(const PropertyValue& qualifier, const PropertyValue& object) {
  if (const auto q = qualifier.as<QXAndQualifier>())
    return !object.isNil() && !hasMember(q->qualifiers(), object, false);
  if (const auto q = qualifier.as<QXOrQualifier>())
    return !object.isNil() && hasMember(q->qualifiers(), object, true);
  if (const auto q = qualifier.as<QXNotQualifier>())
    return q->qualifier() != nullptr && !walk(q->qualifier(), object);
  if (const auto q = qualifier.as<QXKeyValueQualifier>()) return walkConstant(*q, object);
  if (const auto q = qualifier.as<QXKeyComparisonQualifier>()) return walkKeys(*q, object);
  return qualifier.as<QXQualifier>()->evaluateWithObject(object);
}

}  // namespace qx::reference

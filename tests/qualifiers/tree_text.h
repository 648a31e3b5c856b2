#pragma once

// Qualifier trees as exact text, for tables of expectations: kv(name = "Bob"), kc(size < limit),
// not(...), and(...). Numbers tell their kind: 3, 3u, 0.5f, 0.5 (double), true.

#include <string>

#include <QXFoundation/class.h>
#include <QXFoundation/number.h>
#include <QXFoundation/qualifier.h>

#include "frame/numeric.h"

namespace qx {

inline std::string valueText(const PropertyValue& v) {
  if (v.isNil()) return "nil";
  if (v.isNull()) return "null";
  if (v.isString()) return '"' + v.description() + '"';
  detail::NumericValue n;
  if (v.object() == nullptr && detail::numericOf(v, n)) {
    switch (n.kind) {
      case NumberKind::boolean:
        return v.boolValue() ? "true" : "false";
      case NumberKind::unsignedInteger:
        return v.description() + "u";
      case NumberKind::single:
        return v.description() + "f";
      case NumberKind::real:
        return v.description() + "r";
      default:
        return v.description();
    }
  }
  return std::string("<") + v.cls()->name() + " " + v.description() + ">";
}

inline std::string keyText(const Ref<String>& key) { return key == nullptr ? "nil" : key->utf8(); }

inline std::string selectorText(Selector s) {
  const Ref<String> text = QXQualifier::stringForOperatorSelector(s);
  if (text != nullptr) return text->utf8();
  return s.isNull() ? "?" : std::string(s.text());
}

inline std::string treeText(const PropertyValue& q);

inline std::string membersText(const Ref<Array>& members) {
  std::string text;
  for (std::size_t i = 0; members != nullptr && i < members->count(); ++i) {
    text += (i == 0 ? "" : ", ") + treeText(members->objectAtIndex(i));
  }
  return text;
}

inline std::string treeText(const PropertyValue& q) {
  if (q.isNil()) return "nil";
  const std::string name = q.cls()->name();
  if (name == "QXAndQualifier")
    return "and(" + membersText(q.as<QXAndQualifier>()->qualifiers()) + ")";
  if (name == "QXOrQualifier")
    return "or(" + membersText(q.as<QXOrQualifier>()->qualifiers()) + ")";
  if (name == "QXNotQualifier") return "not(" + treeText(q.as<QXNotQualifier>()->qualifier()) + ")";
  if (name == "QXKeyValueQualifier") {
    const auto kv = q.as<QXKeyValueQualifier>();
    return "kv(" + keyText(kv->key()) + " " + selectorText(kv->selector()) + " " +
           valueText(kv->value()) + ")";
  }
  if (name == "QXKeyComparisonQualifier") {
    const auto kc = q.as<QXKeyComparisonQualifier>();
    return "kc(" + keyText(kc->leftKey()) + " " + selectorText(kc->selector()) + " " +
           keyText(kc->rightKey()) + ")";
  }
  return "<" + name + ">";
}

}  // namespace qx

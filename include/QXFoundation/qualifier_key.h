// Qualifiers written as expressions.
//
//     auto q = qx::key("age") > 30 && !qx::key("name").like("J*");
//     filteredArrayUsingQualifier(people, q);
//
// An expression builds the qualifier tree that its operators describe, one qualifier for each
// operator, and evaluates nothing: `qx::key("age") > 30` is a key-value qualifier with
// isGreaterThan:, && and || build and- and or-qualifiers of two members. The key stands on the
// left. Two keys give a key comparison.
#pragma once

#include <concepts>
#include <utility>

#include <QXFoundation/property_value.h>
#include <QXFoundation/qualifier.h>
#include <QXFoundation/string.h>
#include <QXFoundation/string_arg.h>

namespace qx {

// A qualifier that is not nil, as part of an expression. It goes wherever a qualifier is taken.
class QualifierExpr {
 public:
  // The qualifier of the expression.
  explicit QualifierExpr(Ref<QXQualifier> qualifier) : qualifier_(std::move(qualifier)) {}
  const Ref<QXQualifier>& qualifier() const { return qualifier_; }
  operator Ref<QXQualifier>() const { return qualifier_; }
  // As long as the expression lives.
  operator In<QXQualifier>() const { return qualifier_; }
  bool evaluateWithObject(const PropertyValue& object) const {
    return qualifier_->evaluateWithObject(object);
  }

  // Refused: an expression is no condition.
  template <std::same_as<bool> B>
  explicit operator B() const {
    static_assert(detail::format::kNever<B>,
                  "a qualifier expression is no condition: nothing is compared yet; ask "
                  "evaluateWithObject(object)");
    return false;
  }

  // An and-, or- or not-qualifier of these.
  friend QualifierExpr operator&&(const QualifierExpr& a, const QualifierExpr& b) {
    return QualifierExpr(QXAndQualifier::initWithQualifierArray(array(a.qualifier_, b.qualifier_)));
  }
  friend QualifierExpr operator||(const QualifierExpr& a, const QualifierExpr& b) {
    return QualifierExpr(QXOrQualifier::initWithQualifierArray(array(a.qualifier_, b.qualifier_)));
  }
  friend QualifierExpr operator!(const QualifierExpr& a) {
    return QualifierExpr(QXNotQualifier::initWithQualifier(a.qualifier_));
  }

 private:
  Ref<QXQualifier> qualifier_;
};

// A key path in an expression; nil is allowed as in the qualifiers' own initialisers.
class Key {
 public:
  // The key path.
  explicit Key(StringArg path) : path_(path.string()) {}
  const Ref<String>& path() const { return path_; }

  // Refused: a key is no condition.
  template <std::same_as<bool> B>
  explicit operator B() const {
    static_assert(detail::format::kNever<B>,
                  "a key alone is no qualifier: compare it, as in key(\"adult\") == true");
    return false;
  }

  // A comparison with a pattern, or with an element.
  QualifierExpr like(const PropertyValue& pattern) const { return with("isLike:", pattern); }
  QualifierExpr caseInsensitiveLike(const PropertyValue& pattern) const {
    return with("isCaseInsensitiveLike:", pattern);
  }
  QualifierExpr contains(const PropertyValue& value) const { return with("doesContain:", value); }
  // Any operation of one argument that answers a bool.
  QualifierExpr with(SelectorFor<1> selector, const PropertyValue& value) const {
    return QualifierExpr(QXKeyValueQualifier::initWithKey(path_, selector, value));
  }
  QualifierExpr with(SelectorFor<1> selector, const Key& right) const {
    return QualifierExpr(QXKeyComparisonQualifier::initWithLeftKey(path_, selector, right.path_));
  }

  // A comparison of what stands under the key with a constant.
  friend QualifierExpr operator==(const Key& k, const PropertyValue& v) {
    return k.with("isEqualTo:", v);
  }
  friend QualifierExpr operator!=(const Key& k, const PropertyValue& v) {
    return k.with("isNotEqualTo:", v);
  }
  friend QualifierExpr operator<(const Key& k, const PropertyValue& v) {
    return k.with("isLessThan:", v);
  }
  friend QualifierExpr operator<=(const Key& k, const PropertyValue& v) {
    return k.with("isLessThanOrEqualTo:", v);
  }
  friend QualifierExpr operator>(const Key& k, const PropertyValue& v) {
    return k.with("isGreaterThan:", v);
  }
  friend QualifierExpr operator>=(const Key& k, const PropertyValue& v) {
    return k.with("isGreaterThanOrEqualTo:", v);
  }

  // A comparison of what stands under two keys.
  friend QualifierExpr operator==(const Key& a, const Key& b) { return a.with("isEqualTo:", b); }
  friend QualifierExpr operator!=(const Key& a, const Key& b) { return a.with("isNotEqualTo:", b); }
  friend QualifierExpr operator<(const Key& a, const Key& b) { return a.with("isLessThan:", b); }
  friend QualifierExpr operator<=(const Key& a, const Key& b) {
    return a.with("isLessThanOrEqualTo:", b);
  }
  friend QualifierExpr operator>(const Key& a, const Key& b) { return a.with("isGreaterThan:", b); }
  friend QualifierExpr operator>=(const Key& a, const Key& b) {
    return a.with("isGreaterThanOrEqualTo:", b);
  }

 private:
  Ref<String> path_;
};

// A key path to write expressions with.
inline Key key(StringArg path) { return Key(path); }

// Misuse, refused with the cure.

namespace detail {
template <class V>
concept ValueBeforeKey = std::convertible_to<const V&, PropertyValue>;
template <class V>
QualifierExpr keyStandsOnTheLeft() {
  static_assert(format::kNever<V>, "the key stands on the left of a comparison: key(\"age\") > 30");
  return QualifierExpr(nullptr);
}
}  // namespace detail

// Refused: the key stands on the left.
template <detail::ValueBeforeKey V>
QualifierExpr operator!=(const V&, const Key&) {
  return detail::keyStandsOnTheLeft<V>();
}
template <detail::ValueBeforeKey V>
QualifierExpr operator<(const V&, const Key&) {
  return detail::keyStandsOnTheLeft<V>();
}
template <detail::ValueBeforeKey V>
QualifierExpr operator<=(const V&, const Key&) {
  return detail::keyStandsOnTheLeft<V>();
}
template <detail::ValueBeforeKey V>
QualifierExpr operator>(const V&, const Key&) {
  return detail::keyStandsOnTheLeft<V>();
}
template <detail::ValueBeforeKey V>
QualifierExpr operator>=(const V&, const Key&) {
  return detail::keyStandsOnTheLeft<V>();
}

}  // namespace qx

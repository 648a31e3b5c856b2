#include "frame/comparison.h"

#include <array>

#include <QXFoundation/array.h>
#include <QXFoundation/date.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/set.h>
#include <QXFoundation/string.h>

#include "frame/class_record.h"
#include "frame/comparison_operations.h"
#include "frame/numeric.h"
#include "frame/raise.h"
#include "frame/string_storage.h"
#include "frame/text_search.h"
#include "frame/three_way.h"
#include "frame/unicode.h"
#include "frame/wildcard.h"
#include "frame/word_access.h"

namespace qx::detail {
namespace {

constexpr std::array<Selector, 9> kSelectors = {Selector("isEqualTo:"),
                                                Selector("isNotEqualTo:"),
                                                Selector("isLessThan:"),
                                                Selector("isLessThanOrEqualTo:"),
                                                Selector("isGreaterThan:"),
                                                Selector("isGreaterThanOrEqualTo:"),
                                                Selector("doesContain:"),
                                                Selector("isLike:"),
                                                Selector("isCaseInsensitiveLike:")};

const String& asString(const PropertyValue& v) { return *static_cast<const String*>(v.object()); }
TextSpan spanOf(const PropertyValue& v) { return StringStorage::span(asString(v)); }

int orderDates(const PropertyValue& left, const PropertyValue& right) {
  const double a = static_cast<const Date*>(left.object())->timeIntervalSince1970();
  const double b = static_cast<const Date*>(right.object())->timeIntervalSince1970();
  return compareNumbers(NumericValue::real(a), NumericValue::real(b));
}

bool comparesItself(const PropertyValue& v) {
  const Object* o = v.object();
  return o != nullptr && (o->cls().record().ownComparisons & ClassRecord::kComparesItself) != 0;
}

// Whether the class's own operation can be asked with that argument: a parameter with a type takes
// no other kind.
bool takes(const ClassRecord& record, Selector operation, const PropertyValue& argument) {
  const Operation* o = record.findOperation(operation);
  return o == nullptr || o->taken == nullptr || o->taken->fits(argument);
}

// Of the number that a class's own comparison answers, of whatever kind and size.
int signOf(const PropertyValue& v) {
  NumericValue n;
  return numericOf(v, n) ? compareNumbers(n, NumericValue::signedInteger(0)) : 0;
}

ComparisonResult resultOf(int sign) { return static_cast<ComparisonResult>(sign); }

bool ordered(Comparison c, int order) {
  switch (c) {
    case Comparison::isLessThan:
      return order < 0;
    case Comparison::isLessThanOrEqualTo:
      return order <= 0;
    case Comparison::isGreaterThan:
      return order > 0;
    default:
      return order >= 0;
  }
}

Applied contains(const PropertyValue& left, const PropertyValue& right) {
  const Object* o = left.object();
  if (o == nullptr) return {};
  switch (ObjectAccess::kind(*o)) {
    case ObjectKind::string:
      return {true, right.isString() && findText(spanOf(left), spanOf(right), 0) != kNotFound};
    case ObjectKind::array:
      return {true, static_cast<const Array*>(o)->containsObject(right)};
    case ObjectKind::set:
      return {true, static_cast<const Set*>(o)->containsObject(right)};
    case ObjectKind::dictionary:
      for (const auto& item : *static_cast<const Dictionary*>(o)) {
        if (item.value == right) return {true, true};
      }
      return {true, false};
    default:
      return {};
  }
}

Applied like(const PropertyValue& left, const PropertyValue& right, bool ignoringCase) {
  if (!left.isString()) return {};
  return {true, right.isString() && wildcardMatch(spanOf(left), spanOf(right), ignoringCase)};
}

bool answer(Comparison c, const PropertyValue& left, const PropertyValue& right) {
  return !left.isNil() && apply(c, left, right).result;
}

bool demand(Comparison c, const PropertyValue& left, const PropertyValue& right) {
  if (left.isNil()) return false;
  const Applied a = apply(c, left, right);
  if (!a.responds) raiseUnsupported(left, selectorOf(c));
  return a.result;
}

}  // namespace

Comparison comparisonOf(Selector selector) {
  for (std::size_t i = 0; i < kSelectors.size(); ++i) {
    if (kSelectors[i] == selector) return static_cast<Comparison>(i);
  }
  return Comparison::none;
}

Selector selectorOf(Comparison comparison) {
  return comparison == Comparison::none ? Selector()
                                        : kSelectors[static_cast<std::size_t>(comparison)];
}

bool builtInOrder(const PropertyValue& left, const PropertyValue& right, int& order) {
  if (left.isString() && right.isString()) {
    order = compareUnits(spanOf(left), spanOf(right));
    return true;
  }
  if (left.isDate() && right.isDate()) {
    order = orderDates(left, right);
    return true;
  }
  NumericValue a;
  NumericValue b;
  if (!numericOf(left, a) || !numericOf(right, b)) return false;
  order = compareNumbers(a, b);
  return true;
}

bool orderOf(const PropertyValue& left, const PropertyValue& right, int& order) {
  if (WordAccess::isInlineSigned(left) && WordAccess::isInlineSigned(right)) {
    order = threeWay(WordAccess::inlineSigned(left), WordAccess::inlineSigned(right));
    return true;
  }
  if (!comparesItself(left)) return builtInOrder(left, right, order);
  if (right.isNil() || !takes(left.object()->cls().record(), "compare:", right)) return false;
  order = signOf(performSelector(left, "compare:", right));
  return true;
}

Applied applyBuiltIn(Comparison comparison, const PropertyValue& left, const PropertyValue& right) {
  switch (comparison) {
    case Comparison::isEqualTo:
      return {true, left == right};
    case Comparison::isNotEqualTo: {
      const Object* o = left.object();
      if (o != nullptr && o->cls().record().declares(Comparison::isEqualTo)) {
        return {true, !apply(Comparison::isEqualTo, left, right).result};
      }
      return {true, !(left == right)};
    }
    case Comparison::doesContain:
      return contains(left, right);
    case Comparison::isLike:
    case Comparison::isCaseInsensitiveLike:
      return like(left, right, comparison == Comparison::isCaseInsensitiveLike);
    case Comparison::none:
      return {};
    default: {
      int order = 0;
      return {true, orderOf(left, right, order) && ordered(comparison, order)};
    }
  }
}

Applied apply(Comparison comparison, const PropertyValue& left, const PropertyValue& right) {
  const Object* o = left.object();
  if (o != nullptr) {
    const ClassRecord& record = o->cls().record();
    if (record.declares(comparison)) {
      if (!takes(record, selectorOf(comparison), right))
        return {true, comparison == Comparison::isNotEqualTo};
      return {true, performSelector(left, selectorOf(comparison), right).boolValue()};
    }
  }
  return applyBuiltIn(comparison, left, right);
}

Applied apply(Selector selector, const PropertyValue& left, const PropertyValue& right) {
  const Comparison comparison = comparisonOf(selector);
  if (comparison != Comparison::none) return apply(comparison, left, right);
  if (!left.respondsToSelector(selector)) return {};
  return {true, performSelector(left, SelectorFor<1>(selector), right).boolValue()};
}

bool isEqualOperation(const PropertyValue& receiver, const PropertyValue& other) {
  return receiver == other;
}

int compareOperation(const PropertyValue& receiver, const PropertyValue& other) {
  int order = 0;
  if (builtInOrder(receiver, other, order)) return order;
  if (receiver.isString() || receiver.isNumber() || receiver.isDate())
    raiseKind("the argument of compare:", other);
  raiseUnsupported(receiver, "compare:");
}

int caseInsensitiveCompareOperation(const PropertyValue& receiver, const PropertyValue& other) {
  if (!receiver.isString()) raiseUnsupported(receiver, "caseInsensitiveCompare:");
  if (!other.isString()) raiseKind("the argument of caseInsensitiveCompare:", other);
  return caseInsensitiveCompare(spanOf(receiver), spanOf(other));
}

}  // namespace qx::detail

namespace qx {

using detail::Comparison;

bool PropertyValue::isEqualTo(const PropertyValue& other) const {
  return detail::answer(Comparison::isEqualTo, *this, other);
}
bool PropertyValue::isNotEqualTo(const PropertyValue& other) const {
  return detail::answer(Comparison::isNotEqualTo, *this, other);
}
bool PropertyValue::isLessThan(const PropertyValue& other) const {
  return detail::answer(Comparison::isLessThan, *this, other);
}
bool PropertyValue::isLessThanOrEqualTo(const PropertyValue& other) const {
  return detail::answer(Comparison::isLessThanOrEqualTo, *this, other);
}
bool PropertyValue::isGreaterThan(const PropertyValue& other) const {
  return detail::answer(Comparison::isGreaterThan, *this, other);
}
bool PropertyValue::isGreaterThanOrEqualTo(const PropertyValue& other) const {
  return detail::answer(Comparison::isGreaterThanOrEqualTo, *this, other);
}
bool PropertyValue::doesContain(const PropertyValue& other) const {
  return detail::demand(Comparison::doesContain, *this, other);
}
bool PropertyValue::isLike(const PropertyValue& pattern) const {
  return detail::demand(Comparison::isLike, *this, pattern);
}
bool PropertyValue::isCaseInsensitiveLike(const PropertyValue& pattern) const {
  return detail::demand(Comparison::isCaseInsensitiveLike, *this, pattern);
}

ComparisonResult PropertyValue::compare(const PropertyValue& other) const {
  if (isNil()) return ComparisonResult::same;
  if (detail::comparesItself(*this)) {
    return detail::resultOf(detail::signOf(performSelector(*this, "compare:", other)));
  }
  return detail::resultOf(detail::compareOperation(*this, other));
}

ComparisonResult PropertyValue::caseInsensitiveCompare(const PropertyValue& other) const {
  if (isNil()) return ComparisonResult::same;
  return detail::resultOf(detail::signOf(performSelector(*this, "caseInsensitiveCompare:", other)));
}

}  // namespace qx
